#include "ui/peaktable.h"

#include <algorithm>
#include <span>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>

#include "ui/plotwidget.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {

PeakTable::PeakTable(Project& project, QtHost& host, PlotWidget& plot, QWidget* parent)
    : QTableWidget(0, kPeakColumnCount, parent), project_(project), host_(host), plot_(plot) {
    setObjectName(QStringLiteral("peakTable"));
    QStringList titles;
    for (const std::string& title : PeakTableHeader()) titles << FromLatin1(title);
    setHorizontalHeaderLabels(titles);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);

    auto* copy = new QAction(QStringLiteral("Copy table"), this);
    copy->setObjectName(QStringLiteral("copyTableAction"));
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(copy);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(copy, &QAction::triggered, this, &PeakTable::CopyTable);

    refreshTimer_.setSingleShot(true);
    // A drag or a live edit asks many times a second: the rows (and their uncertainties)
    // are worked out once it pauses.
    refreshTimer_.setInterval(kRefreshPauseMs);
    connect(&refreshTimer_, &QTimer::timeout, this, &PeakTable::Refresh);
    connect(this, &QTableWidget::itemChanged, this, &PeakTable::CellEdited);
    connect(this, &QTableWidget::itemSelectionChanged, this, &PeakTable::RowSelected);
    connect(this, &QTableWidget::cellDoubleClicked, this, [this](int row, int column) {
        const auto r = static_cast<std::size_t>(row);
        if (r >= rows_.size() || rows_[r].editable[static_cast<std::size_t>(column)]) return;
        const std::span<const Int16> list = PeakList(project_.Current());
        const auto at = std::find(list.begin(), list.end(), rows_[r].slot);
        if (at != list.end() && openEditor)
            openEditor(10 * project_.CurrentRegion + static_cast<int>(at - list.begin()));
    });
}

void PeakTable::RequestRefresh() { refreshTimer_.start(); }

void PeakTable::Refresh() {
    refreshTimer_.stop();
    if (!isEnabled()) return;                          // a fit is running; its end asks again
    if (state() == QAbstractItemView::EditingState) {  // rebuilding would drop the typing
        RequestRefresh();
        return;
    }
    std::vector<PeakTableRow> rows = PeakTableRows(project_, project_.CurrentRegion);
    if (rows != rows_ || stale_) {
        rows_ = std::move(rows);
        stale_ = false;
        filling_ = true;
        setRowCount(static_cast<int>(rows_.size()));
        const QColor grey = palette().color(QPalette::Disabled, QPalette::Text);
        for (int i = 0; i < rowCount(); ++i) {
            const PeakTableRow& row = rows_[static_cast<std::size_t>(i)];
            for (int c = 0; c < kPeakColumnCount; ++c) {
                const auto k = static_cast<std::size_t>(c);
                auto* item = new QTableWidgetItem(FromLatin1(row.cells[k]));
                item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled |
                               (row.editable[k] ? Qt::ItemIsEditable : Qt::NoItemFlags));
                if (c != kPeakColumn && c != kTypeColumn)
                    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
                if (row.constrained[k]) item->setForeground(grey);
                setItem(i, c, item);
            }
        }
        filling_ = false;
    }
    SelectPeak(plot_.SelectedPeak());
}

void PeakTable::SelectPeak(int slot) {
    filling_ = true;
    clearSelection();
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (rows_[i].slot == slot) selectRow(static_cast<int>(i));
    filling_ = false;
}

void PeakTable::RowSelected() {
    if (filling_) return;
    const QList<QTableWidgetSelectionRange> ranges = selectedRanges();
    const int row = ranges.isEmpty() ? -1 : ranges.first().topRow();
    plot_.SetSelectedPeak(row >= 0 && row < static_cast<int>(rows_.size())
                              ? rows_[static_cast<std::size_t>(row)].slot
                              : -1);
}

void PeakTable::CellEdited(QTableWidgetItem* item) {
    if (filling_) return;
    const auto row = static_cast<std::size_t>(item->row());
    const std::optional<PeakParameter> which = ColumnParameter(item->column());
    if (row >= rows_.size() || !which) return;
    const std::string text = ToLatin1(item->text());
    const PeakTableRow& shown = rows_[row];
    if (text == shown.cells[static_cast<std::size_t>(item->column())]) return;
    const Status st = EditPeakTableCell(project_, host_, shown.slot, *which, text);
    stale_ = true;  // the cell shows the peak's value again, refused or not
    RequestRefresh();
    if (!st) host_.Show(st);
    if (edited) edited();
}

void PeakTable::keyPressEvent(QKeyEvent* event) {
    // The view's own Ctrl+C copies one cell; the table copies all of it.
    if (event->matches(QKeySequence::Copy)) {
        CopyTable();
        return;
    }
    QTableWidget::keyPressEvent(event);
}

void PeakTable::CopyTable() {
    QGuiApplication::clipboard()->setText(FromLatin1(PeakTableText(rows_)));
}

}  // namespace molvera::ui
