#include "ui/constraintdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/qthost.h"
#include "ui/widgets.h"

namespace molvera::ui {
ConstraintDialog::ConstraintDialog(Project& project, QtHost& host, QWidget* parent)
    : QWidget(parent, Qt::Window), project_(project), host_(host) {
    setObjectName(QStringLiteral("constraintDialog"));

    auto* heading = new QHBoxLayout;
    heading->addWidget(new QLabel(QStringLiteral("Peak"), this));
    peakLabel_ = new QLabel(this);
    peakLabel_->setObjectName(QStringLiteral("peakLabel"));
    heading->addWidget(peakLabel_);
    heading->addStretch();

    auto* relation = new QGroupBox(QStringLiteral("Relation with another peak"), this);
    auto* relationLine = new QHBoxLayout(relation);
    useRelation_ = new QCheckBox(QStringLiteral("Use"), relation);
    useRelation_->setObjectName(QStringLiteral("useRelation"));
    referencePeak_ = NamedBox(relation, QStringLiteral("referencePeakText"), 50);
    operation_ = new QComboBox(relation);
    operation_->setObjectName(QStringLiteral("operation"));
    operation_->setEditable(true);
    operation_->addItems(
        {QStringLiteral("+"), QStringLiteral("-"), QStringLiteral("*"), QStringLiteral("/")});
    QFont operationFont = operation_->font();
    operationFont.setPointSize(11);
    operation_->setFont(operationFont);
    operation_->setFixedWidth(55);
    argument_ = NamedBox(relation, QStringLiteral("argumentText"), 80);
    relationLine->addWidget(useRelation_);
    relationLine->addSpacing(12);
    relationLine->addWidget(new QLabel(QStringLiteral("= Peak"), relation));
    relationLine->addWidget(referencePeak_);
    relationLine->addWidget(operation_);
    relationLine->addWidget(argument_);
    relationLine->addStretch();

    auto* limits = new QGroupBox(QStringLiteral("Limits of Search Range"), this);
    auto* limitLine = new QHBoxLayout(limits);
    useLimits_ = new QCheckBox(QStringLiteral("Use"), limits);
    useLimits_->setObjectName(QStringLiteral("useLimits"));
    lowLimit_ = NamedBox(limits, QStringLiteral("lowLimitText"), 90);
    highLimit_ = NamedBox(limits, QStringLiteral("highLimitText"), 90);
    limitLine->addWidget(useLimits_);
    limitLine->addSpacing(12);
    limitLine->addWidget(new QLabel(QStringLiteral("Low"), limits));
    limitLine->addWidget(lowLimit_);
    limitLine->addSpacing(12);
    limitLine->addWidget(new QLabel(QStringLiteral("High"), limits));
    limitLine->addWidget(highLimit_);
    limitLine->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    QPushButton* ok = NamedButton(this, QStringLiteral("OK"), QStringLiteral("okButton"));
    QPushButton* cancel =
        NamedButton(this, QStringLiteral("Cancel"), QStringLiteral("cancelButton"));
    buttons->addWidget(ok);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(heading);
    layout->addWidget(relation);
    layout->addWidget(limits);
    layout->addLayout(buttons);

    connect(ok, &QPushButton::clicked, this, &ConstraintDialog::OkClicked);
    connect(cancel, &QPushButton::clicked, this, &ConstraintDialog::CancelClicked);
    ShowForm();
}

void ConstraintDialog::ShowForm() {
    setWindowTitle(FromLatin1(form_.caption));
    peakLabel_->setText(FromLatin1(form_.peakLabel));
    useRelation_->setChecked(form_.useRelation);
    SetBoxText(referencePeak_, form_.referencePeakText);
    operation_->setCurrentText(FromLatin1(form_.operation));
    SetBoxText(argument_, form_.argumentText);
    useLimits_->setChecked(form_.useLimits);
    SetBoxText(lowLimit_, form_.lowLimitText);
    SetBoxText(highLimit_, form_.highLimitText);
    ShowOrHide(*this, form_.visible);
}

void ConstraintDialog::ReadForm() {
    form_.useRelation = useRelation_->isChecked();
    form_.referencePeakText = ToLatin1(referencePeak_->text());
    form_.operation = ToLatin1(operation_->currentText());
    form_.argumentText = ToLatin1(argument_->text());
    form_.useLimits = useLimits_->isChecked();
    form_.lowLimitText = ToLatin1(lowLimit_->text());
    form_.highLimitText = ToLatin1(highLimit_->text());
}

void ConstraintDialog::Open(PeakParameter kind) {
    OpenConstraint(project_, form_, kind);
    form_.invalidBox.clear();
    MarkInvalidBox(*this, form_.invalidBox);
    ShowForm();
}

void ConstraintDialog::HideDialog() {
    form_.visible = false;
    hide();
}

void ConstraintDialog::OkClicked() {
    ReadForm();
    const Status st = AcceptConstraint(project_, form_);
    MarkInvalidBox(*this, form_.invalidBox);
    // The dialog keeps the user's entries after a refusal.
    if (!st) {
        host_.Show(st);
        return;
    }
    ShowForm();
}

void ConstraintDialog::CancelClicked() { HideDialog(); }

}  // namespace molvera::ui
