#include "ui/optionswindow.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "fileio/optionfile.h"
#include "ui/filechooser.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
namespace {
constexpr const char* kOptionFilter = "Parameter Files (*.opa) |*.opa|";
}  // namespace

OptionsWindow::OptionsWindow(OptionsForm& form, FitOptions& options, QtHost& host,
                             FileDialog& files, QWidget* parent)
    : QWidget(parent, Qt::Window), form_(form), options_(options), host_(host), files_(files) {
    setObjectName(QStringLiteral("optionsWindow"));
    setWindowTitle(QStringLiteral("Option"));

    auto* frames = new QHBoxLayout;
    frames->addWidget(SearchFrame());
    frames->addWidget(NewtonFrame());

    // Levenberg-Marquardt takes its iterations and its stop from boxes the others have.
    auto* lmFrame = new QGroupBox(QStringLiteral("Levenberg\u2013Marquardt"), this);
    auto* lmLine = new QHBoxLayout(lmFrame);
    useLevenbergMarquardt_ = new QRadioButton(QStringLiteral("Use"), lmFrame);
    useLevenbergMarquardt_->setObjectName(QStringLiteral("useLevenbergMarquardt"));
    useLevenbergMarquardt_->setAutoExclusive(false);
    lmLine->addWidget(useLevenbergMarquardt_);
    lmLine->addWidget(new QLabel(
        QStringLiteral("all free parameters at once; at most Newton's \"No. of trials\" "
                       "iterations, ends when the chi-square changes by less than the Tolerance"),
        lmFrame));
    lmLine->addStretch();

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Tolerance"), this));
    QLineEdit* tol = Box(QStringLiteral("toleranceText"), &OptionsForm::toleranceText);
    tol->setMinimumWidth(150);
    bottom->addWidget(tol);
    bottom->addSpacing(20);
    glSum_ = new QRadioButton(QStringLiteral("GL Sum"), this);
    glSum_->setObjectName(QStringLiteral("glSum"));
    glProduct_ = new QRadioButton(QStringLiteral("GL Product"), this);
    glProduct_->setObjectName(QStringLiteral("glProduct"));
    bottom->addWidget(glSum_);
    bottom->addWidget(glProduct_);
    bottom->addStretch();
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("okButton"));
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    auto* load = new QPushButton(QStringLiteral("Load Parameters"), this);
    load->setObjectName(QStringLiteral("loadParametersButton"));
    auto* save = new QPushButton(QStringLiteral("Save Parameters"), this);
    save->setObjectName(QStringLiteral("saveParametersButton"));
    bottom->addWidget(ok);
    bottom->addWidget(cancel);
    bottom->addWidget(load);
    bottom->addWidget(save);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(frames);
    layout->addWidget(lmFrame);
    layout->addLayout(bottom);

    connect(useSearch_, &QRadioButton::clicked, this, [this] { RunHandler(&ApplySearchChoice); });
    connect(useNewton_, &QRadioButton::clicked, this, [this] { RunHandler(&ApplyNewtonChoice); });
    connect(useLevenbergMarquardt_, &QRadioButton::clicked, this,
            [this] { RunHandler(&ApplyLevenbergMarquardtChoice); });
    connect(glSum_, &QRadioButton::clicked, this, [this] { RunHandler(&ApplyGLSumChoice); });
    connect(glProduct_, &QRadioButton::clicked, this,
            [this] { RunHandler(&ApplyGLProductChoice); });
    connect(ok, &QPushButton::clicked, this, &OptionsWindow::OkClicked);
    connect(cancel, &QPushButton::clicked, this, &OptionsWindow::CancelClicked);
    connect(load, &QPushButton::clicked, this, &OptionsWindow::LoadParametersClicked);
    connect(save, &QPushButton::clicked, this, &OptionsWindow::SaveParametersClicked);
}

QLineEdit* OptionsWindow::Box(const QString& name, std::string OptionsForm::*field) {
    auto* box = new QLineEdit(this);
    box->setObjectName(name);
    texts_.push_back({box, [field](OptionsForm& f) -> std::string& { return f.*field; }});
    return box;
}

QGroupBox* OptionsWindow::SearchFrame() {
    auto* frame = new QGroupBox(QStringLiteral("Parameters for Search Method"), this);
    auto* layout = new QVBoxLayout(frame);
    auto* top = new QHBoxLayout;
    useSearch_ = new QRadioButton(QStringLiteral("Use"), frame);
    useSearch_->setObjectName(QStringLiteral("useSearch"));
    useSearch_->setAutoExclusive(false);
    top->addWidget(useSearch_);
    top->addStretch();
    top->addWidget(new QLabel(QStringLiteral("No. of trials"), frame));
    QLineEdit* trials = Box(QStringLiteral("searchTrialsText"), &OptionsForm::searchTrialsText);
    trials->setMaximumWidth(60);
    top->addWidget(trials);
    layout->addLayout(top);
    const QString heading = QStringLiteral("Use   Range   Step");
    layout->addWidget(LevelGroup(QStringLiteral("Position"), heading,
                                 &OptionsForm::usePositionSearch, &OptionsForm::positionRangeText,
                                 &OptionsForm::positionStepText, QStringLiteral("Position")));
    layout->addWidget(LevelGroup(QStringLiteral("Area"), heading, &OptionsForm::useAreaSearch,
                                 &OptionsForm::areaRangeText, &OptionsForm::areaStepText,
                                 QStringLiteral("Area")));
    layout->addWidget(LevelGroup(QStringLiteral("FWHM"), heading, &OptionsForm::useFWHMSearch,
                                 &OptionsForm::fwhmRangeText, &OptionsForm::fwhmStepText,
                                 QStringLiteral("FWHM")));
    return frame;
}

QGroupBox* OptionsWindow::NewtonFrame() {
    auto* frame = new QGroupBox(QStringLiteral("Parameters for Newton's Method"), this);
    auto* layout = new QVBoxLayout(frame);
    auto* top = new QHBoxLayout;
    useNewton_ = new QRadioButton(QStringLiteral("Use"), frame);
    useNewton_->setObjectName(QStringLiteral("useNewton"));
    useNewton_->setAutoExclusive(false);
    top->addWidget(useNewton_);
    top->addStretch();
    top->addWidget(new QLabel(QStringLiteral("No. of trials"), frame));
    QLineEdit* trials = Box(QStringLiteral("newtonTrialsText"), &OptionsForm::newtonTrialsText);
    trials->setMaximumWidth(60);
    top->addWidget(trials);
    layout->addLayout(top);
    const QString heading = QStringLiteral("Use  Delta");
    layout->addWidget(LevelGroup(QStringLiteral("Position"), heading,
                                 &OptionsForm::usePositionNewton, &OptionsForm::positionDeltaText,
                                 nullptr, QStringLiteral("Position")));
    layout->addWidget(LevelGroup(QStringLiteral("Area"), heading, &OptionsForm::useAreaNewton,
                                 &OptionsForm::areaDeltaText, nullptr, QStringLiteral("Area")));
    layout->addWidget(LevelGroup(QStringLiteral("FWHM"), heading, &OptionsForm::useFWHMNewton,
                                 &OptionsForm::fwhmDeltaText, nullptr, QStringLiteral("FWHM")));
    return frame;
}

QGroupBox* OptionsWindow::LevelGroup(const QString& title, const QString& heading,
                                     std::array<bool, kLevels> OptionsForm::*check,
                                     std::array<std::string, kLevels> OptionsForm::*first,
                                     std::array<std::string, kLevels> OptionsForm::*second,
                                     const QString& parameter) {
    auto* group = new QGroupBox(title, this);
    auto* grid = new QGridLayout(group);
    grid->setVerticalSpacing(2);
    // The heading's words sit over their columns.
    const QStringList words = heading.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (qsizetype c = 0; c < words.size(); ++c)
        grid->addWidget(new QLabel(words[c], group), 0, static_cast<int>(c) + 1, Qt::AlignLeft);
    grid->setColumnStretch(4, 1);
    const bool search = second != nullptr;
    // usePositionSearch0, positionRangeText0, positionStepText0; useAreaNewton2, areaDeltaText2.
    const QString checkName = QStringLiteral("use") + parameter +
                              (search ? QStringLiteral("Search%1") : QStringLiteral("Newton%1"));
    const QString firstName = LowerCamel(parameter) + (search ? QStringLiteral("RangeText%1")
                                                              : QStringLiteral("DeltaText%1"));
    const QString secondName = LowerCamel(parameter) + QStringLiteral("StepText%1");
    for (int i = 0; i < kLevels; ++i) {
        const auto idx = static_cast<std::size_t>(i);
        grid->addWidget(new QLabel(QStringLiteral("Level %1").arg(i + 1), group), i + 1, 0);
        auto* box = new QCheckBox(group);
        box->setObjectName(checkName.arg(i));
        checks_.push_back({box, [check, idx](OptionsForm& f) -> bool& { return (f.*check)[idx]; }});
        grid->addWidget(box, i + 1, 1);
        auto* a = new QLineEdit(group);
        a->setObjectName(firstName.arg(i));
        a->setFixedWidth(80);
        texts_.push_back(
            {a, [first, idx](OptionsForm& f) -> std::string& { return (f.*first)[idx]; }});
        grid->addWidget(a, i + 1, 2);
        if (search) {
            auto* b = new QLineEdit(group);
            b->setObjectName(secondName.arg(i));
            b->setFixedWidth(80);
            texts_.push_back(
                {b, [second, idx](OptionsForm& f) -> std::string& { return (f.*second)[idx]; }});
            grid->addWidget(b, i + 1, 3);
        }
    }
    return group;
}

void OptionsWindow::ReadForm() {
    for (auto& t : texts_) t.field(form_) = ToLatin1(t.box->text());
    for (auto& c : checks_) c.field(form_) = c.box->isChecked();
    form_.useSearch = useSearch_->isChecked();
    form_.useNewton = useNewton_->isChecked();
    form_.useLevenbergMarquardt = useLevenbergMarquardt_->isChecked();
    form_.glSum = glSum_->isChecked();
    form_.glProduct = glProduct_->isChecked();
}

void OptionsWindow::ShowForm() {
    for (auto& t : texts_) {
        t.box->setText(FromLatin1(t.field(form_)));
        t.box->setCursorPosition(0);  // long numbers show their leading digits
    }
    for (auto& c : checks_) c.box->setChecked(c.field(form_));
    useSearch_->setChecked(form_.useSearch);
    useNewton_->setChecked(form_.useNewton);
    useLevenbergMarquardt_->setChecked(form_.useLevenbergMarquardt);
    glSum_->setAutoExclusive(false);
    glProduct_->setAutoExclusive(false);
    glSum_->setChecked(form_.glSum);
    glProduct_->setChecked(form_.glProduct);
    glSum_->setAutoExclusive(true);
    glProduct_->setAutoExclusive(true);
    if (setAsymmetryFrameEnabled) setAsymmetryFrameEnabled(form_.asymmetryFrameEnabled);
    if (form_.visible) {
        show();
        raise();
    } else {
        hide();
    }
}

void OptionsWindow::Open() {
    opened_ = options_;
    FillOptionsDialog(options_, form_);
    form_.invalidBox.clear();
    MarkInvalidBox(*this, form_.invalidBox);
    ShowForm();
}

void OptionsWindow::RunHandler(void (*handler)(OptionsForm&, FitOptions&)) {
    ReadForm();
    handler(form_, options_);
    ShowForm();
}

void OptionsWindow::OkClicked() {
    ReadForm();
    const Status st = ApplyOptionsDialog(form_, options_);
    MarkInvalidBox(*this, form_.invalidBox);
    if (!st) host_.Show(st);
    ShowForm();
}

void OptionsWindow::CancelClicked() {
    CancelOptionsDialog(form_, options_, opened_);
    MarkInvalidBox(*this, form_.invalidBox);
    ShowForm();
}

void OptionsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        CancelClicked();
        return;
    }
    QWidget::keyPressEvent(event);
}

void OptionsWindow::LoadParametersClicked() {
    files_.SetLastFileName({});
    const std::string path = files_.Open("Load Parameters", kOptionFilter);
    if (path.empty()) return;
    ReadForm();
    if (Status st = LoadOptionsCommand(path, form_, options_); !st) {
        host_.Show(st);
        return;
    }
    ShowForm();
}

void OptionsWindow::SaveParametersClicked() {
    ReadForm();
    const Status st = ApplyOptionsDialog(form_, options_);
    MarkInvalidBox(*this, form_.invalidBox);
    if (!st) host_.Show(st);
    ShowForm();
    if (!form_.invalidBox.empty()) return;  // a box holds no number: nothing to save
    const std::string path = files_.Save("Save Parameters", kOptionFilter, "opa");
    if (path.empty()) return;
    if (Status st = WriteOptionFile(options_, path); !st) host_.Show(st);
}

}  // namespace molvera::ui
