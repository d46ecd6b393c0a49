#include "jet/compact/TableCopier.h"

#include <algorithm>

#include "jet/compact/IndexBuilder.h"
#include "jet/compact/MapPages.h"
#include "jet/open/RowRep.h"

namespace jet::compact {

std::vector<std::size_t> TableNumberColumns(const std::string& table, const TableDef& def) {
    std::vector<std::size_t> columns;
    if (!def.isSystem) return columns;
    const std::pair<const char*, const char*> kColumns[] = {{"MSysObjects", "Id"},
                                                            {"MSysObjects", "ParentId"},
                                                            {"MSysACEs", "ObjectId"},
                                                            {"MSysQueries", "ObjectId"}};
    for (const auto& [name, column] : kColumns) {
        if (!SameName(name, table)) continue;
        const auto position = def.FindColumn(column);
        if (position && def.columns[*position].type == ColumnType::Long) {
            columns.push_back(*position);
        }
    }
    return columns;
}

Status TableCopier::Place(TableMoves& moves) {
    const TableDef& def = table_->Definition();
    Result<DefinitionCopy> definition = DefinitionCopy::Load(cache_, def.page);
    if (!definition.IsOk()) return definition.GetStatus();
    definition_.push_back(std::move(*definition));
    if (Raw(def.page) < Draft::kFirst || draft_.Keeps(def.page)) pages_.push_back(def.page);
    while (pages_.size() < definition_[0].PageCount()) {
        JET_ASSIGN(pages_.emplace_back(), draft_.Take());
    }
    moves[Raw(def.page)] = Raw(NewPage());

    JET_ASSIGN(rowMaps_.owned, maps_.Reserve());
    JET_ASSIGN(rowMaps_.free, maps_.Reserve());
    definition_[0].SetOwnedMap(rowMaps_.owned);
    definition_[0].SetFreeMap(rowMaps_.free);
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (!def.columns[i].IsLongValue()) continue;
        MapPair& pair = longValueMaps_[i];
        JET_ASSIGN(pair.owned, maps_.Reserve());
        JET_ASSIGN(pair.free, maps_.Reserve());
        definition_[0].SetLongValueMaps(def.columns[i].number, pair.owned, pair.free);
        longValues_.emplace(i, LongValueCopier(cache_, draft_));
    }
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        JET_ASSIGN(indexMaps_.emplace_back(), maps_.Reserve());
    }
    tableNumbers_ = TableNumberColumns(table_->Name(), def);
    return {};
}

Status TableCopier::Copy(const TableMoves& moves) {
    const auto named = [&](const Status& status) { return status.In(TableText(table_->Name())); };
    JET_TRY(CopyRows(moves));
    JET_TRY(named(maps_.Fill(rowMaps_.owned, rows_->Pages())));
    JET_TRY(named(maps_.Fill(rowMaps_.free, rows_->PagesWithRoom())));
    for (auto& [column, values] : longValues_) {
        JET_TRY(named(values.Finish()));
        JET_TRY(named(maps_.Fill(longValueMaps_[column].owned, values.Pages().Pages())));
        JET_TRY(named(maps_.Fill(longValueMaps_[column].free, values.Pages().PagesWithRoom())));
    }
    for (std::size_t i = 0; i < indexMaps_.size(); ++i) JET_TRY(named(CopyIndex(i, moves)));
    definition_[0].SetRowCount(rowMoves_.size());
    rowMoves_ = {};  // the largest thing that is kept; the next table makes its own
    definition_[0].MoveOtherTables(moves);
    return definition_[0].Save(draft_, pages_);
}

Status TableCopier::CopyRows(const TableMoves& moves) {
    rows_ = std::make_unique<RowPacker>(draft_, Raw(NewPage()));
    Result<RowCursor> cursor = table_->Scan();
    if (!cursor.IsOk()) return cursor.GetStatus();
    for (;;) {
        bool found = false;
        JET_ASSIGN(found, cursor->Next());
        if (!found) return rows_->Finish();
        const Row& row = cursor->Current();
        JET_TRY(CopyRow(row, moves).In(TableText(table_->Name()) + ", " + RowText(row.Id())));
    }
}

Status TableCopier::CopyRow(const Row& row, const TableMoves& moves) {
    const Bytes stored = row.Stored();
    std::vector<std::byte> bytes(stored.begin(), stored.end());
    const auto valueOf = [&](std::size_t column) -> Result<MutableBytes> {
        Bytes value;
        JET_ASSIGN(value, StoredValue(row, column));
        if (value.empty()) return MutableBytes();
        const auto offset = static_cast<std::size_t>(value.data() - stored.data());
        return MutableBytes(bytes).subspan(offset, value.size());
    };
    for (auto& [column, values] : longValues_) {
        MutableBytes value;
        JET_ASSIGN(value, valueOf(column));
        if (!value.empty()) JET_TRY(values.Copy(value));
    }
    for (const std::size_t column : tableNumbers_) {
        MutableBytes value;
        JET_ASSIGN(value, valueOf(column));
        if (value.size() != sizeof(std::uint32_t)) continue;
        const auto move = moves.find(LoadU32(value, 0));
        if (move != moves.end()) StoreU32(value, 0, move->second);
    }
    RowId copy;
    JET_ASSIGN(copy, rows_->Append(bytes));
    rowMoves_.push_back({row.Id().Pointer(), copy.Pointer()});
    return {};
}

Result<RowId> TableCopier::NewPlace(RowId old) const {
    const auto found =
        std::lower_bound(rowMoves_.begin(), rowMoves_.end(), old.Pointer(),
                         [](const RowMove& move, std::uint32_t from) { return move.from < from; });
    if (found == rowMoves_.end() || found->from != old.Pointer()) {
        return Status::Corrupt("an index names " + RowText(old) + ", where no row is");
    }
    return RowId::FromPointer(found->to);
}

Result<std::string> TableCopier::NewKey(std::size_t index, const EntryCursor& entry,
                                        const TableMoves& moves) {
    Row row;
    JET_ASSIGN(row, table_->Fetch(entry.Row()));
    std::vector<Value> values;
    bool isMoved = false;
    for (const IndexColumn& part : table_->Definition().realIndexes[index].columns) {
        JET_ASSIGN(values.emplace_back(), row.Get(part.column));
        auto* number = std::get_if<std::int32_t>(&values.back());
        const bool namesTable = std::count(tableNumbers_.begin(), tableNumbers_.end(), part.column);
        if (number == nullptr || !namesTable) continue;
        const auto move = moves.find(static_cast<std::uint32_t>(*number));
        if (move == moves.end() || move->first == move->second) continue;
        *number = static_cast<std::int32_t>(move->second);
        isMoved = true;
    }
    if (!isMoved) return entry.Key();
    if (!table_->CanSeek(index)) return Status::Unsupported("an index has an unknown order");
    return table_->MakeKey(index, values);
}

Status TableCopier::CopyIndex(std::size_t index, const TableMoves& moves) {
    IndexBuilder builder(draft_, NewPage());
    const RealIndex& def = table_->Definition().realIndexes[index];
    Result<EntryCursor> cursor =
        EntryCursor::Seek(cache_, table_->Definition().page, def.root, std::string());
    if (!cursor.IsOk()) return cursor.GetStatus();
    // Where tables are named by other numbers now, the order changes too.
    std::vector<std::pair<std::string, RowId>> sorted;
    for (;;) {
        bool found = false;
        JET_ASSIGN(found, cursor->Next());
        if (!found) break;
        RowId row;
        JET_ASSIGN(row, NewPlace(cursor->Row()));
        if (tableNumbers_.empty()) {
            JET_TRY(builder.Add(cursor->Key(), row));
            continue;
        }
        std::string key;
        JET_ASSIGN(key, NewKey(index, *cursor, moves));
        sorted.emplace_back(std::move(key), row);
    }
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [key, row] : sorted) JET_TRY(builder.Add(key, row));
    PageNo root{};
    JET_ASSIGN(root, builder.Finish());
    definition_[0].SetIndex(index, indexMaps_[index], root, builder.DistinctKeys());
    return maps_.Fill(indexMaps_[index], builder.Pages());
}

}  // namespace jet::compact
