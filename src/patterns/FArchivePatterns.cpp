#include "patterns/FArchivePatterns.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QStyle>
#include <QVBoxLayout>
#include <utility>

#include "guard/RowProgress.h"
#include "messages/LabelEdges.h"
#include "patterns/PatternTexts.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToQString;
using projectdb::ToUtf16;
using Text = MResourceTable::Patterns;

constexpr int kWidest = 1000;  // of a pattern, characters
constexpr int kWidth = 70;     // average characters

QString Count(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace

FArchivePatterns::FArchivePatterns(projectdb::IProjectWork& work,
                                   const MResources::TextTable& texts, std::int32_t archive,
                                   const QString& name, patterns::Original original, QWidget* owner)
    : PatternDialog(work, texts, u"FArchivePatterns"_s, owner),
      archive_(archive),
      original_(std::move(original)) {
    Build(name);
    ExpandAfterTyping([this] { Expand(); });
    Expand();
}

void FArchivePatterns::Build(const QString& name) {
    setWindowTitle(Texts().GetText(Text::ArchivesTitle, {{u"name", name}}));
    auto* form = new QFormLayout;
    const auto line = [&](const QString& control, Text label) {
        auto* made = new QLineEdit(this);
        made->setObjectName(control);
        made->setMaxLength(kWidest);
        made->setMinimumWidth(kWidth * fontMetrics().averageCharWidth());
        made->setAccessibleName(Texts().GetText(label).remove(u'&'));
        connect(made, &QLineEdit::textChanged, this, [this] {
            Typed();
            ShowStateNow();
        });
        form->addRow(Texts().GetText(label), made);
        return made;
    };
    txtName_ = line(u"txtName"_s, Text::Name);
    txtName_->setPlaceholderText(Texts().GetText(Text::ArchivesExample));
    txtFind_ = line(u"txtFindInCopies"_s, Text::FindInCopies);
    txtBy_ = line(u"txtBy"_s, Text::By);
    lstArchives_ = new QListWidget(this);
    lstArchives_->setObjectName(u"lstArchives"_s);
    lstArchives_->setAccessibleName(Texts().GetText(Text::NewArchives));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(lstArchives_, 1);
    layout->addLayout(BuildButtons([this] { Make(); }));
    messages::AlignLabels(*this);
    txtName_->setFocus();
}

void FArchivePatterns::Expand() {
    StopWaiting();
    plan_.Set({ToUtf16(txtName_->text()), ToUtf16(txtFind_->text()), ToUtf16(txtBy_->text())},
              original_);
    lstArchives_->clear();
    for (std::size_t copy = 0; copy < plan_.Count(); ++copy) {
        const QString problem = ProblemText(copy);
        QString text = ToQString(plan_.Name(copy));
        if (!problem.isEmpty()) text += u"  -  "_s + problem;
        auto* item = new QListWidgetItem(text, lstArchives_);
        if (problem.isEmpty()) continue;
        item->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this));
    }
    ShowStateNow();
}

QString FArchivePatterns::ProblemText(std::size_t copy) const {
    switch (plan_.ProblemOf(copy)) {
        case patterns::ArchivePlan::Problem::None:
            return {};
        case patterns::ArchivePlan::Problem::NameEmpty:
            return Texts().GetText(Text::NameEmpty);
        case patterns::ArchivePlan::Problem::NameDouble:
            return Texts().GetText(Text::NameDouble);
        case patterns::ArchivePlan::Problem::TooLong:
            return Texts().GetText(Text::TooLong);
        case patterns::ArchivePlan::Problem::TrendsDouble:
            return Texts().GetText(Text::TrendsDouble);
    }
    return {};
}

QString FArchivePatterns::StateText() const {
    if (const auto& wrong = plan_.Wrong()) {
        const QLineEdit* field = wrong->isName ? txtName_ : txtBy_;
        return patterns::FaultText(wrong->fault, field->accessibleName(), Texts());
    }
    if (plan_.Count() == 0) return Texts().GetText(Text::Hint);
    if (plan_.ProblemCount() == 0) return {};
    return Texts().GetText(Text::ArchiveProblems, {{u"n", Count(plan_.ProblemCount())}});
}

void FArchivePatterns::ShowStateNow() {
    const bool mayMake = !IsWaiting() && plan_.ProblemCount() == 0;
    ShowState(StateText(), mayMake ? plan_.Count() : 0, static_cast<int>(Text::MakeOneArchive),
              static_cast<int>(Text::MakeArchives));
}

void FArchivePatterns::Make() {
    const auto total = static_cast<int>(plan_.Count());
    std::optional<RowProgress> progress;
    progress.emplace(Texts(), static_cast<int>(Text::MakingArchives), this);
    const bool run = Work().RunStep([&] {
        // Others may have given one of the names meanwhile.
        const auto now = patterns::ReadOriginal(Work().Connection(), archive_);
        if (!now) return;
        original_ = *now;
        Expand();
        if (plan_.ProblemCount() > 0) return;
        made_ = patterns::CopyArchives(Work().Connection(), archive_, plan_, [&](std::size_t made) {
            return progress->Function()(static_cast<int>(made), total);
        });
    });
    progress.reset();
    if (run && !made_.empty()) accept();
}
