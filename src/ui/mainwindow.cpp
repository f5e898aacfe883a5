#include "ui/mainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/projectfile.h"
#include "model/project.h"
#include "session/fitcommands.h"
#include "ui/about.h"
#include "ui/filechooser.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
namespace {
constexpr const char* kOpenProjectTitle = "Open file";
constexpr const char* kSaveProjectTitle = "Save file";
constexpr const char* kProjectFilter = "Data Files (*.xps) |*.xps|";

QPushButton* Button(const QString& caption, const char* name, QWidget* parent) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    return b;
}
}  // namespace

MainWindow::MainWindow(Project& project, QtHost& host, FileDialog& files, QWidget* parent)
    : QWidget(parent), project_(project), host_(host), files_(files) {
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Molvera"));

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(2);
    grid->setVerticalSpacing(2);
    grid->addWidget(new QLabel(QStringLiteral("Region"), this), 0, 0, Qt::AlignCenter);
    grid->addWidget(new QLabel(QStringLiteral("Peaks"), this), 0, 1, 1, kMaxPeaksPerRegion,
                    Qt::AlignCenter);
    grid->addWidget(new QLabel(QStringLiteral("Chi Square"), this), 0, 1 + kMaxPeaksPerRegion,
                    Qt::AlignCenter);
    for (int r = 0; r < kRegionCount; ++r) {
        auto* b = new QPushButton(QString::number(r + 1), this);
        b->setObjectName(QStringLiteral("regionButton%1").arg(r));
        b->setFixedWidth(44);
        connect(b, &QPushButton::clicked, this, [this, r] { SelectRegion(project_, host_, r); });
        regionButtons_[static_cast<std::size_t>(r)] = b;
        grid->addWidget(b, r + 1, 0);
        for (int k = 0; k < kMaxPeaksPerRegion; ++k) {
            const int i = PeakButtonIndex(r, k);
            auto* p = new QPushButton(this);
            p->setObjectName(QStringLiteral("peakButton%1").arg(i));
            p->setFixedWidth(34);
            p->setEnabled(false);
            connect(p, &QPushButton::clicked, this, [this, i] { PeakButtonClicked(i); });
            peakButtons_[static_cast<std::size_t>(i)] = p;
            grid->addWidget(p, r + 1, 1 + k);
        }
        auto* c = new QLineEdit(this);
        c->setObjectName(QStringLiteral("chiSquareBox%1").arg(r));
        c->setReadOnly(true);
        c->setMinimumWidth(110);
        chiSquareBoxes_[static_cast<std::size_t>(r)] = c;
        grid->addWidget(c, r + 1, 1 + kMaxPeaksPerRegion);
    }
    auto* sigma = new QLabel(QString(QChar(0x03A3)), this);
    QFont big = sigma->font();
    big.setPointSizeF(big.pointSizeF() * 1.4);
    big.setBold(true);
    sigma->setFont(big);
    totalChiSquare_ = new QLabel(QStringLiteral("0"), this);
    totalChiSquare_->setObjectName(QStringLiteral("totalChiSquareLabel"));
    totalChiSquare_->setFrameShape(QFrame::Panel);
    totalChiSquare_->setFrameShadow(QFrame::Sunken);
    totalChiSquare_->setMinimumWidth(110);
    grid->addWidget(sigma, kRegionCount + 1, kMaxPeaksPerRegion, Qt::AlignRight);
    grid->addWidget(totalChiSquare_, kRegionCount + 1, 1 + kMaxPeaksPerRegion);

    auto* frame = new QGroupBox(QStringLiteral("Description"), this);
    description_ = new QLineEdit(frame);
    description_->setObjectName(QStringLiteral("descriptionBox"));
    (new QVBoxLayout(frame))->addWidget(description_);
    connect(description_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (settingDescription_) return;
        project_.Description = Utf8ToLatin1(text.toStdString());
        RefreshTitle();
    });

    auto* options = Button(QStringLiteral("Options"), "optionsButton", this);
    auto* open = Button(QStringLiteral("Open XPS"), "openProjectButton", this);
    auto* save = Button(QStringLiteral("Save XPS"), "saveProjectButton", this);
    auto* close = Button(QStringLiteral("Close"), "closeButton", this);
    auto* optimiseAll = Button(QStringLiteral("Optimise All"), "optimiseAllButton", this);
    connect(options, &QPushButton::clicked, this, [this] {
        if (openOptions) openOptions();
    });
    connect(open, &QPushButton::clicked, this, &MainWindow::OpenProjectCommand);
    connect(save, &QPushButton::clicked, this, &MainWindow::SaveProjectCommand);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(optimiseAll, &QPushButton::clicked, this,
            [this] { host_.ShowFitSummary(OptimiseAllCommand(project_, host_)); });
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {options, open, save, optimiseAll, close}) buttons->addWidget(b);

    auto* layout = new QVBoxLayout(this);
    auto* bar = new QMenuBar(this);
    AddEditMenu(*bar);
    AddHelpMenu(*bar, *this);
    layout->setMenuBar(bar);
    layout->addLayout(grid);
    layout->addWidget(frame);
    layout->addLayout(buttons);
    RecolourRegionButtons();
    // Every command may change the project; comparing its bytes once a second catches all.
    auto* titleTimer = new QTimer(this);
    connect(titleTimer, &QTimer::timeout, this, &MainWindow::RefreshTitle);
    titleTimer->start(1000);
}

void MainWindow::SetChiText(int region, const QString& text) {
    if (region >= 0 && region < kRegionCount)
        chiSquareBoxes_[static_cast<std::size_t>(region)]->setText(text);
}

void MainWindow::SetTotalText(const QString& text) { totalChiSquare_->setText(text); }

void MainWindow::SetPeakButton(int index, const QString& caption, bool enabled) {
    if (index < 0 || index >= kPeakButtonCount) return;
    QPushButton* b = peakButtons_[static_cast<std::size_t>(index)];
    b->setText(caption);
    b->setEnabled(enabled);
}

void MainWindow::SetDescription(const QString& text) {
    settingDescription_ = true;
    description_->setText(text);
    settingDescription_ = false;
}

void MainWindow::RecolourRegionButtons() {
    for (int r = 0; r < kRegionCount; ++r) {
        QPushButton* b = regionButtons_[static_cast<std::size_t>(r)];
        const RegionButtonColour colour = RegionButtonColourOf(project_, r);
        QPalette pal = QApplication::palette(b);
        if (colour != RegionButtonColour::ButtonFace) {
            const Rgb c = RegionButtonRgb(colour);
            pal.setColor(QPalette::Button, QColor(c.r, c.g, c.b));
        }
        b->setPalette(pal);
    }
}

void MainWindow::PeakButtonClicked(int i) {
    if (openPeakEditor) openPeakEditor(i);
}

void MainWindow::MarkSaved(const std::string& path) {
    saved_.Mark(project_, path);
    recovery_.Remove();
    RefreshTitle();
}

void MainWindow::StartRecovery(const std::string& folder) {
    recovery_ = RecoveryFile(folder, QCoreApplication::applicationPid());
    if (Status st = recovery_.OfferRestore(project_, host_, saved_); !st) host_.Show(st);
    if (!saved_.Path().empty()) files_.SetLastFileName(saved_.Path());
    RecolourRegionButtons();
    RefreshTitle();
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &MainWindow::Autosave);
    timer->start(AutosaveSeconds() * 1000);
}

void MainWindow::Autosave() {
    if (!isEnabled()) return;  // a fit runs: the copy waits for its result
    const Status st = recovery_.Update(project_, saved_);
    if (st || autosaveFailed_) return;
    autosaveFailed_ = true;
    host_.Show(Status::Error(msg::kAutosaveFailed, st.detail()));
}

void MainWindow::RefreshTitle() { setWindowTitle(QString::fromStdString(saved_.Title(project_))); }

bool MainWindow::MayDropProject() {
    return saved_.MayDrop(project_, host_, [this] { return SaveProjectCommand(); });
}

void MainWindow::OpenProjectCommand() {
    if (!MayDropProject()) return;
    const std::string path = files_.Open(kOpenProjectTitle, kProjectFilter);
    if (!path.empty()) LoadProjectFile(path);
}

void MainWindow::LoadProjectFile(const std::string& path) {
    std::string warning;
    if (Status st = LoadProject(project_, host_, path, &warning); !st) {
        host_.Show(st);
        return;
    }
    if (!warning.empty()) host_.ShowWarnings({warning});
    project_.FileName = path;
    MarkSaved(path);
    if (projectReplaced) projectReplaced();
    if (fileUsed) fileUsed(path);
}

bool MainWindow::SaveProjectCommand() {
    const std::string path = files_.Save(kSaveProjectTitle, kProjectFilter, "xps");
    return !path.empty() && SaveTo(path);
}

bool MainWindow::SaveCommand() {
    return saved_.Path().empty() ? SaveProjectCommand() : SaveTo(saved_.Path());
}

bool MainWindow::SaveTo(const std::string& path) {
    project_.FileName = path;
    if (Status st = SaveProject(project_, path); !st) {
        host_.Show(st);
        return false;
    }
    MarkSaved(path);
    // SaveProject may have cut the description to its stored length.
    SetDescription(QString::fromStdString(Latin1ToUtf8(project_.Description)));
    host_.Show(msg::kFileSaved);
    if (fileUsed) fileUsed(path);
    return true;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!MayDropProject()) {
        event->ignore();
        return;
    }
    event->accept();
    recovery_.Remove();
    QApplication::exit(0);  // the whole program, whichever other windows are open
}

}  // namespace molvera::ui
