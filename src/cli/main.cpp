#include "cli/commands.h"

int main(int argc, char** argv) { return molvera::cli::Main(argc, argv); }
