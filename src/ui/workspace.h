#pragma once
// The program's windows as a workspace: where they go on the screen (side by side at
// start-up, or where they were last time), the region window's File menu with the recent
// files, and files dropped on either window. Geometry and recent files are kept in the
// user's settings (QSettings "Molvera"/"Molvera").

#include <string>
#include <vector>

#include <QObject>

#include "session/workspace.h"

class QMenu;

namespace molvera::ui {

class Gui;

class Workspace : public QObject {
public:
    explicit Workspace(Gui& gui);

    /// The windows where they were last time when both fit on an available screen,
    /// otherwise side by side on the screen the main window opens on.
    void PlaceWindows();
    /// Both windows' geometry into the settings.
    void SaveGeometry() const;
    /// A project opened or saved, an instrument file imported: first in the recent files.
    void FileUsed(const std::string& path);
    const RecentFiles& Recent() const { return recent_; }
    /// File > Import...: a project is opened, an instrument file imported into the current
    /// region in the format its extension names.
    void ImportCommand();
    /// File > Export Report...: every peak of the regions with data as CSV, JSON or an
    /// HTML page, by the extension of the name chosen.
    void ExportReportCommand();
    /// A recent file's entry: opened as `molvera FILE` opens it; a missing file is removed.
    void OpenRecent(const std::string& path);

protected:
    /// Files dropped on a window: opened as `molvera FILE` opens them.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildFileMenu();
    void RefreshRecentMenu();
    void StoreRecent();

    Gui& gui_;
    RecentFiles recent_;
    QMenu* recentMenu_ = nullptr;
};

}  // namespace molvera::ui
