#include "project/compare/TableCompare.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "project/Schema.h"

namespace project {
namespace {

void ToFirst(ado::Recordset& rows) {
    if (!rows.IsBOF() || !rows.IsEOF()) rows.MoveFirst();
}

/// The number of the current row, as far as the rows come in the order of their numbers.
class Numbers {
public:
    explicit Numbers(ado::Recordset& rows) : rows_(rows), key_(rows.FieldIndex(kKeyColumn)) {
        ToFirst(rows_);
        Read();
    }

    [[nodiscard]] bool IsAtEnd() const { return isAtEnd_; }
    [[nodiscard]] std::int32_t Number() const { return number_; }
    [[nodiscard]] bool AreInOrder() const { return inOrder_; }
    void Next() {
        rows_.MoveNext();
        Read();
    }

private:
    void Read() {
        isAtEnd_ = true;
        if (rows_.IsEOF()) return;
        const ado::Value value = rows_.Get(key_);
        const auto* number = std::get_if<std::int32_t>(&value);
        inOrder_ = inOrder_ && number != nullptr && (isFirst_ || number_ < *number);
        if (!inOrder_) return;
        isAtEnd_ = false;
        isFirst_ = false;
        number_ = *number;
    }

    ado::Recordset& rows_;
    std::size_t key_;
    std::int32_t number_ = 0;  // of the last row that was in order
    bool isFirst_ = true;
    bool isAtEnd_ = false;  // or not in order
    bool inOrder_ = true;
};

std::optional<std::size_t> Find(const std::vector<ado::Field>& fields, const std::string& name) {
    const auto found = std::ranges::find(fields, name, &ado::Field::name);
    if (found == fields.end()) return std::nullopt;
    return static_cast<std::size_t>(found - fields.begin());
}

std::size_t HashOf(const std::vector<ado::Value>& values) {
    std::size_t hash = 0;
    for (const ado::Value& value : values) {
        std::size_t own = value.index();
        if (const auto* binary = std::get_if<ado::Binary>(&value)) {
            const auto* bytes = reinterpret_cast<const char*>(binary->data());
            own += std::hash<std::string_view>()({bytes, binary->size()});
        } else if (const auto* guid = std::get_if<ado::Guid>(&value)) {
            const auto* bytes = reinterpret_cast<const char*>(guid->bytes.data());
            own += std::hash<std::string_view>()({bytes, guid->bytes.size()});
        } else if (const auto* date = std::get_if<ado::Date>(&value)) {
            own += std::hash<double>()(date->days);
        } else {
            own += std::hash<std::u16string>()(ado::ToText(value));
        }
        hash = hash * 0x9E3779B97F4A7C15U + own;
    }
    return hash;
}

}  // namespace

TableCompare::TableCompare(ado::Connection& before, ado::Connection& after,
                           const std::string& table, std::function<void()> look)
    : table_(table), look_(std::move(look)) {
    sides_[0].rows.Open(table, before, ado::CommandType::Table);
    sides_[1].rows.Open(table, after, ado::CommandType::Table);
}

void TableCompare::JoinColumns(Differences& found) {
    const std::vector<ado::Field>& before = sides_[0].rows.Fields();
    const std::vector<ado::Field>& after = sides_[1].rows.Fields();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto other = Find(after, before[i].name);
        names.push_back(before[i].name);
        sides_[0].fields.push_back(i);
        sides_[1].fields.push_back(other.value_or(kNone));
        if (!other) {
            found.tables.push_back({TableDifference::Kind::ColumnGone, table_, before[i].name});
        }
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (Find(before, after[i].name)) continue;
        names.push_back(after[i].name);
        sides_[0].fields.push_back(kNone);
        sides_[1].fields.push_back(i);
        found.tables.push_back({TableDifference::Kind::ColumnNew, table_, after[i].name});
    }
    columns_ = std::make_shared<const std::vector<std::string>>(std::move(names));
}

void TableCompare::Run(Differences& found) {
    JoinColumns(found);
    Rows rows;
    bool isDone = HasNumbers() && CompareByNumber(rows);
    if (!isDone && HasNumbers()) {
        // The order of the primary key is another column's, or there is none.
        for (Side& side : sides_) side.rows.SetSort(kKeyColumn);
        rows.clear();
        isDone = CompareByNumber(rows);
    }
    if (!isDone) {
        rows.clear();
        CompareAsSets(rows);
        found.withoutIds.push_back(table_);
    }
    std::ranges::move(rows, std::back_inserter(found.rows));
}

bool TableCompare::HasNumbers() const {
    return std::ranges::all_of(sides_, [](const Side& side) {
        const auto key = Find(side.rows.Fields(), std::string(kKeyColumn));
        return key && side.rows.Fields()[*key].type == ado::DataType::Integer;
    });
}

bool TableCompare::CompareByNumber(Rows& found) {
    Numbers before(sides_[0].rows);
    Numbers after(sides_[1].rows);
    while (!before.IsAtEnd() || !after.IsAtEnd()) {
        look_();
        const bool isGone =
            after.IsAtEnd() || (!before.IsAtEnd() && before.Number() < after.Number());
        const bool isNew =
            before.IsAtEnd() || (!after.IsAtEnd() && after.Number() < before.Number());
        if (isGone) {
            found.push_back(Change(&sides_[0], nullptr));
        } else if (isNew) {
            found.push_back(Change(nullptr, &sides_[1]));
        } else if (!HoldTheSame()) {
            found.push_back(Change(&sides_[0], &sides_[1]));
        }
        if (!isNew) before.Next();
        if (!isGone) after.Next();
        if (!before.AreInOrder() || !after.AreInOrder()) return false;
    }
    return before.AreInOrder() && after.AreInOrder();
}

void TableCompare::CompareAsSets(Rows& found) {
    // How many more of equal rows the earlier project has; by hash, so that only rows that differ
    // are kept.
    std::map<std::size_t, std::ptrdiff_t> counts;
    for (Side& side : sides_) {
        const std::ptrdiff_t each = &side == &sides_[0] ? 1 : -1;
        for (ToFirst(side.rows); !side.rows.IsEOF(); side.rows.MoveNext()) {
            look_();
            const auto at = counts.try_emplace(HashOf(ValuesOf(side)), 0).first;
            at->second += each;
            if (at->second == 0) counts.erase(at);
        }
    }
    for (Side& side : sides_) AddRest(side, counts, found);
}

void TableCompare::AddRest(Side& side, std::map<std::size_t, std::ptrdiff_t>& counts, Rows& found) {
    const bool isBefore = &side == &sides_[0];
    for (ToFirst(side.rows); !side.rows.IsEOF() && !counts.empty(); side.rows.MoveNext()) {
        const auto at = counts.find(HashOf(ValuesOf(side)));
        if (at == counts.end() || (at->second > 0) != isBefore) continue;
        found.push_back(isBefore ? Change(&side, nullptr) : Change(nullptr, &side));
        at->second += isBefore ? -1 : 1;
        if (at->second == 0) counts.erase(at);
    }
}

ado::Value TableCompare::ValueOf(const Side& side, std::size_t column) {
    const std::size_t field = side.fields[column];
    return field == kNone ? ado::Value() : side.rows.Get(field);
}

std::vector<ado::Value> TableCompare::ValuesOf(const Side& side) const {
    std::vector<ado::Value> values;
    values.reserve(columns_->size());
    for (std::size_t i = 0; i < columns_->size(); ++i) values.push_back(ValueOf(side, i));
    return values;
}

bool TableCompare::HoldTheSame() const {
    for (std::size_t i = 0; i < columns_->size(); ++i) {
        if (!IsSame(ValueOf(sides_[0], i), ValueOf(sides_[1], i))) return false;
    }
    return true;
}

ado::RowChange TableCompare::Change(const Side* before, const Side* after) const {
    ado::RowChange change;
    change.table = table_;
    change.columns = columns_;
    if (before != nullptr) change.before = ValuesOf(*before);
    if (after != nullptr) change.after = ValuesOf(*after);
    return change;
}

}  // namespace project
