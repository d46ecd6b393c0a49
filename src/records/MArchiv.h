#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "ado/Recordset.h"
#include "dialogs/DialogServices.h"
#include "platform/Locale.h"

class FArchiv;
class QWidget;

/// One archive: its row, the index text that holds its display text, and the dialog.
///
/// `archive` stands on the archive's row. `indexTexts` is the open recordset of all index texts,
/// without a filter; loading moves it to the archive's text, or to its end when there is none.
/// `language` names the column of the display text.
namespace MArchiv {

struct Rows {
    ado::Recordset& archive;
    ado::Recordset& indexTexts;
    platform::Lcid language;
};

/// Lets the user edit an archive. `save` stores both rows, which then have their new values, as one
/// change or not at all; when it throws, the user is told why and the dialog stays open with all
/// that was typed. True when the archive has been stored. False: nothing has changed; where
/// something failed the user has been told. Throws nothing.
[[nodiscard]] bool EditArchive(const Rows& rows, const DialogServices& services, QWidget* owner,
                               const std::function<void()>& save);

/// Several archives that are edited at once.
struct Many {
    std::vector<std::int32_t> ids;
    /// Runs what changes the project as one step of the user; IProjectWork::RunStep.
    std::function<bool(const std::function<void()>& change)> runStep;
};
/// Lets the user edit all of them: each field that he touches is written into all, all of it or
/// nothing. A setting can be changed where it applies to all. `connection` is the project's, open.
/// True when he has accepted; without a change nothing is stored then. Throws nothing.
[[nodiscard]] bool EditArchives(ado::Connection& connection, const Many& many,
                                platform::Lcid language, const DialogServices& services,
                                QWidget* owner);

/// Fills the dialog. False when a column cannot be read.
///
/// An archive whose `TextID` names no index text is opened after a message, without a display text.
/// Codes that the dialog does not know are shown with their number and left as they are by OK.
[[nodiscard]] bool ArchiveToDialog(const Rows& rows, FArchiv& dialog,
                                   const MResources::TextTable& texts, QWidget* owner);

/// Assigns what the user has changed to the archive's row and, where `indexTexts` stands on the
/// archive's text, to that; neither is saved. False when a value cannot be assigned; both rows are
/// then to be cancelled.
///
/// `Type` is assigned only when one of its edited bits has changed; its other bits are then
/// cleared.
[[nodiscard]] bool DialogToArchive(const Rows& rows, const FArchiv& dialog);

}  // namespace MArchiv
