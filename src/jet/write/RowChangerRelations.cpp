// Relationships that the database enforces: what a row names in another table must be there. The
// file only notes them, at both tables; whoever writes has to obey.

#include <algorithm>

#include "jet/catalog/TableRules.h"
#include "jet/write/RowChanger.h"

namespace jet {
namespace {

// A chain of rows that delete each other is followed no further than this.
constexpr int kMostDepth = 500;

std::string Quoted(const std::string& name) {
    return "\"" + name + "\"";
}

}  // namespace

Result<RowChanger::Relation> RowChanger::OpenRelation(const LogicalIndex& end) {
    const auto damaged = [&] {
        return Status::Corrupt("the other end of its relationship " + Quoted(end.name) +
                               " is not where it should be");
    };
    Relation relation;
    JET_ASSIGN(relation.other, RelatedTable(table_, end.otherTable));
    const TableDef& def = relation.other->Definition();
    const auto partner = std::find_if(
        def.logicalIndexes.begin(), def.logicalIndexes.end(), [&](const LogicalIndex& index) {
            return index.role == LogicalIndex::Role::ForeignKey && index.side + end.side == 3 &&
                   static_cast<std::int64_t>(index.number) == end.partner;
        });
    if (partner == def.logicalIndexes.end()) return damaged();
    relation.index = partner->real;
    relation.columns = table_.Definition().realIndexes[end.real].columns;
    if (relation.columns.size() != def.realIndexes[partner->real].columns.size()) return damaged();
    if (!relation.other->CanSeek(relation.index)) {
        return Status::Unsupported("its relationship " + Quoted(end.name) +
                                   " needs an index whose order is not known here");
    }
    return relation;
}

/// The key of the values that a row has in a relationship, as the other table has it; empty when
/// one of them is Null, which relates to nothing.
Result<std::string> RowChanger::RelatedKey(const Relation& relation,
                                           std::span<const Value> values) {
    std::vector<Value> parts;
    for (const IndexColumn& column : relation.columns) {
        parts.push_back(values[column.column]);
        if (parts.back().index() == 0) return std::string();
    }
    return relation.other->MakeKey(relation.index, parts);
}

Status RowChanger::CheckParents(std::span<const Value> values, const std::vector<Key>* before,
                                const std::vector<Key>& after) {
    for (const LogicalIndex& end : table_.Definition().logicalIndexes) {
        if (end.role != LogicalIndex::Role::ForeignKey || end.side != kReferencing) continue;
        if (before != nullptr && (*before)[end.real].bytes == after[end.real].bytes) continue;
        Relation relation;
        JET_ASSIGN(relation, OpenRelation(end));
        std::string key;
        JET_ASSIGN(key, RelatedKey(relation, values));
        if (key.empty()) continue;
        std::vector<RowId> rows;
        JET_ASSIGN(rows, RowsWith(relation, key, 1));
        if (rows.empty()) {
            return {StatusCode::Related, "there is no row in " + TableText(relation.other->Name()) +
                                             " to which it belongs (relationship " +
                                             Quoted(end.name) + ")"};
        }
    }
    return {};
}

Result<std::vector<RowId>> RowChanger::RowsWith(const Relation& relation, const std::string& key,
                                                std::size_t most) {
    std::vector<RowId> rows;
    Result<IndexCursor> cursor = relation.other->Seek(relation.index, key);
    if (!cursor.IsOk()) return cursor.GetStatus();
    while (rows.size() < most) {
        bool found = false;
        JET_ASSIGN(found, cursor->Next());
        if (!found || cursor->Key() != key) break;
        rows.push_back(cursor->Row());
    }
    return rows;
}

/// `after` is null when the row has been deleted.
Status RowChanger::FollowChildren(std::span<const Value> before, const std::vector<Key>& keys,
                                  std::span<const Value> after, const std::vector<Key>* newKeys) {
    for (const LogicalIndex& end : table_.Definition().logicalIndexes) {
        if (end.role != LogicalIndex::Role::ForeignKey || end.side != kReferenced) continue;
        if (newKeys != nullptr && (*newKeys)[end.real].bytes == keys[end.real].bytes) continue;
        Relation relation;
        JET_ASSIGN(relation, OpenRelation(end));
        std::string key;
        JET_ASSIGN(key, RelatedKey(relation, before));
        if (key.empty()) continue;
        std::vector<RowId> rows;
        JET_ASSIGN(rows, RowsWith(relation, key, SIZE_MAX));
        const bool cascades = newKeys != nullptr ? end.cascadesUpdates : end.cascadesDeletes;
        if (!rows.empty() && !cascades && !(newKeys == nullptr && end.setsNull)) {
            return {StatusCode::Related, std::to_string(rows.size()) +
                                             (rows.size() == 1 ? " row" : " rows") + " of " +
                                             TableText(relation.other->Name()) + " belong to it"};
        }
        if (!rows.empty() && depth_ >= kMostDepth) {
            return Status::Unsupported("too many rows belong to each other in turn");
        }
        RowChanger writer(*relation.other);
        writer.depth_ = depth_ + 1;
        JET_TRY(writer.CheckWritable());
        const auto& columns = relation.other->Definition().realIndexes[relation.index].columns;
        std::vector<Assignment> values;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const bool isChange = newKeys != nullptr;
            values.push_back(
                {columns[i].column, isChange ? after[relation.columns[i].column] : Value(Null{})});
        }
        for (const RowId row : rows) {
            const bool deletes = newKeys == nullptr && end.cascadesDeletes;
            const Status status = deletes ? writer.DeleteNow(row) : writer.UpdateNow(row, values);
            // Through another relationship it may have gone already.
            if (deletes && status.Code() == StatusCode::NotFound) continue;
            JET_TRY(Inside::Of(*relation.other).Named(status));
        }
    }
    return {};
}

/// Refuses what the properties of the assigned columns do not allow.
Status RowChanger::CheckRules(std::span<const Value> values, std::span<const bool> assigned) {
    if (for_ == For::TheSystem) return {};
    const TableRules* rules = nullptr;
    JET_ASSIGN(rules, rep_.Rules());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!assigned[i]) continue;
        const std::string& name = table_.Definition().columns[i].name;
        if (rules->isRequired[i] && values[i].index() == 0) {
            return {StatusCode::Required, "column " + Quoted(name) + " must have a value"};
        }
        const auto* text = std::get_if<std::u16string>(&values[i]);
        if (rules->refusesEmptyTexts[i] && text != nullptr && text->empty()) {
            return {StatusCode::Required, "column " + Quoted(name) + " must not be an empty text"};
        }
    }
    return {};
}

}  // namespace jet
