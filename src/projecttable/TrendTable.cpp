#include "projecttable/TrendTable.h"

#include <algorithm>

namespace {

constexpr std::size_t kArchiveColumn = 0;

bool Has(const ado::Connection& connection, std::string_view table) {
    const std::vector<std::string> names = connection.TableNames();
    return std::find(names.begin(), names.end(), table) != names.end();
}

std::int32_t LongOf(const ado::Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? *number : 0;
}

std::vector<ado::Value> ValuesOf(const ado::Recordset& rows,
                                 const std::vector<std::size_t>& fields) {
    std::vector<ado::Value> values;
    for (const std::size_t field : fields) values.push_back(rows.Get(field));
    return values;
}

}  // namespace

std::size_t TrendTable::ValueHash::operator()(const ado::Value& value) const {
    const auto hash = [](const auto& held) -> std::size_t {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::u16string>) {
            return std::hash<std::u16string>()(held);
        } else if constexpr (std::is_arithmetic_v<Held>) {
            return std::hash<Held>()(held);
        } else if constexpr (std::is_same_v<Held, ado::Date>) {
            return std::hash<double>()(held.days);
        } else if constexpr (std::is_same_v<Held, ado::Currency>) {
            return std::hash<std::int64_t>()(held.tenThousandths);
        } else {
            return 0;  // seldom: they only meet in one bucket
        }
    };
    return std::visit(hash, value) * 31 + value.index();
}

TrendTable TrendTable::Read(ado::Connection& connection, std::size_t most) {
    const ado::OneState state(connection);
    TrendTable table;
    table.contentNumber_ = connection.ContentNumber();
    table.ReadTrends(connection, most);
    table.ReadTexts(connection, most);
    table.ReadVariables(connection);
    return table;
}

TrendTable::ValueNumber TrendTable::NumberOf(std::size_t column, const ado::Value& value) {
    if (ado::IsNull(value)) return 0;
    std::vector<ado::Value>& values = columns_[column].values;
    // Most rows have in most columns what the row before had.
    if (values[last_[column]] == value) return last_[column];
    const auto [place, isNew] =
        numbers_[column].try_emplace(value, static_cast<ValueNumber>(values.size()));
    if (isNew) values.push_back(value);
    return last_[column] = place->second;
}

void TrendTable::ReadTrends(ado::Connection& connection, std::size_t most) {
    std::unordered_map<std::int32_t, ado::Value> archiveNames;
    ado::Recordset archives;
    archives.Open(project::kArchiveTable, connection, ado::CommandType::Table);
    archives.Scan({archives.FieldIndex("ID"), archives.FieldIndex("Name")},
                  [&](const std::vector<ado::Value>& row) {
                      archiveNames.try_emplace(LongOf(row[0]), row[1]);
                  });
    ado::Field archive = archives.Fields()[archives.FieldIndex("Name")];
    archive.name = "Archive";
    columns_.push_back({archive, nullptr, true, {ado::Null()}, {}});

    ado::Recordset trends;
    trends.Open(project::kTrendTable, connection, ado::CommandType::Table);
    std::vector<std::size_t> fields = {trends.FieldIndex("ID"), trends.FieldIndex("ArchiveID"),
                                       trends.FieldIndex("TextID")};
    const std::size_t firstSetting = fields.size();
    for (const project::Column& known : project::TrendColumns()) {
        if (known.caption == 0) continue;
        const auto& all = trends.Fields();
        const auto field = std::find_if(all.begin(), all.end(), [&](const ado::Field& each) {
            return each.name == known.name;
        });
        if (field == all.end()) continue;
        fields.push_back(static_cast<std::size_t>(field - all.begin()));
        columns_.push_back({*field, &known, false, {ado::Null()}, {}});
    }
    numbers_.resize(columns_.size());
    last_.resize(columns_.size(), 0);
    const auto take = [&](const std::vector<ado::Value>& row) {
        rows_.try_emplace(LongOf(row[0]), static_cast<std::uint32_t>(ids_.size()));
        ids_.push_back(LongOf(row[0]));
        archives_.push_back(LongOf(row[1]));
        texts_.push_back(LongOf(row[2]));
        const auto name = archiveNames.find(archives_.back());
        columns_[kArchiveColumn].cells.push_back(
            name == archiveNames.end() ? 0 : NumberOf(kArchiveColumn, name->second));
        for (std::size_t i = firstSetting; i < fields.size(); ++i) {
            const std::size_t column = i - firstSetting + 1;
            columns_[column].cells.push_back(NumberOf(column, row[i]));
        }
    };
    if (most == kAll) {
        unread_ = trends.Scan(fields, take);
        return;
    }
    for (; !trends.IsEOF() && ids_.size() < most; trends.MoveNext()) take(ValuesOf(trends, fields));
}

void TrendTable::ReadTexts(ado::Connection& connection, std::size_t most) {
    firstText_ = columns_.size();
    ado::Recordset texts;
    texts.Open(project::kTextTable, connection, ado::CommandType::Table);
    std::vector<std::size_t> fields = {texts.FieldIndex("ID")};
    for (std::size_t i = 0; i < texts.Fields().size(); ++i) {
        const ado::Field& field = texts.Fields()[i];
        if (!project::IsLanguageColumn(field.name)) continue;
        fields.push_back(i);
        columns_.push_back({field, nullptr, false, {ado::Null()}, {}});
        columns_.back().cells.resize(ids_.size(), 0);
    }
    numbers_.resize(columns_.size());
    last_.resize(columns_.size(), 0);

    owners_.reserve(ids_.size());
    for (std::uint32_t row = 0; row < texts_.size(); ++row) {
        if (texts_[row] != 0) owners_.emplace(texts_[row], row);
    }
    std::vector<bool> hasText(ids_.size(), false);
    const auto take = [&](const std::vector<ado::Value>& row) {
        const auto [first, last] = owners_.equal_range(LongOf(row[0]));
        for (auto owner = first; owner != last; ++owner) {
            hasText[owner->second] = true;
            for (std::size_t i = 1; i < fields.size(); ++i) {
                const std::size_t column = firstText_ + i - 1;
                columns_[column].cells[owner->second] = NumberOf(column, row[i]);
            }
        }
    };
    if (most == kAll) {
        texts.Scan(fields, take);
    } else {
        for (const std::int32_t text : texts_) {
            texts.SetFilter("ID = " + std::to_string(text));
            if (!texts.IsEOF()) take(ValuesOf(texts, fields));
        }
    }
    for (std::size_t row = 0; row < texts_.size(); ++row) {
        if (!hasText[row]) texts_[row] = 0;
    }
}

void TrendTable::ReadVariables(ado::Connection& connection) {
    if (!Has(connection, project::kVariableTable)) return;
    ado::Recordset variables;
    variables.Open(project::kVariableTable, connection, ado::CommandType::Table);
    variables.Scan({variables.FieldIndex("Name")}, [&](const std::vector<ado::Value>& row) {
        if (!ado::IsNull(row[0])) variables_.insert(ado::FoldName(ado::ToText(row[0])));
    });
}

std::int64_t TrendTable::RowOf(std::int32_t id) const {
    const auto row = rows_.find(id);
    return row == rows_.end() ? -1 : static_cast<std::int64_t>(row->second);
}

std::int32_t TrendTable::StoredIn(std::size_t row, std::size_t column) const {
    if (columns_[column].isArchive) return archives_[row];
    return column >= firstText_ ? texts_[row] : ids_[row];
}

std::vector<std::size_t> TrendTable::RowsStoredIn(std::string_view table, std::int32_t id) const {
    if (table == project::kTrendTable) {
        const std::int64_t row = RowOf(id);
        if (row < 0) return {};
        return {static_cast<std::size_t>(row)};
    }
    const auto [first, last] = owners_.equal_range(id);
    std::vector<std::size_t> rows;
    for (auto owner = first; owner != last; ++owner) rows.push_back(owner->second);
    return rows;
}

void TrendTable::Set(std::size_t row, std::size_t column, const ado::Value& value) {
    columns_[column].cells[row] = NumberOf(column, value);
}

bool TrendTable::IsVariable(std::u16string_view name) const {
    return variables_.empty() || variables_.contains(ado::FoldName(name));
}
