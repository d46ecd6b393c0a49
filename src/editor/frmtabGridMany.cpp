// Several trends, or several archives, in one dialog.

#include <algorithm>
#include <QScopedValueRollback>
#include <set>
#include <tuple>

#include "cells/CellValue.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendRows.h"
#include "project/Pattern.h"
#include "projectdb/Text.h"
#include "records/MArchiv.h"
#include "records/MTrend.h"
#include "texts/MResourceTable.h"

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
            const auto* text = std::get_if<std::u16string>(&value);
            const auto each = text != nullptr ? project::PatternTexts(*text) : std::nullopt;
            if (each && each->size() != many.count) {
                Tell(texts_.GetText(MResourceTable::kTextManyPatternCount,
                                    {{u"text", shown.toString()},
                                     {u"n", QString::number(each->size())},
                                     {u"trends", QString::number(ids.size())}}));
                return false;
            }
            for (std::size_t i = 0; i < many.count; ++i) {
                cells.append({ids[static_cast<qsizetype>(i)], column,
                              each ? QVariant(projectdb::ToQString(each->at(i))) : shown});
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

/// All archives that are selected. Nobody is busy meanwhile: what is stored is a step of its own.
void frmtabGrid::EditArchives() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore() || !CommitPendingEdit()) return;
    MArchiv::Many many;
    for (const GridRowId id : tdbA->SplitAt(0).SelectedRows()) {
        many.ids.push_back(static_cast<std::int32_t>(id));
    }
    if (many.ids.size() < 2) return Hint(MResourceTable::kTextHintNoArchives);
    many.runStep = [this](const std::function<void()>& change) { return RunStep(change); };
    DialogServices services = Services();
    services.drafts = nullptr;  // what would be kept is several rows' and finds no way back
    std::ignore = MArchiv::EditArchives(Connection(), many, CurrentLcid(), services, this);
}
