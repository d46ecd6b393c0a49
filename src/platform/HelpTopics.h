#pragma once

/// The context numbers of the help: whoever answers F1 hands one of them to
/// platform::HelpFile::ShowTopic. Each has a page in German and in English among the built-in
/// pages; an installed help file is asked for the same numbers.
namespace platform {

inline constexpr int kHelpContents = 0;

// The studio's tree
inline constexpr int kHelpArchives = 30002;  // the node of all archives
inline constexpr int kHelpArchive = 30018;   // the node of one archive

// The editor window
inline constexpr int kHelpEditorWindow = 30003;
inline constexpr int kHelpTrendGrid = 30004;  // the trends of an archive, editing in place
inline constexpr int kHelpLanguages = 30005;  // texts in several languages
inline constexpr int kHelpStatistic = 30006;
inline constexpr int kHelpReport = 30007;  // also the report's own window
inline constexpr int kHelpRefresh = 30008;
inline constexpr int kHelpKeys = 30009;  // all keys on one page
inline constexpr int kHelpProjectTable = 30016;
inline constexpr int kHelpReplace = 30022;   // find and replace over the project
inline constexpr int kHelpPatterns = 30023;  // new trends by patterns
inline constexpr int kHelpExchange = 30024;  // export and import for spreadsheets
inline constexpr int kHelpCompare = 30025;   // the open project beside another one
inline constexpr int kHelpFindings = 30026;  // what the check has found

// Options dialog, a number for each page
inline constexpr int kHelpOptionsCommon = 30010;
inline constexpr int kHelpOptionsTrendTable = 30011;

// Archive dialog, a number for each page
inline constexpr int kHelpArchiveStandard = 30019;
inline constexpr int kHelpArchiveFormat = 30020;
inline constexpr int kHelpArchiveRecording = 30021;

// Trend dialog, a number for each page
inline constexpr int kHelpTrend = 30030;  // what a trend is
inline constexpr int kHelpTrendStandard = 30031;
inline constexpr int kHelpTrendRecording = 30032;
inline constexpr int kHelpTrendAppearance = 30033;
inline constexpr int kHelpTrendTolerance = 30034;

// What a setting means and when to choose which
inline constexpr int kHelpArchiveTypes = 30040;
inline constexpr int kHelpSampleModes = 30041;
inline constexpr int kHelpFileChange = 30042;
inline constexpr int kHelpHysteresis = 30043;
inline constexpr int kHelpFilter = 30044;
inline constexpr int kHelpToleranceBand = 30045;
inline constexpr int kHelpDrawModes = 30046;

}  // namespace platform
