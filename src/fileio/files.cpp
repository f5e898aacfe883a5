#include "fileio/files.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace molvera {

bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t maxBytes,
                   std::string* why) {
    auto fail = [why](const std::string& reason) {
        if (why) *why = reason;
        return false;
    };
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return fail("a folder, not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail(std::filesystem::exists(path, ec) ? "cannot be opened" : "no such file");
    bytes.clear();
    char buf[65536];
    while (in) {
        in.read(buf, sizeof buf);
        bytes.append(buf, static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > maxBytes)
            return fail("larger than the " + std::to_string(maxBytes) + " bytes it may have");
    }
    return in.bad() ? fail("cannot be read") : true;
}

Status ReadFileBytes(const std::string& path, std::size_t maxBytes, const char* message,
                     std::string& bytes) {
    std::string why;
    if (ReadWholeFile(path, bytes, maxBytes, &why)) return Status::Ok();
    return WithFileName(Status::Error(message, why), path);
}

Status WithFileName(const Status& status, const std::string& path) {
    if (status.ok()) return status;
    const std::string name = std::filesystem::path(path).filename().string();
    return Status::Error(status.message(), status.detail().empty() ? name : name + ": " + status.detail());
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
