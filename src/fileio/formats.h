#pragma once
// The table of instrument import formats: the region window's menu, its file
// dialogs, the CLI's "import FORMAT" and the tests are driven from it.

#include <span>
#include <string>
#include <string_view>

#include "model/host.h"
#include "model/records.h"
#include "base/status.h"

namespace molvera {

/// A reader: fills regions from the file at `path`, starting at CurrentRegion.
using ImportFunction = Status (*)(Project& project, Host& host, const std::string& path);

/// One import format.
struct ImportFormat {
    std::string_view name;    ///< CLI name: "kratos", "leybold", "phi", "vamas", "ascii"
    std::string_view title;   ///< open dialog title
    std::string_view filter;  ///< open dialog filter text
    ImportFunction read;
};

/// Every import format, in the order of the region window's Data menu.
std::span<const ImportFormat> ImportFormats();

/// The format of a CLI name, or nullptr.
const ImportFormat* FindImportFormat(std::string_view name);

}  // namespace molvera
