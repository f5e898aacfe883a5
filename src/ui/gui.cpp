#include "ui/gui.h"

#include <initializer_list>

#include <QAction>
#include <QMenuBar>

#include "model/project.h"
#include "session/mainwindow.h"
#include "session/peakdrag.h"
#include "spectral/lineshape.h"
#include "ui/application.h"
#include "ui/backgrounddialog.h"
#include "ui/constraintdialog.h"
#include "ui/fittingwindow.h"
#include "ui/mainwindow.h"
#include "ui/optionswindow.h"
#include "ui/peakeditor.h"
#include "ui/peaktable.h"
#include "ui/plotwidget.h"
#include "ui/quantwindow.h"
#include "ui/regiondialogs.h"
#include "ui/regionwindow.h"
#include "ui/workspace.h"

namespace molvera::ui {

Gui::Gui(UserSink& sink, FileChooser& chooser)
    : project_(std::make_unique<Project>()), host_(*project_, sink), files_(chooser) {
    main_ = std::make_unique<MainWindow>(*project_, host_, files_);
    region_ = std::make_unique<RegionWindow>(*project_, host_, files_);
    options_ = std::make_unique<OptionsWindow>(optionsForm_, project_->Options, host_, files_);
    fitting_ = std::make_unique<FittingWindow>(*project_);
    host_.Attach(main_.get(), region_.get(), fitting_.get());
    main_->openOptions = [this] { options_->Open(); };
    main_->projectReplaced = [this] {
        history_.Reset(*project_);
        RefreshEditMenus();
        region_->Plot()->SetView({});  // another project starts unzoomed (Undo keeps the zoom)
    };
    BuildDialogs();
    WireEditMenus();
    workspace_ = std::make_unique<Workspace>(*this);
    main_->fileUsed = [this](const std::string& path) { workspace_->FileUsed(path); };
    region_->fileUsed = main_->fileUsed;
}

void Gui::WireEditMenus() {
    for (QWidget* window : std::initializer_list<QWidget*>{main_.get(), region_.get()}) {
        QObject::connect(window->findChild<QAction*>(QStringLiteral("undoAction")),
                         &QAction::triggered, window, [this] { UndoStep(); });
        QObject::connect(window->findChild<QAction*>(QStringLiteral("redoAction")),
                         &QAction::triggered, window, [this] { RedoStep(); });
    }
    if (Application* app = Application::Instance()) app->afterInput = [this] { RecordStep(); };
}

void Gui::RefreshEditMenus() {
    for (QWidget* window : std::initializer_list<QWidget*>{main_.get(), region_.get()}) {
        window->findChild<QAction*>(QStringLiteral("undoAction"))->setEnabled(history_.CanUndo());
        window->findChild<QAction*>(QStringLiteral("redoAction"))->setEnabled(history_.CanRedo());
    }
}

void Gui::RecordStep() {
    region_->Table()->RequestRefresh();  // a Fix box, a label: changes that draw nothing
    quant_->RequestRefresh();
    history_.Record(*project_);
    RefreshEditMenus();
}

void Gui::UndoStep() { StepHistory(false); }
void Gui::RedoStep() { StepHistory(true); }

void Gui::StepHistory(bool redo) {
    // Ctrl+Z pressed while a fit runs would pull the project from under it.
    if (const Application* app = Application::Instance(); app && app->InputDepth() > 1) {
        host_.Beep();
        return;
    }
    if (!(redo ? history_.Redo(*project_, host_) : history_.Undo(*project_, host_))) host_.Beep();
    main_->RefreshTitle();
    RefreshEditMenus();
}

void Gui::BuildDialogs() {
    background_ = std::make_unique<BackgroundDialog>(*project_, host_);
    shift_ = std::make_unique<RegionShiftDialog>(*project_, host_);
    caption_ = std::make_unique<RegionCaptionDialog>(*project_, host_);
    constraints_ = std::make_unique<ConstraintDialog>(*project_, host_);
    peakEditor_ = std::make_unique<PeakEditor>(*project_, host_, *region_->Plot(), *constraints_);
    quant_ = std::make_unique<QuantWindow>(*project_, host_);
    const auto openQuant = [this] { quant_->Open(); };
    AddToolsMenu(*main_->findChild<QMenuBar*>(), openQuant);
    AddToolsMenu(*region_->menuBar(), openQuant);
    region_->redrawn = [this] { quant_->RequestRefresh(); };

    background_->repaintPlot = [this] { region_->Plot()->RedrawNow(); };
    region_->openBackgroundDialog = [this] { background_->Open(); };
    region_->openRegionShift = [this] { shift_->Open(); };
    region_->openRegionCaption = [this] { caption_->Open(); };
    main_->openPeakEditor = [this](int buttonIndex) { peakEditor_->Open(buttonIndex); };
    region_->addPeak = [this] { peakEditor_->AddAndOpen(); };
    PeakTable& table = *region_->Table();
    peakEditor_->highlighted = [&table](int slot) { table.SelectPeak(slot); };
    table.edited = [this] { peakEditor_->Refill(); };
    table.openEditor = main_->openPeakEditor;
    PlotWidget& plot = *region_->Plot();
    // A drag in the plot stores what typing the values would; a refused step (an apex
    // below the background, crossing ends) just leaves the curve where it was.
    plot.dragPeak = [this, &table](int slot, PlotPoint to) {
        if (!DragPeakApex(*project_, host_, slot, to)) return;
        peakEditor_->Refill();
        table.SelectPeak(slot);
    };
    plot.dragBackgroundEnd = [this](bool low, double be) {
        if (DragBackgroundEnd(*project_, host_, low, be) && background_->isVisible())
            background_->Open();
    };
    options_->setAsymmetryFrameEnabled = [this](bool on) { peakEditor_->SetAsymmetryEnabled(on); };

    host_.hidePeakEditor = [this] { peakEditor_->HideEditor(); };
    host_.hideRegionDialogs = [this] {
        background_->CloseClicked();
        constraints_->HideDialog();
    };
    host_.enableDialogs = [this](bool enabled) {
        for (QWidget* w :
             std::initializer_list<QWidget*>{background_.get(), shift_.get(), caption_.get(),
                                             constraints_.get(), peakEditor_.get(), quant_.get()})
            w->setEnabled(enabled);
    };
}

Gui::~Gui() {
    workspace_->SaveGeometry();
    if (Application* app = Application::Instance()) app->afterInput = nullptr;
    host_.Attach(nullptr, nullptr, nullptr);
}

void Gui::Start(const std::string& defaultOptionsPath, const std::string& recoveryFolder) {
    (void)GLTables();
    ClearProject(*project_, host_);
    project_->TotalChiSquare = 0;
    project_->KeepAreas = kFalse;
    project_->FileName = "default.opa";
    LoadDefaultOptions(defaultOptionsPath, optionsForm_, project_->Options);
    options_->ShowForm();
    main_->MarkSaved("");
    main_->RecolourRegionButtons();
    main_->show();
    region_->show();
    workspace_->PlaceWindows();
    if (!recoveryFolder.empty()) main_->StartRecovery(recoveryFolder);
    history_.Reset(*project_);  // a restored copy is where the history starts
    RefreshEditMenus();
}

void Gui::OpenFiles(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        const NamedFile kind = ClassifyNamedFile(path);
        if (kind.project) {
            if (main_->MayDropProject()) main_->LoadProjectFile(path);
        } else if (kind.format) {
            const ImportResult result = ImportIntoEmptyRegion(*project_, host_, *kind.format, path);
            for (const Status& message : result.Messages()) host_.Show(message);
            if (result.status) workspace_->FileUsed(path);
        } else {
            host_.Show(kind.refusal);
        }
        files_.SetLastFileName(path);
    }
}

}  // namespace molvera::ui
