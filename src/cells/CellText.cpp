#include "cells/CellText.h"

#include <QDateTime>

#include "platform/Locale.h"
#include "project/FieldText.h"
#include "project/Moment.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

QString DateText(ado::Date date, const QLocale& locale) {
    const auto moment = project::MomentOf(date);
    if (!moment) return locale.toString(date.days);
    const QString day =
        locale.toString(QDate(moment->year, moment->month, moment->day), QLocale::ShortFormat);
    if (moment->milliseconds == 0) return day;
    const QTime time = QTime(0, 0).addMSecs(moment->milliseconds);
    return day + u' ' + locale.toString(time, QLocale::LongFormat);
}

}  // namespace

QString CellText(const ado::Value& value, const QLocale& locale,
                 const MResources::TextTable& texts) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        return texts.GetText(*flag ? MResourceTable::kTextTrue : MResourceTable::kTextFalse);
    }
    if (const auto* date = std::get_if<ado::Date>(&value)) return DateText(*date, locale);
    if (const auto* bytes = std::get_if<ado::Binary>(&value)) {
        return locale.formattedDataSize(static_cast<qint64>(bytes->size()));
    }
    return projectdb::ToQString(
        project::ValueText(value, platform::DecimalSeparator(locale).unicode()));
}

QString WholeText(const ado::Value& value, const MResources::TextTable& texts) {
    const bool isNumber =
        std::holds_alternative<double>(value) || std::holds_alternative<float>(value);
    return isNumber ? projectdb::ToQString(ado::ToText(value))
                    : CellText(value, QLocale::c(), texts);
}
