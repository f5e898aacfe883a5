#pragma once
// Helpers shared by the import tests: files written into a scratch folder, real
// files found in the shared set or in the bundled copies, and line scanning.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/paths.h"

namespace molvera::test {

/// Writes `text` byte for byte to a file in the test's scratch folder.
inline std::string WriteScratch(const std::string& name, const std::string& text) {
    const std::filesystem::path p = ScratchDir() / name;
    std::ofstream(p, std::ios::binary) << text;
    return p.string();
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
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

}  // namespace molvera::test
