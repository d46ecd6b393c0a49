#pragma once

#include <QLocale>
#include <QString>

#include "languages/MResources.h"

namespace platform {
class Registry;
}

namespace report {

/// The report's own texts. "%1" and so on are filled by whoever shows them.
enum class Text : int {
    LocaleName,
    WindowTitle,
    ReportTitle,
    Project,
    MadeOn,
    Contents,
    ContentsArchive,
    ContentsTrends,
    ContentsPage,
    Overview,
    Problems,
    TrendsWithoutArchive,
    ArchiveCount,
    TrendCount,
    ProblemCount,
    NoProblems,
    NoArchives,
    NoTrends,
    Archive,
    Trends,
    TrendsPart,
    PreviousPart,
    NextPart,
    PageOf,
    Page,
    // Window
    Print,
    Pdf,
    Html,
    Refresh,
    Help,
    FindLabel,
    FindNext,
    FindPrevious,
    FindNothing,
    FilterArchives,
    PrintTip,
    PdfTip,
    HtmlTip,
    RefreshTip,
    SaveAsPdf,
    SaveAsHtml,
    PdfFiles,
    HtmlFiles,
    Cancel,
    Collecting,
    Searching,
    CountingPages,
    Printing,
    Exporting,
    Written,
    Cancelled,
    CannotWrite,
    CannotPrint,
    CannotOpen,
    UnknownReport,
    // An archive's settings
    DisplayText,
    Type,
    CircularBuffer,
    CircularBufferOf,
    ContinuationFile,
    UnknownType,
    OtherTypeBits,
    Storage,
    OnHardDisk,
    InMainMemory,
    SavedFast,
    SavedSafe,
    Recording,
    SampleSynchronous,
    SampleAsynchronous,
    SampleXVar,
    SampleTrigger,
    SampleSaveAll,
    SampleNone,
    SampleManual,
    FileChange,
    FileChangeTrigger,
    FileChangeCount,
    FileChangeYear,
    FileChangeMonth,
    FileChangeWeek,
    FileChangeDay,
    FileChangeHour,
    FileChangeMinute,
    FileChangeSecond,
    FileChangeNever,
    Limits,
    LimitFiles,
    LimitSize,
    NoLimits,
    Files,
    Redundancy,
    NoRedundancy,
    XVariable,
    Trigger,
    StartStop,
    Clear,
    Cache,
    Authorization,
    Comment,
    UnknownCode,
    NotSet,
    Damaged,
    RowGone,
    TextMissing,
    // Columns of the trend table
    ColumnName,
    ColumnVariable,
    ColumnRange,
    ColumnSubstitution,
    ColumnHysteresis,
    ColumnFilter,
    ColumnDisplay,
    ColumnCurve,
    ColumnTolerance,
    // A trend's settings
    FromTo,
    Scaling,
    SubstitutionMax,
    SubstitutionMin,
    SubstitutionError,
    HysteresisAbsolute,
    HysteresisRange,
    HysteresisValue,
    HysteresisNone,
    FilterNone,
    FilterAverage,
    FilterAveraging,
    FilterMax,
    FilterMin,
    FilterDepth,
    Samples,
    DrawLine,
    DrawStair,
    DrawSpline,
    DrawPoints,
    DrawBars,
    LineWidth,
    StyleLine,
    StyleDashed,
    StyleDotted,
    ToleranceUpper,
    ToleranceLower,
    ToleranceColour,
    ToleranceLines,
    ToleranceBoth,
    // Problems
    ProblemRow,
    ProblemValue,
    ProblemText,
    ProblemArchive,
    ProblemTable,
    ProblemMore,
    ProblemWhere,
    ProblemWhat,
    Count_
};

/// The texts in the station's interface language, and how that language writes numbers.
class ReportTexts {
public:
    /// Reads the interface language. Where the registry cannot be read it is German.
    explicit ReportTexts(platform::Registry& registry);

    [[nodiscard]] QString operator()(Text text) const;
    /// For a viewer of help, which has texts of its own.
    [[nodiscard]] MResources::TextTable& Table() noexcept { return table_; }
    [[nodiscard]] const QLocale& Locale() const noexcept { return locale_; }
    [[nodiscard]] QString Number(qint64 number) const { return locale_.toString(number); }

private:
    MResources::TextTable table_;
    QLocale locale_;
};

}  // namespace report
