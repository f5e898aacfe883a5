#pragma once
// The table of instrument import formats: the region window's Data menu and its file
// dialogs, the CLI's "import FORMAT", the fuzz targets and the tests are driven from it.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "fileio/importstore.h"

namespace molvera {

/// A reader: what it makes of a file's bytes.
using ParseFunction = ImportedData (*)(std::string_view bytes);

/// One import format.
struct ImportFormat {
    std::string_view name;         ///< CLI name: "kratos", "leybold", "phi", "vamas", "ascii"
    std::string_view menuCaption;  ///< item of the region window's Data menu
    std::string_view title;        ///< open dialog title
    std::string_view filter;       ///< open dialog filter text
    std::string_view extensions;   ///< usual file name endings, blank-separated, without the dot
    std::size_t maxBytes;          ///< larger files are refused unread
    const char* unreadable;        ///< message for a file that cannot be read at all
    StorePolicy policy;
    ParseFunction parse;
};

/// Every import format, in the order of the region window's Data menu.
std::span<const ImportFormat> ImportFormats();

/// The format of a CLI name, or nullptr.
const ImportFormat* FindImportFormat(std::string_view name);

/// The format whose usual extensions include that of `path` (any case), or nullptr.
const ImportFormat* FindImportFormatOfFile(const std::string& path);

/// Reads the file at `path` in `format` and stores what it holds from CurrentRegion.
/// Messages come back in the result; a detail names the file and where it went wrong.
ImportResult ImportFile(Project& project, Host& host, const ImportFormat& format,
                        const std::string& path);

}  // namespace molvera
