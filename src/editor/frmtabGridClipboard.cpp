// Copying and pasting in the editor window.

#include <QApplication>
#include <QClipboard>
#include <QHash>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScopeGuard>

#include "cells/CellValue.h"
#include "cells/TabText.h"
#include "commands/PasteCommands.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendClipboard.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "messages/MessageBox.h"
#include "project/Transaction.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype kMostChanges = 12;  // that a question lists

}  // namespace

void frmtabGrid::Copy() {
    const GridSplit& split = tdbA->SplitAt(tdbA->Split());
    const QList<GridRowId> rows = split.SelectedRows();
    if (!rows.isEmpty() && tdbA->Split() == 1) {
        QApplication::clipboard()->setMimeData(
            TrendClipboard::CopyTrends(split, *trends_, texts_, rows).release());
    } else if (!rows.isEmpty()) {
        QApplication::clipboard()->setText(TrendClipboard::Copy(split, rows));
    } else if (split.CurrentRow() != kNoGridRow) {
        QApplication::clipboard()->setText(
            split.CellText(split.CurrentRow(), split.CurrentColumn()));
    } else {
        Hint(MResourceTable::kTextHintNothingToCopy);
    }
}

void frmtabGrid::Paste() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    if (tdbA->Split() != 1) return Hint(MResourceTable::kTextHintPasteIntoTrends);
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    const QMimeData* held = QApplication::clipboard()->mimeData();
    if (held == nullptr || held->text().isEmpty()) {
        return Hint(MResourceTable::kTextHintNothingToPaste);
    }
    const TrendClipboard::Reader reader{tdbA->SplitAt(1), *trends_, texts_, QLocale()};
    auto pasted = TrendClipboard::Parse(*held, reader);
    if (!pasted) return PasteBlock({{TrendClipboard::SingleCell(held->text())}});
    if (pasted->isBlock) return PasteBlock(TabText::Parse(held->text()));
    if (!pasted->refusal.isEmpty()) return Tell(pasted->refusal);
    QList<GridCell> cells;
    if (!pasted->isWhole && !TakeUpdates(pasted->trends, cells)) return;
    PasteRows(pasted->trends, cells);
}

/// New trends and cells of others, all or none.
void frmtabGrid::PasteRows(const std::vector<project::NewTrend>& pasted,
                           const QList<GridCell>& cells) {
    const auto step = qScopeGuard([this] { EndStep(); });
    // Asked before the transaction: nobody else can write while one is open.
    const auto settled = trends_->Settle(cells);
    if (!settled) return;
    RowProgress progress(texts_, MResourceTable::kTextPastingTrends, this);
    PasteCommands commands(project_, *this, texts_);
    GridCommit commit;
    const auto tell = qScopeGuard([&] {
        if (commit.outcome != GridCommit::Outcome::Failed) return;
        ShowDataError(commit.number, commit.text, commit.details);
    });
    // What has been written to cells may be taken back behind their model.
    auto reload = qScopeGuard([this] { projectdb::ReloadTrends(project_, *this); });
    try {
        project::Transaction transaction(project_.Environment().Connection());
        if (!settled->isEmpty()) commit = trends_->CommitCells(*settled);
        if (commit.outcome != GridCommit::Outcome::Stored) return;
        std::vector<std::int32_t> ids;
        if (!pasted.empty()) ids = commands.PasteTrends(pasted, progress.Function());
        if (ids.empty() && !pasted.empty()) return;  // the user has given up
        transaction.Commit();
        reload.dismiss();
        ShowTrends(ids);
    } catch (const ado::AdoError&) {
        if (!commands.Refused()) throw;
        const auto& [trend, column] = *commands.Refused();
        const GridColumn* known = tdbA->SplitAt(1).Column(projectdb::ToQString(column));
        Tell(texts_.GetText(
            MResourceTable::kTextPasteRefused,
            {{u"row", QString::number(trend + 1)},
             {u"column", known != nullptr ? known->Caption() : projectdb::ToQString(column)},
             {u"cause", projectdb::Failure::Current().Text()}}));
    }
}

/// The cells of a row in which a pasted one says something else; `changes` gets a line for each.
QList<GridCell> frmtabGrid::CellsThatDiffer(int row, const project::NewTrend& trend,
                                            QStringList& changes) const {
    const GridSplit& trends = tdbA->SplitAt(1);
    const GridRowId id = trends_->IdAt(row);
    project::Values values = trend.values;
    values.insert(values.end(), trend.texts.begin(), trend.texts.end());
    QList<GridCell> cells;
    for (const auto& [field, value] : values) {
        const int column = trends_->ColumnOf(field);
        const GridColumn* shown = trends.ColumnAt(column);
        if (shown == nullptr || trends_->ValueAt(row, column) == value) continue;
        const QVariant stored = StoredValue(value);
        const QString text = shown->ValueText(stored);
        changes.append(u"%1: %2: '%3' \u2192 '%4'"_s.arg(
            projectdb::ToQString(trend.name), shown->Caption(), trends.CellText(id, column),
            text.isEmpty() ? stored.toString() : text));
        cells.append({id, column, ExactValue(value)});
    }
    return cells;
}

bool frmtabGrid::TakeUpdates(std::vector<project::NewTrend>& pasted, QList<GridCell>& cells) {
    if (!trends_->ReadAll()) return false;
    const int nameColumn = trends_->ColumnOf("Name");
    QHash<QString, int> rows;
    for (int row = 0; row < trends_->rowCount(); ++row) {
        rows.insert(NameLists::KeyOf(trends_->index(row, nameColumn).data().toString()), row);
    }
    std::vector<project::NewTrend> others;
    QStringList changes;
    for (const project::NewTrend& trend : pasted) {
        // A name that is pasted twice is meant once.
        const auto place = rows.constFind(NameLists::KeyOf(projectdb::ToQString(trend.name)));
        if (trend.name.empty() || place == rows.constEnd()) {
            others.push_back(trend);
        } else {
            cells += CellsThatDiffer(*place, trend, changes);
            rows.erase(place);
        }
    }
    const std::size_t known = pasted.size() - others.size();
    if (known == 0) return true;
    if (changes.size() > kMostChanges)
        changes = changes.first(kMostChanges) + QStringList{u"..."_s};
    const QString question =
        texts_.GetText(MResourceTable::kTextPasteUpdates,
                       {{u"n", QString::number(known)},
                        {u"cells", QString::number(cells.size())},
                        {u"changes", changes.join(u'\n')},
                        {u"new", others.empty() ? QString() : QString::number(others.size())}});
    const auto answer =
        messages::ShowMessage(question, messages::MessageButtons::YesNoCancel,
                              texts_.GetText(MResourceTable::kTextEditorTitle), this);
    if (answer == messages::MessageResult::Yes) {
        pasted = std::move(others);
    } else {
        cells.clear();
    }
    return answer != messages::MessageResult::Cancel;
}
