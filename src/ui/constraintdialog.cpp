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

#include "ui/widgets.h"

namespace molvera::ui {
ConstraintDialog::ConstraintDialog(Project& project, Host& host, QWidget* parent)
    : QWidget(parent, Qt::Window), project_(project), host_(host) {
    setObjectName(QStringLiteral("CntForm"));

    auto* heading = new QHBoxLayout;
    heading->addWidget(new QLabel(QStringLiteral("Peak"), this));
    peak_ = new QLabel(this);
    peak_->setObjectName(QStringLiteral("PeakLabel"));
    heading->addWidget(peak_);
    heading->addStretch();

    auto* relation = new QGroupBox(QStringLiteral("Relation with another peak"), this);
    auto* relationLine = new QHBoxLayout(relation);
    use_ = new QCheckBox(QStringLiteral("Use"), relation);
    use_->setObjectName(QStringLiteral("Use"));
    refPeak_ = NamedBox(relation, QStringLiteral("RefPeak"), 50);
    argType_ = new QComboBox(relation);
    argType_->setObjectName(QStringLiteral("ArgType"));
    argType_->setEditable(true);
    argType_->addItems({QStringLiteral("+"), QStringLiteral("-"), QStringLiteral("*"), QStringLiteral("/")});
    QFont operationFont = argType_->font();
    operationFont.setPointSize(11);
    argType_->setFont(operationFont);
    argType_->setFixedWidth(55);
    arg_ = NamedBox(relation, QStringLiteral("Arg"), 80);
    relationLine->addWidget(use_);
    relationLine->addSpacing(12);
    relationLine->addWidget(new QLabel(QStringLiteral("= Peak"), relation));
    relationLine->addWidget(refPeak_);
    relationLine->addWidget(argType_);
    relationLine->addWidget(arg_);
    relationLine->addStretch();

    auto* limits = new QGroupBox(QStringLiteral("Limits of Search Range"), this);
    auto* limitLine = new QHBoxLayout(limits);
    range_ = new QCheckBox(QStringLiteral("Use"), limits);
    range_->setObjectName(QStringLiteral("Range"));
    low_ = NamedBox(limits, QStringLiteral("Low"), 90);
    high_ = NamedBox(limits, QStringLiteral("High"), 90);
    limitLine->addWidget(range_);
    limitLine->addSpacing(12);
    limitLine->addWidget(new QLabel(QStringLiteral("Low"), limits));
    limitLine->addWidget(low_);
    limitLine->addSpacing(12);
    limitLine->addWidget(new QLabel(QStringLiteral("High"), limits));
    limitLine->addWidget(high_);
    limitLine->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    QPushButton* ok = NamedButton(this, QStringLiteral("OK"), QStringLiteral("CntOK"));
    QPushButton* cancel = NamedButton(this, QStringLiteral("Cancel"), QStringLiteral("CntCancel"));
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
    setWindowTitle(FromLatin1(form_.Caption));
    peak_->setText(FromLatin1(form_.PeakLabel));
    use_->setChecked(form_.Use);
    SetBoxText(refPeak_, form_.RefPeak);
    argType_->setCurrentText(FromLatin1(form_.ArgType));
    SetBoxText(arg_, form_.Arg);
    range_->setChecked(form_.Range);
    SetBoxText(low_, form_.Low);
    SetBoxText(high_, form_.High);
    ShowOrHide(*this, form_.Visible);
}

void ConstraintDialog::ReadForm() {
    form_.Use = use_->isChecked();
    form_.RefPeak = ToLatin1(refPeak_->text());
    form_.ArgType = ToLatin1(argType_->currentText());
    form_.Arg = ToLatin1(arg_->text());
    form_.Range = range_->isChecked();
    form_.Low = ToLatin1(low_->text());
    form_.High = ToLatin1(high_->text());
}

void ConstraintDialog::Open(PeakParameter kind) {
    OpenConstraint(project_, form_, kind);
    ShowForm();
}

void ConstraintDialog::HideDialog() {
    form_.Visible = false;
    hide();
}

void ConstraintDialog::OkClicked() {
    ReadForm();
    const Status st = ConstraintOK(project_, form_);
    // The dialog keeps the user's entries after a refusal.
    if (!st) {
        host_.Message(st.message());
        return;
    }
    ShowForm();
}

void ConstraintDialog::CancelClicked() { HideDialog(); }

}  // namespace molvera::ui
