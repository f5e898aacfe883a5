#pragma once
// The options dialog ("Option"), modeless, over the session's OptionsForm.

#include <functional>
#include <vector>

#include <QWidget>

#include "session/optionsform.h"

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace molvera::ui {

class QtHost;
class FileDialog;

/// The options dialog.
class OptionsWindow : public QWidget {
    Q_OBJECT
public:
    OptionsWindow(OptionsForm& form, FitOptions& options, QtHost& host, FileDialog& files,
                  QWidget* parent = nullptr);

    /// FillOptionsDialog: the controls from FitOptions, then shown (not modal).
    void Open();
    /// Controls from the form's texts and states; shown or hidden as the form says.
    void ShowForm();
    /// The form's texts and states from the controls.
    void ReadForm();

    void OkClicked();
    /// Cancel and Esc: CancelOptionsDialog back to the options as opened.
    void CancelClicked();
    void LoadParametersClicked();
    void SaveParametersClicked();

    /// Enables or disables the peak editor's asymmetry frame (set by the peak editor).
    std::function<void(bool)> setAsymmetryFrameEnabled;

protected:
    /// Esc is Cancel.
    void keyPressEvent(QKeyEvent* event) override;

private:
    QGroupBox* SearchFrame();
    QGroupBox* NewtonFrame();
    QGroupBox* LevelGroup(const QString& title, const QString& heading,
                          std::array<bool, kLevels> OptionsForm::*check,
                          std::array<std::string, kLevels> OptionsForm::*first,
                          std::array<std::string, kLevels> OptionsForm::*second,
                          const QString& parameter);
    QLineEdit* Box(const QString& name, std::string OptionsForm::*field);
    void RunHandler(void (*handler)(OptionsForm&, FitOptions&));

    OptionsForm& form_;
    FitOptions& options_;
    FitOptions opened_;  // as they were when the dialog was opened
    QtHost& host_;
    FileDialog& files_;
    QRadioButton* useSearch_ = nullptr;
    QRadioButton* useNewton_ = nullptr;
    QRadioButton* useLevenbergMarquardt_ = nullptr;
    QRadioButton* glSum_ = nullptr;
    QRadioButton* glProduct_ = nullptr;
    struct TextBinding {
        QLineEdit* box;
        std::function<std::string&(OptionsForm&)> field;
    };
    struct CheckBinding {
        QCheckBox* box;
        std::function<bool&(OptionsForm&)> field;
    };
    std::vector<TextBinding> texts_;
    std::vector<CheckBinding> checks_;
};

}  // namespace molvera::ui
