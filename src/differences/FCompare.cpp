#include "differences/FCompare.h"

#include <chrono>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>

#include "commandset/CommandSet.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "platform/HelpTopics.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using differences::DifferenceModel;
using guard::Guard;
using Text = MResourceTable::Compare;

constexpr std::chrono::milliseconds kTypingPause(150);
constexpr std::size_t kRefusalsTold = 10;
constexpr Text kKindTexts[] = {Text::Changed, Text::OnlyHere, Text::OnlyThere};

}  // namespace

FCompare::FCompare(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                   QWidget* owner)
    : QDialog(owner), work_(work), texts_(texts), model_(texts) {
    Build();
    typing_.setSingleShot(true);
    typing_.setInterval(kTypingPause);
    connect(&typing_, &QTimer::timeout, this, &FCompare::Filter);
    connect(&service_, &differences::CompareService::Progress, this, [this](qulonglong rows) {
        if (!IsComparing()) return;
        lblState_->setText(
            texts_.GetText(Text::ComparingRows, {{u"n", differences::NumberText(rows, texts_)}}));
    });
    connect(&service_, &differences::CompareService::Done, this, &FCompare::TakeResult);
}

void FCompare::Open(const QString& file, const QString& name) {
    file_ = file;
    told_.clear();
    const QString here =
        QFileInfo(projectdb::ToQString(work_.Connection().DataSource()).replace(u'\\', u'/'))
            .completeBaseName();
    setWindowTitle(texts_.GetText(Text::Title, {{u"project", here}, {u"other", name}}));
    model_.SetNames(here, name);
    model_.Show(nullptr);
    show();
    raise();
    activateWindow();
    trvDifferences_->setFocus();
    Compare();
}

void FCompare::Compare() {
    const QModelIndex current = trvDifferences_->currentIndex();
    if (const ado::RowChange* row = model_.RowAt(current)) {
        currentTable_ = row->table;
        currentPlace_ = model_.ColumnAt(current).empty() ? current.row() : current.parent().row();
    }
    compared_ = work_.Connection().ContentNumber();
    service_.Start(projectdb::ToUtf8(file_), work_.Connection().DataSource());
    ShowState();
}

void FCompare::TakeResult(const differences::Compared& compared) {
    model_.Show(compared.differences);
    if (compared.failure) {
        Tell(texts_.GetText(Text::NotCompared, {{u"cause", compared.failure->Text()}}));
    } else if (!compared.differences) {
        Tell(texts_.GetText(Text::GivenUp));
    }
    ExpandTables();
    QModelIndex current = model_.IndexNear(currentTable_, currentPlace_);
    if (!current.isValid()) current = model_.NextRow({}, true);
    const QString told = told_;  // which stays although another row is the current one
    if (current.isValid()) GoTo(current);
    told_ = told;
    ShowState();
}

void FCompare::Filter() {
    std::array<bool, differences::kRowKinds> kinds{};
    for (std::size_t i = 0; i < kinds.size(); ++i) kinds[i] = cmdKinds_[i]->isChecked();
    model_.Filter(kinds, txtFilter_->text().trimmed());
    told_.clear();
    ExpandTables();
    const QModelIndex first = model_.NextRow({}, true);
    if (first.isValid()) trvDifferences_->setCurrentIndex(first);
    ShowState();
}

void FCompare::ExpandTables() {
    for (int i = 0; i < model_.rowCount(); ++i) trvDifferences_->expand(model_.index(i, 0));
}

void FCompare::Tell(const QString& told) {
    told_ = told;
    ShowState();
}

void FCompare::ShowCounts() {
    for (std::size_t i = 0; i < cmdKinds_.size(); ++i) {
        const std::size_t count = model_.CountOf(static_cast<differences::RowKind>(i));
        cmdKinds_[i]->setText(
            texts_.GetText(kKindTexts[i], {{u"n", differences::NumberText(count, texts_)}}));
    }
}

void FCompare::ShowState() {
    const bool isComparing = IsComparing();
    prgState_->setVisible(isComparing);
    cmdCancel_->setVisible(isComparing);
    ShowCounts();
    const std::size_t count = model_.RowCount();
    const std::size_t shown = model_.ShownCount();
    const auto number = [this](std::size_t n) { return differences::NumberText(n, texts_); };
    if (isComparing) {
        lblState_->setText(texts_.GetText(Text::Comparing));
    } else if (!told_.isEmpty() || model_.Differences() == nullptr) {
        lblState_->setText(told_);
    } else if (model_.Differences()->IsEmpty()) {
        lblState_->setText(texts_.GetText(Text::Same));
    } else if (shown == count) {
        lblState_->setText(texts_.GetText(Text::Found, {{u"n", number(count)}}));
    } else {
        lblState_->setText(
            texts_.GetText(Text::FoundShown, {{u"n", number(count)}, {u"shown", number(shown)}}));
    }
    const bool isKnown = !isComparing && shown > 0;
    const bool mayTake = isKnown && work_.Connection().State() == ado::ObjectState::Open &&
                         work_.Connection().IsWritable();
    for (QPushButton* each : {cmdPrevious_, cmdNext_}) each->setEnabled(isKnown);
    const ado::RowChange* row = model_.RowAt(trvDifferences_->currentIndex());
    cmdShow_->setEnabled(isKnown && row != nullptr && !row->after.empty());
    cmdTakeOver_->setEnabled(mayTake && trvDifferences_->selectionModel()->hasSelection());
    cmdTakeAll_->setEnabled(mayTake);
}

void FCompare::GoTo(const QModelIndex& row) {
    trvDifferences_->setCurrentIndex(row);
    trvDifferences_->expand(row);
    trvDifferences_->scrollTo(row);
}

void FCompare::Step(bool forward) {
    const QModelIndex next = model_.NextRow(trvDifferences_->currentIndex(), forward);
    if (next.isValid()) return GoTo(next);
    Tell(texts_.GetText(Text::NoneLeft));
}

void FCompare::Previous() {
    Step(false);
}

void FCompare::Next() {
    Step(true);
}

void FCompare::ShowInEditor() {
    const QModelIndex current = trvDifferences_->currentIndex();
    const ado::RowChange* row = model_.RowAt(current);
    if (row == nullptr || row->after.empty()) return;
    const ado::Value* id = row->ValueIn(row->after, "ID");
    if (id == nullptr) return;
    std::ignore = work_.ShowPlace({row->table, ado::ToLong(*id), model_.ColumnAt(current)});
}

void FCompare::TakeSelected() {
    std::vector<project::Wanted> wanted;
    for (const QModelIndex& index : trvDifferences_->selectionModel()->selectedRows()) {
        model_.AddWanted(index, wanted);
    }
    Take(wanted);
}

void FCompare::TakeAll() {
    std::vector<project::Wanted> wanted;
    for (int i = 0; i < model_.rowCount(); ++i) model_.AddWanted(model_.index(i, 0), wanted);
    Take(wanted);
}

void FCompare::Take(const std::vector<project::Wanted>& wanted) {
    if (IsComparing() || !work_.MayStore()) return;
    const project::Differences* differences = model_.Differences();
    if (differences == nullptr) return;
    std::vector<ado::RowChange> rows = project::PlanTakeOver(*differences, wanted);
    if (rows.empty()) return Tell(texts_.GetText(Text::NothingToTake));
    if (!Confirm(rows)) return;
    const QString count = differences::NumberText(rows.size(), texts_);
    std::vector<project::TakeOverRefusal> refusals;
    messages::SetScreenPointer(messages::Pointer::Hourglass);
    bool isDone = false;
    Guard(u"FCompare: cmdTakeOver_Click"_s, [&] {
        isDone = work_.RunStep(
            [&] { refusals = project::TakeOver(work_.Connection(), std::move(rows)); });
    });
    messages::SetScreenPointer(messages::Pointer::Default);
    if (!refusals.empty()) return TellRefusals(refusals);
    if (!isDone) return;
    told_ = texts_.GetText(
        Text::Taken, {{u"n", count}, {u"key", commandset::KeyText(commandset::Id::Undo, texts_)}});
    Compare();
}

/// One row that changes or comes needs no question: it can be taken back.
bool FCompare::Confirm(const std::vector<ado::RowChange>& rows) {
    const auto gone = static_cast<std::size_t>(
        std::ranges::count_if(rows, [](const ado::RowChange& row) { return row.before.empty(); }));
    if (rows.size() == 1 && gone == 0) return true;
    const QString question = texts_.GetText(
        Text::Question, {{u"n", differences::NumberText(rows.size(), texts_)},
                         {u"gone", gone == 0 ? QString() : differences::NumberText(gone, texts_)},
                         {u"key", commandset::KeyText(commandset::Id::Undo, texts_)}});
    return messages::ShowMessage(question, messages::MessageButtons::OkCancel, windowTitle(),
                                 this) == messages::MessageResult::Ok;
}

void FCompare::TellRefusals(const std::vector<project::TakeOverRefusal>& refusals) {
    QStringList list;
    for (const project::TakeOverRefusal& refusal : refusals) {
        using Cause = project::TakeOverRefusal::Cause;
        const Text text = refusal.cause == Cause::NameInUse   ? Text::NameInUse
                          : refusal.cause == Cause::HasTrends ? Text::HasTrends
                                                              : Text::HasChanged;
        const QString name =
            refusal.name.empty()
                ? texts_.GetText(Text::RowNumber, {{u"n", QString::number(refusal.id)}})
                : projectdb::ToQString(refusal.name);
        list += texts_.GetText(text, {{u"name", name}});
        if (list.size() < static_cast<qsizetype>(kRefusalsTold)) continue;
        const std::size_t more = refusals.size() - kRefusalsTold;
        if (more > 0) {
            list += texts_.GetText(Text::More, {{u"n", differences::NumberText(more, texts_)}});
        }
        break;
    }
    messages::ShowMessage(texts_.GetText(Text::NotTaken, {{u"list", list.join(u'\n')}}),
                          messages::MessageButtons::Ok, windowTitle(), this);
}

bool FCompare::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && !file_.isEmpty() && !IsComparing()) {
        Guard(u"FCompare: Activate"_s, [this] {
            ado::Connection& connection = work_.Connection();
            if (connection.State() != ado::ObjectState::Open) return;
            if (connection.ContentNumber() == compared_) return;
            told_.clear();
            Compare();
        });
    }
    return QDialog::event(event);
}

bool FCompare::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == trvDifferences_ && isEnter) {
        Guard(u"FCompare: cmdShow_Click"_s, [this] { ShowInEditor(); });
        return true;
    }
    if (watched == txtFilter_ && (isEnter || key == Qt::Key_Down)) {
        trvDifferences_->setFocus();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void FCompare::keyPressEvent(QKeyEvent* event) {
    const QKeyCombination keys = event->keyCombination();
    if (keys == QKeyCombination(Qt::Key_F8)) return Next();
    if (keys == (Qt::SHIFT | Qt::Key_F8)) return Previous();
    if (keys == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpCompare, this);
    }
    if (keys == QKeyCombination(Qt::Key_F5) && !IsComparing()) {
        told_.clear();
        Guard(u"FCompare: F5"_s, [this] { Compare(); });
        return;
    }
    if (keys == QKeyCombination(Qt::Key_Escape) && IsComparing()) return service_.Cancel();
    QDialog::keyPressEvent(event);
}
