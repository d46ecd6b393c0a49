#include "project/Schema.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "project/Colour.h"

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

constexpr Code kArchiveKinds[] = {{ArchiveType::kCircularBuffer, 162},
                                  {ArchiveType::kContinuationFile, 163}};

constexpr ClockEvent kClockEvents[] = {
    {u"$Year", u"$Jahr"},   {u"$Month", u"$Monat"},   {u"$Week", u"$Woche"},     {u"$Day", u"$Tag"},
    {u"$Hour", u"$Stunde"}, {u"$Minute", u"$Minute"}, {u"$Second", u"$Sekunde"},
};

constexpr std::int32_t kRed = 0x0000FF;
constexpr std::int32_t kBlue = 0xFF0000;

constexpr auto Short = ado::DataType::SmallInt;
constexpr auto Long = ado::DataType::Integer;
constexpr auto Double = ado::DataType::Double;

// The forms that columns have.

constexpr Column TextOf(std::string_view name, int length, Kind kind = Kind::Text) {
    return {.name = name, .length = length, .kind = kind};
}
constexpr Column FolderOf(std::string_view name) {
    return {.name = name, .length = 255, .initial = kProjectFolder};
}
constexpr Column NameOf(int length) {
    Column column = TextOf("Name", length);
    column.required = true;
    return column;
}
constexpr Column NumberOf(std::string_view name, ado::DataType type, Default initial = {}) {
    return {.name = name, .type = type, .kind = Number, .initial = initial};
}
constexpr Column CountOf(std::string_view name, ado::DataType type, Default initial = {}) {
    Column column = NumberOf(name, type, initial);
    column.isCount = true;
    return column;
}
constexpr Column CodeOf(std::string_view name, std::span<const Code> codes, std::int32_t initial) {
    return {.name = name, .type = Short, .kind = Listed, .initial = initial, .codes = codes};
}
constexpr Column ColourOf(std::string_view name, Default initial = {}) {
    return {.name = name, .type = Long, .kind = Colour, .initial = initial};
}
constexpr Column KeyOf(std::string_view name) {
    return {.name = name, .type = Long, .kind = Key};
}
constexpr Column FlagOf(std::string_view name) {
    return {.name = name, .type = ado::DataType::Boolean, .kind = Flag};
}
/// The user knows it by the text of that number.
constexpr Column Shown(int caption, Column column) {
    column.caption = caption;
    return column;
}
/// In the dialog it has a text of its own.
constexpr Column Shown(int caption, int dialogCaption, Column column) {
    column.dialogCaption = dialogCaption;
    return Shown(caption, column);
}

// The file name of a new archive is made of its name, see Names. A `NewFile` that is Null is the
// empty text that every file accepts.
constexpr Column kArchiveColumns[] = {
    Shown(202, NameOf(80)),
    KeyOf("TextID"),
    Shown(209, NumberOf("Type", Short, 0)),
    Shown(211, TextOf("FileName", 255)),
    Shown(212, FolderOf("FilePath")),
    Shown(213, FolderOf("RedundancyFilePath")),
    Shown(214, CodeOf("SampleMode", kSampleModes, SampleMode::kMilliseconds)),
    Shown(215, TextOf("Trigger", 255, Variable)),
    Shown(216, CountOf("ScanTime", Long, 1000)),
    Shown(217, CountOf("MaxSamples", Long, 10000)),
    Shown(218, TextOf("NewFile", 255, FileEvent)),
    Shown(219, TextOf("XVar", 255, Variable)),
    Shown(220, TextOf("StartStop", 255, Variable)),
    Shown(221, TextOf("Reset", 255, Variable)),
    Shown(222, CountOf("CacheSize", Long, 100)),
    Shown(227, CountOf("AuthorizationLevel", Short, 0)),
    Shown(228, TextOf("Comment", 255)),
    Shown(229, CountOf("MaxFiles", Long, 0)),
    Shown(230, CountOf("MaxSizeKb", Long, 0)),
    TextOf(kParamNames, 255),
};

// The colour of a new curve depends on the other trends, see CurveColours.
constexpr Column kTrendColumns[] = {
    Shown(101, 402, NameOf(80)),
    KeyOf("ArchiveID"),
    KeyOf("TextID"),
    Shown(102, 404, TextOf("TrendVar", 255, Variable)),
    Shown(103, 405, TextOf("Maximum", 64, Limit)),
    Shown(104, 406, TextOf("Minimum", 64, Limit)),
    Shown(105, 407, TextOf("SurrogateMax", 64, Limit)),
    Shown(106, 408, TextOf("SurrogateMin", 64, Limit)),
    Shown(107, 409, TextOf("ErrorValue", 64, Limit)),
    Shown(108, 410, TextOf("Hysteresis", 64, Limit)),
    Shown(109, 411, CodeOf("HysteresisMode", kHysteresisModes, kNoHysteresis)),
    Shown(110, 412, NumberOf("Factor", Double, 1)),
    Shown(111, 413, NumberOf("Offset", Double, 0)),
    Shown(112, 414, CodeOf("Filter", kFilters, 0)),
    Shown(113, 415, CountOf("FilterDepth", Long, 0)),
    Shown(114, 416, TextOf("Unit", 32)),
    Shown(115, 417, NumberOf("VMax", Double, 100)),
    Shown(116, 418, NumberOf("VMin", Double, 0)),
    Shown(117, 419, NumberOf("VUpper", Double, 90)),
    Shown(118, 420, NumberOf("VLower", Double, 10)),
    Shown(119, 421, ColourOf("VLineColor")),
    Shown(120, 422, CountOf("VLineWidth", Short, 1)),
    Shown(121, 423, CodeOf("VLineStyle", kLineStyles, 0)),
    Shown(122, 424, ColourOf("VUpperColor", kRed)),
    Shown(123, 425, ColourOf("VLowerColor", kBlue)),
    Shown(124, 426, CodeOf("VConfig", kConfigs, 0)),
    Shown(125, 427, CodeOf("VDrawMode", kDrawModes, 0)),
    Shown(126, 428, CountOf("VMaxSamples", Long, 1000)),
    Shown(127, 429, KeyOf("VUnitID")),
    Shown(128, 430, TextOf("Comment", 255)),
};

constexpr Column kTextColumns[] = {KeyOf("ParentID"), NameOf(100), TextOf(kParamNames, 255)};

constexpr Column kGroupColumns[] = {KeyOf("ParentID"),  NameOf(100),      NumberOf("Type", Short),
                                    KeyOf("Parameter"), FlagOf("Delete"), FlagOf("Rename")};

constexpr Column kStructColumns[] = {NameOf(64), TextOf("Comment", 255)};

constexpr Column kVariableColumns[] = {KeyOf("StructID"), NameOf(128), TextOf("DataType", 16),
                                       TextOf("Unit", 16), TextOf("Comment", 255)};

constexpr Column kLanguageColumns[] = {NumberOf("LCID", Long), TextOf("kbLayout", 16),
                                       TextOf("Font", 64)};

constexpr Table kTables[] = {
    {kArchiveTable, kArchiveColumns},
    {kTrendTable, kTrendColumns, "ArchiveID"},
    {kTextTable, kTextColumns, "ParentID", true},
    {kGroupTable, kGroupColumns},
    {kStructTable, kStructColumns},
    {kVariableTable, kVariableColumns},
    {kLanguageTable, kLanguageColumns},
};

/// `has` tells whether the table of trends has a column.
std::string MakeTrendQuery(const std::function<bool(std::string_view)>& has) {
    const std::string trends(kTrendTable);
    const std::string texts(kTextTable);
    std::string query = "SELECT " + trends + ".ID AS ID, " + trends + ".Name AS Name, " + trends +
                        ".ArchiveID, " + trends + ".TextID, " + texts + ".*";
    for (const Column& column : kTrendColumns) {
        const bool stands = column.name == "Name" || column.caption == 0;
        if (stands || !has(column.name)) continue;
        // The columns of the display stand in back quotes.
        const std::string quote = column.name.starts_with('V') ? "`" : "";
        query += ", " + trends + "." + quote + std::string(column.name) + quote;
    }
    // Blanks as they stand, two of them before the last column included.
    return query + ",  " + texts + ".ID AS Expr1 FROM " + trends + ", " + texts + " WHERE (" +
           trends + ".TextID = " + texts + ".ID) AND (" + trends + ".ArchiveID = Param1 )";
}

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

std::span<const Reference> References() {
    static constexpr Reference kReferences[] = {
        {kArchiveTable, "TextID", kTextTable},
        {kTrendTable, "TextID", kTextTable},
        {kTrendTable, "ArchiveID", kArchiveTable},
        {kTextTable, "ParentID", kGroupTable},
        {kGroupTable, "ParentID", kGroupTable},
        {kGroupTable, "Parameter", kArchiveTable, kArchiveGroup},
    };
    return kReferences;
}

std::span<const Table> Tables() {
    return kTables;
}

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

std::span<const Limits> TrendLimits() {
    static constexpr Limits kLimits[] = {
        {"Minimum", "Maximum"}, {"VMin", "VMax"}, {"VLower", "VUpper"}};
    return kLimits;
}

std::string LanguageColumn(std::int64_t lcid) {
    return "L" + std::to_string(lcid);
}

bool IsLanguageColumn(std::string_view name) {
    return name.size() > 1 && name.front() == 'L' &&
           name.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

const std::string& TrendQuery() {
    static const std::string query = MakeTrendQuery([](std::string_view) { return true; });
    return query;
}

std::string TrendQuery(std::span<const ado::Field> trends) {
    return MakeTrendQuery([&](std::string_view column) {
        return std::any_of(trends.begin(), trends.end(),
                           [&](const ado::Field& field) { return field.name == column; });
    });
}

bool IsSound(const Column& column, const ado::Value& value) {
    const auto* text = std::get_if<std::u16string>(&value);
    if (column.required) return text != nullptr && text->find_first_not_of(u' ') != text->npos;
    const auto* number = std::get_if<std::int32_t>(&value);
    if (column.isCount) return number == nullptr || *number >= 0;
    if (number == nullptr) return column.kind != Listed || ado::IsNull(value);
    if (column.kind == Colour) return IsColour(*number);
    return column.kind != Listed ||
           std::any_of(column.codes.begin(), column.codes.end(),
                       [&](const Code& each) { return each.code == *number; });
}

bool NamesVariable(const Column& column, std::u16string_view text) {
    if (text.find_first_not_of(u'\0') == text.npos) return false;  // what stands for an empty text
    switch (column.kind) {
        case Variable:
            return true;
        case Limit:
            return !ado::ToNumber(text);
        case FileEvent:
            return !FindClockEvent(text);
        default:
            return false;
    }
}

std::span<const Code> ArchiveKinds() {
    return kArchiveKinds;
}

std::span<const ClockEvent> ClockEvents() {
    return kClockEvents;
}

std::optional<std::size_t> FindClockEvent(std::u16string_view newFile) {
    for (std::size_t i = 0; i < std::size(kClockEvents); ++i) {
        if (newFile == kClockEvents[i].english || newFile == kClockEvents[i].german) return i;
    }
    return std::nullopt;
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
