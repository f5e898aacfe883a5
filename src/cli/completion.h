#pragma once
// Shell completion for molvera-cli, from the parser's definitions.

#include <string>

namespace CLI {
class App;
}

namespace molvera::cli {

/// A bash completion script for molvera-cli, whose commands are the subcommands of `app`:
/// the commands, each command's options, the choices an option's value name lists
/// ("--type shirley|linear|tougaard"), and file names for file arguments and for options
/// that take a file, by the extensions the value name gives ("FILE.opa").
std::string BashCompletion(const CLI::App& app);

}  // namespace molvera::cli
