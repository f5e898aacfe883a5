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

}  // namespace molvera
