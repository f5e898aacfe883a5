#pragma once
// The background dialog, modeless, over the session's BackgroundForm.

#include <functional>

#include <QWidget>

#include "model/records.h"
#include "session/backgroundform.h"
#include "session/sessionhost.h"

class QComboBox;
class QLineEdit;

namespace molvera::ui {

class QtHost;

/// The background dialog of the current region.
class BackgroundDialog : public QWidget {
    Q_OBJECT
public:
    BackgroundDialog(Project& project, QtHost& host, QWidget* parent = nullptr);

    /// ShowBackgroundDialog: filled from the current region and shown (not modal).
    void Open();
    /// Controls from the form's texts; shown or hidden as the form says.
    void ShowForm();
    /// The form's texts from the controls.
    void ReadForm();
    const BackgroundForm& Form() const { return form_; }

    void AcceptClicked();
    void CloseClicked();
    /// The Shirley slope search; the plot and the Slope box follow every trial.
    void ShirleySlopeSearchClicked();
    /// The Tougaard B1 search in the busy state.
    void TougaardB1SearchClicked();

    /// Paints the region's plot at once, so that every trial of a search is seen.
    std::function<void()> repaintPlot;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLineEdit* Box(const char* name);
    QComboBox* Choice(const char* name, const QStringList& items);
    /// Reads the form; a box that holds no number is marked and its refusal shown (false).
    bool NumbersChecked();
    /// Runs one button's logic on the form read from the controls, then shows the form.
    void Run(void (*handler)(Project&, SessionHost&, BackgroundForm&));

    Project& project_;
    QtHost& host_;
    BackgroundForm form_;
    bool running_ = false;  // a search yields to the event loop: no second click meanwhile
    QLineEdit* lowBE_ = nullptr;
    QLineEdit* highBE_ = nullptr;
    QComboBox* averagePoints_ = nullptr;
    QComboBox* backgroundType_ = nullptr;
    QLineEdit* shirleySlope_ = nullptr;
    QLineEdit* tougaardB1_ = nullptr;
    QLineEdit* area_ = nullptr;
};

}  // namespace molvera::ui
