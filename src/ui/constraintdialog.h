#pragma once
// `CntForm`: the constraint dialog, modeless, over the session's ConstraintForm.

#include <QWidget>

#include "model/host.h"
#include "model/records.h"
#include "session/constraintform.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace molvera::ui {

/// The constraint dialog for one parameter of CurrentPeak.
class ConstraintDialog : public QWidget {
    Q_OBJECT
public:
    ConstraintDialog(Project& project, Host& host, QWidget* parent = nullptr);

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
    Host& host_;
    ConstraintForm form_;
    QLabel* peak_ = nullptr;
    QCheckBox* use_ = nullptr;
    QLineEdit* refPeak_ = nullptr;
    QComboBox* argType_ = nullptr;
    QLineEdit* arg_ = nullptr;
    QCheckBox* range_ = nullptr;
    QLineEdit* low_ = nullptr;
    QLineEdit* high_ = nullptr;
};

}  // namespace molvera::ui
