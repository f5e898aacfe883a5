#pragma once
// The option file (.opa): FitOptions as 206 little-endian bytes, no header.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/status.h"
#include "model/options.h"

namespace molvera {

/// Size of an option file.
constexpr std::size_t kOptionFileSize = 206;

/// One field of FitOptions with its place in the option file.
struct OptionField {
    std::string name;    ///< e.g. "AreaSearch[2].Step" (levels counted from 1)
    std::size_t offset;  ///< byte offset in the option file
    std::variant<float*, std::int16_t*> value;
};

/// Every field of `options` in file order: the one table that reading, writing and
/// the tests go through.
std::vector<OptionField> OptionFileFields(FitOptions& options);

/// Reads an option file field by field into `options`. A file that ends before
/// GLSum alone is accepted (GLSum keeps its value); ending earlier gives "Error in
/// reading file" with `options` unchanged.
Status ReadOptionFile(FitOptions& options, const std::string& path);

/// The same on the first 206 bytes of an option file (more are not looked at).
Status ReadOptionBytes(FitOptions& options, std::string_view bytes);

/// The 206 bytes of the option file.
std::string OptionFileBytes(const FitOptions& options);

/// Writes the 206-byte option file; the previous file survives a failure
/// ("Error in writing file").
Status WriteOptionFile(const FitOptions& options, const std::string& path);

/// The folder where the package installs its data files (default.opa).
std::string InstalledDataDir();

/// The folders where the start-up options `default.opa` are looked for, first first: the
/// working directory (""), the user's configuration folder ($XDG_CONFIG_HOME/molvera, or
/// ~/.config/molvera), and `dataDir`, by default the installed /usr/share/molvera.
std::vector<std::string> DefaultOptionsFolders(const std::string& dataDir = InstalledDataDir());

/// The first `default.opa` of `folders` that is a file ("default.opa" itself for the
/// working directory), or "" when there is none: the built-in options apply. The desktop
/// program and molvera-cli both start from this file.
std::string FindDefaultOptions(const std::vector<std::string>& folders = DefaultOptionsFolders());

}  // namespace molvera
