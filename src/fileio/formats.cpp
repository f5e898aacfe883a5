#include "fileio/formats.h"

#include <array>

#include "fileio/asciiimport.h"
#include "fileio/kratos.h"
#include "fileio/leybold.h"
#include "fileio/phi.h"
#include "fileio/vamas.h"

namespace molvera {

namespace {

constexpr std::array<ImportFormat, 5> kFormats{{
    {"kratos", "Import Kratos Ascii format", "Kratos Files (*.des) |*.des|", &ReadKratos},
    {"leybold", "Import Leybold Ascii format", "ASCII Files (*.dat) |*.dat|", &ReadLeybold},
    {"phi", "Import Phi Ascii format", "ASCII Files (*.asc) |*.asc|", &ReadPhi},
    {"vamas", "Import VAMAS format", "VAMAS Files (*.*) |*.*|", &ReadVamas},
    {"ascii", "Import Ascii format (BE  Intensity)", "ASCII Files (*.*) |*.*|", &ReadAscii},
}};

}  // namespace

std::span<const ImportFormat> ImportFormats() { return kFormats; }

const ImportFormat* FindImportFormat(std::string_view name) {
    for (const ImportFormat& f : kFormats)
        if (f.name == name) return &f;
    return nullptr;
}

}  // namespace molvera
