#include "cells/CellValue.h"

#include "project/FieldText.h"
#include "project/Schema.h"
#include "projectdb/Text.h"

QVariant ExactValue(const ado::Value& value) {
    const auto* text = std::get_if<std::u16string>(&value);
    return text != nullptr ? QVariant(projectdb::ToQString(*text)) : StoredValue(value);
}

QVariant StoredValue(const ado::Value& value) {
    if (ado::IsNull(value)) return {};
    if (const auto* text = std::get_if<std::u16string>(&value))
        return projectdb::ToQString(project::ValueText(*text));
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    // As it is: its double would show places that a single does not have.
    if (const auto* single = std::get_if<float>(&value)) return *single;
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* date = std::get_if<ado::Date>(&value)) return date->days;
    if (std::holds_alternative<ado::Binary>(value)) return {};
    const QString text = projectdb::ToQString(ado::ToText(value));
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? QVariant(number) : QVariant(text);
}

ado::Value FieldValue(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            return ado::Null{};
        case QMetaType::QString:
            return projectdb::ToUtf16(value.toString());
        case QMetaType::Int:
            return static_cast<std::int32_t>(value.toInt());
        default:
            return value.toDouble();
    }
}

GridKind KindOf(const ado::Field& field) {
    using ado::DataType;
    const project::Column* known = field.baseTable == project::kTrendTable
                                       ? project::FindTrendColumn(field.baseColumn)
                                       : nullptr;
    if (known != nullptr && known->kind == project::Kind::Colour) return GridKind::Colour;
    switch (field.type) {
        case DataType::SmallInt:
        case DataType::Integer:
        case DataType::UnsignedTinyInt:
            return GridKind::Integer;
        case DataType::Single:
        case DataType::Double:
        case DataType::Currency:
        case DataType::Numeric:
            return GridKind::Number;
        default:
            return GridKind::Text;
    }
}
