#pragma once

#include <array>
#include <optional>
#include <QList>
#include <QString>
#include <string_view>

#include "ado/Value.h"

namespace report {

/// Columns of the archive table that the report tells of, in the order of kArchiveColumnNames.
enum class ArchiveColumn {
    ID,
    Name,
    TextID,
    Type,
    FileName,
    FilePath,
    RedundancyFilePath,
    SampleMode,
    Trigger,
    ScanTime,
    MaxSamples,
    NewFile,
    XVar,
    StartStop,
    Reset,
    CacheSize,
    AuthorizationLevel,
    Comment,
    MaxFiles,
    MaxSizeKb
};
inline constexpr std::array<std::string_view, 20> kArchiveColumnNames = {"ID",
                                                                         "Name",
                                                                         "TextID",
                                                                         "Type",
                                                                         "FileName",
                                                                         "FilePath",
                                                                         "RedundancyFilePath",
                                                                         "SampleMode",
                                                                         "Trigger",
                                                                         "ScanTime",
                                                                         "MaxSamples",
                                                                         "NewFile",
                                                                         "XVar",
                                                                         "StartStop",
                                                                         "Reset",
                                                                         "CacheSize",
                                                                         "AuthorizationLevel",
                                                                         "Comment",
                                                                         "MaxFiles",
                                                                         "MaxSizeKb"};

/// Likewise of the trend table.
enum class TrendColumn {
    ID,
    Name,
    ArchiveID,
    TextID,
    TrendVar,
    Maximum,
    Minimum,
    SurrogateMax,
    SurrogateMin,
    ErrorValue,
    Hysteresis,
    HysteresisMode,
    Factor,
    Offset,
    Filter,
    FilterDepth,
    Unit,
    VMax,
    VMin,
    VUpper,
    VLower,
    VLineColor,
    VLineWidth,
    VLineStyle,
    VUpperColor,
    VLowerColor,
    VConfig,
    VDrawMode,
    VMaxSamples,
    Comment
};
inline constexpr std::array<std::string_view, 30> kTrendColumnNames = {
    "ID",          "Name",         "ArchiveID",    "TextID",      "TrendVar",    "Maximum",
    "Minimum",     "SurrogateMax", "SurrogateMin", "ErrorValue",  "Hysteresis",  "HysteresisMode",
    "Factor",      "Offset",       "Filter",       "FilterDepth", "Unit",        "VMax",
    "VMin",        "VUpper",       "VLower",       "VLineColor",  "VLineWidth",  "VLineStyle",
    "VUpperColor", "VLowerColor",  "VConfig",      "VDrawMode",   "VMaxSamples", "Comment"};

/// A stored value, or that it cannot be read. A column that the project does not have is Null.
struct Cell {
    ado::Value value;
    bool damaged = false;
};

/// A text of a row in one language of the project.
struct LanguageText {
    int lcid = 0;
    QString text;
};

/// One row as the report needs it: a plain copy, independent of the file.
template <typename Column, std::size_t N>
struct Row {
    std::array<Cell, N> cells;
    /// Why the row could not be read; nothing else is then filled.
    QString failure;
    QList<LanguageText> texts;
    /// The row names an index text that does not exist.
    bool textMissing = false;

    [[nodiscard]] const Cell& operator[](Column column) const {
        return cells[static_cast<std::size_t>(column)];
    }
};
using ArchiveRow = Row<ArchiveColumn, kArchiveColumnNames.size()>;
using TrendRow = Row<TrendColumn, kTrendColumnNames.size()>;

/// The value as a whole number; nothing for Null, damage and what is no number.
[[nodiscard]] std::optional<int> Integer(const Cell& cell);
/// The value as text without the characters that neither a page nor XML can hold; empty for Null.
[[nodiscard]] QString PlainText(const Cell& cell);

}  // namespace report
