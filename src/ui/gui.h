#pragma once
// The whole desktop program: the project, its host, the shared file dialog and the
// windows, wired together, and the start-up sequence.

#include <memory>
#include <string>
#include <vector>

#include "model/records.h"
#include "session/history.h"
#include "session/optionsform.h"
#include "ui/filechooser.h"
#include "ui/qthost.h"

namespace molvera::ui {

class UserSink;
class MainWindow;
class RegionWindow;
class OptionsWindow;
class FittingWindow;
class BackgroundDialog;
class RegionShiftDialog;
class RegionCaptionDialog;
class PeakEditor;
class ConstraintDialog;
class Workspace;
class QuantWindow;

/// One running program.
class Gui {
public:
    Gui(UserSink& sink, FileChooser& chooser);
    ~Gui();

    /// Start-up: line-shape tables, cleared project, the options file at
    /// `defaultOptionsPath` (silently absent), then the main and region windows shown
    /// (Workspace::PlaceWindows);
    /// with a `recoveryFolder`, the autosave there (MainWindow::StartRecovery).
    void Start(const std::string& defaultOptionsPath = "default.opa",
               const std::string& recoveryFolder = "");
    /// Files named on the command line, dropped or chosen from the recent files, in turn: a
    /// project is opened as Open XPS opens it, an instrument file imported into the first
    /// empty region; refusals are shown.
    void OpenFiles(const std::vector<std::string>& paths);

    Project& project() { return *project_; }
    QtHost& host() { return host_; }
    FileDialog& files() { return files_; }
    MainWindow& mainWindow() { return *main_; }
    RegionWindow& regionWindow() { return *region_; }
    OptionsWindow& optionsWindow() { return *options_; }
    FittingWindow& fittingWindow() { return *fitting_; }
    BackgroundDialog& backgroundDialog() { return *background_; }
    RegionShiftDialog& regionShiftDialog() { return *shift_; }
    RegionCaptionDialog& regionCaptionDialog() { return *caption_; }
    PeakEditor& peakEditor() { return *peakEditor_; }
    ConstraintDialog& constraintDialog() { return *constraints_; }
    QuantWindow& quantWindow() { return *quant_; }
    UndoHistory& history() { return history_; }
    Workspace& workspace() { return *workspace_; }

    /// After a command: a change of the project becomes an undo step.
    void RecordStep();
    /// Edit > Undo and Edit > Redo; refused with a beep while another command runs.
    void UndoStep();
    void RedoStep();

private:
    std::unique_ptr<Project> project_;  // large: kept off the stack
    OptionsForm optionsForm_;
    QtHost host_;
    FileDialog files_;
    std::unique_ptr<MainWindow> main_;
    std::unique_ptr<RegionWindow> region_;
    std::unique_ptr<OptionsWindow> options_;
    std::unique_ptr<FittingWindow> fitting_;
    std::unique_ptr<BackgroundDialog> background_;
    std::unique_ptr<RegionShiftDialog> shift_;
    std::unique_ptr<RegionCaptionDialog> caption_;
    std::unique_ptr<ConstraintDialog> constraints_;
    std::unique_ptr<PeakEditor> peakEditor_;
    std::unique_ptr<QuantWindow> quant_;
    UndoHistory history_;
    std::unique_ptr<Workspace> workspace_;

    /// The peak editor and the region dialogs, built and hooked to the other windows.
    void BuildDialogs();
    /// The Edit menus of both windows, wired to the history.
    void WireEditMenus();
    void RefreshEditMenus();
    /// Undo (`redo` false) or Redo, between two commands only.
    void StepHistory(bool redo);
};

}  // namespace molvera::ui
