#include "ui/quantwindow.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QFont>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
namespace {

template <std::size_t N>
QTableWidget* NamedTable(QWidget* parent, const QString& name,
                         const std::array<std::string, N>& header) {
    auto* table = new QTableWidget(0, static_cast<int>(N), parent);
    table->setObjectName(name);
    QStringList titles;
    for (const std::string& title : header) titles << FromLatin1(title);
    table->setHorizontalHeaderLabels(titles);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    return table;
}

// A cell; text columns (`left`) flush left, numbers right.
QTableWidgetItem* Cell(const std::string& text, bool left) {
    auto* item = new QTableWidgetItem(FromLatin1(text));
    item->setTextAlignment((left ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    return item;
}

}  // namespace

QuantWindow::QuantWindow(Project& project, QtHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window),
      project_(project),
      host_(host),
      source_(new QComboBox(this)),
      energy_(NamedBox(this, QStringLiteral("energyText"), 90)),
      transmission_(NamedBox(this, QStringLiteral("transmissionText"), 70)),
      imfp_(NamedBox(this, QStringLiteral("imfpText"), 70)),
      peaks_(NamedTable(this, QStringLiteral("quantPeakTable"), QuantPeakHeader())),
      elements_(NamedTable(this, QStringLiteral("quantElementTable"), QuantElementHeader())) {
    setObjectName(QStringLiteral("quantWindow"));
    setWindowTitle(QStringLiteral("Quantification"));
    source_->setObjectName(QStringLiteral("sourceChoice"));
    source_->addItems({QStringLiteral("Al K\u03B1 1486.6 eV"),
                       QStringLiteral("Mg K\u03B1 1253.6 eV"), QStringLiteral("Other")});

    auto* settings = new QGridLayout;
    settings->addWidget(new QLabel(QStringLiteral("Source"), this), 0, 0);
    settings->addWidget(source_, 0, 1);
    settings->addWidget(new QLabel(QStringLiteral("Energy (eV)"), this), 0, 2);
    settings->addWidget(energy_, 0, 3);
    settings->addWidget(new QLabel(QStringLiteral("Transmission exponent a"), this), 1, 0);
    settings->addWidget(transmission_, 1, 1, Qt::AlignLeft);
    settings->addWidget(new QLabel(QStringLiteral("IMFP exponent b"), this), 1, 2);
    settings->addWidget(imfp_, 1, 3);
    settings->setColumnStretch(4, 1);
    auto* formula = new QLabel(
        QStringLiteral("Normalised area = area / (RSF \u00B7 E<sup>a</sup> \u00B7 E<sup>b</sup>), "
                       "E = source energy \u2212 binding energy"),
        this);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(settings);
    layout->addWidget(formula);
    layout->addWidget(new QLabel(QStringLiteral("Peaks"), this));
    layout->addWidget(peaks_, 3);
    layout->addWidget(new QLabel(QStringLiteral("Elements"), this));
    layout->addWidget(elements_, 2);
    notes_ = new QLabel(this);
    notes_->setObjectName(QStringLiteral("quantNotes"));
    notes_->setWordWrap(true);
    notes_->setStyleSheet(QStringLiteral("color: #a0522d"));
    layout->addWidget(notes_);

    for (QTableWidget* table : {peaks_, elements_}) {
        auto* copy = new QAction(QStringLiteral("Copy tables"), table);
        copy->setObjectName(QStringLiteral("copyTablesAction"));
        table->addAction(copy);
        table->setContextMenuPolicy(Qt::ActionsContextMenu);
        connect(copy, &QAction::triggered, this, &QuantWindow::CopyTables);
        table->installEventFilter(this);
    }
    connect(source_, &QComboBox::activated, this, &QuantWindow::SettingsEdited);
    for (QLineEdit* box : {energy_, transmission_, imfp_})
        connect(box, &QLineEdit::editingFinished, this, &QuantWindow::SettingsEdited);
    refreshTimer_.setSingleShot(true);
    refreshTimer_.setInterval(kRefreshPauseMs);
    connect(&refreshTimer_, &QTimer::timeout, this, &QuantWindow::Refresh);
    resize(640, 520);
}

void QuantWindow::Open() {
    show();
    raise();
    Refresh();
}

void QuantWindow::RequestRefresh() {
    if (isVisible()) refreshTimer_.start();
}

void QuantWindow::Refresh() {
    refreshTimer_.stop();
    QuantForm now;
    FillQuantForm(project_, now);
    if (!(now == filled_)) {
        filled_ = now;
        form_ = now;
        ShowSettings();
        MarkInvalidBox(*this, "");
    }
    QuantLines lines = QuantTableLines(project_);
    if (lines != lines_ || peaks_->rowCount() != static_cast<int>(lines.peaks.size())) {
        lines_ = std::move(lines);
        ShowTables();
    }
}

void QuantWindow::ShowSettings() {
    showing_ = true;
    source_->setCurrentIndex(form_.source);
    energy_->setEnabled(form_.source == kSourceOther);
    SetBoxText(energy_, form_.energyText);
    SetBoxText(transmission_, form_.transmissionText);
    SetBoxText(imfp_, form_.imfpText);
    showing_ = false;
}

void QuantWindow::ShowTables() {
    const QColor grey = palette().color(QPalette::Disabled, QPalette::Text);
    peaks_->setRowCount(static_cast<int>(lines_.peaks.size()));
    for (int i = 0; i < peaks_->rowCount(); ++i) {
        const QuantPeakLine& line = lines_.peaks[static_cast<std::size_t>(i)];
        for (int c = 0; c < kQuantPeakColumnCount; ++c) {
            const bool left =
                c == kQuantLabelColumn || (!line.counted && c == kQuantNormalisedColumn);
            QTableWidgetItem* item = Cell(line.cells[static_cast<std::size_t>(c)], left);
            if (!line.counted) item->setForeground(grey);
            if (c == kQuantRsfColumn && line.rsfTyped) {
                QFont bold = item->font();
                bold.setBold(true);
                item->setFont(bold);
                item->setToolTip(QStringLiteral("Typed in the peak editor"));
            }
            peaks_->setItem(i, c, item);
        }
    }
    elements_->setRowCount(static_cast<int>(lines_.elements.size()));
    for (int i = 0; i < elements_->rowCount(); ++i)
        for (int c = 0; c < 3; ++c)
            elements_->setItem(
                i, c,
                Cell(lines_.elements[static_cast<std::size_t>(i)][static_cast<std::size_t>(c)],
                     c == 0));
    QStringList notes;
    for (const std::string& note : lines_.notes) notes << QString::fromLatin1(note.c_str());
    notes_->setText(notes.join(QLatin1Char('\n')));
    notes_->setVisible(!notes.isEmpty());
}

void QuantWindow::SettingsEdited() {
    if (showing_) return;
    form_.source = source_->currentIndex();
    form_.energyText = ToLatin1(energy_->text());
    form_.transmissionText = ToLatin1(transmission_->text());
    form_.imfpText = ToLatin1(imfp_->text());
    energy_->setEnabled(form_.source == kSourceOther);
    const Status st = ApplyQuantForm(project_, form_);
    MarkInvalidBox(*this, form_.invalidBox);
    if (!st) {
        host_.Show(st);
        return;
    }
    Refresh();
}

void QuantWindow::CopyTables() {
    QGuiApplication::clipboard()->setText(FromLatin1(QuantTablesText(lines_)));
}

bool QuantWindow::eventFilter(QObject* watched, QEvent* event) {
    // A table's own Ctrl+C copies one cell; the window copies both tables.
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        CopyTables();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void AddToolsMenu(QMenuBar& bar, const std::function<void()>& open) {
    auto* tools = new QMenu(QStringLiteral("Tools"), &bar);
    tools->setObjectName(QStringLiteral("toolsMenu"));
    QAction* before = nullptr;  // the Help menu stays last
    for (QAction* a : bar.actions())
        if (a->menu() && a->menu()->objectName() == QStringLiteral("helpMenu")) before = a;
    bar.insertMenu(before, tools);
    QAction* quant = tools->addAction(QStringLiteral("Quantification..."));
    quant->setObjectName(QStringLiteral("quantificationAction"));
    QObject::connect(quant, &QAction::triggered, tools, [open] { open(); });
}

}  // namespace molvera::ui
