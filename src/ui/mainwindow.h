#pragma once
// The main window: region buttons, the 10 x 10 peak buttons, chi-square boxes, the
// total, the description and the project commands.

#include <array>
#include <functional>

#include <QWidget>

#include "base/limits.h"
#include "model/records.h"
#include "session/mainwindow.h"
#include "session/recovery.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace molvera::ui {

class QtHost;
class FileDialog;

/// The main window.
class MainWindow : public QWidget {
    Q_OBJECT
public:
    MainWindow(Project& project, QtHost& host, FileDialog& files, QWidget* parent = nullptr);

    void SetChiText(int region, const QString& text);
    void SetTotalText(const QString& text);
    void SetPeakButton(int index, const QString& caption, bool enabled);
    void SetDescription(const QString& text);
    /// Region buttons in their colours (data, current, empty).
    void RecolourRegionButtons();

    QPushButton* RegionButton(int k) const { return regionButtons_[static_cast<std::size_t>(k)]; }
    QPushButton* PeakButton(int i) const { return peakButtons_[static_cast<std::size_t>(i)]; }
    QLineEdit* ChiSquareBox(int k) const { return chiSquareBoxes_[static_cast<std::size_t>(k)]; }
    QLabel* TotalLabel() const { return totalChiSquare_; }
    QLineEdit* DescriptionBox() const { return description_; }

    /// Open XPS and Save XPS, as their buttons run them; Save XPS: true when it saved.
    void OpenProjectCommand();
    bool SaveProjectCommand();
    /// File > Save: to the project's file without a dialog, or as Save XPS when it has none.
    bool SaveCommand();
    /// The project as it is now is the one in `path` ("": a new project, never saved).
    void MarkSaved(const std::string& path);
    /// The title with the file name, marked when the project has unsaved changes.
    void RefreshTitle();
    /// Asks about unsaved changes; true when the project may be dropped.
    bool MayDropProject();
    /// Opens the project file at `path` (after MayDropProject); a refusal is shown.
    void LoadProjectFile(const std::string& path);
    /// Offers the recovery copies in `folder` that programs which did not close normally
    /// left, then keeps a copy there, every AutosaveSeconds(), while there are unsaved
    /// changes.
    void StartRecovery(const std::string& folder);

    /// Called by "Options" (the options dialog fills itself and shows).
    std::function<void()> openOptions;
    /// Called by peak button `buttonIndex` (10 x region + k): opens the peak editor
    /// on the peak that the button lists.
    std::function<void(int buttonIndex)> openPeakEditor;
    /// Called when Open XPS has put another project in place of the open one.
    std::function<void()> projectReplaced;
    /// Called with the path of a project file opened or saved.
    std::function<void(const std::string& path)> fileUsed;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void PeakButtonClicked(int i);
    bool SaveTo(const std::string& path);
    void Autosave();

    Project& project_;
    QtHost& host_;
    FileDialog& files_;
    std::array<QPushButton*, kRegionCount> regionButtons_{};
    std::array<QPushButton*, kPeakButtonCount> peakButtons_{};
    std::array<QLineEdit*, kRegionCount> chiSquareBoxes_{};
    QLabel* totalChiSquare_ = nullptr;
    QLineEdit* description_ = nullptr;
    bool settingDescription_ = false;
    SavedProject saved_;
    RecoveryFile recovery_{"", 0};
    bool autosaveFailed_ = false;  ///< shown once
};

}  // namespace molvera::ui
