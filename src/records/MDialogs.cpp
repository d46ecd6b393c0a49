#include "records/MDialogs.h"

#include <algorithm>
#include <QComboBox>
#include <QLineEdit>

#include "project/FieldText.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/Language.h"

namespace MDialogs {

QList<LanguageText> OtherTexts(const ado::Recordset& row, platform::Lcid language) {
    const std::string own = project::LanguageColumn(language);
    QList<LanguageText> texts;
    for (std::size_t i = 0; i < row.Fields().size(); ++i) {
        const ado::Field& field = row.Fields()[i];
        const bool isText = field.baseTable == project::kTextTable && project::IsText(field.type) &&
                            project::IsLanguageColumn(field.baseColumn);
        if (!isText || field.baseColumn == own) continue;
        const QString column = projectdb::ToQString(field.name);
        const auto lcid = static_cast<platform::Lcid>(column.mid(1).toUInt());
        const QString name = platform::LanguageName(lcid, texts::InterfaceLanguage());
        const QString text = projectdb::ToQString(project::ValueText(row.Get(i)));
        const int longest = field.type == ado::DataType::LongVarWChar ? project::kLanguageTextLength
                                                                      : field.definedSize;
        texts.append({column, name.isEmpty() ? column : name, text, text,
                      std::max(longest, static_cast<int>(text.size()))});
    }
    return texts;
}

void AssignTexts(ado::Recordset& row, const QList<LanguageText>& texts) {
    for (const LanguageText& text : texts) {
        if (text.IsTouched()) {
            TextToField(row, row.FieldIndex(projectdb::ToUtf8(text.column)), text.text);
        }
    }
}

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
