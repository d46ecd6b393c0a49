// Several cells of the trends as one: filled down, counted on, pasted as a block, summed up.

#include <algorithm>
#include <optional>
#include <QLabel>
#include <QLocale>
#include <QScopedValueRollback>
#include <set>
#include <tuple>

#include "cells/CellBlock.h"
#include "cells/CellValue.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendClipboard.h"
#include "editor/TrendRows.h"
#include "project/Pattern.h"
#include "projectdb/Text.h"
#include "records/MTrend.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// The texts of a value that is a pattern; nothing where it is none.
std::optional<QStringList> PatternTexts(const QVariant& value) {
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    const project::Pattern pattern(projectdb::ToUtf16(value.toString()));
    if (pattern.Wrong() || pattern.WrongBeside(pattern) || pattern.Braces().empty()) {
        return std::nullopt;
    }
    QStringList texts;
    for (std::size_t i = 0; i < pattern.Count(); ++i) {
        texts.append(projectdb::ToQString(pattern.Text(pattern, pattern.Combination(i))));
    }
    return texts;
}

}  // namespace

void frmtabGrid::FillDown(bool counting, int sources) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    WriteBlock(CellBlock::FillDown(tdbA->SplitAt(1), counting, texts_, sources));
}

void frmtabGrid::WriteBlock(const CellBlock::Result& block) {
    if (!block.hint.isEmpty()) return Hint(block.hint);
    if (!block.refusal.isEmpty()) return Tell(block.refusal);
    tdbA->SplitAt(1).WriteCells(block.cells);
}

/// All trends that are selected, in one dialog.
void frmtabGrid::EditSelected() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const QList<GridRowId> ids = trends.SelectedCells().rows;
    if (ids.size() < 2) return Hint(MResourceTable::kTextHintNoCells);
    MTrend::Many many;
    many.count = static_cast<std::size_t>(ids.size());
    many.differs = [&](std::string_view field) {
        const int column = trends_->ColumnOf(field);
        const ado::Value& first = trends_->ValueAt(trends_->RowOf(ids.front()), column);
        return std::any_of(ids.begin(), ids.end(), [&](GridRowId id) {
            return trends_->ValueAt(trends_->RowOf(id), column) != first;
        });
    };
    if (const int colour = trends_->ColumnOf("VLineColor"); colour >= 0) {
        std::set<int> colours;
        for (const GridRowId id : ids) {
            const ado::Value& value = trends_->ValueAt(trends_->RowOf(id), colour);
            const auto* number = std::get_if<std::int32_t>(&value);
            if (number != nullptr && colours.insert(*number).second) {
                many.colours.push_back(*number);
            }
        }
        if (many.colours.size() < 2) many.colours.clear();
    }
    many.store = [&](const MTrend::Values& values) {
        QList<GridCell> cells;
        for (const auto& [field, value] : values) {
            const int column = trends_->ColumnOf(field);
            const QVariant shown = ExactValue(value);
            const auto each = PatternTexts(shown);
            if (each && each->size() != ids.size()) {
                Tell(texts_.GetText(MResourceTable::kTextManyPatternCount,
                                    {{u"text", shown.toString()},
                                     {u"n", QString::number(each->size())},
                                     {u"trends", QString::number(ids.size())}}));
                return false;
            }
            for (qsizetype i = 0; i < ids.size(); ++i) {
                cells.append({ids[i], column, each ? QVariant(each->at(i)) : shown});
            }
        }
        return trends.WriteCells(cells);
    };
    DialogServices services = Services();
    services.drafts = nullptr;  // what would be kept is several rows' and finds no way back
    trends_->MoveTo(trends_->RowOf(ids.front()));
    std::ignore =
        MTrend::EditTrends(project_.Environment().Recordset(ADOArchiv::Command::tabTrends), many,
                           CurrentLcid(), services, this);
}

void frmtabGrid::PasteBlock(const QList<QStringList>& lines) {
    const TrendClipboard::Reader reader{tdbA->SplitAt(1), *trends_, texts_, QLocale()};
    const auto read = [&](const QString& text, int column) -> std::optional<QVariant> {
        const auto value = TrendClipboard::ReadCell(text, column, reader);
        if (!value) return std::nullopt;
        return StoredValue(*value);
    };
    WriteBlock(CellBlock::Paste(tdbA->SplitAt(1), lines, read, texts_));
}

/// Gives the selected cells of a column the same value, as a chooser does.
void frmtabGrid::WriteColumn(int column, const QVariant& value) {
    GridSplit& trends = tdbA->SplitAt(1);
    QList<GridCell> cells;
    for (const GridRowId row : trends.SelectedCells().rows) cells.append({row, column, value});
    trends.WriteCells(cells);
}

void frmtabGrid::ShowCells() {
    const QString summary = CellBlock::Summary(tdbA->SplitAt(1), texts_);
    lblCells->setVisible(!summary.isEmpty());
    lblCells->setText(summary);
}
