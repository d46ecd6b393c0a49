#include "records/MDialogs.h"

#include <QComboBox>
#include <QLineEdit>

#include "platform/Locale.h"
#include "projectdb/Text.h"

namespace MDialogs {
namespace {

const std::u16string kEmptyText(1, u'\0');

}  // namespace

void FieldToText(const ado::Recordset& row, std::size_t column, QLineEdit& text) {
    const std::u16string shown = ado::ToText(row.Get(column));
    text.setText(shown == kEmptyText ? QString() : projectdb::ToQString(shown));
}

void TextToField(ado::Recordset& row, std::size_t column, const QLineEdit& text) {
    TextToField(row, column, text.text());
}

void TextToField(ado::Recordset& row, std::size_t column, QStringView text) {
    using enum ado::DataType;
    switch (row.Fields().at(column).type) {
        case SmallInt:
        case Integer:
            row.Set(column, platform::LeadingNumber(text));
            break;
        case Single:
        case Double:
            row.Set(column, platform::LeadingNumber(text.toString().replace(u',', u'.')));
            break;
        case VarWChar:
            row.Set(column, text.isEmpty() ? kEmptyText : projectdb::ToUtf16(text));
            break;
        default:
            break;
    }
}

void SelectComboByItemData(QComboBox& combo, const ado::Value& value,
                           std::optional<std::span<const ComboEntry>> entries) {
    if (entries) {
        combo.clear();
        for (const ComboEntry& entry : *entries) combo.addItem(entry.text, entry.itemData);
    }
    combo.setCurrentIndex(ado::IsNull(value) ? -1 : combo.findData(ado::ToLong(value)));
}

void ComboToField(ado::Recordset& row, std::size_t column, const QComboBox& combo) {
    if (combo.currentIndex() < 0) return;
    row.Set(column, static_cast<std::int32_t>(combo.currentData().toInt()));
}

}  // namespace MDialogs
