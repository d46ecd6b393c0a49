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

inline constexpr int kTextOk = 10;
inline constexpr int kTextCancel = 11;
inline constexpr int kTextFalse = 20;
inline constexpr int kTextTrue = 21;

inline constexpr int kTextEditorTitle = 501;
inline constexpr int kTextMenuArchive = 502;
inline constexpr int kTextNewArchive = 503;
inline constexpr int kTextEditArchive = 504;
inline constexpr int kTextDeleteArchive = 505;
inline constexpr int kTextMenuExtras = 510;
inline constexpr int kTextActualizeConnection = 513;
inline constexpr int kTextShowEditor = 516;
inline constexpr int kTextFirstPanel = 517;  // the status bar's three panels follow each other
inline constexpr int kTextArchivesNode = 550;

/// Texts that have no number of old; from here on upward.
inline constexpr int kTextNoHelpFile = 1001;    // <file> and <topic> are replaced
inline constexpr int kTextMoreFailures = 1002;  // <n> is replaced
inline constexpr int kTextChooseVariable = 1100;
inline constexpr int kTextChooseFolder = 1101;
inline constexpr int kTextEditText = 1102;
inline constexpr int kTextPicker = 1103;          // caption of a button that opens a chooser
inline constexpr int kTextCharacterCount = 1104;  // <n> and <max> are replaced

/// Words that every dialog uses; they are entered first.
extern const std::span<const Entry> kCommonWords;
/// All texts, in ascending order of their numbers.
extern const std::span<const Entry> kTexts;

}  // namespace MResourceTable
