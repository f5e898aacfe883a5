#include "fileio/files.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace molvera {

bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t maxBytes) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return false;
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    bytes.clear();
    char buf[65536];
    while (in) {
        in.read(buf, sizeof buf);
        bytes.append(buf, static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > maxBytes) return false;
    }
    return !in.bad();
}

bool WriteFileAtomically(const std::string& path,
                         const std::function<bool(std::ostream&)>& write) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (fs::is_directory(path, ec)) return false;
    const fs::path target(path);
    std::random_device rd;
    const fs::path temp =
        target.parent_path() / (target.filename().string() + ".tmp" + std::to_string(rd() % 1000000));
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) return false;
        bool ok = write(out);
        out.flush();
        ok = ok && static_cast<bool>(out);
        out.close();
        if (!ok || out.fail()) {
            fs::remove(temp, ec);
            return false;
        }
    }
    fs::rename(temp, target, ec);
    if (ec) {
        fs::remove(temp, ec);
        return false;
    }
    return true;
}

}  // namespace molvera
