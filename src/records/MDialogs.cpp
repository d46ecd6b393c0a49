#include "records/MDialogs.h"

#include <QComboBox>
#include <QLineEdit>

#include "project/FieldText.h"
#include "projectdb/Text.h"

namespace MDialogs {
void FieldToText(const ado::Recordset& row, std::size_t column, QLineEdit& text) {
    const std::u16string shown = ado::ToText(row.Get(column));
    text.setText(shown == project::kEmptyText ? QString() : projectdb::ToQString(shown));
}

void TextToField(ado::Recordset& row, std::size_t column, const QLineEdit& text) {
    TextToField(row, column, text.text());
}

void TextToField(ado::Recordset& row, std::size_t column, QStringView text) {
    const project::Reading read =
        project::ReadDialogText(projectdb::ToUtf16(text), row.Fields().at(column));
    if (read.problem != project::Problem::NotEditable) row.Set(column, read.value);
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
