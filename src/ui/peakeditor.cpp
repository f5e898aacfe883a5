#include "ui/peakeditor.h"

#include <algorithm>

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "session/peakoptimise.h"
#include "session/quantform.h"
#include "ui/constraintdialog.h"
#include "ui/plotwidget.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
PeakEditor::PeakEditor(Project& project, QtHost& host, PlotWidget& plot,
                       ConstraintDialog& constraints, QWidget* parent)
    : QWidget(parent, Qt::Window),
      project_(project),
      host_(host),
      plot_(plot),
      constraints_(constraints),
      rows_{{{PeakParameter::Position, &PeakForm::positionText, &PeakForm::positionBar,
              &PeakForm::fixPosition},
             {PeakParameter::FWHM, &PeakForm::fwhmText, &PeakForm::fwhmBar, &PeakForm::fixFWHM},
             {PeakParameter::Area, &PeakForm::areaText, &PeakForm::areaBar, &PeakForm::fixArea},
             {PeakParameter::GL, &PeakForm::glText, &PeakForm::glBar, &PeakForm::fixGL}}} {
    setObjectName(QStringLiteral("peakEditor"));

    auto* top = new QHBoxLayout;
    type_ = new QComboBox(this);
    type_->setObjectName(QStringLiteral("peakType"));
    type_->setEditable(true);
    type_->addItems(
        {QStringLiteral("s"), QStringLiteral("p"), QStringLiteral("d"), QStringLiteral("f")});
    type_->setFixedWidth(60);
    top->addWidget(type_);
    top->addSpacing(16);
    top->addWidget(new QLabel(QStringLiteral("S.O.S."), this));
    splitting_ = NamedBox(this, QStringLiteral("splittingText"), 80);
    top->addWidget(splitting_);
    top->addStretch();
    top->addWidget(new QLabel(QStringLiteral("Actual FWHM:"), this));
    actualFWHM_ = new QLabel(QStringLiteral("---"), this);
    actualFWHM_->setObjectName(QStringLiteral("actualFWHM"));
    actualFWHM_->setMinimumWidth(70);
    top->addWidget(actualFWHM_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(QuantRow());
    layout->addWidget(
        ParameterFrame(rows_[0], QStringLiteral("Position"), QStringLiteral("Position")));
    layout->addWidget(ParameterFrame(rows_[1], QStringLiteral("FWHM"), QStringLiteral("FWHM")));
    layout->addWidget(ParameterFrame(rows_[2], QStringLiteral("Area"), QStringLiteral("Area")));
    layout->addWidget(ParameterFrame(rows_[3], QStringLiteral("% Lorentzian-Gaussian (0:G, 100:L)"),
                                     QStringLiteral("GL")));
    layout->addWidget(AsymmetryFrame());

    auto* buttons = new QHBoxLayout;
    QPushButton* optimisePeak =
        NamedButton(this, QStringLiteral("Optimise Peak"), QStringLiteral("optimisePeakButton"));
    QPushButton* redraw =
        NamedButton(this, QStringLiteral("ReDraw"), QStringLiteral("redrawButton"));
    QPushButton* accept =
        NamedButton(this, QStringLiteral("Accept"), QStringLiteral("acceptButton"));
    QPushButton* cancel =
        NamedButton(this, QStringLiteral("Cancel"), QStringLiteral("cancelButton"));
    QPushButton* remove =
        NamedButton(this, QStringLiteral("Delete Peak"), QStringLiteral("deletePeakButton"));
    buttons->addWidget(optimisePeak);
    buttons->addWidget(redraw);
    buttons->addStretch();
    buttons->addWidget(accept);
    buttons->addWidget(cancel);
    buttons->addSpacing(16);
    buttons->addWidget(remove);
    layout->addLayout(buttons);

    liveTimer_.setSingleShot(true);
    liveTimer_.setInterval(kLivePauseMs);
    connect(&liveTimer_, &QTimer::timeout, this, &PeakEditor::ApplyLive);
    for (QLineEdit* box : findChildren<QLineEdit*>())
        connect(box, &QLineEdit::textEdited, &liveTimer_, qOverload<>(&QTimer::start));
    connect(type_, &QComboBox::currentTextChanged, this, [this] {
        if (!showing_) liveTimer_.start();
    });

    connect(optimisePeak, &QPushButton::clicked, this, &PeakEditor::OptimisePeakClicked);
    connect(redraw, &QPushButton::clicked, this, &PeakEditor::ReDrawClicked);
    connect(accept, &QPushButton::clicked, this, &PeakEditor::AcceptClicked);
    connect(cancel, &QPushButton::clicked, this, &PeakEditor::CancelClicked);
    connect(remove, &QPushButton::clicked, this, &PeakEditor::DeleteClicked);
    ShowForm();
}

QGroupBox* PeakEditor::ParameterFrame(ParameterRow& row, const QString& title,
                                      const QString& parameter) {
    // positionText, positionBar, fixPosition, optimisePositionButton, positionConstraintsButton
    const QString word = LowerCamel(parameter);
    auto* frame = new QGroupBox(title, this);
    auto* line = new QHBoxLayout(frame);
    row.box = NamedBox(frame, word + QStringLiteral("Text"), 90);
    row.sigma = new QLabel(frame);
    row.sigma->setObjectName(word + QStringLiteral("Sigma"));
    row.sigma->setMinimumWidth(170);  // room for a relation and its uncertainty
    row.sigma->setToolTip(QStringLiteral("Standard uncertainty at the present values"));
    row.scroll = new QScrollBar(Qt::Horizontal, frame);
    row.scroll->setObjectName(word + QStringLiteral("Bar"));
    row.scroll->setMinimumWidth(220);
    row.fix = new QCheckBox(QStringLiteral("Fix"), frame);
    row.fix->setObjectName(QStringLiteral("fix") + parameter);
    QPushButton* optimise =
        NamedButton(frame, QStringLiteral("Optimise"),
                    QStringLiteral("optimise") + parameter + QStringLiteral("Button"));
    QPushButton* constraints = NamedButton(frame, QStringLiteral("Constraints"),
                                           word + QStringLiteral("ConstraintsButton"));
    line->addWidget(row.box);
    line->addWidget(row.sigma);
    line->addWidget(row.scroll, 1);
    line->addWidget(row.fix);
    line->addWidget(optimise);
    line->addWidget(constraints);

    ParameterRow* r = &row;
    connect(row.scroll, &QScrollBar::valueChanged, this, [this, r](int v) { BarMoved(*r, v); });
    connect(row.fix, &QCheckBox::toggled, this, [this, r](bool on) { FixToggled(*r, on); });
    connect(optimise, &QPushButton::clicked, this, [this, r] { OptimiseClicked(r->which); });
    connect(constraints, &QPushButton::clicked, this, [this, r] { ConstraintsClicked(r->which); });
    return frame;
}

QGroupBox* PeakEditor::AsymmetryFrame() {
    asymmetry_ = new QGroupBox(QStringLiteral("Asymmetry (TS=0 for symmetry)"), this);
    asymmetry_->setObjectName(QStringLiteral("asymmetryFrame"));
    auto* line = new QHBoxLayout(asymmetry_);
    tailScale_ = NamedBox(asymmetry_, QStringLiteral("tailScaleText"), 90);
    tailLength_ = NamedBox(asymmetry_, QStringLiteral("tailLengthText"), 90);
    line->addWidget(new QLabel(QStringLiteral("TS"), asymmetry_));
    line->addWidget(tailScale_);
    line->addWidget(new QLabel(QStringLiteral("0-1"), asymmetry_));
    line->addSpacing(30);
    line->addWidget(new QLabel(QStringLiteral("TL"), asymmetry_));
    line->addWidget(tailLength_);
    line->addWidget(new QLabel(QStringLiteral("0.01-200"), asymmetry_));
    line->addStretch();
    return asymmetry_;
}

QHBoxLayout* PeakEditor::QuantRow() {
    auto* line = new QHBoxLayout;
    label_ = NamedBox(this, QStringLiteral("labelText"), 130);
    label_->setMaxLength(20);
    label_->setToolTip(QStringLiteral("Element and core level, as C 1s or Fe 2p3/2"));
    suggest_ = new QToolButton(this);
    suggest_->setObjectName(QStringLiteral("suggestLabelButton"));
    suggest_->setText(QStringLiteral("Suggest"));
    suggest_->setToolTip(QStringLiteral("Core levels near the peak's position"));
    suggest_->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(suggest_);
    menu->setObjectName(QStringLiteral("labelChoicesMenu"));
    suggest_->setMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, &PeakEditor::FillLabelChoices);
    connect(label_, &QLineEdit::textChanged, this, [this](const QString& text) {
        rsf_->setPlaceholderText(FromLatin1(RsfPlaceholder(project_, ToLatin1(text))));
    });
    rsf_ = NamedBox(this, QStringLiteral("rsfText"), 150);
    rsf_->setToolTip(
        QStringLiteral("Relative sensitivity factor; empty for the one computed from the label"));
    line->addWidget(new QLabel(QStringLiteral("Label"), this));
    line->addWidget(label_);
    line->addWidget(suggest_);
    line->addSpacing(16);
    line->addWidget(new QLabel(QStringLiteral("RSF"), this));
    line->addWidget(rsf_);
    line->addStretch();
    return line;
}

void PeakEditor::FillLabelChoices() {
    QMenu* menu = suggest_->menu();
    menu->clear();
    const std::vector<std::string> choices = LabelChoices(project_, project_.CurrentPeak);
    for (const std::string& choice : choices) {
        const QString text = FromLatin1(choice);
        connect(menu->addAction(text), &QAction::triggered, this, [this, text] {
            label_->setText(text);  // as if typed: takes effect as the other boxes do
            liveTimer_.start();
        });
    }
    if (choices.empty())
        menu->addAction(QStringLiteral("No core level within 5 eV"))->setEnabled(false);
}

void PeakEditor::ShowForm() {
    showing_ = true;
    setWindowTitle(FromLatin1(form_.caption));
    if (type_->currentText() != FromLatin1(form_.peakType))
        type_->setCurrentText(FromLatin1(form_.peakType));
    SetBoxText(splitting_, form_.splittingText);
    actualFWHM_->setText(FromLatin1(form_.actualFWHM));
    SetBoxText(tailScale_, form_.tailScaleText);
    SetBoxText(tailLength_, form_.tailLengthText);
    SetBoxText(label_, form_.labelText);
    SetBoxText(rsf_, form_.rsfText);
    rsf_->setPlaceholderText(FromLatin1(form_.rsfPlaceholder));
    for (ParameterRow& row : rows_) {
        SetBoxText(row.box, form_.*row.text);
        MarkConstraints(row);
        const ScrollBar& bar = form_.*row.bar;
        row.scroll->setRange(std::min(bar.min, bar.max), std::max(bar.min, bar.max));
        row.scroll->setValue(bar.value);
        row.fix->setChecked(form_.*row.check);
    }
    showing_ = false;
    ShowOrHide(*this, form_.visible);
    SyncHighlight();
}

void PeakEditor::ReadForm() {
    form_.peakType = ToLatin1(type_->currentText());
    form_.splittingText = ToLatin1(splitting_->text());
    form_.tailScaleText = ToLatin1(tailScale_->text());
    form_.tailLengthText = ToLatin1(tailLength_->text());
    form_.labelText = ToLatin1(label_->text());
    form_.rsfText = ToLatin1(rsf_->text());
    for (ParameterRow& row : rows_) {
        form_.*row.text = ToLatin1(row.box->text());
        form_.*row.check = row.fix->isChecked();
    }
}

void PeakEditor::SyncHighlight() {
    const int slot = form_.visible ? project_.CurrentPeak : -1;
    plot_.SetSelectedPeak(slot);
    if (highlighted) highlighted(slot);
}

void PeakEditor::MarkConstraints(ParameterRow& row) {
    const auto i = static_cast<std::size_t>(row.which);
    const std::string& relation = form_.relationText[i];
    const std::string& sigma = form_.sigmaText[i];
    row.sigma->setText(
        FromLatin1(relation.empty() || sigma.empty() ? relation + sigma : relation + "  " + sigma));
    row.box->setReadOnly(!relation.empty());
    row.scroll->setEnabled(relation.empty());
    // A value the fit leaves alone is greyed: fixed, or following another peak.
    const bool greyed = !relation.empty() || form_.*row.check;
    if (row.box->property("greyed").toBool() == greyed) return;
    row.box->setProperty("greyed", greyed);
    QPalette palette = row.box->palette();
    palette.setColor(QPalette::Base, greyed ? palette.color(QPalette::Window)
                                            : QApplication::palette(row.box).color(QPalette::Base));
    palette.setColor(QPalette::Text, greyed ? palette.color(QPalette::Disabled, QPalette::Text)
                                            : QApplication::palette(row.box).color(QPalette::Text));
    row.box->setPalette(palette);
}

void PeakEditor::ApplyLive() {
    if (!form_.visible || !isEnabled()) return;
    ReadForm();
    if (!LiveApplyPeakEditor(project_, host_, form_)) return;
    ShowForm();
}

void PeakEditor::Refill() {
    if (!form_.visible) return;
    liveTimer_.stop();
    FillPeakEditor(project_, form_, project_.CurrentPeak);
    ShowForm();
}

bool PeakEditor::Open(int buttonIndex) {
    if (!OpenPeakEditor(project_, host_, form_, buttonIndex)) return false;
    Opened();
    return true;
}

bool PeakEditor::AddAndOpen() {
    if (!AddPeakAndEdit(project_, host_, form_)) return false;
    Opened();
    return true;
}

void PeakEditor::Opened() {
    liveTimer_.stop();
    SetAsymmetryEnabled(project_.Options.GLSum != 0);
    ShowForm();
    form_.invalidBox.clear();
    Report(Status::Ok());
}

void PeakEditor::HideEditor() {
    liveTimer_.stop();
    form_.visible = false;
    hide();
    SyncHighlight();
}

void PeakEditor::SetAsymmetryEnabled(bool enabled) { asymmetry_->setEnabled(enabled); }

void PeakEditor::BarMoved(ParameterRow& row, int position) {
    if (showing_) return;
    if (MoveScrollBar(form_, row.which, position)) {
        SetBoxText(row.box, form_.*row.text);
        liveTimer_.start();
    } else {
        const QSignalBlocker quiet(row.scroll);
        row.scroll->setValue((form_.*row.bar).value);
    }
}

void PeakEditor::FixToggled(ParameterRow& row, bool checked) {
    if (showing_) return;
    SetFixCheck(project_, form_, row.which, checked);
    MarkConstraints(row);
}

void PeakEditor::Report(const Status& status) {
    MarkInvalidBox(*this, form_.invalidBox);
    if (!status) host_.Show(status);
}

void PeakEditor::AcceptClicked() {
    liveTimer_.stop();
    ReadForm();
    const Status st = AcceptPeakEditor(project_, host_, form_);
    ShowForm();
    Report(st);
}

void PeakEditor::ReDrawClicked() {
    liveTimer_.stop();
    ReadForm();
    const Status st = RedrawPeakEditor(project_, host_, form_);
    ShowForm();
    Report(st);
}

void PeakEditor::CancelClicked() {
    liveTimer_.stop();
    CancelPeakEditor(project_, host_, form_);
    ShowForm();
}

void PeakEditor::DeleteClicked() {
    liveTimer_.stop();
    DeleteEditedPeak(project_, host_, form_);
    ShowForm();
}

void PeakEditor::OptimiseClicked(PeakParameter which) {
    liveTimer_.stop();
    ReadForm();
    const Status st = OptimiseEditedParameter(project_, host_, form_, which);
    ShowForm();
    Report(st);
}

void PeakEditor::OptimisePeakClicked() {
    liveTimer_.stop();
    ReadForm();
    const Status st = OptimiseEditedPeak(project_, host_, form_);
    ShowForm();
    Report(st);
}

void PeakEditor::ConstraintsClicked(PeakParameter kind) { constraints_.Open(kind); }

void PeakEditor::closeEvent(QCloseEvent* event) {
    if (!isEnabled()) {  // a fit is running
        event->ignore();
        return;
    }
    liveTimer_.stop();
    if (form_.visible) {
        ClosePeakEditor(project_, host_, form_);
        ShowForm();
    }
    event->accept();
}

}  // namespace molvera::ui
