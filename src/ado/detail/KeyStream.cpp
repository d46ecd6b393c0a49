#include "ado/detail/KeyStream.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "ado/detail/Convert.h"
#include "ado/detail/ProviderError.h"
#include "jet/TextKey.h"

namespace ado {
namespace {

RowKey KeyOf(jet::RowId first, jet::RowId second = {}) {
    return RowKey{first.Pointer()} << 32 | second.Pointer();
}

jet::RowId FirstOf(RowKey key) {
    return jet::RowId::FromPointer(static_cast<std::uint32_t>(key >> 32));
}

/// The rows of one table; the other half of each key is zero.
class TableStream : public KeyStream {
public:
    TableStream(jet::Table& table, const std::string& file) : table_(table), file_(file) {}

protected:
    jet::Table& table_;
    const std::string& file_;
};

/// All rows in the order in which they are stored.
class ScanStream final : public TableStream {
public:
    using TableStream::TableStream;

    bool Next(RowKey& key) override {
        if (!cursor_) cursor_ = Check(table_.Scan(), file_);
        if (!Check(cursor_->Next(), file_)) return false;
        key = KeyOf(cursor_->Current().Id());
        return true;
    }

private:
    std::optional<jet::RowCursor> cursor_;
};

/// The rows whose entries in an index start with a key, in the index's order. When the index turns
/// out to be damaged, all other rows of the table follow as they are stored: an index is a way to
/// the rows, and none must be lost because it is broken. The conditions are checked again anyway.
class IndexStream final : public TableStream {
public:
    IndexStream(jet::Table& table, const std::string& file, std::size_t index,
                std::string prefix = {})
        : TableStream(table, file), index_(index), prefix_(std::move(prefix)) {}

    /// Begins again with another key.
    void Restart(std::string prefix) {
        prefix_ = std::move(prefix);
        stands_ = false;
        given_.clear();
        scan_.reset();
    }

    bool Next(RowKey& key) override {
        if (scan_) return NextOther(key);
        if (!stands_) {
            if (jet::Status status = Seek(); !status.IsOk()) return GiveUp(status, key);
            stands_ = true;
        }
        const auto found = cursor_->Next();
        if (!found.IsOk()) return GiveUp(found.GetStatus(), key);
        if (!*found || !cursor_->KeyStartsWith(prefix_)) return false;
        key = KeyOf(cursor_->Row());
        given_.push_back(key);
        return true;
    }

private:
    jet::Status Seek() {
        if (cursor_) {
            jet::Status status = table_.SeekAgain(*cursor_, prefix_);
            if (!status.IsOk()) cursor_.reset();
            return status;
        }
        auto cursor = table_.Seek(index_, prefix_);
        if (!cursor.IsOk()) return cursor.GetStatus();
        cursor_ = std::move(*cursor);
        return {};
    }

    bool GiveUp(const jet::Status& status, RowKey& key) {
        if (status.Code() != jet::StatusCode::Corrupt) ThrowStatus(status, file_);
        cursor_.reset();
        std::sort(given_.begin(), given_.end());
        scan_.emplace(table_, file_);
        return NextOther(key);
    }

    bool NextOther(RowKey& key) {
        while (scan_->Next(key)) {
            if (!std::binary_search(given_.begin(), given_.end(), key)) return true;
        }
        return false;
    }

    std::size_t index_;
    std::string prefix_;
    std::optional<jet::IndexCursor> cursor_;
    bool stands_ = false;             // the cursor stands at the key
    std::vector<RowKey> given_;       // rows handed out so far
    std::optional<ScanStream> scan_;  // the index is damaged
};

/// A column that must equal a value.
struct Equality {
    std::size_t column;
    const Value* value;
};

using Conditions = std::vector<const Expression*>;

bool IsEquality(const Expression& condition) {
    return condition.kind == Expression::Kind::Compare &&
           condition.op == Expression::Operator::Equal;
}

std::vector<Equality> ConstantEqualities(const Conditions& conditions, std::size_t table) {
    std::vector<Equality> equalities;
    for (const Expression* condition : conditions) {
        if (!IsEquality(*condition)) continue;
        const Operand* column = &condition->left;
        const Operand* constant = &condition->right;
        if (!column->isColumn) std::swap(column, constant);
        if (!column->isColumn || constant->isColumn || column->column.table != table) continue;
        equalities.push_back({column->column.column, &constant->constant});
    }
    return equalities;
}

/// The index whose first columns the equalities fix, and the key that they make.
struct IndexChoice {
    std::size_t index = 0;
    std::string prefix;
};

std::optional<IndexChoice> ChooseIndex(const jet::Table& table, const std::string& file,
                                       const std::vector<Equality>& equalities) {
    const jet::TableDef& def = table.Definition();
    std::optional<IndexChoice> best;
    std::size_t bestScore = 0;
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        if (!table.CanSeek(i)) continue;
        std::vector<jet::Value> values;
        for (const jet::IndexColumn& key : def.realIndexes[i].columns) {
            const Value* constant = nullptr;
            for (const Equality& equality : equalities) {
                if (equality.column == key.column) constant = equality.value;
            }
            if (constant == nullptr) break;
            const auto stored = ToStored(def.columns[key.column], *constant);
            if (!stored || IsNull(*constant)) break;
            values.push_back(*stored);
        }
        if (values.empty()) continue;
        // A unique index that is fixed in full leaves one row.
        const bool isWhole = values.size() == def.realIndexes[i].columns.size();
        const std::size_t score =
            2 * values.size() + (isWhole && def.realIndexes[i].IsUnique() ? 100 : 0);
        if (score <= bestScore) continue;
        bestScore = score;
        best = IndexChoice{i, Check(table.MakeKey(i, values), file)};
    }
    return best;
}

std::unique_ptr<KeyStream> OpenTable(const RowSet& rows, std::size_t number,
                                     const Conditions& conditions) {
    jet::Table& table = rows.Table(number);
    const auto choice = ChooseIndex(table, rows.File(), ConstantEqualities(conditions, number));
    if (choice) {
        return std::make_unique<IndexStream>(table, rows.File(), choice->index, choice->prefix);
    }
    const auto primary = table.Definition().PrimaryKey();
    if (primary && table.CanSeek(*primary)) {
        return std::make_unique<IndexStream>(table, rows.File(), *primary, std::string());
    }
    return std::make_unique<ScanStream>(table, rows.File());
}

/// Lets through what meets the conditions of the statement and of the filter.
class FilterStream final : public KeyStream {
public:
    FilterStream(const RowSet& rows, const Expression* filter, RowReader& reader,
                 std::unique_ptr<KeyStream> source)
        : rows_(rows), filter_(filter), reader_(reader), source_(std::move(source)) {}

    bool Next(RowKey& key) override {
        while (source_->Next(key)) {
            // An entry of a row that another program has deleted meanwhile finds nothing.
            if (!reader_.Load(key)) continue;
            if (rows_.Where() != nullptr && !reader_.Holds(*rows_.Where())) continue;
            if (filter_ != nullptr && !reader_.Holds(*filter_)) continue;
            return true;
        }
        return false;
    }

private:
    const RowSet& rows_;
    const Expression* filter_;
    RowReader& reader_;
    std::unique_ptr<KeyStream> source_;
};

/// The equality between the two tables that drives a join.
struct JoinOn {
    std::size_t outer;  // table
    std::size_t outerColumn;
    std::size_t innerColumn;
};

/// Finds the rows of a join's inner table by the value of its column.
class InnerTable {
public:
    InnerTable(jet::Table& table, const std::string& file, std::size_t column)
        : table_(table), file_(file), column_(column) {
        const auto& indexes = table.Definition().realIndexes;
        for (std::size_t i = 0; i < indexes.size() && !index_; ++i) {
            if (table.CanSeek(i) && indexes[i].columns.front().column == column) index_ = i;
        }
    }

    [[nodiscard]] bool HasIndex() const { return index_.has_value(); }

    /// Reads what has to be read before the first look-up.
    void Prepare() {
        if (!index_) Hash();
    }

    /// A superset of the rows whose column equals `value`.
    std::vector<jet::RowId> Find(const Value& value) {
        std::vector<jet::RowId> found;
        if (IsNull(value)) return found;
        const auto stored = ToStored(table_.Definition().columns[column_], value);
        if (!index_ || !stored) {
            Hash();
            const auto [begin, end] = rows_.equal_range(HashKey(value));
            for (auto i = begin; i != end; ++i) found.push_back(i->second);
            return found;
        }
        if (!stream_) stream_.emplace(table_, file_, *index_);
        stream_->Restart(Check(table_.MakeKey(*index_, std::span(&*stored, 1)), file_));
        for (RowKey key = 0; stream_->Next(key);) found.push_back(FirstOf(key));
        return found;
    }

private:
    /// Equal for all values that compare as equal.
    static std::string HashKey(const Value& value) {
        if (const auto number = AsNumber(value)) return std::to_string(*number + 0.0);
        std::string key;
        jet::AppendTextKey(ToText(value), true, key);
        return key;
    }

    /// Reads the whole table once. Rows that cannot be read are left out; the first time, the
    /// failure is thrown when all others are there.
    void Hash() {
        if (std::exchange(hashed_, true)) return;
        jet::RowCursor cursor = Check(table_.Scan(), file_);
        jet::Status damage;
        for (;;) {
            const auto found = cursor.Next();
            if (found.IsOk() && !*found) break;
            jet::Status status = found.GetStatusOrOk();
            if (status.IsOk()) status = Add(cursor.Current());
            if (!status.IsOk() && damage.IsOk()) damage = std::move(status);
        }
        Check(damage, file_);
    }

    jet::Status Add(const jet::Row& row) {
        const auto stored = row.Get(column_);
        if (!stored.IsOk()) return stored.GetStatus();
        const auto value = FromStored(table_, *stored);
        if (!value.IsOk()) return value.GetStatus();
        if (!IsNull(*value)) rows_.emplace(HashKey(*value), row.Id());
        return {};
    }

    jet::Table& table_;
    const std::string& file_;
    std::size_t column_;
    std::optional<std::size_t> index_;
    std::optional<IndexStream> stream_;  // of the look-ups in it
    bool hashed_ = false;
    std::unordered_multimap<std::string, jet::RowId> rows_;
};

/// For each row of the outer table the rows of the inner one that the join finds for it.
class JoinStream final : public KeyStream {
public:
    JoinStream(const RowSet& rows, const JoinOn& on, RowReader& reader,
               std::unique_ptr<KeyStream> outer)
        : on_(on),
          reader_(reader),
          outer_(std::move(outer)),
          inner_(rows.Table(1 - on.outer), rows.File(), on.innerColumn) {}

    bool Next(RowKey& key) override {
        // Before the first outer row is taken: a failure here must not cost that row.
        inner_.Prepare();
        while (next_ >= found_.size()) {
            RowKey outer = 0;
            if (!outer_->Next(outer)) return false;
            outerRow_ = FirstOf(outer);
            found_.clear();
            next_ = 0;
            if (!reader_.LoadOne(on_.outer, outerRow_)) continue;
            found_ = inner_.Find(reader_.Get(on_.outer, on_.outerColumn));
        }
        const jet::RowId innerRow = found_[next_++];
        key = on_.outer == 0 ? KeyOf(outerRow_, innerRow) : KeyOf(innerRow, outerRow_);
        return true;
    }

private:
    JoinOn on_;
    RowReader& reader_;
    std::unique_ptr<KeyStream> outer_;
    InnerTable inner_;
    jet::RowId outerRow_;
    std::vector<jet::RowId> found_;
    std::size_t next_ = 0;
};

/// Every pair of rows.
class ProductStream final : public KeyStream {
public:
    explicit ProductStream(const RowSet& rows) : rows_(rows), outer_(OpenTable(rows, 0, {})) {}

    bool Next(RowKey& key) override {
        RowKey inner = 0;
        while (!inner_ || !inner_->Next(inner)) {
            if (!outer_->Next(outerKey_)) return false;
            inner_ = OpenTable(rows_, 1, {});
        }
        key = KeyOf(FirstOf(outerKey_), FirstOf(inner));
        return true;
    }

private:
    const RowSet& rows_;
    std::unique_ptr<KeyStream> outer_;
    std::unique_ptr<KeyStream> inner_;
    RowKey outerKey_ = 0;
};

std::unique_ptr<KeyStream> OpenJoin(const RowSet& rows, RowReader& reader,
                                    const Conditions& conditions) {
    std::optional<JoinOn> best;
    int bestCost = 0;
    for (const Expression* condition : conditions) {
        if (!IsEquality(*condition) || !condition->left.isColumn || !condition->right.isColumn ||
            condition->left.column.table == condition->right.column.table) {
            continue;
        }
        for (const bool swapped : {false, true}) {
            const ColumnRef& outer = swapped ? condition->right.column : condition->left.column;
            const ColumnRef& inner = swapped ? condition->left.column : condition->right.column;
            const JoinOn on{outer.table, outer.column, inner.column};
            // Begin where an index leaves fewest rows, then where constants do.
            const auto equalities = ConstantEqualities(conditions, outer.table);
            const bool byIndex =
                ChooseIndex(rows.Table(outer.table), rows.File(), equalities).has_value();
            const InnerTable table(rows.Table(inner.table), rows.File(), inner.column);
            const int cost = (byIndex              ? 0
                              : equalities.empty() ? 4
                                                   : 2) +
                             (table.HasIndex() ? 0 : 1);
            const bool better =
                !best || cost < bestCost || (cost == bestCost && on.outer < best->outer);
            if (better) {
                best = on;
                bestCost = cost;
            }
        }
    }
    if (!best) return std::make_unique<ProductStream>(rows);
    return std::make_unique<JoinStream>(rows, *best, reader,
                                        OpenTable(rows, best->outer, conditions));
}

Conditions AllConditions(const RowSet& rows, const Expression* filter) {
    Conditions conditions;
    for (const Expression* condition : {rows.Where(), filter}) {
        if (condition == nullptr) continue;
        const Conditions parts = Conjuncts(*condition);
        conditions.insert(conditions.end(), parts.begin(), parts.end());
    }
    return conditions;
}

}  // namespace

std::unique_ptr<KeyStream> OpenStream(const RowSet& rows, const Expression* filter,
                                      RowReader& reader) {
    const Conditions conditions = AllConditions(rows, filter);
    auto stream = rows.TableCount() == 1 ? OpenTable(rows, 0, conditions)
                                         : OpenJoin(rows, reader, conditions);
    if (rows.Where() == nullptr && filter == nullptr) return stream;
    return std::make_unique<FilterStream>(rows, filter, reader, std::move(stream));
}

std::optional<std::vector<RowKey>> LookUp(const RowSet& rows, const Expression& condition) {
    if (rows.TableCount() != 1) return std::nullopt;
    const auto choice =
        ChooseIndex(rows.Table(0), rows.File(), ConstantEqualities(Conjuncts(condition), 0));
    if (!choice) return std::nullopt;
    std::vector<RowKey> keys;
    IndexStream stream(rows.Table(0), rows.File(), choice->index, choice->prefix);
    for (RowKey key = 0; stream.Next(key);) keys.push_back(key);
    return keys;
}

}  // namespace ado
