#include "dialogs/TextDialog.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "dialogs/KeyFilter.h"
#include "messages/LabelEdges.h"
#include "messages/PlainTexts.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

constexpr int kCharactersShown = 72;

}  // namespace

TextDialog::TextDialog(const MResources::TextTable& texts, const QLineEdit& field,
                       const QString& language, const QList<LanguageText>& others, QWidget* owner)
    : QDialog(owner),
      texts_(texts),
      caption_(field.accessibleName()),
      others_(others),
      lblCount_(new QLabel(this)) {
    setObjectName(QStringLiteral("TextDialog"));
    messages::KeepTextsPlain(*this);
    setWindowTitle(caption_);
    auto* fields = new QGridLayout;
    txtText_ =
        AddField(*fields, QStringLiteral("txtText"), language, field.text(), field.maxLength());
    txtText_->setFont(field.font());
    txtText_->setMinimumWidth(txtText_->fontMetrics().averageCharWidth() * kCharactersShown);
    for (const LanguageText& other : others) {
        QLineEdit* made = AddField(*fields, QStringLiteral("txt") + other.column, other.language,
                                   other.text, other.longest);
        made->setPlaceholderText(texts.GetText(MResourceTable::kTextTableMissing));
        txtOthers_.append(made);
    }

    lblCount_->setObjectName(QStringLiteral("lblCount"));
    auto* ok = new QPushButton(texts.GetText(MResourceTable::kTextOk), this);
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(texts.GetText(MResourceTable::kTextCancel), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);
    connect(ok, &QPushButton::clicked, this, &TextDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &TextDialog::reject);
    connect(qApp, &QApplication::focusChanged, this, &TextDialog::ShowCount);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblCount_, 1);
    bottom->addWidget(ok);
    bottom->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(bottom);
    messages::AlignLabels(*this);
    ShowCount();
}

// The keyboard moves on while the fields go.
TextDialog::~TextDialog() {
    qApp->disconnect(this);
}

QLineEdit* TextDialog::AddField(QGridLayout& layout, const QString& name, const QString& language,
                                const QString& text, int longest) {
    auto* field = new QLineEdit(this);
    field->setObjectName(name);
    field->setMaxLength(longest);
    field->setText(text);
    MResources::RestrictInput(*field, MResources::kEveryKey, &texts_);
    connect(field, &QLineEdit::textChanged, this, &TextDialog::ShowCount);
    const int row = layout.rowCount();
    if (language.isEmpty()) {
        field->setAccessibleName(caption_);
        layout.addWidget(field, row, 0, 1, 2);
        return field;
    }
    field->setAccessibleName(caption_ + QStringLiteral(", ") + language);
    auto* label = new QLabel(language, this);
    label->setBuddy(field);
    layout.addWidget(label, row, 0);
    layout.addWidget(field, row, 1);
    return field;
}

QString TextDialog::Text() const {
    return txtText_->text();
}

QList<LanguageText> TextDialog::Others() const {
    QList<LanguageText> others = others_;
    for (qsizetype i = 0; i < others.size(); ++i) others[i].text = txtOthers_[i]->text();
    return others;
}

void TextDialog::ShowCount() {
    const QLineEdit* field = txtText_;
    for (const QLineEdit* other : txtOthers_) {
        if (other->hasFocus()) field = other;
    }
    lblCount_->setText(texts_.GetText(MResourceTable::kTextCharacterCount,
                                      {{u"n", QString::number(field->text().size())},
                                       {u"max", QString::number(field->maxLength())}}));
}
