#pragma once
// The main window's own rules: choosing a region, the region button colours, and the
// file names that the save dialogs propose, and whether the project has unsaved changes.

#include <functional>
#include <string>

#include "base/status.h"
#include "fileio/formats.h"
#include "model/host.h"
#include "model/records.h"
#include "plot/canvas.h"
#include "session/sessionhost.h"

namespace molvera {

/// Colour of a region button.
enum class RegionButtonColour { ButtonFace, HasData, Current };

/// Current region: light yellow; a slot with data: light green; otherwise button face.
RegionButtonColour RegionButtonColourOf(const Project& project, int region);

/// Red, green and blue of the two coloured states (button face has none of its own).
Rgb RegionButtonRgb(RegionButtonColour colour);

/// Region button `k` pressed: the old region's peak buttons are disabled, `k` becomes
/// current, its peak buttons are enabled when it has data and a background, the
/// region dialogs are hidden and the region window shown.
void SelectRegion(Project& project, SessionHost& host, int k);

/// The name a save dialog proposes from the dialog's last file name: the file part up
/// to and including its first "." followed by `extension`; a name without "." is
/// proposed unchanged. The folder part is kept as it is.
std::string ProposeFileName(const std::string& lastFileName, const std::string& extension);

/// What a file named on the command line is taken for: a project when it begins with a
/// project file's header or its name ends in ".xps", otherwise an instrument file in the
/// import format of its extension (".vms": VAMAS); neither: `refusal` says so.
struct NamedFile {
    bool project = false;
    const ImportFormat* format = nullptr;
    Status refusal;
};
NamedFile ClassifyNamedFile(const std::string& path);

/// Imports an instrument file into the first region without data, which becomes current;
/// when the import is refused, the region that was current is current again.
ImportResult ImportIntoEmptyRegion(Project& project, SessionHost& host, const ImportFormat& format,
                                   const std::string& path);

/// The project's file bytes, without cutting a long description in the project as a save
/// does.
std::string ProjectBytesUncut(Project& project);

/// Whether the project differs from its file: its file bytes now against those at the
/// last open, save or new (a few milliseconds for ten regions of 5000 points).
class SavedProject {
public:
    /// The project as it is now is the content of `path` ("": never saved).
    void Mark(Project& project, const std::string& path);
    /// The project came from a recovery copy of `path`'s project: changed until saved.
    void MarkRestored(const std::string& path) {
        bytes_.clear();
        path_ = path;
    }
    const std::string& Path() const { return path_; }
    bool Changed(Project& project) const;
    /// The main window's title: "c1s.xps* - Molvera" when changed, "Untitled - Molvera"
    /// before the first save.
    std::string Title(Project& project) const;
    /// Before the project is dropped (Close, Open, quit): asks "Save changes to c1s.xps?"
    /// when it changed. True when it may go: unchanged, Discard, or Save and `save`
    /// saved it (a cancelled save keeps it).
    bool MayDrop(Project& project, SessionHost& host, const std::function<bool()>& save) const;

private:
    std::string Name() const;  ///< the file name without its folder, or "Untitled"
    std::string bytes_;
    std::string path_;
};

}  // namespace molvera
