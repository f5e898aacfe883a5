#pragma once
// Whole files in and out: reading a file into memory with a size bound, and writing
// one so that a failure never destroys the previous file.

#include <cstddef>
#include <string>
#include <string_view>

#include "base/status.h"

namespace molvera {

/// Reads a whole file into memory; fails when it cannot be opened or is larger than
/// `maxBytes`, and then says why in `why` when given ("no such file").
bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t maxBytes,
                   std::string* why = nullptr);

/// ReadWholeFile with its failure as `message` and, as detail, the file's name and why.
Status ReadFileBytes(const std::string& path, std::size_t maxBytes, const char* message,
                     std::string& bytes);

/// The status with the file's name in front of its detail ("c1s.vms: line 57: ..."); an
/// ok status stays ok.
Status WithFileName(const Status& status, const std::string& path);

/// Writes a file safely: the bytes go to a temporary file in the same folder, which then
/// replaces `path`; when anything fails the previous file stays as it was, and the
/// failure is `message` with the file's name and why as detail.
Status WriteFileBytes(const std::string& path, std::string_view bytes, const char* message);

}  // namespace molvera
