#include "cells/CellInput.h"

#include <optional>
#include <QDateTime>

#include "project/Moment.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

std::optional<bool> Flag(const QString& text, const MResources::TextTable& texts) {
    for (const bool flag : {false, true}) {
        const int word = flag ? MResourceTable::kTextTrue : MResourceTable::kTextFalse;
        if (text.compare(texts.GetText(word), Qt::CaseInsensitive) == 0) return flag;
    }
    const project::NumberText number = project::ReadNumber(projectdb::ToUtf16(text));
    if (!number.whole) return std::nullopt;
    return number.number != 0;
}

std::optional<ado::Date> Moment(const QString& text, const QLocale& locale) {
    QDateTime moment = locale.toDateTime(text, QLocale::ShortFormat);
    if (!moment.isValid()) moment = locale.toDate(text, QLocale::ShortFormat).startOfDay(Qt::UTC);
    if (!moment.isValid()) moment = QDateTime::fromString(text, Qt::ISODate);
    if (!moment.isValid()) return std::nullopt;
    const QDate day = moment.date();
    return project::DateOf(
        {day.year(), day.month(), day.day(), moment.time().msecsSinceStartOfDay()});
}

template <typename Parsed>
project::Reading AsReading(const std::optional<Parsed>& parsed) {
    if (!parsed) return {{}, project::Problem::NotEditable};
    return {*parsed, project::Problem::None};
}

}  // namespace

project::Reading CellInput(const QString& text, const ado::Field& field, const QLocale& locale,
                           const MResources::TextTable& texts, bool asStored) {
    const bool isFlag = field.type == ado::DataType::Boolean;
    if (isFlag || field.type == ado::DataType::Date) {
        const QString word = text.trimmed();
        if (word.isEmpty()) return {ado::Null(), project::Problem::None};
        return isFlag ? AsReading(Flag(word, texts)) : AsReading(Moment(word, locale));
    }
    project::CellRules rules;
    if (field.baseTable == project::kTrendTable) {
        rules.column = project::FindTrendColumn(field.baseColumn);
    }
    rules.codeOf = [&](std::u16string_view name) -> std::optional<std::int32_t> {
        for (const project::Code& code : rules.column->codes) {
            const QString known = texts.GetText(code.text);
            if (known.compare(projectdb::ToQString(name), Qt::CaseInsensitive) == 0) {
                return code.code;
            }
        }
        return std::nullopt;
    };
    rules.asStored = asStored;
    return project::ReadCell(projectdb::ToUtf16(text), field, rules);
}
