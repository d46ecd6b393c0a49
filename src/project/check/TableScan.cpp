#include "project/check/TableScan.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "project/FieldText.h"
#include "project/Number.h"

namespace project {

std::optional<double> ScannedRow::Number(ScanPlace place) const {
    if (!place) return std::nullopt;
    const ado::Value& value = values_[*place];
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* number = std::get_if<float>(&value)) return *number;
    return std::nullopt;
}

std::optional<std::int32_t> ScannedRow::Long(ScanPlace place) const {
    const std::optional<double> number = Number(place);
    constexpr double kLargest = std::numeric_limits<std::int32_t>::max();
    if (!number || !(std::abs(*number) <= kLargest)) return std::nullopt;
    return static_cast<std::int32_t>(*number);
}

std::u16string_view ScannedRow::Text(ScanPlace place) const {
    const auto* text = place ? std::get_if<std::u16string>(&values_[*place]) : nullptr;
    return text == nullptr ? std::u16string_view() : Content(*text);
}

TableScan::TableScan(ado::Connection& connection, const Table& table) : columns_(1) {
    rows_.Open(table.name, connection, ado::CommandType::Table);
    fields_.push_back(rows_.FieldIndex(kKeyColumn));
    columns_[0].name = kKeyColumn;
    for (std::size_t i = 0; i < rows_.Fields().size(); ++i) {
        const ado::Field& field = rows_.Fields()[i];
        const auto known =
            std::find_if(table.columns.begin(), table.columns.end(),
                         [&](const Column& column) { return column.name == field.name; });
        const bool isKnown = known != table.columns.end();
        if (!isKnown && !(table.hasLanguages && IsLanguageColumn(field.name))) continue;
        const bool isLimited = field.type == ado::DataType::VarWChar;
        columns_.push_back({field.name, isKnown ? &*known : nullptr,
                            isLimited ? static_cast<std::size_t>(field.definedSize) : 0});
        fields_.push_back(i);
    }
}

ScanPlace TableScan::Find(std::string_view name) const {
    const auto found =
        std::find_if(columns_.begin(), columns_.end(),
                     [&](const ScannedColumn& column) { return column.name == name; });
    if (found == columns_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns_.begin());
}

std::size_t TableScan::Run(const std::function<void(const ScannedRow& row)>& look) const {
    return rows_.Scan(fields_,
                      [&](const std::vector<ado::Value>& values) { look(ScannedRow(values)); });
}

std::vector<std::int32_t> TableScan::Keys() const {
    std::vector<std::int32_t> keys = rows_.NumbersOf(fields_.front());
    std::sort(keys.begin(), keys.end());
    return keys;
}

const Table& TableOf(std::string_view name) {
    return *std::find_if(Tables().begin(), Tables().end(),
                         [&](const Table& table) { return table.name == name; });
}

std::u16string_view Content(std::u16string_view text) {
    return text == kEmptyText ? std::u16string_view() : WithoutBlanks(text);
}

}  // namespace project
