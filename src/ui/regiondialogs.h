#pragma once
// "Region Shift" and "Region Caption": two small modeless dialogs over the session's
// RegionShiftForm and RegionCaptionForm.

#include <QWidget>

#include "model/records.h"
#include "session/regiondialogs.h"

class QLineEdit;

namespace molvera::ui {

class QtHost;

/// The current region's energy shift.
class RegionShiftDialog : public QWidget {
    Q_OBJECT
public:
    RegionShiftDialog(Project& project, QtHost& host, QWidget* parent = nullptr);
    /// Shown with the current region's Shift in the shift box.
    void Open();
    void AcceptClicked();
    const RegionShiftForm& Form() const { return form_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void ShowForm();

    Project& project_;
    QtHost& host_;
    RegionShiftForm form_;
    QLineEdit* shiftText_;
};

/// The current region's 20-character caption.
class RegionCaptionDialog : public QWidget {
    Q_OBJECT
public:
    RegionCaptionDialog(Project& project, QtHost& host, QWidget* parent = nullptr);
    /// Shown with the current region's Caption, trailing blanks included.
    void Open();
    void OkClicked();
    const RegionCaptionForm& Form() const { return form_; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void ShowForm();

    Project& project_;
    QtHost& host_;
    RegionCaptionForm form_;
    QLineEdit* captionText_;
};

}  // namespace molvera::ui
