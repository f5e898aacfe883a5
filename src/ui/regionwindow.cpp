#include "ui/regionwindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>

#include "ui/about.h"
#include "ui/peaktable.h"
#include "ui/plotwidget.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
namespace {

/// The object name of a format's menu item: "import" and the CLI name, then "Action".
QString ImportActionName(std::string_view format) {
    QString name = QString::fromLatin1(format.data(), static_cast<qsizetype>(format.size()));
    name[0] = name[0].toUpper();
    return QStringLiteral("import") + name + QStringLiteral("Action");
}

}  // namespace

RegionWindow::RegionWindow(Project& project, QtHost& host, FileDialog& files, QWidget* parent)
    : QMainWindow(parent),
      project_(project),
      host_(host),
      files_(files),
      plot_(new PlotWidget(project, this)),
      table_(new PeakTable(project, host, *plot_, this)),
      warning_(new QLabel(this)),
      fitSummary_(new QLabel(this)) {
    setObjectName(QStringLiteral("regionWindow"));
    setWindowTitle(QStringLiteral("Region"));
    setCentralWidget(plot_);
    plot_->painted = [this](int region) {
        setWindowTitle(QStringLiteral("Region %1").arg(region + 1));
    };
    auto* dock = new QDockWidget(QStringLiteral("Peaks"), this);
    dock->setObjectName(QStringLiteral("peakTableDock"));
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    dock->setWidget(table_);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    resizeDocks({dock}, {170}, Qt::Vertical);  // a header and five rows; the plot the rest
    warning_->setObjectName(QStringLiteral("warningLabel"));
    warning_->setStyleSheet(QStringLiteral("QLabel { color: #b32d00; font-weight: bold; }"));
    // A long text is cut rather than widening the window; the warning comes first and the
    // fit summary takes the room left.
    for (QLabel* label : {warning_, fitSummary_}) label->setMinimumWidth(1);
    fitSummary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar()->addWidget(warning_);
    statusBar()->addWidget(fitSummary_, 1);
    warning_->hide();
    resize(820, 600);
    BuildMenus();
}

QAction* RegionWindow::AddItem(QMenu* menu, const QString& caption, const QString& name,
                               std::function<void()> command) {
    QAction* action = menu ? menu->addAction(caption) : menuBar()->addAction(caption);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [command = std::move(command)] { command(); });
    return action;
}

void RegionWindow::BuildMenus() {
    QMenu* data = menuBar()->addMenu(QStringLiteral("Data"));
    data->setObjectName(QStringLiteral("dataMenu"));
    for (const ImportFormat& format : ImportFormats()) {
        const QString caption = QString::fromLatin1(
            format.menuCaption.data(), static_cast<qsizetype>(format.menuCaption.size()));
        AddItem(data, caption, ImportActionName(format.name), [this, &format] { Import(format); });
    }
    AddItem(data, QStringLiteral("Export (Spectrum)"), "exportSpectrumAction",
            [this] { ExportSpectrumCommand(); });
    AddItem(data, QStringLiteral("Export (Peak Parameters)"), "exportPeakParametersAction",
            [this] { ExportPeakParametersCommand(); });
    AddItem(data, QStringLiteral("Export to clipboard"), "exportClipboardAction",
            [this] { ExportClipboardCommand(); });
    AddItem(data, QStringLiteral("Print Spectrum"), "printSpectrumAction",
            [this] { PrintCommand(false); });
    AddItem(data, QStringLiteral("Print with peak parameters"), "printWithPeakParametersAction",
            [this] { PrintCommand(true); });
    AddEditMenu(*menuBar());

    AddItem(nullptr, QStringLiteral("Background"), "backgroundAction",
            [this] { BackgroundCommand(); });
    AddItem(nullptr, QStringLiteral("Add Peak"), "addPeakAction", [this] { AddPeakCommand(); });

    QMenu* params = menuBar()->addMenu(QStringLiteral("Parameters"));
    params->setObjectName(QStringLiteral("parametersMenu"));
    AddItem(params, QStringLiteral("Region Caption"), "regionCaptionAction",
            [this] { RegionCaptionCommand(); });
    AddItem(params, QStringLiteral("Load Region Parameters"), "loadRegionParametersAction",
            [this] { LoadRegionParametersCommand(); });
    AddItem(params, QStringLiteral("Save Region Parameters"), "saveRegionParametersAction",
            [this] { SaveRegionParametersCommand(); });
    AddItem(params, QStringLiteral("Clear Parameters"), "clearParametersAction",
            [this] { ClearParametersCommand(); });
    AddItem(params, QStringLiteral("Delete Region"), "deleteRegionAction",
            [this] { DeleteRegionCommand(); });
    AddItem(params, QStringLiteral("Region Shift"), "regionShiftAction",
            [this] { RegionShiftCommand(); });

    AddItem(nullptr, QStringLiteral("Optimise Region"), "optimiseRegionAction",
            [this] { OptimiseRegionCommand(); });
    AddItem(nullptr, QStringLiteral("ReDisplay"), "redisplayAction",
            [this] { ReDisplayCommand(); });
    AddHelpMenu(*menuBar(), *this);
}

QAction* RegionWindow::Action(const QString& itemName) const {
    return findChild<QAction*>(itemName);
}

void RegionWindow::ShowRegion(bool redraw) {
    if (!isVisible()) show();
    if (redraw) plot_->RequestRedraw();
    table_->RequestRefresh();
    if (redrawn) redrawn();
}

void RegionWindow::Redraw() {
    plot_->RequestRedraw();
    table_->RequestRefresh();
    if (redrawn) redrawn();
}

void RegionWindow::SetWarning(const QString& text) {
    warning_->setText(text);
    warning_->setToolTip(text);
    warning_->setVisible(!text.isEmpty());
}

void RegionWindow::SetFitSummary(const QString& text) {
    fitSummary_->setText(text);
    fitSummary_->setToolTip(text);
}

QString RegionWindow::WarningText() const { return warning_->text(); }

void RegionWindow::SetCommandsEnabled(bool enabled) {
    menuBar()->setEnabled(enabled);
    table_->setEnabled(enabled);
    if (enabled) table_->RequestRefresh();
    plot_->setAttribute(Qt::WA_TransparentForMouseEvents, !enabled);
}

bool RegionWindow::CommandsEnabled() const { return menuBar()->isEnabled(); }

void RegionWindow::closeEvent(QCloseEvent* event) {
    // The region window is never destroyed; closing it only hides it.
    event->ignore();
    hide();
}

}  // namespace molvera::ui
