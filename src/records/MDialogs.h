#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <span>
#include <string_view>

#include "ado/Recordset.h"
#include "dialogs/TextDialog.h"
#include "platform/Locale.h"

class QComboBox;
class QLineEdit;

/// Moves one field of a record's row to or from one control of its dialog. Columns are positions
/// in Fields(). Failures are ado::AdoError.
namespace MDialogs {

/// The texts of a row in the languages that it has columns for, but for one of them: a dialog's.
[[nodiscard]] QList<LanguageText> OtherTexts(const ado::Recordset& row, platform::Lcid language);
/// Assigns those that the user has touched.
void AssignTexts(ado::Recordset& row, const QList<LanguageText>& texts);

/// Entry of a combo box that stands for a code.
struct ComboEntry {
    QString text;
    int itemData;
};

/// Null shows an empty text, as does the one character that stands for an empty text (see
/// TextToField). Single and double show every digit that they have with a decimal point, whatever
/// the user's locale, so that an unchanged text gives the same number back.
void FieldToText(const ado::Recordset& row, std::size_t column, QLineEdit& text);

/// Stores what project::ReadDialogText makes of the text. A field that holds neither a number nor a
/// text is not written.
void TextToField(ado::Recordset& row, std::size_t column, const QLineEdit& text);
/// The same for a text that no control shows.
void TextToField(ado::Recordset& row, std::size_t column, QStringView text);

/// Fills the combo box with `entries` when they are given. Then selects the first entry with the
/// value as its item data; nothing (index -1) for Null and for a value that no entry has.
void SelectComboByItemData(QComboBox& combo, const ado::Value& value,
                           std::optional<std::span<const ComboEntry>> entries = std::nullopt);

/// The field receives the item data of the selected entry; it is left as it is when none is.
void ComboToField(ado::Recordset& row, std::size_t column, const QComboBox& combo);

}  // namespace MDialogs
