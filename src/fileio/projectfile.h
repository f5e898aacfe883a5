#pragma once
// The project file (.xps): version 4.0 written; 4.0, 3.0 and the older "SF" layout read.

#include <string>
#include <string_view>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// The bytes of the project file in version 4.0 (Description first cut to 128 characters).
std::string ProjectFileBytes(Project& project);

/// (Followed by the extension block when the quantification settings are not the defaults.)

/// Writes the whole project in version 4.0. Description is first cut to 128
/// characters (and kept so). The previous file survives any failure
/// ("Error in writing file").
Status SaveProject(Project& project, const std::string& path);

/// Whether `bytes` begin with the header of a project file of any version.
bool HasProjectHeader(std::string_view bytes);

/// Reads the records of a project file into `project` (emptied by the caller): the
/// regions and peak slots the file holds, the tail, and the description when the file
/// has one (`descriptionRead`). Refuses with "Wrong file format" or "Error in reading
/// file" and a detail (the byte where reading stopped); the records read until then stay.
/// An extension block after the description that cannot be read is ignored and described
/// in `warning`; it never fails the read.
Status ReadProjectBytes(std::string_view bytes, Project& project, bool* descriptionRead = nullptr,
                        std::string* warning = nullptr);

/// The extension block (tag, version, length, fields) into `quant`; refused ("Extension
/// block ignored" and where) when it is truncated, garbled or of an unknown version, `quant`
/// then unchanged.
Status ReadExtensionBlock(std::string_view bytes, QuantSettings& quant);

/// Open XPS: replaces the project by the file's, recomputes every region with a
/// background and peaks, and reports the whole project. Returns the refusal ("Wrong file
/// format", "Error in reading file") for the caller to show; the project is then unchanged.
/// `warning`: why an extension block was ignored, empty when none was.
Status LoadProject(Project& project, Host& host, const std::string& path,
                   std::string* warning = nullptr);

/// The same on the bytes of a project file.
Status LoadProjectBytes(Project& project, Host& host, std::string_view bytes,
                        std::string* warning = nullptr);

}  // namespace molvera
