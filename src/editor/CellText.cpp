#include "editor/CellText.h"

#include <cmath>
#include <QDateTime>

#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;

// Beyond these a number is shown with an exponent.
constexpr double kSmallestPlain = 1e-5;
constexpr double kLargestPlain = 1e15;
constexpr double kMillisecondsPerDay = 24.0 * 60 * 60 * 1000;

QString DateText(double days, const QLocale& locale) {
    // Years 100 to 9999; what lies outside is no date.
    if (!(days > -657435.0 && days < 2958466.0)) return locale.toString(days);
    const double whole = std::trunc(days);
    const double fraction = std::abs(days - whole);
    const QDate day = QDate(1899, 12, 30).addDays(static_cast<qint64>(whole));
    const QTime time =
        QTime(0, 0).addMSecs(static_cast<int>(std::lround(fraction * kMillisecondsPerDay)));
    if (fraction == 0) return locale.toString(day, QLocale::ShortFormat);
    return locale.toString(day, QLocale::ShortFormat) + u' ' +
           locale.toString(time, QLocale::LongFormat);
}

/// A decimal number as text with the decimal point, as the locale writes it.
QString Localized(QString text, const QLocale& locale) {
    return text.replace(u'.', locale.decimalPoint());
}

}  // namespace

QString CellText(const ado::Value& value, const QLocale& locale,
                 const MResources::TextTable& texts) {
    if (const auto* text = std::get_if<std::u16string>(&value)) return ShownText(*text);
    if (const auto* flag = std::get_if<bool>(&value)) {
        return texts.GetText(*flag ? MResourceTable::kTextTrue : MResourceTable::kTextFalse);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        QLocale plain = locale;
        plain.setNumberOptions(QLocale::OmitGroupSeparator);
        const double size = std::abs(*number);
        const bool exponent = size != 0 && (size < kSmallestPlain || size >= kLargestPlain);
        return plain.toString(*number, exponent ? 'g' : 'f', QLocale::FloatingPointShortest);
    }
    if (const auto* date = std::get_if<ado::Date>(&value)) return DateText(date->days, locale);
    if (const auto* bytes = std::get_if<ado::Binary>(&value)) {
        return locale.formattedDataSize(static_cast<qint64>(bytes->size()));
    }
    const QString text = projectdb::ToQString(ado::ToText(value));
    return std::holds_alternative<ado::Guid>(value) ? text : Localized(text, locale);
}

QString ShownText(const std::u16string& text) {
    static const std::u16string kEmptyText(1, u'\0');
    return text == kEmptyText ? QString() : projectdb::ToQString(text);
}
