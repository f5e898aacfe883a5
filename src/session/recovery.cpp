#include "session/recovery.h"

#include <signal.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "base/messages.h"
#include "fileio/files.h"
#include "fileio/projectfile.h"

namespace molvera {

namespace fs = std::filesystem;

namespace {
constexpr const char* kPrefix = "recovery-";
constexpr std::size_t kMaxSidecarBytes = std::size_t{64} * 1024;

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// Whether process `pid` runs (a process of another user counts as running).
bool Running(long pid) {
    return pid > 0 && (kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM);
}

// The pid of "recovery-<pid>.xps", or 0 for any other name.
long PidOfCopyName(const std::string& name) {
    const std::string_view prefix = kPrefix;
    if (!name.starts_with(prefix) || !name.ends_with(".xps")) return 0;
    const char* first = name.data() + prefix.size();
    const char* last = name.data() + name.size() - 4;
    long pid = 0;
    const auto [end, ec] = std::from_chars(first, last, pid);
    return ec == std::errc() && end == last ? pid : 0;
}

std::string Now() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}
}  // namespace

std::string RecoveryFolder() {
    std::string state = Environment("XDG_STATE_HOME");
    if (state.empty() || state.front() != '/') {
        const std::string home = Environment("HOME");
        if (home.empty()) return "";
        state = home + "/.local/state";
    }
    return state + "/molvera";
}

int AutosaveSeconds() {
    const std::string text = Environment("MOLVERA_AUTOSAVE_SECONDS");
    int seconds = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool valid = !text.empty() && ec == std::errc() && end == text.data() + text.size();
    return valid && seconds >= 1 && seconds <= 3600 ? seconds : 60;
}

std::string RecoveryFile::Path(long pid, const char* extension) const {
    return folder_ + "/" + kPrefix + std::to_string(pid) + extension;
}

Status RecoveryFile::Update(Project& project, const SavedProject& saved) const {
    if (folder_.empty()) return Status::Ok();
    if (!saved.Changed(project)) {
        Remove();
        return Status::Ok();
    }
    std::error_code ec;
    fs::create_directories(folder_, ec);
    // The sidecar first: a copy is only looked for by its project file.
    const std::string sidecar = Now() + "\n" + saved.Path();
    if (Status st = WriteFileBytes(Path(pid_, ".txt"), sidecar, msg::kErrorWritingFile); !st)
        return st;
    return WriteFileBytes(Path(pid_, ".xps"), ProjectBytesUncut(project), msg::kErrorWritingFile);
}

void RecoveryFile::Remove() const {
    if (folder_.empty()) return;
    DeleteRecoveryCopy({pid_, Path(pid_, ".xps"), "", ""});
}

std::vector<RecoveryCopy> RecoveryFile::Orphans() const {
    std::vector<RecoveryCopy> copies;
    std::error_code ec;
    if (folder_.empty()) return copies;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_, ec)) {
        const long pid = PidOfCopyName(entry.path().filename().string());
        if (pid == 0 || pid == pid_ || Running(pid)) continue;
        RecoveryCopy copy{pid, entry.path().string(), "", "?"};
        std::string sidecar;
        if (ReadWholeFile(Path(pid, ".txt"), sidecar, kMaxSidecarBytes)) {
            const std::size_t newline = std::min(sidecar.find('\n'), sidecar.size());
            copy.writtenAt = sidecar.substr(0, newline);
            copy.originalPath = sidecar.substr(std::min(newline + 1, sidecar.size()));
        }
        copies.push_back(std::move(copy));
    }
    std::sort(copies.begin(), copies.end(), [](const RecoveryCopy& a, const RecoveryCopy& b) {
        return a.writtenAt > b.writtenAt;
    });
    return copies;
}

Status RecoveryFile::OfferRestore(Project& project, Host& host, SavedProject& saved) const {
    for (const RecoveryCopy& copy : Orphans()) {
        if (!host.AskYesNo(msg::kRestoreTitle, RestoreQuestion(copy))) {
            DeleteRecoveryCopy(copy);
            continue;
        }
        if (Status st = LoadProject(project, host, copy.projectPath); !st) return st;
        project.FileName = copy.originalPath;
        saved.MarkRestored(copy.originalPath);
        if (Update(project, saved)) DeleteRecoveryCopy(copy);
        break;
    }
    return Status::Ok();
}

std::string RestoreQuestion(const RecoveryCopy& copy) {
    const std::string name = copy.originalPath.empty()
                                 ? std::string("an untitled project")
                                 : fs::path(copy.originalPath).filename().string();
    return "Molvera did not close normally. Restore the unsaved work on " + name + " from " +
           copy.writtenAt + "?";
}

void DeleteRecoveryCopy(const RecoveryCopy& copy) {
    std::error_code ec;
    fs::path sidecar = copy.projectPath;
    fs::remove(copy.projectPath, ec);
    fs::remove(sidecar.replace_extension(".txt"), ec);
}

}  // namespace molvera
