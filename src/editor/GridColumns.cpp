#include "editor/GridColumns.h"

#include <algorithm>
#include <string_view>

#include "projectdb/Text.h"

namespace GridColumns {
namespace {

struct Definition {
    std::string_view field;
    int captionText;  // 0: the field's name
};

constexpr Definition kArchiveColumns[] = {{"Name", 0}, {"Comment", 128}};

constexpr Definition kTrendName = {"Name", 101};
constexpr Definition kTrendColumns[] = {
    {"TrendVar", 102},     {"Maximum", 0},       {"Minimum", 0},      {"SurrogateMax", 105},
    {"SurrogateMin", 106}, {"ErrorValue", 107},  {"Hysteresis", 108}, {"HysteresisMode", 109},
    {"Factor", 110},       {"Offset", 0},        {"Filter", 0},       {"FilterDepth", 113},
    {"Unit", 114},         {"VMax", 115},        {"VMin", 116},       {"VUpper", 117},
    {"VLower", 118},       {"VLineColor", 119},  {"VLineWidth", 0},   {"VLineStyle", 121},
    {"VUpperColor", 122},  {"VLowerColor", 123}, {"VConfig", 124},    {"VDrawMode", 125},
    {"VMaxSamples", 126},  {"VUnitID", 127},     {"Comment", 128},
};

RecordsetModel::Column Column(const Definition& definition, const MResources::TextTable& texts) {
    return {std::string(definition.field), definition.captionText == 0
                                               ? projectdb::ToQString(definition.field)
                                               : texts.GetText(definition.captionText)};
}

/// Columns of the project's languages are named "L" and the language's number.
bool IsLanguageColumn(std::string_view field) {
    return field.size() > 1 && field.front() == 'L' &&
           std::all_of(field.begin() + 1, field.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::vector<RecordsetModel::Column> OfArchives(const MResources::TextTable& texts) {
    std::vector<RecordsetModel::Column> columns;
    for (const Definition& definition : kArchiveColumns) {
        columns.push_back(Column(definition, texts));
    }
    return columns;
}

std::vector<RecordsetModel::Column> OfTrends(const ado::Recordset& trends,
                                             const MResources::TextTable& texts) {
    std::vector<RecordsetModel::Column> columns{Column(kTrendName, texts)};
    for (const ado::Field& field : trends.Fields()) {
        if (IsLanguageColumn(field.name)) columns.push_back(Column({field.name, 0}, texts));
    }
    for (const Definition& definition : kTrendColumns) columns.push_back(Column(definition, texts));
    return columns;
}

}  // namespace GridColumns
