#include "project/Schema.h"

#include <algorithm>
#include <string>

namespace project {
namespace {

using enum Kind;

// No hysteresis stands first in the grid's list although its code is the last.
constexpr Code kHysteresisModes[] = {{kNoHysteresis, 130}, {0, 131}, {1, 132}, {2, 133}};
constexpr Code kFilters[] = {{0, 134}, {1, 135}, {2, 136}, {3, 137}, {4, 138}};
constexpr Code kLineStyles[] = {{0, 140}, {1, 141}, {2, 142}};
constexpr Code kConfigs[] = {{0, 144}, {1, 145}, {2, 146}};
// Splines, points and bars are set elsewhere; the dialog does not offer them.
constexpr Code kDrawModes[] = {
    {0, 151}, {1, 152}, {2, 153, false}, {3, 154, false}, {4, 155, false}};
// No recording at all is valid in a project but not offered.
constexpr Code kSampleModes[] = {{0, 171}, {1, 172},        {2, 173}, {3, 174},
                                 {4, 176}, {5, 177, false}, {6, 178}};

constexpr std::u16string_view kProjectFolder = u"<ProjectDir>";
constexpr std::int32_t kRed = 0x0000FF;
constexpr std::int32_t kBlue = 0xFF0000;

// The file name of a new archive is made of its name, see Names.
constexpr Column kArchiveColumns[] = {
    {"Name"},
    {"TextID", Key},
    {"Type", Number, 0},
    {"FileName"},
    {"FilePath", Text, kProjectFolder},
    {"RedundancyFilePath", Text, kProjectFolder},
    {"SampleMode", Listed, 1, kSampleModes},
    {"Trigger", Variable},
    {"ScanTime", Number, 1000},
    {"MaxSamples", Number, 10000},
    {"NewFile"},  // Null is the empty text that every file accepts
    {"XVar", Variable},
    {"StartStop", Variable},
    {"Reset", Variable},
    {"CacheSize", Number, 100},
    {"AuthorizationLevel", Number, 0},
    {"Comment"},
    {"MaxFiles", Number, 0},
    {"MaxSizeKb", Number, 0},
    {"ParamNames"},
};

// The colour of the curve depends on the other trends, see CurveColours.
constexpr Column kTrendColumns[] = {
    {"Name", Text, {}, {}, 101},
    {"TrendVar", Variable, {}, {}, 102},
    {"Maximum", Text, {}, {}, 103},
    {"Minimum", Text, {}, {}, 104},
    {"SurrogateMax", Text, {}, {}, 105},
    {"SurrogateMin", Text, {}, {}, 106},
    {"ErrorValue", Text, {}, {}, 107},
    {"Hysteresis", Text, {}, {}, 108},
    {"HysteresisMode", Listed, kNoHysteresis, kHysteresisModes, 109},
    {"Factor", Number, 1, {}, 110},
    {"Offset", Number, 0, {}, 111},
    {"Filter", Listed, 0, kFilters, 112},
    {"FilterDepth", Number, 0, {}, 113},
    {"Unit", Text, {}, {}, 114},
    {"VMax", Number, 100, {}, 115},
    {"VMin", Number, 0, {}, 116},
    {"VUpper", Number, 90, {}, 117},
    {"VLower", Number, 10, {}, 118},
    {"VLineColor", Colour, {}, {}, 119},
    {"VLineWidth", Number, 1, {}, 120},
    {"VLineStyle", Listed, 0, kLineStyles, 121},
    {"VUpperColor", Colour, kRed, {}, 122},
    {"VLowerColor", Colour, kBlue, {}, 123},
    {"VConfig", Listed, 0, kConfigs, 124},
    {"VDrawMode", Listed, 0, kDrawModes, 125},
    {"VMaxSamples", Number, 1000, {}, 126},
    {"VUnitID", Key, {}, {}, 127},
    {"Comment", Text, {}, {}, 128},
};

const Column* Find(std::span<const Column> columns, std::string_view name) {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& column) { return column.name == name; });
    return found == columns.end() ? nullptr : &*found;
}

bool Takes(const ado::Field& field, const Default& initial) {
    if (std::holds_alternative<std::int32_t>(initial)) return IsNumber(field.type);
    const auto* text = std::get_if<std::u16string_view>(&initial);
    if (text == nullptr || !IsText(field.type)) return false;
    return field.type == ado::DataType::LongVarWChar ||
           text->size() <= static_cast<std::size_t>(field.definedSize);
}

}  // namespace

std::span<const Column> ArchiveColumns() {
    return kArchiveColumns;
}

std::span<const Column> TrendColumns() {
    return kTrendColumns;
}

const Column* FindArchiveColumn(std::string_view name) {
    return Find(kArchiveColumns, name);
}

const Column* FindTrendColumn(std::string_view name) {
    return Find(kTrendColumns, name);
}

std::int32_t HysteresisMode(bool hasAmount, std::int32_t stored) {
    return hasAmount ? std::clamp(stored, 0, kNoHysteresis) : kNoHysteresis;
}

bool IsNumber(ado::DataType type) {
    switch (type) {
        case ado::DataType::SmallInt:
        case ado::DataType::Integer:
        case ado::DataType::Single:
        case ado::DataType::Double:
        case ado::DataType::Currency:
        case ado::DataType::UnsignedTinyInt:
        case ado::DataType::Numeric:
            return true;
        default:
            return false;
    }
}

bool IsText(ado::DataType type) {
    return type == ado::DataType::VarWChar || type == ado::DataType::LongVarWChar;
}

void AssignDefaults(ado::Recordset& row, std::span<const Column> columns) {
    for (std::size_t i = 0; i < row.Fields().size(); ++i) {
        const ado::Field& field = row.Fields()[i];
        const Column* column = Find(columns, field.name);
        if (column == nullptr || !Takes(field, column->initial)) continue;
        if (const auto* number = std::get_if<std::int32_t>(&column->initial)) {
            row.Set(i, *number);
        } else {
            row.Set(i, std::u16string(std::get<std::u16string_view>(column->initial)));
        }
    }
}

}  // namespace project
