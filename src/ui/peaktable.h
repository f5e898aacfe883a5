#pragma once
// The peak table panel of the region window: the rows of PeakTableRows shown, value cells
// typed through the peak editor's logic, the selected row highlighted in the plot, and
// Ctrl+C copying the table as tab-separated text.

#include <functional>
#include <vector>

#include <QTableWidget>
#include <QTimer>

#include "model/records.h"
#include "session/peaktable.h"

namespace molvera::ui {

class QtHost;
class PlotWidget;

/// The peak table of the current region.
class PeakTable : public QTableWidget {
    Q_OBJECT
public:
    PeakTable(Project& project, QtHost& host, PlotWidget& plot, QWidget* parent = nullptr);

    /// The rows rebuilt from the project when they changed (at once).
    void Refresh();
    /// Refresh once no request came for kRefreshPauseMs.
    void RequestRefresh();
    static constexpr int kRefreshPauseMs = 50;
    /// Marks the row of peak `slot` (none for -1) without touching the plot.
    void SelectPeak(int slot);
    /// The table as tab-separated text (PeakTableText) on the clipboard.
    void CopyTable();
    const std::vector<PeakTableRow>& Rows() const { return rows_; }
    /// After a cell edit changed the project (the peak editor refills).
    std::function<void()> edited;
    /// A double click on a cell that takes no typing: the peak editor on that peak, by
    /// its main-window button (10 x region + k).
    std::function<void(int buttonIndex)> openEditor;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void CellEdited(QTableWidgetItem* item);
    void RowSelected();

    Project& project_;
    QtHost& host_;
    PlotWidget& plot_;
    std::vector<PeakTableRow> rows_;
    bool stale_ = false;    // a cell holds what the user typed: rebuild even if rows_ agree
    bool filling_ = false;  // Refresh or SelectPeak is writing: no user input
    QTimer refreshTimer_;
};

}  // namespace molvera::ui
