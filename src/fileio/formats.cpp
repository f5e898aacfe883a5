#include "fileio/formats.h"

#include <array>
#include <cctype>
#include <filesystem>

#include "base/messages.h"
#include "fileio/asciiimport.h"
#include "fileio/files.h"
#include "fileio/kratos.h"
#include "fileio/leybold.h"
#include "fileio/phi.h"
#include "fileio/vamas.h"

namespace molvera {

namespace {

constexpr std::array<ImportFormat, 5> kFormats{{
    {"kratos",
     "Import (Kratos)",
     "Import Kratos Ascii format",
     "Kratos Files (*.des) |*.des|",
     "des",
     kMaxKratosBytes,
     msg::kErrorReadingFile,
     {StoreRule::FittedRegion},
     &ReadKratos},
    {"leybold",
     "Import (Leybold)",
     "Import Leybold Ascii format",
     "ASCII Files (*.dat) |*.dat|",
     "dat",
     kMaxImportBytes,
     msg::kErrorReadingFileImport,
     {StoreRule::Regions, SortRule::ReverseUnlessFalling, true},
     &ReadLeybold},
    {"phi",
     "Import (Phi)",
     "Import Phi Ascii format",
     "ASCII Files (*.asc) |*.asc|",
     "asc",
     kMaxImportBytes,
     msg::kErrorReadingFileImport,
     {StoreRule::Regions, SortRule::ReverseIfRising, true},
     &ReadPhi},
    {"vamas",
     "Import (VAMAS)",
     "Import VAMAS format",
     "VAMAS Files (*.*) |*.*|",
     "vms npl",
     kMaxImportBytes,
     msg::kErrorReadingFileImport,
     {StoreRule::Regions, SortRule::ReverseIfRising, false},
     &ReadVamas},
    {"ascii",
     "Import (ASCII)",
     "Import Ascii format (BE  Intensity)",
     "ASCII Files (*.*) |*.*|",
     "txt csv xy",
     kMaxImportBytes,
     msg::kErrorReadingFileImport,
     {StoreRule::CurrentRegion, SortRule::ReverseUnlessFalling},
     &ReadAscii},
}};

}  // namespace

std::span<const ImportFormat> ImportFormats() { return kFormats; }

const ImportFormat* FindImportFormat(std::string_view name) {
    for (const ImportFormat& f : kFormats)
        if (f.name == name) return &f;
    return nullptr;
}

const ImportFormat* FindImportFormatOfFile(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    if (extension.empty()) return nullptr;
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const std::string word = " " + extension.substr(1) + " ";
    for (const ImportFormat& f : kFormats)
        if ((" " + std::string(f.extensions) + " ").find(word) != std::string::npos) return &f;
    return nullptr;
}

ImportResult ImportFile(Project& project, Host& host, const ImportFormat& format,
                        const std::string& path) {
    std::string bytes;
    if (Status read = ReadFileBytes(path, format.maxBytes, format.unreadable, bytes); !read) {
        ImportResult refused;
        refused.status = read;
        return refused;
    }
    ImportResult result = StoreImport(project, host, format.parse(bytes), format.policy);
    result.status = WithFileName(result.status, path);
    return result;
}

}  // namespace molvera
