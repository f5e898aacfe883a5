#include "fileio/files.h"

#include <cerrno>
#include <cstring>
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
    return Status::Error(status.message(),
                         status.detail().empty() ? name : name + ": " + status.detail());
}

Status WriteFileBytes(const std::string& path, std::string_view bytes, const char* message) {
    namespace fs = std::filesystem;
    auto fail = [&](const std::string& why) {
        return WithFileName(Status::Error(message, why), path);
    };
    std::error_code ec;
    if (fs::is_directory(path, ec)) return fail("a folder, not a file");
    const fs::path target(path);
    std::random_device rd;
    const fs::path temp = target.parent_path() /
                          (target.filename().string() + ".tmp" + std::to_string(rd() % 1000000));
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out)
            return fail("the folder cannot be written to: " + std::string(std::strerror(errno)));
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        const int writeError = errno;
        const bool ok = static_cast<bool>(out);
        out.close();
        if (!ok || out.fail()) {
            fs::remove(temp, ec);
            return fail("the data could not all be written: " +
                        std::string(std::strerror(writeError)));
        }
    }
    fs::rename(temp, target, ec);
    if (ec) {
        const std::string why = ec.message();
        fs::remove(temp, ec);
        return fail("the file could not be replaced: " + why);
    }
    return Status::Ok();
}

}  // namespace molvera
