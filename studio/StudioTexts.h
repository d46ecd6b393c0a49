#pragma once

#include <QString>

namespace studio {

/// The studio's own interface texts. Add-ins bring their own.
enum class Text {
    StudioTitle,
    ReadOnlyProject,
    MenuFile,
    FileNew,
    FileNewTip,
    FileOpen,
    FileOpenTip,
    FileRecent,
    FileRecentNone,
    FileRecentClear,
    FileRecentMissing,
    FileClose,
    FileCloseTip,
    FileQuit,
    MenuView,
    ViewTree,
    ViewEditor,
    MenuSettings,
    SettingsLanguage,
    LanguageTip,
    MenuHelp,
    HelpAddIns,
    HelpAddInsTip,
    HelpAbout,
    AboutTitle,
    AboutBody,
    TreeName,
    EditorAreaName,
    EmptyTitle,
    EmptyHint,
    EmptyOpen,
    EmptyRecent,
    NothingOpenTitle,
    NothingOpenHint,
    NoAddInsHint,
    NewTitle,
    NewFile,
    NewBrowse,
    NewLanguages,
    NewOk,
    OpenTitle,
    OpenFilter,
    StatusReady,
    StatusOpened,
    StatusOpenedReadOnly,
    StatusClosed,
    StatusBusy,
    StatusAddInFailed,
    StatusAddInError,
    StatusLanguage,
    ErrorNotFound,
    ErrorNoFile,
    ErrorNotReadable,
    ErrorEmptyFile,
    ErrorNoDatabase,
    ErrorExtension,
    ErrorUnknownName,
    ErrorBackslash,
    ErrorExists,
    ErrorNotMade,
    ErrorLanguage,
    ErrorRegistryFile,
    AddInColumn,
    AddInFileColumn,
    AddInStateColumn,
    AddInLoaded,
    AddInNoLibrary,
    AddInNoName,
    AddInNameTaken,
    AddInFailed,
    VariablesTitle,
    VariablesSearch,
    VariablesSearchHint,
    VariablesTree,
    VariableColumn,
    VariableTypeColumn,
    VariableUnitColumn,
    VariableCommentColumn,
    VariablesNoStructure,
    VariablesReading,
    VariablesCount,
    VariablesFound,
    VariablesNone,
    VariablesFailed,
    VariablesUnreadable,
    Ok,
    Cancel,
    Close
};

/// Windows locale identifiers of the languages that the studio speaks.
inline constexpr int kGerman = 1031;
inline constexpr int kEnglish = 1033;

/// The texts of one interface language. A plain value; changing the language means making a new
/// one and setting the texts again.
class StudioTexts {
public:
    /// Any `lcid` but kEnglish gives German.
    explicit StudioTexts(int lcid = kGerman) noexcept
        : lcid_(lcid == kEnglish ? kEnglish : kGerman) {}

    [[nodiscard]] int Lcid() const noexcept { return lcid_; }
    /// The text with its "&" access key, if it has one; "%1" and so on are filled by the caller.
    [[nodiscard]] QString operator()(Text text) const;

private:
    int lcid_;
};

}  // namespace studio
