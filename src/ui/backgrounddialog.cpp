#include "ui/backgrounddialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "session/backgroundoptimise.h"
#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
namespace {

void SetChoice(QComboBox* box, const std::string& text) {
    const int index = box->findText(FromLatin1(text));
    if (index >= 0) box->setCurrentIndex(index);
    box->setEditText(FromLatin1(text));
}

}  // namespace

BackgroundDialog::BackgroundDialog(Project& project, QtHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window), project_(project), host_(host) {
    setObjectName(QStringLiteral("backgroundDialog"));
    setWindowTitle(QStringLiteral("Background"));

    auto* boundary = new QGroupBox(QStringLiteral("Boundary"), this);
    auto* ends = new QFormLayout(boundary);
    lowBE_ = Box("lowBEText");
    highBE_ = Box("highBEText");
    ends->addRow(QStringLiteral("Low BE"), lowBE_);
    ends->addRow(QStringLiteral("High BE"), highBE_);

    auto* choices = new QFormLayout;
    averagePoints_ =
        Choice("averagePoints", {QStringLiteral("None"), QStringLiteral("3"), QStringLiteral("5"),
                                 QStringLiteral("7"), QStringLiteral("9")});
    backgroundType_ = Choice("backgroundType", {QStringLiteral("Shirley"), QStringLiteral("Linear"),
                                                QStringLiteral("Tougaard")});
    choices->addRow(QStringLiteral("No. of Ave. Pts at end-points"), averagePoints_);
    choices->addRow(QStringLiteral("Background Type"), backgroundType_);

    auto* shirley = new QGroupBox(QStringLiteral("Shirley+Linear (0 for Shir.)"), this);
    auto* shirleyRow = new QHBoxLayout(shirley);
    shirleySlope_ = Box("shirleySlopeText");
    auto* shirleySearch = new QPushButton(QStringLiteral("Optimise"), shirley);
    shirleySearch->setObjectName(QStringLiteral("shirleySlopeSearchButton"));
    auto* slopeLabel = new QLabel(QStringLiteral("Slope"), shirley);
    shirleyRow->addWidget(slopeLabel);
    shirleyRow->addWidget(shirleySlope_);
    shirleyRow->addWidget(shirleySearch);
    shirleyRow->addStretch();

    auto* tougaard = new QGroupBox(QStringLiteral("For Tougaard only"), this);
    auto* tougaardRow = new QHBoxLayout(tougaard);
    tougaardB1_ = Box("tougaardB1Text");
    auto* tougaardSearch = new QPushButton(QStringLiteral("Optimise"), tougaard);
    tougaardSearch->setObjectName(QStringLiteral("tougaardB1SearchButton"));
    auto* b1Label = new QLabel(QStringLiteral("B1"), tougaard);
    b1Label->setMinimumWidth(slopeLabel->sizeHint().width());  // the two boxes in line
    tougaardRow->addWidget(b1Label);
    tougaardRow->addWidget(tougaardB1_);
    tougaardRow->addWidget(tougaardSearch);
    tougaardRow->addStretch();

    auto* bottom = new QHBoxLayout;
    area_ = Box("areaText");
    area_->setReadOnly(true);
    auto* accept = new QPushButton(QStringLiteral("Accept"), this);
    accept->setObjectName(QStringLiteral("acceptButton"));
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("closeButton"));
    bottom->addWidget(new QLabel(QStringLiteral("Area (I*eV)"), this));
    bottom->addWidget(area_);
    bottom->addStretch();
    bottom->addWidget(accept);
    bottom->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(boundary);
    layout->addLayout(choices);
    layout->addWidget(shirley);
    layout->addWidget(tougaard);
    layout->addLayout(bottom);

    connect(accept, &QPushButton::clicked, this, &BackgroundDialog::AcceptClicked);
    connect(close, &QPushButton::clicked, this, &BackgroundDialog::CloseClicked);
    connect(shirleySearch, &QPushButton::clicked, this,
            &BackgroundDialog::ShirleySlopeSearchClicked);
    connect(tougaardSearch, &QPushButton::clicked, this,
            &BackgroundDialog::TougaardB1SearchClicked);
    ShowForm();
}

QLineEdit* BackgroundDialog::Box(const char* name) {
    return NamedBox(this, QLatin1String(name), 120);
}

QComboBox* BackgroundDialog::Choice(const char* name, const QStringList& items) {
    // Editable, as the boxes are: a typed text that is not an item is refused by Accept.
    auto* box = new QComboBox(this);
    box->setFixedWidth(120);
    box->setObjectName(QLatin1String(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(items);
    return box;
}

void BackgroundDialog::ShowForm() {
    lowBE_->setText(FromLatin1(form_.lowBEText));
    highBE_->setText(FromLatin1(form_.highBEText));
    SetChoice(averagePoints_, form_.averagePoints);
    SetChoice(backgroundType_, form_.backgroundType);
    shirleySlope_->setText(FromLatin1(form_.shirleySlopeText));
    tougaardB1_->setText(FromLatin1(form_.tougaardB1Text));
    area_->setText(FromLatin1(form_.areaText));
    for (QLineEdit* box : {lowBE_, highBE_, shirleySlope_, tougaardB1_, area_})
        box->setCursorPosition(0);
    if (!form_.caption.empty()) setWindowTitle(FromLatin1(form_.caption));
    ShowOrHide(*this, form_.visible);
}

void BackgroundDialog::ReadForm() {
    form_.lowBEText = ToLatin1(lowBE_->text());
    form_.highBEText = ToLatin1(highBE_->text());
    form_.averagePoints = ToLatin1(averagePoints_->currentText());
    form_.backgroundType = ToLatin1(backgroundType_->currentText());
    form_.shirleySlopeText = ToLatin1(shirleySlope_->text());
    form_.tougaardB1Text = ToLatin1(tougaardB1_->text());
}

void BackgroundDialog::Open() {
    ShowBackgroundDialog(project_, form_);
    form_.invalidBox.clear();
    MarkInvalidBox(*this, form_.invalidBox);
    ShowForm();
}

void BackgroundDialog::Run(void (*handler)(Project&, SessionHost&, BackgroundForm&)) {
    if (running_) return;
    running_ = true;
    ReadForm();
    // Every trial shows in the boxes, and a redraw asked for since the last yield is
    // painted at once (the plot otherwise paints once per screen refresh).
    int redraws = host_.RedrawCount();
    host_.beforeYield = [this, &redraws] {
        shirleySlope_->setText(FromLatin1(form_.shirleySlopeText));
        tougaardB1_->setText(FromLatin1(form_.tougaardB1Text));
        if (host_.RedrawCount() != redraws && repaintPlot) repaintPlot();
        redraws = host_.RedrawCount();
    };
    handler(project_, host_, form_);
    host_.beforeYield = nullptr;
    running_ = false;
    ShowForm();
}

bool BackgroundDialog::NumbersChecked() {
    ReadForm();
    const Status st = CheckBackgroundNumbers(form_);
    MarkInvalidBox(*this, form_.invalidBox);
    if (!st) host_.Show(st);
    return st.ok();
}

void BackgroundDialog::AcceptClicked() {
    if (!NumbersChecked()) return;
    // Its other refusals beep.
    Run([](Project& p, SessionHost& h, BackgroundForm& f) { (void)AcceptBackground(p, h, f); });
}

void BackgroundDialog::CloseClicked() {
    CloseBackgroundDialog(form_);
    ShowForm();
}

void BackgroundDialog::ShirleySlopeSearchClicked() {
    if (!NumbersChecked()) return;
    Run([](Project& p, SessionHost& h, BackgroundForm& f) { OptimiseShirleySlope(p, h, f); });
}

void BackgroundDialog::TougaardB1SearchClicked() {
    if (NumbersChecked()) Run(&OptimiseTougaardBackground);
}

void BackgroundDialog::closeEvent(QCloseEvent* event) {
    // Closing the window is the Close button: hidden, not destroyed.
    CloseBackgroundDialog(form_);
    event->accept();
}

}  // namespace molvera::ui
