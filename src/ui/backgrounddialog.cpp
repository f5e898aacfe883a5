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
    setObjectName(QStringLiteral("BGForm"));
    setWindowTitle(QStringLiteral("Background"));

    auto* boundary = new QGroupBox(QStringLiteral("Boundary"), this);
    auto* ends = new QFormLayout(boundary);
    lbe_ = Box("LBE");
    hbe_ = Box("HBE");
    ends->addRow(QStringLiteral("Low BE"), lbe_);
    ends->addRow(QStringLiteral("High BE"), hbe_);

    auto* choices = new QFormLayout;
    averPt_ = Choice("AverPt", {QStringLiteral("None"), QStringLiteral("3"), QStringLiteral("5"),
                                QStringLiteral("7"), QStringLiteral("9")});
    bg_ = Choice("BG",
                 {QStringLiteral("Shirley"), QStringLiteral("Linear"), QStringLiteral("Tougaard")});
    choices->addRow(QStringLiteral("No. of Ave. Pts at end-points"), averPt_);
    choices->addRow(QStringLiteral("Backgound Type"), bg_);

    auto* shirley = new QGroupBox(QStringLiteral("Shirley+Linear (0 for Shir.)"), this);
    auto* shirleyRow = new QHBoxLayout(shirley);
    slope_ = Box("ShirleySlope");
    auto* shirleyOpt = new QPushButton(QStringLiteral("Optimise"), shirley);
    shirleyOpt->setObjectName(QStringLiteral("Command1"));
    auto* slopeLabel = new QLabel(QStringLiteral("Slope"), shirley);
    shirleyRow->addWidget(slopeLabel);
    shirleyRow->addWidget(slope_);
    shirleyRow->addWidget(shirleyOpt);
    shirleyRow->addStretch();

    auto* tougaard = new QGroupBox(QStringLiteral("For Tougaard only"), this);
    auto* tougaardRow = new QHBoxLayout(tougaard);
    touB1_ = Box("TouB1");
    auto* tougaardOpt = new QPushButton(QStringLiteral("Optimise"), tougaard);
    tougaardOpt->setObjectName(QStringLiteral("Toug_Opt"));
    auto* b1Label = new QLabel(QStringLiteral("B1"), tougaard);
    b1Label->setMinimumWidth(slopeLabel->sizeHint().width());  // the two boxes in line
    tougaardRow->addWidget(b1Label);
    tougaardRow->addWidget(touB1_);
    tougaardRow->addWidget(tougaardOpt);
    tougaardRow->addStretch();

    auto* bottom = new QHBoxLayout;
    area_ = Box("Area");
    area_->setReadOnly(true);
    auto* accept = new QPushButton(QStringLiteral("Accept"), this);
    accept->setObjectName(QStringLiteral("BGAccept"));
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("BGClose"));
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
    connect(shirleyOpt, &QPushButton::clicked, this, &BackgroundDialog::ShirleySlopeSearchClicked);
    connect(tougaardOpt, &QPushButton::clicked, this, &BackgroundDialog::TougaardB1SearchClicked);
    ShowForm();
}

QLineEdit* BackgroundDialog::Box(const char* name) { return NamedBox(this, QLatin1String(name), 120); }

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
    lbe_->setText(FromLatin1(form_.lowBEText));
    hbe_->setText(FromLatin1(form_.highBEText));
    SetChoice(averPt_, form_.averagePoints);
    SetChoice(bg_, form_.backgroundType);
    slope_->setText(FromLatin1(form_.shirleySlopeText));
    touB1_->setText(FromLatin1(form_.tougaardB1Text));
    area_->setText(FromLatin1(form_.areaText));
    for (QLineEdit* box : {lbe_, hbe_, slope_, touB1_, area_}) box->setCursorPosition(0);
    if (!form_.caption.empty()) setWindowTitle(FromLatin1(form_.caption));
    ShowOrHide(*this, form_.visible);
}

void BackgroundDialog::ReadForm() {
    form_.lowBEText = ToLatin1(lbe_->text());
    form_.highBEText = ToLatin1(hbe_->text());
    form_.averagePoints = ToLatin1(averPt_->currentText());
    form_.backgroundType = ToLatin1(bg_->currentText());
    form_.shirleySlopeText = ToLatin1(slope_->text());
    form_.tougaardB1Text = ToLatin1(touB1_->text());
}

void BackgroundDialog::Open() {
    ShowBackgroundDialog(project_, form_);
    ShowForm();
}

void BackgroundDialog::Run(void (*handler)(Project&, Host&, BackgroundForm&)) {
    if (running_) return;
    running_ = true;
    ReadForm();
    // Every trial shows in the boxes, and a redraw asked for since the last yield is
    // painted at once (the plot otherwise paints once per screen refresh).
    int redraws = host_.RedrawCount();
    host_.beforeYield = [this, &redraws] {
        slope_->setText(FromLatin1(form_.shirleySlopeText));
        touB1_->setText(FromLatin1(form_.tougaardB1Text));
        if (host_.RedrawCount() != redraws && repaintPlot) repaintPlot();
        redraws = host_.RedrawCount();
    };
    handler(project_, host_, form_);
    host_.beforeYield = nullptr;
    running_ = false;
    ShowForm();
}

void BackgroundDialog::AcceptClicked() {
    Run([](Project& p, Host& h, BackgroundForm& f) { (void)AcceptBackground(p, h, f); });
}

void BackgroundDialog::CloseClicked() {
    CloseBackgroundDialog(form_);
    ShowForm();
}

void BackgroundDialog::ShirleySlopeSearchClicked() {
    Run(&OptimiseShirleySlope);
}

void BackgroundDialog::TougaardB1SearchClicked() {
    Run(&OptimiseTougaardBackground);
}

void BackgroundDialog::closeEvent(QCloseEvent* event) {
    // Closing the window is the Close button: hidden, not destroyed.
    CloseBackgroundDialog(form_);
    event->accept();
}

}  // namespace molvera::ui
