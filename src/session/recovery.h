#pragma once
// Autosave and recovery: while the project has unsaved changes, a copy of it is kept in the
// user's state folder, one per running program; a copy whose program is gone is offered at
// the next start.

#include <string>
#include <vector>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"
#include "session/mainwindow.h"

namespace molvera {

/// $XDG_STATE_HOME/molvera, or ~/.local/state/molvera when XDG_STATE_HOME is unset or not
/// an absolute path; "" when neither it nor HOME is known.
std::string RecoveryFolder();

/// Seconds between two recovery copies: MOLVERA_AUTOSAVE_SECONDS when it is a whole number
/// from 1 to 3600 (for tests), otherwise 60.
int AutosaveSeconds();

/// A recovery copy: "recovery-<pid>.xps", an ordinary project file, and beside it
/// "recovery-<pid>.txt" with the time it was written and the project's file name.
struct RecoveryCopy {
    long pid = 0;
    std::string projectPath;   ///< the .xps copy
    std::string originalPath;  ///< the project's own file ("": never saved)
    std::string writtenAt;     ///< local time, "2026-11-24 05:10"
};

/// The recovery copy of one program (process `pid`) in `folder`; an empty folder keeps none.
class RecoveryFile {
public:
    RecoveryFile(std::string folder, long pid) : folder_(std::move(folder)), pid_(pid) {}

    /// Once a minute: writes the copy while `project` differs from its file, removes it
    /// otherwise. The folder is created when needed; both files are replaced atomically.
    Status Update(Project& project, const SavedProject& saved) const;
    /// A save or a clean exit: the copy goes.
    void Remove() const;
    /// The copies of programs that no longer run, newest first.
    std::vector<RecoveryCopy> Orphans() const;

    /// At start-up, each orphaned copy in turn: "Molvera did not close normally. Restore
    /// the unsaved work on c1s.xps from 2026-11-24 05:10?". Yes loads it (then the project
    /// keeps its old file name and counts as changed; it is copied under this program at
    /// once and the orphan removed) and asks no further; No deletes the copy. A copy that
    /// cannot be read is left, and the reader's refusal returned.
    Status OfferRestore(Project& project, Host& host, SavedProject& saved) const;

private:
    std::string Path(long pid, const char* extension) const;
    std::string folder_;
    long pid_;
};

/// The question asked about `copy`.
std::string RestoreQuestion(const RecoveryCopy& copy);

/// Deletes both files of a copy.
void DeleteRecoveryCopy(const RecoveryCopy& copy);

}  // namespace molvera
