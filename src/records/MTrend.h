#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

/// What the user has changed, by field of the trend query.
using Values = std::vector<std::pair<std::string, ado::Value>>;

/// Several trends that are edited at once.
struct Many {
    std::size_t count = 0;
    /// Whether they do not all hold the same in a field.
    std::function<bool(std::string_view field)> differs;
    /// The colours of their curves, each once; empty where they have the same.
    std::vector<int> colours{};
    /// Writes the values into all of them. False, having told the user why, when it has written
    /// none.
    std::function<bool(const Values& values)> store;
};
/// Lets the user edit all of them. `trend` stands on one of them. True when he has
/// accepted; without a change nothing is stored then. Throws nothing.
[[nodiscard]] bool EditTrends(const ado::Recordset& trend, const Many& many,
                              platform::Lcid language, const DialogServices& services,
                              QWidget* owner);

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
