#include "jet/compact/ContentCompare.h"

#include <algorithm>

#include "jet/compact/TableCopier.h"
#include "jet/page/DataPage.h"

namespace jet::compact {
namespace {

Status Differs(const std::string& what) {
    return Status::Corrupt("the copy differs in " + what);
}

/// One table in both files.
class TablePair {
public:
    TablePair(Table& before, Table& after, const TableMoves& moves)
        : before_(before),
          after_(after),
          moves_(moves),
          numbers_(TableNumberColumns(before.Name(), before.Definition())) {}

    Status Compare() {
        const TableDef& def = before_.Definition();
        const TableDef& copy = after_.Definition();
        const bool isSame = def.columns.size() == copy.columns.size() &&
                            def.realIndexes.size() == copy.realIndexes.size() &&
                            def.logicalIndexes.size() == copy.logicalIndexes.size() &&
                            def.lastAutoNumber == copy.lastAutoNumber &&
                            std::equal(def.columns.begin(), def.columns.end(), copy.columns.begin(),
                                       [](const Column& a, const Column& b) {
                                           return a.name == b.name && a.type == b.type;
                                       });
        if (!isSame) return Differs("its definition");
        Result<RowCursor> rows = before_.Scan();
        if (!rows.IsOk()) return rows.GetStatus();
        Result<RowCursor> copies = after_.Scan();
        if (!copies.IsOk()) return copies.GetStatus();
        for (;;) {
            bool found = false;
            JET_ASSIGN(found, rows->Next());
            bool foundCopy = false;
            JET_ASSIGN(foundCopy, copies->Next());
            if (found != foundCopy) return Differs("its number of rows");
            if (!found) return {};
            JET_TRY(CompareRows(rows->Current(), copies->Current()));
        }
    }

private:
    Status CompareRows(const Row& row, const Row& copy) {
        for (std::size_t i = 0; i < before_.Definition().columns.size(); ++i) {
            JET_TRY(row.Read(i, value_));
            JET_TRY(copy.Read(i, copied_));
            const auto* number = std::get_if<std::int32_t>(&value_);
            if (number != nullptr && std::count(numbers_.begin(), numbers_.end(), i) > 0) {
                const auto move = moves_.find(static_cast<std::uint32_t>(*number));
                if (move != moves_.end()) value_ = static_cast<std::int32_t>(move->second);
            }
            bool isSame = false;
            JET_ASSIGN(isSame, SameValue());
            if (!isSame) {
                return Differs(RowText(row.Id()) + ", column \"" +
                               before_.Definition().columns[i].name + "\"");
            }
        }
        return {};
    }

    Result<bool> SameValue() {
        const auto* value = std::get_if<LongValue>(&value_);
        const auto* copied = std::get_if<LongValue>(&copied_);
        if (value == nullptr || copied == nullptr) {
            // A number that is none is not equal to itself.
            const auto* real = std::get_if<double>(&value_);
            const auto* single = std::get_if<float>(&value_);
            const auto* date = std::get_if<Date>(&value_);
            const bool isNone = (real != nullptr && *real != *real) ||
                                (single != nullptr && *single != *single) ||
                                (date != nullptr && date->days != date->days);
            return value_ == copied_ || (isNone && value_.index() == copied_.index());
        }
        if (value->kind != copied->kind || value->length != copied->length) return false;
        LongValueReader bytes = before_.OpenLongValue(*value);
        LongValueReader copies = after_.OpenLongValue(*copied);
        for (;;) {
            Bytes piece;
            JET_ASSIGN(piece, bytes.Next());
            Bytes copy;
            JET_ASSIGN(copy, copies.Next());
            if (!std::equal(piece.begin(), piece.end(), copy.begin(), copy.end())) return false;
            if (piece.empty()) return true;
        }
    }

    Table& before_;
    Table& after_;
    const TableMoves& moves_;
    std::vector<std::size_t> numbers_;
    Value value_;
    Value copied_;
};

}  // namespace

Status CompareContent(Database& before, Database& after, const TableMoves& moves) {
    std::vector<CatalogEntry> tables;
    JET_ASSIGN(tables, before.Tables());
    std::vector<CatalogEntry> copies;
    JET_ASSIGN(copies, after.Tables());
    if (tables.size() != copies.size()) return Differs("its number of tables");
    for (const CatalogEntry& entry : tables) {
        std::unique_ptr<Table> table;
        JET_ASSIGN(table, before.OpenTable(entry));
        const auto move = moves.find(Raw(entry.page));
        if (move == moves.end()) return Differs(TableText(entry.name));
        std::unique_ptr<Table> copy;
        JET_ASSIGN(copy, after.OpenTable({entry.name, PageNo{move->second}, entry.isUserTable}));
        JET_TRY(TablePair(*table, *copy, moves).Compare().In(TableText(entry.name)));
    }
    return {};
}

}  // namespace jet::compact
