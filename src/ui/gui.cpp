#include "ui/gui.h"

#include "model/project.h"
#include "spectral/lineshape.h"
#include "ui/fittingwindow.h"
#include "ui/mainwindow.h"
#include "ui/optionswindow.h"
#include "ui/regionwindow.h"

namespace molvera::ui {

Gui::Gui(UserSink& sink, FileChooser& chooser)
    : project_(std::make_unique<Project>()), host_(*project_, sink), files_(chooser) {
    main_ = std::make_unique<MainWindow>(*project_, host_, files_);
    region_ = std::make_unique<RegionWindow>(*project_, host_, files_);
    options_ = std::make_unique<OptionsWindow>(optionsForm_, project_->Options, host_, files_);
    fitting_ = std::make_unique<FittingWindow>(*project_);
    host_.Attach(main_.get(), region_.get(), fitting_.get());
    main_->openOptions = [this] { options_->Open(); };
    // Peak editor, background, caption and shift windows: hooks stay empty until
    // those windows are built.
}

Gui::~Gui() { host_.Attach(nullptr, nullptr, nullptr); }

void Gui::Start(const std::string& defaultOptionsPath) {
    (void)GLTables();
    ClearProject(*project_, host_);
    project_->TotalChiSquare = 0;
    project_->KeepAreas = kFalse;
    project_->FileName = "default.opa";
    LoadDefaultOptions(defaultOptionsPath, optionsForm_, project_->Options);
    options_->ShowForm();
    main_->RecolourRegionButtons();
    main_->show();
    region_->show();
}

}  // namespace molvera::ui
