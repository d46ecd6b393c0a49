#include "replace/FReplace.h"

#include <chrono>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalBlocker>
#include <QTableView>
#include <utility>

#include "commandset/CommandSet.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "platform/HelpTopics.h"
#include "project/CellChanges.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using Text = MResourceTable::Replace;

constexpr std::chrono::milliseconds kTypingPause(150);
constexpr std::chrono::milliseconds kBudget(12);  // between two events

QString Number(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

}  // namespace

FReplace::FReplace(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                   QWidget* owner)
    : QDialog(owner), work_(work), texts_(texts) {
    Build();
    for (QTimer* timer : {&typing_, &narrowing_}) {
        timer->setSingleShot(true);
        timer->setInterval(kTypingPause);
    }
    working_.setInterval(0);
    connect(&typing_, &QTimer::timeout, this,
            [this] { Guard(u"FReplace: Search"_s, [this] { Search(); }); });
    connect(&narrowing_, &QTimer::timeout, this,
            [this] { Guard(u"FReplace: Narrow"_s, [this] { Narrow(); }); });
    connect(&working_, &QTimer::timeout, this, [this] {
        // What fails would fail again at once.
        if (!Guard(u"FReplace: WorkOn"_s, [this] { WorkOn(); })) working_.stop();
    });
    connect(&model_, &replace::HitModel::Ticked, this, [this] {
        working_.start();
        ShowState();
    });
    TakeReplacement();
}

void FReplace::Open(bool replacing) {
    if (replacing) chkReplace_->setChecked(true);
    show();
    raise();
    activateWindow();
    txtTerm_->setFocus();
    txtTerm_->selectAll();
    ShowState();
}

void FReplace::TakeVariable(const QString& variable) {
    for (QCheckBox* box : {chkCase_, chkWord_, chkExpression_, chkReplace_, chkNames_, chkTexts_,
                           chkComments_, chkUnits_}) {
        box->setChecked(false);
    }
    chkWhole_->setChecked(true);
    chkVariables_->setChecked(true);
    txtNarrow_->clear();
    txtTerm_->setText(variable);
    SearchSoon();
}

void FReplace::ShowUses(const QString& variable) {
    TakeVariable(variable);
    Open(false);
    grdHits_->setFocus();
}

void FReplace::LookAtUses(const QString& variable) {
    TakeVariable(variable);
    chkReplace_->setEnabled(false);
    cmdShow_->setVisible(false);
    grdHits_->setFocus();
    exec();
}

bool FReplace::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && read_ != 0) {
        Guard(u"FReplace: Activate"_s, [this] {
            if (told_.isEmpty() && work_.Connection().ContentNumber() != read_) SearchSoon();
        });
    }
    return QDialog::event(event);
}

bool FReplace::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == grdHits_ && isEnter) {
        ShowHit(grdHits_->currentIndex());
        return true;
    }
    if (watched == grdHits_ && key == Qt::Key_Space) {
        TickSelected();
        return true;
    }
    const bool isField = watched == txtTerm_ || watched == txtReplacement_ || watched == txtNarrow_;
    if (isField && (isEnter || key == Qt::Key_Down)) {
        if (isEnter && !told_.isEmpty()) {
            SearchSoon();
        } else {
            grdHits_->setFocus();
        }
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void FReplace::keyPressEvent(QKeyEvent* event) {
    const QKeyCombination keys = event->keyCombination();
    if (keys == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpReplace, this);
    }
    if (keys == (Qt::CTRL | Qt::Key_H)) {
        chkReplace_->setChecked(chkReplace_->isEnabled());
        return txtReplacement_->setFocus(Qt::ShortcutFocusReason);
    }
    if (keys == (Qt::CTRL | Qt::SHIFT | Qt::Key_F)) {
        return txtTerm_->setFocus(Qt::ShortcutFocusReason);
    }
    QDialog::keyPressEvent(event);
}

replace::Term FReplace::Term() const {
    return {txtTerm_->text(), chkCase_->isChecked(), chkWord_->isChecked(), chkWhole_->isChecked(),
            chkExpression_->isChecked()};
}

unsigned FReplace::Kinds() const {
    const std::pair<const QCheckBox*, replace::Kind> kinds[] = {
        {chkNames_, replace::kNames},
        {chkVariables_, replace::kVariables},
        {chkTexts_, replace::kTexts},
        {chkComments_, replace::kComments},
        {chkUnits_, replace::kUnits}};
    unsigned sum = 0;
    for (const auto& [box, kind] : kinds) sum |= box->isChecked() ? kind : 0U;
    return sum;
}

void FReplace::SearchSoon() {
    told_.clear();
    typing_.start();
    ShowState();
}

void FReplace::ReadProject() {
    ado::Connection& connection = work_.Connection();
    const std::uint64_t content = connection.ContentNumber();
    if (content == read_) return;
    read_ = 0;
    fields_.Read(connection);
    read_ = content;
}

void FReplace::Search() {
    working_.stop();
    // The hits go with what they have been found in, also when it cannot be read.
    const auto begin = qScopeGuard([this] {
        hits_.Search(Term(), Kinds());
        model_.Reset();
        ShowFaults();
        ShowState();
    });
    if (!txtTerm_->text().isEmpty()) ReadProject();
    working_.start();
}

void FReplace::TakeReplacement() {
    const bool replacing = chkReplace_->isChecked();
    txtReplacement_->setEnabled(replacing);
    hits_.SetReplacement(replacing ? std::optional(txtReplacement_->text()) : std::nullopt);
    for (const int column : {replace::HitModel::kNew, replace::HitModel::kNote}) {
        grdHits_->setColumnHidden(column, !replacing);
    }
    chkAll_->setVisible(replacing);
    cmdReplace_->setVisible(replacing);
    model_.ShowStates();
    ShowFaults();
    ShowState();
    working_.start();
}

void FReplace::WorkOn() {
    const QDeadlineTimer until(kBudget);
    const bool searches = hits_.SearchOn(until);
    model_.TakeNew();
    const bool checks = !searches && hits_.CheckOn(work_.Connection(), until);
    if (!searches && !checks) {
        working_.stop();
        model_.ShowStates();
        if (!grdHits_->currentIndex().isValid()) grdHits_->selectRow(0);
    }
    ShowState();
}

void FReplace::Narrow() {
    model_.Narrow(txtNarrow_->text());
    working_.start();
    ShowState();
}

void FReplace::ShowFaults() {
    const auto show = [](QLabel& label, const QString& text) {
        label.setText(text);
        label.setVisible(!text.isEmpty());
    };
    const auto& term = hits_.Matcher().Wrong();
    show(*lblTermFault_,
         !term ? QString()
               : texts_.GetText(Text::TermFault, {{u"at", QString::number(term->at + 1)},
                                                  {u"text", txtTerm_->text().mid(term->at)}}));
    const auto& replacement = hits_.ReplacementFault();
    show(*lblReplacementFault_,
         !replacement ? QString()
                      : texts_.GetText(Text::ReplacementFault,
                                       {{u"at", QString::number(replacement->at + 1)},
                                        {u"group", QString::number(replacement->group)}}));
}

QString FReplace::StateText() const {
    if (!told_.isEmpty()) return told_;
    if (txtTerm_->text().isEmpty()) return texts_.GetText(Text::NoTerm);
    if (hits_.Matcher().Wrong()) return {};  // which stands at the term
    const QString count = Number(hits_.Count());
    if (typing_.isActive() || hits_.IsSearching()) {
        return texts_.GetText(Text::Searching, {{u"n", count}});
    }
    QString text = texts_.GetText(Text::Found, {{u"n", count}});
    if (hits_.Count() == 0) text = texts_.GetText(Text::FoundNone);
    if (hits_.Count() == 1) text = texts_.GetText(Text::FoundOne);
    const auto shown = static_cast<std::size_t>(model_.rowCount());
    if (shown != hits_.Count()) {
        text = texts_.GetText(Text::FoundShown, {{u"n", Number(shown)}, {u"all", count}});
    }
    if (hits_.IsReplacing() && hits_.RefusedCount() > 0) {
        text += u' ' + texts_.GetText(Text::Refused, {{u"n", Number(hits_.RefusedCount())}});
    }
    if (fields_.Unreadable() > 0) {
        text += u' ' + texts_.GetText(Text::Unreadable, {{u"n", Number(fields_.Unreadable())}});
    }
    return text;
}

void FReplace::ShowState() {
    lblState_->setText(StateText());
    const bool isDone = !typing_.isActive() && !narrowing_.isActive() && !hits_.IsSearching() &&
                        !hits_.IsChecking();
    const std::size_t count = isDone ? hits_.WrittenCount() : 0;
    const bool mayReplace = count > 0 && !hits_.ReplacementFault() &&
                            work_.Connection().State() == ado::ObjectState::Open &&
                            work_.Connection().IsWritable();
    cmdReplace_->setEnabled(hits_.IsReplacing() && mayReplace);
    cmdReplace_->setText(count == 0   ? texts_.GetText(Text::ReplaceNone)
                         : count == 1 ? texts_.GetText(Text::ReplaceOne)
                                      : texts_.GetText(Text::ReplaceMany, {{u"n", Number(count)}}));
    cmdShow_->setEnabled(model_.rowCount() > 0);
    const QSignalBlocker blocker(chkAll_);
    chkAll_->setCheckState(model_.AllTicked());
    chkAll_->setEnabled(model_.rowCount() > 0);
}

void FReplace::ShowHit(const QModelIndex& index) {
    if (!index.isValid() || isModal()) return;
    Guard(u"FReplace: cmdShow_Click"_s, [&] {
        const auto& field = hits_.FieldOf(model_.HitOf(index));
        const auto& column = fields_.ColumnOf(field);
        if (!work_.ShowPlace({std::string(column.table), field.row, column.name})) {
            lblState_->setText(texts_.GetText(Text::PlaceGone));
        }
    });
}

/// As the current one becomes.
void FReplace::TickSelected() {
    const QModelIndex current = grdHits_->currentIndex();
    if (!current.isValid() || !hits_.IsReplacing()) return;
    model_.SetTicked(grdHits_->selectionModel()->selectedRows(),
                     !hits_.IsTicked(model_.HitOf(current)));
}

void FReplace::Replace() {
    if (!work_.MayStore()) return;
    const replace::Hits::Changes changes = hits_.ToWrite();
    if (!WriteHits(changes)) return;
    // What is there now may hold the term again: it is looked for when the user wants it.
    told_ =
        texts_.GetText(Text::Done, {{u"n", Number(changes.cells.size())},
                                    {u"key", commandset::KeyText(commandset::Id::Undo, texts_)}});
    hits_.Search({}, 0);
    model_.Reset();
    ShowState();
    txtTerm_->setFocus();
}

/// False: nothing has been written, and the user knows why.
bool FReplace::WriteHits(const replace::Hits::Changes& changes) {
    project::WrittenCells written;
    bool run = false;
    {
        RowProgress progress(texts_, static_cast<int>(Text::Writing), this);
        run = work_.RunStep([&] {
            written = project::WriteCells(work_.Connection(), changes.cells, progress.Function());
        });
    }
    if (run && written.isDone) return true;
    hits_.TakeRefusals(changes, written.refusals);
    model_.ShowStates();
    ShowState();
    lblState_->setText(
        texts_.GetText(written.refusals.empty() ? Text::NotWritten : Text::NotWrittenRefused,
                       {{u"n", Number(written.refusals.size())}}));
    return false;
}
