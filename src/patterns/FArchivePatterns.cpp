#include "patterns/FArchivePatterns.h"

#include <chrono>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "guard/Guard.h"
#include "messages/PlainTexts.h"
#include "patterns/PatternTexts.h"
#include "platform/HelpTopics.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using MResourceTable::Number;
using projectdb::ToQString;
using projectdb::ToUtf16;
using Text = MResourceTable::Patterns;

constexpr std::chrono::milliseconds kTypingPause(200);
constexpr int kShowProgressAfter = 500;  // milliseconds
constexpr int kWidest = 1000;            // of a pattern, characters
constexpr int kWidth = 70;               // average characters

QString Count(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace

FArchivePatterns::FArchivePatterns(projectdb::IProjectWork& work,
                                   const MResources::TextTable& texts, std::int32_t archive,
                                   const QString& name, patterns::Original original, QWidget* owner)
    : QDialog(owner),
      work_(work),
      texts_(texts),
      archive_(archive),
      original_(std::move(original)) {
    Build(name);
    typing_.setSingleShot(true);
    typing_.setInterval(kTypingPause);
    connect(&typing_, &QTimer::timeout, this,
            [this] { Guard(u"FArchivePatterns: Expand"_s, [this] { Expand(); }); });
    Expand();
}

void FArchivePatterns::Build(const QString& name) {
    setObjectName(u"FArchivePatterns"_s);
    messages::KeepTextsPlain(*this);
    setWindowTitle(texts_.GetText(Text::ArchivesTitle, {{u"name", name}}));
    auto* form = new QFormLayout;
    const auto line = [&](const QString& control, Text label) {
        auto* made = new QLineEdit(this);
        made->setObjectName(control);
        made->setMaxLength(kWidest);
        made->setMinimumWidth(kWidth * fontMetrics().averageCharWidth());
        made->setAccessibleName(texts_.GetText(label).remove(u'&'));
        connect(made, &QLineEdit::textChanged, this, [this] {
            typing_.start();
            ShowState();
        });
        form->addRow(texts_.GetText(label), made);
        return made;
    };
    txtName_ = line(u"txtName"_s, Text::Name);
    txtName_->setPlaceholderText(texts_.GetText(Text::ArchivesExample));
    txtFind_ = line(u"txtFindInCopies"_s, Text::FindInCopies);
    txtBy_ = line(u"txtBy"_s, Text::By);
    lstArchives_ = new QListWidget(this);
    lstArchives_->setObjectName(u"lstArchives"_s);
    lstArchives_->setAccessibleName(texts_.GetText(Text::NewArchives));
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setWordWrap(true);
    cmdMake_ = new QPushButton(this);
    cmdMake_->setObjectName(u"cmdMake"_s);
    cmdMake_->setAutoDefault(false);
    connect(cmdMake_, &QPushButton::clicked, this,
            [this] { Guard(u"FArchivePatterns: cmdMake_Click"_s, [this] { Make(); }); });
    auto* cancel = new QPushButton(texts_.GetText(Number::kTextCancel), this);
    cancel->setObjectName(u"cmdCancel"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &FArchivePatterns::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblState_, 1);
    buttons->addWidget(cmdMake_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(lstArchives_, 1);
    layout->addLayout(buttons);
    txtName_->setFocus();
}

void FArchivePatterns::keyPressEvent(QKeyEvent* event) {
    if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpPatterns, this);
    }
    // Enter belongs to the field.
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    }
}

void FArchivePatterns::Expand() {
    typing_.stop();
    plan_.Set({ToUtf16(txtName_->text()), ToUtf16(txtFind_->text()), ToUtf16(txtBy_->text())},
              original_);
    lstArchives_->clear();
    for (std::size_t copy = 0; copy < plan_.Count(); ++copy) {
        const QString problem = ProblemText(copy);
        QString text = ToQString(plan_.Name(copy));
        if (!problem.isEmpty()) text += u"  -  "_s + problem;
        auto* item = new QListWidgetItem(text, lstArchives_);
        if (!problem.isEmpty()) item->setForeground(Qt::red);
    }
    ShowState();
}

QString FArchivePatterns::ProblemText(std::size_t copy) const {
    switch (plan_.ProblemOf(copy)) {
        case patterns::ArchivePlan::Problem::None:
            return {};
        case patterns::ArchivePlan::Problem::NameEmpty:
            return texts_.GetText(Text::NameEmpty);
        case patterns::ArchivePlan::Problem::NameDouble:
            return texts_.GetText(Text::NameDouble);
        case patterns::ArchivePlan::Problem::TooLong:
            return texts_.GetText(Text::TooLong);
        case patterns::ArchivePlan::Problem::TrendsDouble:
            return texts_.GetText(Text::TrendsDouble);
    }
    return {};
}

QString FArchivePatterns::StateText() const {
    if (const auto& wrong = plan_.Wrong()) {
        const QLineEdit* field = wrong->isName ? txtName_ : txtBy_;
        return patterns::FaultText(wrong->fault, field->accessibleName(), texts_);
    }
    if (plan_.Count() == 0) return texts_.GetText(Text::Hint);
    if (plan_.ProblemCount() == 0) return {};
    return texts_.GetText(Text::ArchiveProblems, {{u"n", Count(plan_.ProblemCount())}});
}

void FArchivePatterns::ShowState() {
    lblState_->setText(StateText());
    const std::size_t count = typing_.isActive() ? 0 : plan_.Count();
    cmdMake_->setEnabled(count > 0 && plan_.ProblemCount() == 0);
    cmdMake_->setText(count == 1 ? texts_.GetText(Text::MakeOneArchive)
                                 : texts_.GetText(Text::MakeArchives, {{u"n", Count(count)}}));
}

void FArchivePatterns::Make() {
    QProgressDialog progress(texts_.GetText(Text::MakingArchives),
                             texts_.GetText(Number::kTextCancel), 0,
                             static_cast<int>(plan_.Count()), this);
    progress.setObjectName(u"dlgProgress"_s);
    progress.setWindowTitle(windowTitle());
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(kShowProgressAfter);
    const bool run = work_.RunStep([&] {
        // Others may have given one of the names meanwhile.
        const auto now = patterns::ReadOriginal(work_.Connection(), archive_);
        if (!now) return;
        original_ = *now;
        Expand();
        if (plan_.ProblemCount() > 0) return;
        made_ = patterns::CopyArchives(work_.Connection(), archive_, plan_, [&](std::size_t made) {
            progress.setValue(static_cast<int>(made));
            return !progress.wasCanceled();
        });
    });
    progress.reset();
    if (run && !made_.empty()) accept();
}
