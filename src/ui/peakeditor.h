#pragma once
// The peak editor window, modeless, over the session's PeakForm.

#include <array>
#include <functional>
#include <string>

#include <QTimer>
#include <QWidget>

#include "model/records.h"
#include "session/constraintform.h"
#include "session/peakform.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QScrollBar;
class QToolButton;

namespace molvera::ui {

class QtHost;
class ConstraintDialog;
class PlotWidget;

/// The peak editor.
class PeakEditor : public QWidget {
    Q_OBJECT
public:
    PeakEditor(Project& project, QtHost& host, PlotWidget& plot, ConstraintDialog& constraints,
               QWidget* parent = nullptr);

    /// OpenPeakEditor from main-window peak button `buttonIndex`: filled, shown, and its
    /// peak highlighted in the plot. False when the button lists no peak.
    bool Open(int buttonIndex);
    /// Add Peak (AddPeakAndEdit), the editor opened on the new peak as Open does.
    bool AddAndOpen();
    /// Hidden by the program (Accept, Delete Peak, a region change): the highlight goes.
    void HideEditor();
    /// The asymmetry frame follows the line shape: enabled only for the GL sum.
    void SetAsymmetryEnabled(bool enabled);

    /// Controls from the form's texts, checks and bars; shown or hidden as it says.
    void ShowForm();
    /// The form's texts and checks from the controls (the bars move only through
    /// MoveScrollBar).
    void ReadForm();
    const PeakForm& Form() const { return form_; }
    /// The form filled again from the edited peak (changed elsewhere, in the peak table).
    void Refill();
    /// Typed values take effect this long after the last key.
    static constexpr int kLivePauseMs = 300;
    /// The live-editing timer (tests fire it rather than wait).
    QTimer& LiveTimer() { return liveTimer_; }
    /// The peak shown in the plot (and the table) changed: the slot, -1 for none.
    std::function<void(int slot)> highlighted;

    void AcceptClicked();
    void ReDrawClicked();
    void CancelClicked();
    void DeleteClicked();
    void OptimisePeakClicked();
    void OptimiseClicked(PeakParameter which);
    void ConstraintsClicked(PeakParameter kind);

protected:
    /// The title-bar X: ClosePeakEditor.
    void closeEvent(QCloseEvent* event) override;

private:
    /// After the form was opened on a peak: the controls shown, no box marked.
    void Opened();

    /// One of the four frames: value box, scroll bar, Fix, Optimise, Constraints.
    struct ParameterRow {
        PeakParameter which;
        std::string PeakForm::*text;
        ScrollBar PeakForm::*bar;
        bool PeakForm::*check;
        QLineEdit* box = nullptr;
        QLabel* sigma = nullptr;  // "± 0.012", read-only
        QScrollBar* scroll = nullptr;
        QCheckBox* fix = nullptr;
    };
    QGroupBox* ParameterFrame(ParameterRow& row, const QString& title, const QString& parameter);
    QGroupBox* AsymmetryFrame();
    /// The Label box with its drop-down of suggested core levels, and the RSF box.
    QHBoxLayout* QuantRow();
    /// The suggestions for the edited peak's position into the drop-down.
    void FillLabelChoices();
    void BarMoved(ParameterRow& row, int position);
    void FixToggled(ParameterRow& row, bool checked);
    void SyncHighlight();
    /// Live editing: the typed values applied (LiveApplyPeakEditor) after the pause.
    void ApplyLive();
    /// A relation's box read-only, a fixed value's box greyed.
    void MarkConstraints(ParameterRow& row);
    /// Marks the box the last check refused (or none) and shows a refusal.
    void Report(const Status& status);

    Project& project_;
    QtHost& host_;
    PlotWidget& plot_;
    ConstraintDialog& constraints_;
    PeakForm form_;
    bool showing_ = false;  // ShowForm is writing: control signals are not user input
    std::array<ParameterRow, 4> rows_;
    QComboBox* type_ = nullptr;
    QLineEdit* splitting_ = nullptr;
    QLabel* actualFWHM_ = nullptr;
    QGroupBox* asymmetry_ = nullptr;
    QLineEdit* tailScale_ = nullptr;
    QLineEdit* tailLength_ = nullptr;
    QLineEdit* label_ = nullptr;
    QToolButton* suggest_ = nullptr;
    QLineEdit* rsf_ = nullptr;
    QTimer liveTimer_;
};

}  // namespace molvera::ui
