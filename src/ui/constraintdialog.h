#pragma once
// The constraint dialog, modeless, over the session's ConstraintForm.

#include <QWidget>

#include "model/records.h"
#include "session/constraintform.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace molvera::ui {

class QtHost;
/// The constraint dialog for one parameter of CurrentPeak.
class ConstraintDialog : public QWidget {
    Q_OBJECT
public:
    ConstraintDialog(Project& project, QtHost& host, QWidget* parent = nullptr);

    /// Opens the dialog for `kind` of CurrentPeak (limits corrected, filled, shown).
    void Open(PeakParameter kind);
    /// Hidden by the program (a region change).
    void HideDialog();

    /// Controls from the form; shown or hidden as it says.
    void ShowForm();
    /// The form from the controls.
    void ReadForm();
    const ConstraintForm& Form() const { return form_; }

    /// OK: a refusal is shown as a message and the dialog stays open.
    void OkClicked();
    void CancelClicked();

private:
    Project& project_;
    QtHost& host_;
    ConstraintForm form_;
    QLabel* peakLabel_ = nullptr;
    QCheckBox* useRelation_ = nullptr;
    QLineEdit* referencePeak_ = nullptr;
    QComboBox* operation_ = nullptr;
    QLineEdit* argument_ = nullptr;
    QCheckBox* useLimits_ = nullptr;
    QLineEdit* lowLimit_ = nullptr;
    QLineEdit* highLimit_ = nullptr;
};

}  // namespace molvera::ui
