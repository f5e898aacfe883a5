#pragma once
// The region window with the plot of the current region and the menu of every command
// on it.

#include <functional>
#include <string_view>

#include <QMainWindow>

#include "fileio/formats.h"
#include "model/records.h"

class QAction;
class QLabel;

namespace molvera::ui {

class QtHost;
class FileDialog;
class PlotWidget;
class PeakTable;

/// The region window.
class RegionWindow : public QMainWindow {
    Q_OBJECT
public:
    RegionWindow(Project& project, QtHost& host, FileDialog& files, QWidget* parent = nullptr);

    /// The current region in view: the window shown; the plot redrawn when asked. The title
    /// ("Region N") names the region the plot last painted, so that during a fit, when
    /// paints are spaced out, it never names another.
    void ShowRegion(bool redraw = true);
    /// The status line: the warnings of the last command ("Warning: ...", in a warning
    /// colour; empty clears them) and the summary of the last fit.
    void SetWarning(const QString& text);
    void SetFitSummary(const QString& text);
    QString WarningText() const;
    /// The redisplay rule: the plot is repainted from the project.
    void Redraw();
    PlotWidget* Plot() const { return plot_; }
    /// The peak table panel under the plot.
    PeakTable* Table() const { return table_; }
    /// During a fit the menu and the plot's read-out take no input; the window itself
    /// stays enabled so that the plot is not repainted for the change of state.
    void SetCommandsEnabled(bool enabled);
    bool CommandsEnabled() const;
    /// The menu item of that name (`importKratosAction`, `addPeakAction`, ...), or null.
    QAction* Action(const QString& itemName) const;

    // The menu commands.
    void Import(const ImportFormat& format);
    /// Imports `path` in `format` into the current region, as Import does after its dialog.
    void ImportFrom(const ImportFormat& format, const std::string& path);
    void ExportSpectrumCommand();
    void ExportPeakParametersCommand();
    void ExportClipboardCommand();
    void PrintCommand(bool withPeakTable);
    void BackgroundCommand();
    void AddPeakCommand();
    void RegionCaptionCommand();
    void LoadRegionParametersCommand();
    void SaveRegionParametersCommand();
    void ClearParametersCommand();
    void DeleteRegionCommand();
    void RegionShiftCommand();
    void OptimiseRegionCommand();
    void ReDisplayCommand();

    /// Hooks for the windows of the next step (background dialog, peak editor, region
    /// shift and caption dialogs); until they are set these menu items do nothing.
    std::function<void()> openBackgroundDialog;
    std::function<void()> addPeak;  ///< Add Peak and the peak editor on the new peak
    std::function<void()> openRegionCaption;
    std::function<void()> openRegionShift;
    /// Called whenever the plot and the peak table are asked to follow the project.
    std::function<void()> redrawn;
    /// Called with the path of an instrument file imported.
    std::function<void(const std::string& path)> fileUsed;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildMenus();
    QAction* AddItem(QMenu* menu, const QString& caption, const QString& name,
                     std::function<void()> command);
    bool SaveDialog(std::string_view title, std::string_view filter, const char* extension,
                    std::string& path);

    Project& project_;
    QtHost& host_;
    FileDialog& files_;
    PlotWidget* plot_;
    PeakTable* table_;
    QLabel* warning_;
    QLabel* fitSummary_;
};

}  // namespace molvera::ui
