#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "ado/Recordset.h"

/// The tables of a project and what their columns mean, each fact once.
namespace project {

inline constexpr std::string_view kArchiveTable = "TchrArchives";
inline constexpr std::string_view kTrendTable = "TchrTrends";
inline constexpr std::string_view kTextTable = "TidxTexts";
inline constexpr std::string_view kGroupTable = "TidxGroups";
inline constexpr std::string_view kStructTable = "TpdbStructs";
inline constexpr std::string_view kVariableTable = "TpdbVars";
inline constexpr std::string_view kLanguageTable = "TcfgLanguages";

/// What stands for the folder of the project at the beginning of a path.
inline constexpr std::u16string_view kProjectFolder = u"<ProjectDir>";

/// The key of every table, an AutoNumber.
inline constexpr std::string_view kKeyColumn = "ID";

/// Type of the text groups that belong to archives, as it is stored; other editors have others.
inline constexpr std::int32_t kArchiveGroup = -2;

enum class Kind {
    Text,
    Number,
    Limit,      // a number, or the name of a variable that holds it, as a text
    Listed,     // a number that stands for a text
    Colour,     // see Colour.h
    Variable,   // name of a process variable
    FileEvent,  // an event of the clock, see ClockEvents, or the name of a variable
    Key,        // ID of a row of another table
    Flag,
};

/// One stored code and what it means everywhere: in dialogs, in the grid, when it is pasted.
struct Code {
    std::int32_t code;
    int text;              // number of the interface's text
    bool inDialog = true;  // dialogs offer it
};

/// What a column of a new row holds; nothing: Null.
using Default = std::variant<std::monostate, std::int32_t, std::u16string_view>;

struct Column {
    std::string_view name;
    ado::DataType type = ado::DataType::VarWChar;  // in a file that we make; others may differ
    int length = 0;                                // of a text, in UTF-16 units
    Kind kind = Kind::Text;
    Default initial{};
    std::span<const Code> codes{};  // of a Listed one, in the order in which the grid lists them
    int caption = 0;        // number of the interface's text over the grid's column; 0: none
    int dialogCaption = 0;  // the same beside the dialog's field
    bool required = false;  // without it, or with blanks alone, the row is of no use
    bool isCount = false;   // a number that is never negative
};

/// A table of a project that we make. Files may lack columns, and have others.
struct Table {
    std::string_view name;
    std::span<const Column> columns;  // behind the key
    std::string_view indexed{};       // a column by which rows are looked up
    bool hasLanguages = false;        // a LanguageColumn for each language behind the others
};

/// A column that holds the ID of a row of another table.
struct Reference {
    std::string_view table;
    std::string_view column;
    std::string_view target;
    std::optional<std::int32_t> onlyType{};  // only in rows with this `Type`
};
[[nodiscard]] std::span<const Reference> References();

/// In the order in which projects have them.
[[nodiscard]] std::span<const Table> Tables();
/// Columns of an archive's row but for its key.
[[nodiscard]] std::span<const Column> ArchiveColumns();
/// Columns of a trend's row but for its key. Those with a caption are its settings, which are the
/// columns of the grid, in the order of their captions.
[[nodiscard]] std::span<const Column> TrendColumns();
/// The column of that exact name; null when there is none.
[[nodiscard]] const Column* FindArchiveColumn(std::string_view name);
[[nodiscard]] const Column* FindTrendColumn(std::string_view name);

/// Two columns of a trend's row of which one may not be greater than the other, where both hold
/// numbers.
struct Limits {
    std::string_view lower;
    std::string_view upper;
};
/// Of what is recorded, of the display, of the tolerance.
[[nodiscard]] std::span<const Limits> TrendLimits();

/// The column of the texts in a language, a Windows locale id: "L1031".
[[nodiscard]] std::string LanguageColumn(std::int64_t lcid);
/// Length of the texts in it, in UTF-16 units.
inline constexpr int kLanguageTextLength = 255;
/// Whether a column of the texts has that form.
[[nodiscard]] bool IsLanguageColumn(std::string_view name);
/// A column of texts and archives that is carried through.
inline constexpr std::string_view kParamNames = "ParamNames";

/// The statement that joins the trends of an archive with their texts; the archive's ID is its one
/// parameter.
[[nodiscard]] const std::string& TrendQuery();
/// The same for a project whose table of trends has these columns: settings that it lacks are left
/// out, so that a project of before a new setting can be opened.
[[nodiscard]] std::string TrendQuery(std::span<const ado::Field> trends);

/// Whether a value is one that the column is meant to hold. A stored one may be otherwise.
[[nodiscard]] bool IsSound(const Column& column, const ado::Value& value);

/// Whether a text in the column is the name of a variable, rather than a number, an event of the
/// clock or nothing.
[[nodiscard]] bool NamesVariable(const Column& column, std::u16string_view text);

/// The bits of an archive's `Type`, as they are stored.
namespace ArchiveType {
inline constexpr std::int32_t kKindMask = 7;
inline constexpr std::int32_t kCircularBuffer = 0;  // a kind
inline constexpr std::int32_t kContinuationFile = 1;
inline constexpr std::int32_t kMainMemory = 8;  // else on the hard disk
inline constexpr std::int32_t kSaveSafe = 16;
inline constexpr std::int32_t kRedundancy = 64;
inline constexpr std::int32_t kKnown = kKindMask | kMainMemory | kSaveSafe | kRedundancy;
}  // namespace ArchiveType
[[nodiscard]] std::span<const Code> ArchiveKinds();

/// Codes of `SampleMode` of which more is to be known than their text.
namespace SampleMode {
inline constexpr std::int32_t kCycles = 0;        // the scan time counts process cycles
inline constexpr std::int32_t kMilliseconds = 1;  // the scan time counts milliseconds
inline constexpr std::int32_t kOnVariable = 2;    // recorded over `XVar`
inline constexpr std::int32_t kOnTrigger = 3;     // when `Trigger` changes
}  // namespace SampleMode

/// An event of the clock that begins a new file: what `NewFile` holds for it. Both names are read,
/// the English one is written.
struct ClockEvent {
    std::u16string_view english;
    std::u16string_view german;
};
/// From the year down to the second.
[[nodiscard]] std::span<const ClockEvent> ClockEvents();
/// Position among the events; nothing for a text that is none.
[[nodiscard]] std::optional<std::size_t> FindClockEvent(std::u16string_view newFile);

/// The code whose text has no amount beside it: the trend has no hysteresis.
inline constexpr std::int32_t kNoHysteresis = 3;
/// What a trend with this amount and this stored mode does: without an amount it has no hysteresis,
/// and a mode beyond the list counts as the nearest one.
[[nodiscard]] std::int32_t HysteresisMode(bool hasAmount, std::int32_t stored);

/// Whether an editor can give a field of this type a number, or a text. Fields of other types are
/// left as they are.
[[nodiscard]] bool IsNumber(ado::DataType type);
[[nodiscard]] bool IsText(ado::DataType type);

/// Gives the fields of a new row their defaults. A column that the table does not have, or has as
/// another type or too short, is left alone.
void AssignDefaults(ado::Recordset& row, std::span<const Column> columns);

}  // namespace project
