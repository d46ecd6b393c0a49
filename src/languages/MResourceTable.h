#pragma once

#include <span>
#include <string_view>

/// The interface texts themselves. Texts are shown exactly as they stand here; the slips in the
/// English ones are known to the users and stay.
namespace MResourceTable {

struct Entry {
    int id;
    std::u16string_view german;
    std::u16string_view english;
};

// Words that every dialog uses
inline constexpr int kTextOk = 10;
inline constexpr int kTextCancel = 11;
inline constexpr int kTextHelp = 12;
inline constexpr int kTextFalse = 20;
inline constexpr int kTextTrue = 21;
inline constexpr int kTextCtrl = 30;  // the three begin the names of shortcuts
inline constexpr int kTextShift = 31;
inline constexpr int kTextAlt = 32;

// Trend fields: columns of the trend split
inline constexpr int kTextTrendName = 101;
inline constexpr int kTextTrendVar = 102;
inline constexpr int kTextMaximum = 103;
inline constexpr int kTextMinimum = 104;
inline constexpr int kTextSurrogateMax = 105;
inline constexpr int kTextSurrogateMin = 106;
inline constexpr int kTextErrorValue = 107;
inline constexpr int kTextHysteresis = 108;
inline constexpr int kTextHysteresisMode = 109;
inline constexpr int kTextFactor = 110;
inline constexpr int kTextOffset = 111;
inline constexpr int kTextFilter = 112;
inline constexpr int kTextFilterDepth = 113;
inline constexpr int kTextUnit = 114;
inline constexpr int kTextVMax = 115;
inline constexpr int kTextVMin = 116;
inline constexpr int kTextVUpper = 117;
inline constexpr int kTextVLower = 118;
inline constexpr int kTextVLineColor = 119;
inline constexpr int kTextVLineWidth = 120;
inline constexpr int kTextVLineStyle = 121;
inline constexpr int kTextVUpperColor = 122;
inline constexpr int kTextVLowerColor = 123;
inline constexpr int kTextVConfig = 124;
inline constexpr int kTextVDrawMode = 125;
inline constexpr int kTextVMaxSamples = 126;
inline constexpr int kTextVUnitID = 127;
inline constexpr int kTextTrendComment = 128;

// Choice lists of a trend
inline constexpr int kTextHysteresisNone = 130;
inline constexpr int kTextHysteresisAbsolute = 131;
inline constexpr int kTextHysteresisOfRange = 132;
inline constexpr int kTextHysteresisOfValue = 133;
inline constexpr int kTextFilterNone = 134;
inline constexpr int kTextFilterAverage = 135;
inline constexpr int kTextFilterAveraging = 136;
inline constexpr int kTextFilterMaximum = 137;
inline constexpr int kTextFilterMinimum = 138;
inline constexpr int kTextStyleLine = 140;
inline constexpr int kTextStyleDashed = 141;
inline constexpr int kTextStyleDotted = 142;
inline constexpr int kTextConfigCurveColor = 144;
inline constexpr int kTextConfigToleranceLine = 145;
inline constexpr int kTextConfigBoth = 146;
inline constexpr int kTextDrawLines = 151;
inline constexpr int kTextDrawStairs = 152;
inline constexpr int kTextDrawSplines = 153;
inline constexpr int kTextDrawPoints = 154;
inline constexpr int kTextDrawBars = 155;
inline constexpr int kTextDrawAreas = 156;

// Choice lists of an archive
inline constexpr int kTextTypeCircularBuffer = 162;
inline constexpr int kTextTypeContinuationFile = 163;
inline constexpr int kTextSampleSynchronous = 171;
inline constexpr int kTextSampleAsynchronous = 172;
inline constexpr int kTextSampleXVariable = 173;
inline constexpr int kTextSampleTrigger = 174;
inline constexpr int kTextSampleEachOnChange = 175;
inline constexpr int kTextSampleAllOnOneChange = 176;
inline constexpr int kTextSampleNoRecording = 177;
inline constexpr int kTextSampleManual = 178;
inline constexpr int kTextUnitProcessCycles = 181;
inline constexpr int kTextUnitMilliseconds = 182;

// Archive dialog. Its pages and the storage options bring their access keys along; those of
// the labels keep clear of them and of each other, so that a field may stand on any page.
inline constexpr int kTextArchiveDialogTitle = 201;
inline constexpr int kTextArchiveName = 202;
inline constexpr int kTextArchiveStorage = 203;
inline constexpr int kTextArchiveOnHardDisk = 204;
inline constexpr int kTextArchiveInMemory = 205;
inline constexpr int kTextArchiveSaveFast = 206;
inline constexpr int kTextArchiveSaveSafe = 207;
inline constexpr int kTextArchiveRedundancy = 208;
inline constexpr int kTextArchiveType = 209;
inline constexpr int kTextArchiveDisplayText = 210;
inline constexpr int kTextArchiveFileName = 211;
inline constexpr int kTextArchiveFilePath = 212;
inline constexpr int kTextArchiveRedundancyFilePath = 213;
inline constexpr int kTextArchiveSampleMode = 214;
inline constexpr int kTextArchiveTrigger = 215;
inline constexpr int kTextArchiveScanTime = 216;
inline constexpr int kTextArchiveMaxSamples = 217;
inline constexpr int kTextArchiveNewFile = 218;
inline constexpr int kTextArchiveXVar = 219;
inline constexpr int kTextArchiveStartStop = 220;
inline constexpr int kTextArchiveReset = 221;
inline constexpr int kTextArchiveCacheSize = 222;
inline constexpr int kTextArchiveInitFailed = 223;
inline constexpr int kTextArchiveWriteBackFailed = 224;
inline constexpr int kTextDoubleName = 225;
inline constexpr int kTextIndexTextMissing = 226;
inline constexpr int kTextArchiveAuthorizationLevel = 227;
inline constexpr int kTextArchiveComment = 228;
inline constexpr int kTextArchiveMaxFiles = 229;
inline constexpr int kTextArchiveMaxSizeKb = 230;
inline constexpr int kTextArchiveFileTrigger = 231;
inline constexpr int kTextArchivePageStandard = 240;
inline constexpr int kTextArchivePageFormat = 241;
inline constexpr int kTextArchivePageRecording = 242;
inline constexpr int kTextArchiveHardDiskFrame = 243;
inline constexpr int kTextNewFileTrigger = 250;
inline constexpr int kTextNewFileCount = 251;
inline constexpr int kTextNewFileYear = 252;
inline constexpr int kTextNewFileMonth = 253;
inline constexpr int kTextNewFileWeek = 254;
inline constexpr int kTextNewFileDay = 255;
inline constexpr int kTextNewFileHour = 256;
inline constexpr int kTextNewFileMinute = 257;
inline constexpr int kTextNewFileSecond = 258;
inline constexpr int kTextNewFileNever = 259;
inline constexpr int kTextArchiveChooseVariable = 260;
inline constexpr int kTextArchiveChooseFilePath = 261;
inline constexpr int kTextArchiveChooseRedundancyFilePath = 262;

// Options dialog
inline constexpr int kTextOptionsTitle = 301;
inline constexpr int kTextOptionsPageCommon = 302;
inline constexpr int kTextOptionsEditorFont = 303;
inline constexpr int kTextOptionsRequestOnDelete = 304;
inline constexpr int kTextOptionsPageTrendTable = 305;
inline constexpr int kTextOptionsTableColumns = 306;
inline constexpr int kTextOptionsColumnsExisting = 307;
inline constexpr int kTextOptionsColumnsChosen = 308;
inline constexpr int kTextOptionsFrame = 309;
inline constexpr int kTextOptionsImport = 310;
inline constexpr int kTextOptionsIniFile = 311;
inline constexpr int kTextOptionsSave = 312;
inline constexpr int kTextOptionsSaveOnExit = 313;
inline constexpr int kTextOptionsOk = 314;
inline constexpr int kTextOptionsCancel = 315;
inline constexpr int kTextOptionsHelp = 316;
inline constexpr int kTextOptionsInitFailed = 317;
inline constexpr int kTextOptionsWriteBackFailed = 318;
inline constexpr int kTextOptionsShowStatusBar = 319;

// Trend dialog, in the order of the fields
inline constexpr int kTextTrendBlank = 399;
inline constexpr int kTextTrendDialogTitle = 401;
inline constexpr int kTextTrendDialogName = 402;
inline constexpr int kTextTrendDialogDisplayText = 403;
inline constexpr int kTextTrendDialogTrendVar = 404;
inline constexpr int kTextTrendDialogMaximum = 405;
inline constexpr int kTextTrendDialogMinimum = 406;
inline constexpr int kTextTrendDialogSurrogateMax = 407;
inline constexpr int kTextTrendDialogSurrogateMin = 408;
inline constexpr int kTextTrendDialogErrorValue = 409;
inline constexpr int kTextTrendDialogHysteresis = 410;
inline constexpr int kTextTrendDialogHysteresisMode = 411;
inline constexpr int kTextTrendDialogFactor = 412;
inline constexpr int kTextTrendDialogOffset = 413;
inline constexpr int kTextTrendDialogFilter = 414;
inline constexpr int kTextTrendDialogFilterDepth = 415;
inline constexpr int kTextTrendDialogUnit = 416;
inline constexpr int kTextTrendDialogVMax = 417;
inline constexpr int kTextTrendDialogVMin = 418;
inline constexpr int kTextTrendDialogVUpper = 419;
inline constexpr int kTextTrendDialogVLower = 420;
inline constexpr int kTextTrendDialogVLineColor = 421;
inline constexpr int kTextTrendDialogVLineWidth = 422;
inline constexpr int kTextTrendDialogVLineStyle = 423;
inline constexpr int kTextTrendDialogVUpperColor = 424;
inline constexpr int kTextTrendDialogVLowerColor = 425;
inline constexpr int kTextTrendDialogVConfig = 426;
inline constexpr int kTextTrendDialogVDrawMode = 427;
inline constexpr int kTextTrendDialogVMaxSamples = 428;
inline constexpr int kTextTrendDialogVUnitID = 429;
inline constexpr int kTextTrendDialogComment = 430;
inline constexpr int kTextTrendDialogDisplayRange = 431;
inline constexpr int kTextTrendInitFailed = 435;
inline constexpr int kTextTrendWriteBackFailed = 436;
inline constexpr int kTextTrendChooseVariable = 437;
inline constexpr int kTextTrendEditDisplayText = 438;
inline constexpr int kTextTrendPageStandard = 450;
inline constexpr int kTextTrendPageRecording = 451;
inline constexpr int kTextTrendPageAppearance = 452;
inline constexpr int kTextTrendPageTolerance = 453;

// Main window. The blanks inside set the shortcuts apart.
inline constexpr int kTextEditorTitle = 501;
inline constexpr int kTextMenuArchive = 502;
inline constexpr int kTextNewArchive = 503;
inline constexpr int kTextEditArchive = 504;
inline constexpr int kTextDeleteArchive = 505;
inline constexpr int kTextMenuTrends = 506;
inline constexpr int kTextNewTrend = 507;
inline constexpr int kTextEditTrend = 508;
inline constexpr int kTextDeleteTrend = 509;
inline constexpr int kTextMenuExtras = 510;
inline constexpr int kTextStatistics = 511;
inline constexpr int kTextReport = 512;
inline constexpr int kTextActualizeConnection = 513;
inline constexpr int kTextExtrasSeparator = 514;
inline constexpr int kTextOptions = 515;
inline constexpr int kTextShowEditor = 516;
inline constexpr int kTextFirstPanel = 517;  // the status bar's three panels follow each other
inline constexpr int kTextArchivesPanel = 518;
inline constexpr int kTextTrendsPanel = 519;
inline constexpr int kTextTextLanguage = 521;
inline constexpr int kTextGridError = 522;
inline constexpr int kTextError = 523;
inline constexpr int kTextOutOfStep = 524;  // follows kTextError and a number
inline constexpr int kTextDeleteArchiveWithTrend = 526;
inline constexpr int kTextDeleteArchiveWithTrends = 527;  // <td> is replaced
inline constexpr int kTextDeleteOneTrend = 528;
inline constexpr int kTextDeleteTrends = 529;  // <td> is replaced
inline constexpr int kTextNameRequired = 530;
inline constexpr int kTextNameInUse = 531;
inline constexpr int kTextNoReport = 532;
inline constexpr int kTextArchivesNode = 550;

// Names of copies and new archives
inline constexpr int kTextCopyOf = 701;
inline constexpr int kTextCopyNumberOf = 702;
inline constexpr int kTextCopyNumber = 703;
inline constexpr int kTextNewArchiveName = 704;

// Start-up and connection
inline constexpr int kTextDatabaseNotFound = 901;
inline constexpr int kTextConnectionNotFound = 902;
inline constexpr int kTextFormLoadFailed = 903;
inline constexpr int kTextFormPositionFailed = 904;
inline constexpr int kTextAddInTreeFailed = 905;
inline constexpr int kTextTreeFromDatabaseFailed = 906;
inline constexpr int kTextTrendTableFailed = 907;

inline constexpr int kLastNumberOfOld = 907;

// Texts that have no number of old; their texts stand in OwnTexts.cpp. Taken so far: from 1010 on
// the settings, from 1100 on the dialogs, from 1300 on the grid.
inline constexpr int kTextNoHelpFile = 1001;    // <file> and <topic> are replaced
inline constexpr int kTextMoreFailures = 1002;  // <n> is replaced
inline constexpr int kTextEditText = 1100;
inline constexpr int kTextPicker = 1101;          // caption of a button that opens a chooser
inline constexpr int kTextCharacterCount = 1102;  // <n> and <max> are replaced
inline constexpr int kTextArchiveSaveMode = 1103;
inline constexpr int kTextMeaning = 1104;
inline constexpr int kTextChoiceTooLong = 1105;  // <text> and <max> are replaced
inline constexpr int kTextRecordChanged = 1106;
inline constexpr int kTextRecordGone = 1107;

// What the settings of an archive mean; the word in <> is replaced
inline constexpr int kTextFileEachYear = 1110;  // seven, in the order of the file-change list
inline constexpr int kTextNewFileOnTrigger = 1117;
inline constexpr int kTextNewFileOnVariable = 1118;
inline constexpr int kTextNewFileAfterRecords = 1119;
inline constexpr int kTextSingleFile = 1120;
inline constexpr int kTextOneFile = 1121;
inline constexpr int kTextFiles = 1122;
inline constexpr int kTextAtMost = 1123;
inline constexpr int kTextRecords = 1124;
inline constexpr int kTextReachesBack = 1125;
inline constexpr int kTextInMainMemory = 1126;
inline constexpr int kTextProcessCycles = 1127;
inline constexpr int kTextMilliseconds = 1128;
// Of each unit of time the first text is for one, the next number's for more.
inline constexpr int kTextSeconds = 1129;
inline constexpr int kTextMinutes = 1131;
inline constexpr int kTextHours = 1133;
inline constexpr int kTextDays = 1135;
inline constexpr int kTextYears = 1137;
inline constexpr int kTextKilobytes = 1139;
inline constexpr int kTextMegabytes = 1140;
inline constexpr int kTextGigabytes = 1141;

// Trend dialog: colours and pictures of curves. A word in <> is replaced.
inline constexpr int kTextChooseColor = 1150;
inline constexpr int kTextRecentColors = 1151;
inline constexpr int kTextMoreColors = 1152;
inline constexpr int kTextNoColor = 1153;
inline constexpr int kTextSystemColor = 1154;
inline constexpr int kTextColorParts = 1155;
inline constexpr int kTextFirstHue = 1156;   // seven, from red to violet
inline constexpr int kTextFirstTint = 1163;  // three: light, dark, very dark
inline constexpr int kTextFirstGrey = 1166;  // four, from white to black
inline constexpr int kTextSampleCurve = 1170;

// What fields take
inline constexpr int kTextKeysTaken = 1180;     // <keys> is replaced
inline constexpr int kTextKeysNotTaken = 1181;  // <keys> is replaced
inline constexpr int kTextBlankKey = 1182;
inline constexpr int kTextNotPasted = 1183;       // <text> is replaced
inline constexpr int kTextPasteTooLong = 1184;    // <max> is replaced
inline constexpr int kTextNoWholeNumber = 1185;   // <text> and <number> are replaced
inline constexpr int kTextWholeNumbers = 1186;    // <number> is replaced
inline constexpr int kTextNumberTooLarge = 1187;  // <text>, <smallest> and <largest> are replaced
inline constexpr int kTextTooLarge = 1188;
inline constexpr int kTextCountMissing = 1189;
inline constexpr int kTextTriggerMissing = 1190;

// Options dialog: tool tips
inline constexpr int kTextAddColumn = 1260;
inline constexpr int kTextRemoveColumn = 1261;
inline constexpr int kTextColumnUp = 1262;
inline constexpr int kTextColumnDown = 1263;
inline constexpr int kTextChooseFont = 1264;

// Editor window
inline constexpr int kTextNarrow = 1360;
inline constexpr int kTextCopy = 1361;
inline constexpr int kTextPaste = 1362;
inline constexpr int kTextDuplicate = 1363;
inline constexpr int kTextFreezeName = 1364;
inline constexpr int kTextToolBar = 1365;
inline constexpr int kTextLanguageOfTexts = 1366;
inline constexpr int kTextTrends = 1367;
inline constexpr int kTextEditDiscarded = 1368;  // <text> is replaced
inline constexpr int kTextPasteInvalid = 1369;   // <row>, <column> and <text> are replaced
inline constexpr int kTextPasteNoHeadings = 1370;
inline constexpr int kTextPasteUnknownColumn = 1371;  // <column> is replaced
inline constexpr int kTextDeletingTrends = 1372;
inline constexpr int kTextCopyingTrends = 1373;
inline constexpr int kTextPastingTrends = 1374;
inline constexpr int kTextRowChanged = 1375;
inline constexpr int kTextArchivePartlyDeleted = 1376;  // <n> and <left> are replaced
inline constexpr int kTextPasteRefused = 1377;          // <row>, <column> and <cause> are replaced
inline constexpr int kTextTrendsPartlyDeleted = 1378;   // <n> and <left> are replaced
inline constexpr int kTextOneTextMissing = 1379;
inline constexpr int kTextTextsMissing = 1380;  // <n> is replaced

// Status bar of the editor window: why a command cannot run, and what to do
inline constexpr int kTextHintBusy = 1400;
inline constexpr int kTextHintNewArchive = 1401;
inline constexpr int kTextHintNoArchive = 1402;
inline constexpr int kTextHintNoTrend = 1403;
inline constexpr int kTextHintNoSelection = 1404;
inline constexpr int kTextHintNothingToCopy = 1405;
inline constexpr int kTextHintNothingToPaste = 1406;
inline constexpr int kTextHintPasteIntoTrends = 1407;
inline constexpr int kTextHintCellLocked = 1408;
inline constexpr int kTextHintNoFurtherArchive = 1409;
inline constexpr int kTextArchiveDeletedElsewhere = 1410;  // <name> is replaced
inline constexpr int kTextHintReadOnly = 1411;

// Menu of a heading in the editor window
inline constexpr int kTextSortUpwards = 1420;
inline constexpr int kTextSortDownwards = 1421;
inline constexpr int kTextUnsorted = 1422;
inline constexpr int kTextHideColumn = 1423;
inline constexpr int kTextShowColumn = 1424;
inline constexpr int kTextFitColumn = 1425;
inline constexpr int kTextFitAllColumns = 1426;
inline constexpr int kTextFreezeColumns = 1427;
inline constexpr int kTextReleaseColumns = 1428;
inline constexpr int kTextColumnMenu = 1429;

// Find field of the editor window
inline constexpr int kTextNarrowArchives = 1440;
inline constexpr int kTextNarrowTrends = 1441;
inline constexpr int kTextRowsShown = 1442;     // <n> and <all> are replaced
inline constexpr int kTextNothingShown = 1443;  // <text> is replaced

/// Words that every dialog uses; they are entered first.
extern const std::span<const Entry> kCommonWords;
/// The texts with numbers of old, and those from 1001 on; each in ascending order.
extern const std::span<const Entry> kTexts;
extern const std::span<const Entry> kOwnTexts;

}  // namespace MResourceTable
