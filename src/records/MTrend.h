#pragma once

#include "ado/Recordset.h"
#include "dialogs/DialogServices.h"
#include "platform/Locale.h"

class FTrend;
class QWidget;

/// One trend: its row and the dialog. The row is one of the query that joins trends with their
/// index texts, so the display text is a column of it; a row of the trends alone has none.
/// `language` names the column of the display text.
namespace MTrend {

/// Lets the user edit the trend on whose row `trend` stands. True when he has accepted and the row
/// has been saved. When that fails the user is told why, and the dialog stays open with all that
/// was typed. False: nothing has changed. Throws nothing.
[[nodiscard]] bool EditTrend(ado::Recordset& trend, platform::Lcid language,
                             const DialogServices& services, QWidget* owner);

/// Fills the dialog; numbers as the user writes them. False when a column cannot be read.
///
/// A trend without a hysteresis shows the mode that says so, whatever mode is stored. Other codes
/// that the dialog does not know are shown with their number, and a missing colour shows none; OK
/// leaves both as they are.
[[nodiscard]] bool TrendToDialog(const ado::Recordset& trend, FTrend& dialog,
                                 platform::Lcid language);

/// Assigns what the user has changed to the row and saves it. False when that fails; the row's edit
/// is then to be cancelled.
[[nodiscard]] bool DialogToTrend(ado::Recordset& trend, const FTrend& dialog,
                                 platform::Lcid language);

}  // namespace MTrend
