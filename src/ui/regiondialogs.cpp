#include "ui/regiondialogs.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {

RegionShiftDialog::RegionShiftDialog(Project& project, QtHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window), project_(project), host_(host), shiftText_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("regionShiftDialog"));
    setWindowTitle(QStringLiteral("Region Shift"));
    shiftText_->setObjectName(QStringLiteral("shiftText"));
    shiftText_->setMinimumWidth(100);
    auto* accept = new QPushButton(QStringLiteral("Accept"), this);
    accept->setObjectName(QStringLiteral("acceptButton"));
    auto* row = new QHBoxLayout(this);
    row->addWidget(new QLabel(QStringLiteral("Shift"), this));
    row->addWidget(shiftText_);
    row->addWidget(new QLabel(QStringLiteral("eV"), this));
    row->addWidget(accept);
    connect(accept, &QPushButton::clicked, this, &RegionShiftDialog::AcceptClicked);
}

void RegionShiftDialog::ShowForm() {
    shiftText_->setText(FromLatin1(form_.shiftText));
    ShowOrHide(*this, form_.visible);
}

void RegionShiftDialog::Open() {
    OpenRegionShift(project_, form_);
    ShowForm();
}

void RegionShiftDialog::AcceptClicked() {
    form_.shiftText = ToLatin1(shiftText_->text());
    AcceptRegionShift(project_, host_, form_);
    ShowForm();
}

void RegionShiftDialog::closeEvent(QCloseEvent* event) {
    form_.visible = false;
    event->accept();
}

RegionCaptionDialog::RegionCaptionDialog(Project& project, QtHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window),
      project_(project),
      host_(host),
      captionText_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("regionCaptionDialog"));
    setWindowTitle(QStringLiteral("Region Caption"));
    captionText_->setObjectName(QStringLiteral("captionText"));
    captionText_->setMinimumWidth(220);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("okButton"));
    auto* row = new QHBoxLayout(this);
    row->addWidget(captionText_);
    row->addWidget(ok);
    connect(ok, &QPushButton::clicked, this, &RegionCaptionDialog::OkClicked);
}

void RegionCaptionDialog::ShowForm() {
    captionText_->setText(FromLatin1(form_.captionText));
    ShowOrHide(*this, form_.visible);
}

void RegionCaptionDialog::Open() {
    OpenRegionCaption(project_, form_);
    ShowForm();
}

void RegionCaptionDialog::OkClicked() {
    form_.captionText = ToLatin1(captionText_->text());
    AcceptRegionCaption(project_, host_, form_);
    ShowForm();
}

void RegionCaptionDialog::closeEvent(QCloseEvent* event) {
    form_.visible = false;
    event->accept();
}

}  // namespace molvera::ui
