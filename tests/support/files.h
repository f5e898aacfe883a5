#pragma once
// Files for tests: whole-file reads and writes, scratch files, real data files, line
// scanning, and a fixture for the import tests.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "fileio/formats.h"
#include "model/records.h"
#include "support/paths.h"
#include "support/recording_host.h"

namespace molvera::test {

/// The whole file as bytes ("" when missing).
inline std::string ReadBytes(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Replaces the file with `bytes`.
inline void WriteBytes(const std::filesystem::path& p, const std::string& bytes) {
    std::ofstream(p, std::ios::binary | std::ios::trunc) << bytes;
}

/// A real file from the shared set, else its bundled copy, else "".
inline std::string RealFile(const std::string& rel) {
    std::string p = SharedRealFile(rel);
    if (!p.empty()) return p;
    p = DataFile("real/" + rel);
    return std::filesystem::exists(p) ? p : std::string();
}

/// The file's lines without line ends (CR LF or LF).
inline std::vector<std::string> FileLines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream in(path, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

/// The fields of a CSV row (quotes kept).
inline std::vector<std::string> CsvFields(const std::string& line) {
    std::vector<std::string> out(1);
    bool quoted = false;
    for (char c : line) {
        quoted ^= c == '"';
        if (c == ',' && !quoted)
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

/// Imports the file at `path` in format `format` ("vamas", ...) as the Import menu does.
inline ImportResult ImportPath(Project& project, Host& host, const std::string& format,
                               const std::string& path) {
    return ImportFile(project, host, *FindImportFormat(format), path);
}

/// Imports `text` as the content of a file in format `format`.
inline ImportResult ImportText(Project& project, Host& host, const std::string& format,
                               std::string_view text) {
    const ImportFormat& f = *FindImportFormat(format);
    return StoreImport(project, host, f.parse(text), f.policy);
}

/// An empty project and a recording host, for the import tests.
class ImportTest : public ::testing::Test {
protected:
    Project project;
    RecordingHost host;
};

}  // namespace molvera::test
