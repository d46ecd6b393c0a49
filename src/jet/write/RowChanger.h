#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/open/TableRep.h"
#include "jet/row/RowEncoder.h"
#include "jet/TableWriter.h"

namespace jet {

/// Does what TableWriter promises. Borrows the table.
class RowChanger {
public:
    /// TheSystem: for the code that makes databases and tables; writes the system's own tables too.
    enum class For { Users, TheSystem };
    explicit RowChanger(Table& table, For whom = For::Users)
        : table_(table), rep_(Inside::Of(table)), file_(rep_.file), for_(whom) {}

    // See TableWriter.
    Status CheckWritable() const;
    [[nodiscard]] Result<RowId> Insert(std::span<const Assignment> values);
    Status Update(RowId row, std::span<const Assignment> values);
    Status Delete(RowId row);

private:
    /// What an index holds of one row.
    struct Key {
        std::string bytes;
        bool hasEntry = true;  // false: all columns Null, and the index leaves such rows out
        bool allNull = false;
    };
    /// Where a row's bytes lie: in its own slot, or in the one that it has moved to.
    struct Place {
        RowId own;
        std::optional<RowId> moved;
        [[nodiscard]] RowId Bytes() const { return moved.value_or(own); }
    };

    // Sides of a relationship, as stored.
    static constexpr std::uint8_t kReferenced = 1;
    static constexpr std::uint8_t kReferencing = 2;
    /// A relationship as seen from one of its ends.
    struct Relation {
        Table* other = nullptr;
        std::size_t index = 0;             // of the other table, with its end of the relationship
        std::vector<IndexColumn> columns;  // of this table, in the order of that index
    };

    template <typename Change>
    [[nodiscard]] Status Step(Change change);
    [[nodiscard]] Result<RowId> InsertNow(std::span<const Assignment> values);
    Status UpdateNow(RowId row, std::span<const Assignment> values);
    Status DeleteNow(RowId row);

    // Tell the observer, when there is one.
    [[nodiscard]] std::size_t Changing(const Row* before);
    Status Changed(std::size_t change, RowId row);

    [[nodiscard]] Result<std::vector<Value>> ValuesOf(const Row& row) const;
    [[nodiscard]] Result<std::vector<Key>> KeysOf(std::span<const Value> values) const;
    Status CheckKey(std::size_t index, const Key& key, const Key* before);
    [[nodiscard]] Result<bool> HasKey(std::size_t index, const Key& key);
    Status InsertKeys(const std::vector<Key>& keys, RowId row, const std::vector<Key>* before);
    Status RemoveKeys(const std::vector<Key>& keys, RowId row, const std::vector<Key>* after);
    Status CountKeys(std::size_t index, int difference);

    Status CheckRules(std::span<const Value> values, std::span<const bool> assigned);
    [[nodiscard]] Result<Relation> OpenRelation(const LogicalIndex& end);
    [[nodiscard]] static Result<std::string> RelatedKey(const Relation& relation,
                                                        std::span<const Value> values);
    [[nodiscard]] static Result<std::vector<RowId>> RowsWith(const Relation& relation,
                                                             const std::string& key,
                                                             std::size_t most);
    Status CheckParents(std::span<const Value> values, const std::vector<Key>* before,
                        const std::vector<Key>& after);
    Status FollowChildren(std::span<const Value> before, const std::vector<Key>& keys,
                          std::span<const Value> after, const std::vector<Key>* newKeys);

    Status Assign(RowImage& image, std::vector<Value>& values, const Assignment& assignment);
    Status NumberRow(RowImage& image, std::vector<Value>& values,
                     std::span<const Assignment> assigned);
    [[nodiscard]] Result<RowId> PlaceRow(Bytes row, std::uint16_t flags);
    [[nodiscard]] Result<Place> Find(RowId row);
    Status ReplaceRow(const Place& place, Bytes row);
    Status DeleteSlot(RowId slot);
    Status Count(int change);

    Table& table_;
    Table::Rep& rep_;  // its own
    const FileContext& file_;
    For for_;
    int depth_ = 0;  // of changes that have led to this one
};

}  // namespace jet
