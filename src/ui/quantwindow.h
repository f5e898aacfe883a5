#pragma once
// The quantification window: the source and the two exponents at the top, the table of
// the peaks and the table of the labels with their atomic %, following the project.

#include <functional>

#include <QTimer>
#include <QWidget>

#include "model/records.h"
#include "session/quantform.h"

class QComboBox;
class QLineEdit;
class QMenuBar;
class QLabel;
class QTableWidget;

namespace molvera::ui {

class QtHost;

class QuantWindow : public QWidget {
    Q_OBJECT
public:
    QuantWindow(Project& project, QtHost& host, QWidget* parent = nullptr);

    /// Shown and raised, filled from the project.
    void Open();
    /// Settings and tables from the project, at once (the settings' boxes only when the
    /// project's settings changed, so that typing in them is not lost).
    void Refresh();
    /// Refresh once no request came for kRefreshPauseMs (a drag or a fit asks often).
    void RequestRefresh();
    static constexpr int kRefreshPauseMs = 50;
    /// Both tables as tab-separated text on the clipboard (Ctrl+C).
    void CopyTables();
    const QuantLines& Lines() const { return lines_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// The settings typed or chosen: applied (ApplyQuantForm), a refusal shown.
    void SettingsEdited();
    void ShowSettings();
    void ShowTables();

    Project& project_;
    QtHost& host_;
    QuantForm form_;
    QuantForm filled_;  // the form as the project's settings last filled it
    QuantLines lines_;
    bool showing_ = false;  // the program is writing the controls
    QComboBox* source_;
    QLineEdit* energy_;
    QLineEdit* transmission_;
    QLineEdit* imfp_;
    QTableWidget* peaks_;
    QTableWidget* elements_;
    QLabel* notes_;  ///< the cautions on computed RSFs
    QTimer refreshTimer_;
};

/// A "Tools" menu in `bar` (before its Help menu when it has one) with "Quantification..."
/// (`quantificationAction`) running `open`.
void AddToolsMenu(QMenuBar& bar, const std::function<void()>& open);

}  // namespace molvera::ui
