#include "patterns/PatternDialog.h"

#include <chrono>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <utility>

#include "guard/Guard.h"
#include "messages/PlainTexts.h"
#include "platform/HelpTopics.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using guard::Guard;

namespace {

constexpr std::chrono::milliseconds kTypingPause(200);

}  // namespace

PatternDialog::PatternDialog(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                             const QString& name, QWidget* owner)
    : QDialog(owner), work_(work), texts_(texts) {
    setObjectName(name);
    messages::KeepTextsPlain(*this);
}

QLayout* PatternDialog::BuildButtons(std::function<void()> make) {
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setTextFormat(Qt::PlainText);
    lblState_->setWordWrap(true);
    cmdMake_ = new QPushButton(this);
    cmdMake_->setObjectName(u"cmdMake"_s);
    cmdMake_->setAutoDefault(false);
    connect(cmdMake_, &QPushButton::clicked, this,
            [this, make = std::move(make)] { Guard(objectName() + u": cmdMake_Click"_s, make); });
    auto* cancel = new QPushButton(texts_.GetText(MResourceTable::kTextCancel), this);
    cancel->setObjectName(u"cmdCancel"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &PatternDialog::reject);
    auto* layout = new QHBoxLayout;
    layout->addWidget(lblState_, 1);
    layout->addWidget(cmdMake_);
    layout->addWidget(cancel);
    return layout;
}

void PatternDialog::ExpandAfterTyping(std::function<void()> expand) {
    typing_.setSingleShot(true);
    typing_.setInterval(kTypingPause);
    connect(&typing_, &QTimer::timeout, this,
            [this, expand = std::move(expand)] { Guard(objectName() + u": Expand"_s, expand); });
}

void PatternDialog::ShowState(const QString& state, std::size_t count, int makeOne, int makeMany) {
    lblState_->setText(state);
    const QString number = QLocale().toString(static_cast<qulonglong>(count));
    cmdMake_->setEnabled(count > 0);
    cmdMake_->setText(count == 1 ? texts_.GetText(makeOne)
                                 : texts_.GetText(makeMany, {{u"n", number}}));
}

void PatternDialog::keyPressEvent(QKeyEvent* event) {
    if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpPatterns, this);
    }
    // Enter belongs to the field or cell.
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    }
}
