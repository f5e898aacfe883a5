#pragma once
// Shell completion for molvera-cli, from the parser's definitions.

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace molvera::cli {

/// The words a value name lists: its parts between '|' that hold no capital letter
/// ("shirley|linear|tougaard" all three, "R|auto" auto, "N" none).
std::vector<std::string> ValueWords(std::string_view value);

/// A bash completion script for molvera-cli, whose commands are the subcommands of `app`:
/// the commands, each command's options, the choices an option's value name lists
/// ("--type shirley|linear|tougaard"), and file names for file arguments and for options
/// that take a file, by the extensions the value name gives ("FILE.opa").
std::string BashCompletion(const CLI::App& app);

}  // namespace molvera::cli
