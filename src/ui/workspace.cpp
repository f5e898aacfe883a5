#include "ui/workspace.h"

#include <QAction>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QSettings>
#include <QUrl>

#include "base/messages.h"
#include "fileio/files.h"
#include "session/mainwindow.h"
#include "session/report.h"
#include "ui/gui.h"
#include "ui/mainwindow.h"
#include "ui/printing.h"
#include "ui/regionwindow.h"

namespace molvera::ui {
namespace {

const QString kMainGeometry = QStringLiteral("geometry/main");
const QString kRegionGeometry = QStringLiteral("geometry/region");
const QString kRecentFiles = QStringLiteral("recentFiles");

QSettings& Settings() {
    static QSettings settings(QStringLiteral("Molvera"), QStringLiteral("Molvera"));
    return settings;
}

ScreenRect ToScreenRect(const QRect& r) { return {r.x(), r.y(), r.width(), r.height()}; }

std::vector<std::string> LocalFiles(const QMimeData* mime) {
    std::vector<std::string> paths;
    if (mime && mime->hasUrls())
        for (const QUrl& url : mime->urls())
            if (url.isLocalFile())
                paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
    return paths;
}

}  // namespace

Workspace::Workspace(Gui& gui) : gui_(gui) {
    std::vector<std::string> paths;
    for (const QString& path : Settings().value(kRecentFiles).toStringList())
        paths.push_back(QFile::encodeName(path).toStdString());
    recent_ = RecentFiles(paths);
    BuildFileMenu();
    for (QWidget* window :
         {static_cast<QWidget*>(&gui_.mainWindow()), static_cast<QWidget*>(&gui_.regionWindow())}) {
        window->setAcceptDrops(true);
        window->installEventFilter(this);
    }
}

void Workspace::PlaceWindows() {
    QWidget& main = gui_.mainWindow();
    QWidget& region = gui_.regionWindow();
    const QRect mainWas = Settings().value(kMainGeometry).toRect();
    const QRect regionWas = Settings().value(kRegionGeometry).toRect();
    std::vector<ScreenRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back(ToScreenRect(screen->availableGeometry()));
    if (FitsOnAScreen(ToScreenRect(mainWas), screens) &&
        FitsOnAScreen(ToScreenRect(regionWas), screens)) {
        main.setGeometry(mainWas);
        region.setGeometry(regionWas);
        return;
    }
    const QScreen* screen = main.screen();
    if (!screen) return;
    // Outer sizes (with the window frames) side by side; the frames are taken off again.
    const QSize mainFrame = main.frameGeometry().size() - main.size();
    const QSize regionFrame = region.frameGeometry().size() - region.size();
    const WindowPlaces places =
        SideBySide(ToScreenRect(screen->availableGeometry()),
                   ToScreenRect(QRect(QPoint(), main.frameGeometry().size())),
                   ToScreenRect(QRect(QPoint(), region.frameGeometry().size())));
    main.move(places.main.x, places.main.y);
    main.resize(places.main.width - mainFrame.width(), places.main.height - mainFrame.height());
    region.move(places.region.x, places.region.y);
    region.resize(places.region.width - regionFrame.width(),
                  places.region.height - regionFrame.height());
}

void Workspace::SaveGeometry() const {
    Settings().setValue(kMainGeometry, gui_.mainWindow().geometry());
    Settings().setValue(kRegionGeometry, gui_.regionWindow().geometry());
    Settings().sync();
}

void Workspace::FileUsed(const std::string& path) {
    recent_.Add(QFile::encodeName(QFileInfo(QFile::decodeName(path.c_str())).absoluteFilePath())
                    .toStdString());
    StoreRecent();
}

void Workspace::StoreRecent() {
    QStringList paths;
    for (const std::string& path : recent_.Paths()) paths << QFile::decodeName(path.c_str());
    Settings().setValue(kRecentFiles, paths);
    Settings().sync();
    RefreshRecentMenu();
}

void Workspace::BuildFileMenu() {
    QMenuBar* bar = gui_.regionWindow().menuBar();
    auto* file = new QMenu(QStringLiteral("File"), bar);
    file->setObjectName(QStringLiteral("fileMenu"));
    bar->insertMenu(bar->actions().value(0), file);
    auto add = [&](const QString& caption, const char* name, QKeySequence keys, auto command) {
        QAction* action = file->addAction(caption);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, command);
    };
    MainWindow& main = gui_.mainWindow();
    add(QStringLiteral("Open..."), "openAction", QKeySequence::Open,
        [&main] { main.OpenProjectCommand(); });
    add(QStringLiteral("Save"), "saveAction", QKeySequence::Save, [&main] { main.SaveCommand(); });
    add(QStringLiteral("Save As..."), "saveAsAction", QKeySequence::SaveAs,
        [&main] { main.SaveProjectCommand(); });
    add(QStringLiteral("Import..."), "importAction", QKeySequence(Qt::CTRL | Qt::Key_I),
        [this] { ImportCommand(); });
    add(QStringLiteral("Export Report..."), "exportReportAction", QKeySequence(),
        [this] { ExportReportCommand(); });
    recentMenu_ = file->addMenu(QStringLiteral("Recent Files"));
    recentMenu_->setObjectName(QStringLiteral("recentFilesMenu"));
    file->addSeparator();
    add(QStringLiteral("Quit"), "quitAction", QKeySequence::Quit, [&main] { main.close(); });
    RefreshRecentMenu();
}

void Workspace::RefreshRecentMenu() {
    // The entry being run may be among them: deleted once its command has returned.
    for (QAction* old : recentMenu_->actions()) {
        recentMenu_->removeAction(old);
        old->setObjectName(QString());
        old->deleteLater();
    }
    int k = 0;
    for (const std::string& path : recent_.Paths()) {
        const QFileInfo info(QFile::decodeName(path.c_str()));
        QAction* action = recentMenu_->addAction(
            QStringLiteral("&%1 %2   (%3)").arg(k + 1).arg(info.fileName(), info.path()));
        action->setObjectName(QStringLiteral("recentFileAction%1").arg(k++));
        connect(action, &QAction::triggered, this, [this, path] { OpenRecent(path); });
    }
    recentMenu_->setEnabled(k > 0);
}

void Workspace::ImportCommand() {
    const std::string path = gui_.files().Open("Import", AnyFileFilter());
    if (path.empty()) return;
    const NamedFile kind = ClassifyNamedFile(path);
    if (kind.project) {
        if (gui_.mainWindow().MayDropProject()) gui_.mainWindow().LoadProjectFile(path);
    } else if (kind.format) {
        gui_.regionWindow().ImportFrom(*kind.format, path);
    } else {
        gui_.host().Show(kind.refusal);
    }
}

void Workspace::ExportReportCommand() {
    const std::string path = gui_.files().Save(
        "Export Report",
        "HTML Files (*.html) |*.html|CSV Files (*.csv) |*.csv|JSON Files (*.json) |*.json|",
        "html");
    if (path.empty()) return;
    const Project& project = gui_.project();
    const std::string source =
        QFileInfo(QFile::decodeName(project.FileName.c_str())).fileName().toStdString();
    const auto text = ReportText(project, ReportRegions(project, -1), path, source);
    if (!text) {
        gui_.host().ShowError(msg::kErrorSavingFile);
        return;
    }
    gui_.host().ShowOutcome(WriteFileBytes(path, *text, msg::kErrorSavingFile),
                            msg::kDataFileExported, msg::kErrorSavingFile);
}

void Workspace::OpenRecent(const std::string& path) {
    if (QFileInfo::exists(QFile::decodeName(path.c_str()))) {
        gui_.OpenFiles({path});
        return;
    }
    recent_.Remove(path);
    StoreRecent();
    gui_.host().ShowError(MissingRecentFileText(path));
}

bool Workspace::eventFilter(QObject* watched, QEvent* event) {
    const bool enter = event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove;
    if (!enter && event->type() != QEvent::Drop) return QObject::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event);
    // Nothing is opened while a fit or another command runs (the main window is disabled).
    const std::vector<std::string> paths = LocalFiles(drop->mimeData());
    if (paths.empty() || !gui_.mainWindow().isEnabled()) return false;
    drop->acceptProposedAction();
    if (!enter) gui_.OpenFiles(paths);
    return true;
}

}  // namespace molvera::ui
