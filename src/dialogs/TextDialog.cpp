#include "dialogs/TextDialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialogs/KeyFilter.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

constexpr int kCharactersShown = 72;

}  // namespace

TextDialog::TextDialog(const MResources::TextTable& texts, const QLineEdit& field, QWidget* owner)
    : QDialog(owner), texts_(texts), txtText_(new QLineEdit(this)), lblCount_(new QLabel(this)) {
    setObjectName(QStringLiteral("TextDialog"));
    setWindowTitle(field.accessibleName());
    txtText_->setObjectName(QStringLiteral("txtText"));
    txtText_->setAccessibleName(field.accessibleName());
    txtText_->setFont(field.font());
    txtText_->setMaxLength(field.maxLength());
    txtText_->setText(field.text());
    txtText_->setMinimumWidth(txtText_->fontMetrics().averageCharWidth() * kCharactersShown);
    MResources::RestrictInput(*txtText_, MResources::kEveryKey, &texts);

    lblCount_->setObjectName(QStringLiteral("lblCount"));
    auto* ok = new QPushButton(texts.GetText(MResourceTable::kTextOk), this);
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(texts.GetText(MResourceTable::kTextCancel), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);
    connect(ok, &QPushButton::clicked, this, &TextDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &TextDialog::reject);
    connect(txtText_, &QLineEdit::textChanged, this, &TextDialog::txtText_Change);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblCount_, 1);
    bottom->addWidget(ok);
    bottom->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(txtText_);
    layout->addLayout(bottom);
    txtText_Change();
}

QString TextDialog::Text() const {
    return txtText_->text();
}

void TextDialog::txtText_Change() {
    lblCount_->setText(texts_.GetText(MResourceTable::kTextCharacterCount,
                                      {{u"n", QString::number(txtText_->text().size())},
                                       {u"max", QString::number(txtText_->maxLength())}}));
}
