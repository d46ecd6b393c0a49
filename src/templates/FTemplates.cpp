#include "templates/FTemplates.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "commandset/CommandSet.h"
#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using Text = MResourceTable::Templates;

constexpr int kWidth = 70;   // average characters
constexpr int kHeight = 18;  // lines

}  // namespace

FTemplates::FTemplates(const MResources::TextTable& texts, templates::TemplateFile& file,
                       templates::Kind kind, const QString& chosen, std::function<void()> showHelp,
                       QWidget* owner)
    : QDialog(owner),
      texts_(texts),
      file_(file),
      kind_(kind),
      chosen_(chosen),
      showHelp_(std::move(showHelp)) {
    setObjectName(u"FTemplates"_s);
    messages::KeepTextsPlain(*this);
    setWindowTitle(
        texts_.GetText(kind == templates::Kind::Archive ? Text::OfArchives : Text::OfTrends));
    Build();
    Fill(chosen_);
}

void FTemplates::Build() {
    const auto button = [this](const QString& name, const QString& text,
                               void (FTemplates::*run)()) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, run);
        return made;
    };
    auto* hint = new QLabel(
        texts_.GetText(Text::Hint,
                       {{u"new", commandset::KeyText(commandset::Id::NewTrend, texts_)},
                        {u"keep", commandset::KeyText(commandset::Id::KeepTemplate, texts_)}}),
        this);
    hint->setObjectName(u"lblHint"_s);
    hint->setWordWrap(true);
    lstTemplates_ = new QListWidget(this);
    lstTemplates_->setObjectName(u"lstTemplates"_s);
    lstTemplates_->setAccessibleName(windowTitle());
    connect(lstTemplates_, &QListWidget::currentRowChanged, this, &FTemplates::ShowState);
    connect(lstTemplates_, &QListWidget::itemDoubleClicked, this, &FTemplates::Use);
    auto* use = button(u"cmdUse"_s, texts_.GetText(Text::UseForNew), &FTemplates::Use);
    use->setDefault(true);
    cmdRename_ = button(u"cmdRename"_s, texts_.GetText(Text::Rename), &FTemplates::Rename);
    cmdDelete_ = button(u"cmdDelete"_s, texts_.GetText(Text::Delete), &FTemplates::Remove);
    auto* cancel =
        button(u"cmdCancel"_s, texts_.GetText(MResourceTable::kTextCancel), &FTemplates::reject);
    auto* buttons = new QVBoxLayout;
    for (QPushButton* each : {use, cmdRename_, cmdDelete_, cancel}) buttons->addWidget(each);
    buttons->addStretch();
    auto* middle = new QHBoxLayout;
    middle->addWidget(lstTemplates_, 1);
    middle->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(middle, 1);
    layout->addWidget(hint);
    resize(kWidth * fontMetrics().averageCharWidth(), kHeight * fontMetrics().lineSpacing());
    lstTemplates_->setFocus();
}

void FTemplates::Fill(const QString& current) {
    lstTemplates_->clear();
    lstTemplates_->addItem(texts_.GetText(Text::None));
    lstTemplates_->addItems(file_.Names(kind_));
    const qsizetype at = current.isEmpty() ? -1 : file_.Names(kind_).indexOf(current);
    lstTemplates_->setCurrentRow(static_cast<int>(at) + 1);
    for (int row = 0; row < lstTemplates_->count(); ++row) {
        QListWidgetItem& item = *lstTemplates_->item(row);
        QFont font = item.font();
        font.setBold(row == 0 ? chosen_.isEmpty() : item.text() == chosen_);
        item.setFont(font);
    }
    ShowState();
}

QString FTemplates::Current() const {
    const int row = lstTemplates_->currentRow();
    return row <= 0 ? QString() : lstTemplates_->item(row)->text();
}

void FTemplates::ShowState() {
    cmdRename_->setEnabled(!Current().isEmpty());
    cmdDelete_->setEnabled(!Current().isEmpty());
}

void FTemplates::Use() {
    chosen_ = Current();
    accept();
}

bool FTemplates::Tell(const QString& failure) {
    if (failure.isEmpty()) return true;
    messages::ShowMessage(texts_.GetText(Text::NotWritten, {{u"cause", failure}}),
                          messages::MessageButtons::Ok, windowTitle(), this);
    return false;
}

void FTemplates::Rename() {
    const QString old = Current();
    if (old.isEmpty()) return;
    bool isGiven = false;
    const QString name = QInputDialog::getText(this, windowTitle(), texts_.GetText(Text::Name),
                                               QLineEdit::Normal, old, &isGiven)
                             .trimmed();
    if (!isGiven || name.isEmpty() || name == old) return;
    if (file_.Names(kind_).contains(name) &&
        messages::ShowMessage(texts_.GetText(Text::Replace, {{u"name", name}}),
                              messages::MessageButtons::OkCancelDefaultCancel, windowTitle(),
                              this) != messages::MessageResult::Ok) {
        return;
    }
    if (!Tell(file_.Rename(kind_, old, name))) return;
    if (chosen_ == old) chosen_ = name;
    Fill(name);
}

void FTemplates::Remove() {
    const QString name = Current();
    if (name.isEmpty() || !Tell(file_.Remove(kind_, name))) return;
    if (chosen_ == name) chosen_.clear();
    Fill({});
}

void FTemplates::keyPressEvent(QKeyEvent* event) {
    if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) return showHelp_();
    if (event->key() == Qt::Key_F2) return Rename();
    if (event->key() == Qt::Key_Delete) return Remove();
    QDialog::keyPressEvent(event);
}
