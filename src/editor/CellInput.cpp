#include "editor/CellInput.h"

#include <cmath>
#include <limits>
#include <QDateTime>

#include "languages/MResourceTable.h"
#include "platform/Locale.h"
#include "projectdb/Text.h"

namespace {

/// The whole text as a number; where it goes on behind the number it is none.
std::optional<double> Number(QString text) {
    text.replace(u',', u'.');
    qsizetype end = 0;
    const double number = platform::LeadingNumber(text, &end);
    if (end == 0 || end != text.size()) return std::nullopt;
    return number;
}

std::optional<bool> Flag(const QString& text, const MResources::TextTable& texts) {
    for (const bool flag : {false, true}) {
        const int word = flag ? MResourceTable::kTextTrue : MResourceTable::kTextFalse;
        if (text.compare(texts.GetText(word), Qt::CaseInsensitive) == 0) return flag;
    }
    const std::optional<double> number = Number(text);
    if (!number) return std::nullopt;
    return *number != 0;
}

std::optional<ado::Date> Moment(const QString& text, const QLocale& locale) {
    QDateTime moment = locale.toDateTime(text, QLocale::ShortFormat);
    if (!moment.isValid()) moment = locale.toDate(text, QLocale::ShortFormat).startOfDay(Qt::UTC);
    if (!moment.isValid()) moment = QDateTime::fromString(text, Qt::ISODate);
    if (!moment.isValid()) return std::nullopt;
    constexpr double kMillisecondsPerDay = 24.0 * 60 * 60 * 1000;
    const double day = static_cast<double>(QDate(1899, 12, 30).daysTo(moment.date()));
    const double time = moment.time().msecsSinceStartOfDay() / kMillisecondsPerDay;
    return ado::Date{day < 0 ? day - time : day + time};
}

std::optional<ado::Value> Integer(const QString& text, double smallest, double largest) {
    const std::optional<double> number = Number(text);
    // A number with decimals would be stored as another one than was typed.
    if (!number || *number != std::trunc(*number) || *number < smallest || *number > largest) {
        return std::nullopt;
    }
    return ado::Value(static_cast<std::int32_t>(*number));
}

template <typename Integral>
std::optional<ado::Value> IntegerOf(const QString& text) {
    return Integer(text, std::numeric_limits<Integral>::min(),
                   std::numeric_limits<Integral>::max());
}

template <typename Parsed>
std::optional<ado::Value> AsValue(const std::optional<Parsed>& parsed) {
    if (!parsed) return std::nullopt;
    return ado::Value(*parsed);
}

}  // namespace

std::optional<ado::Value> CellInput(const QString& text, const ado::Field& field,
                                    const QLocale& locale, const MResources::TextTable& texts) {
    using ado::DataType;
    if (field.type == DataType::VarWChar || field.type == DataType::LongVarWChar) {
        if (text.isEmpty()) return ado::Value(ado::Null{});
        return ado::Value(projectdb::ToUtf16(text));
    }
    const QString word = text.trimmed();
    if (word.isEmpty()) return ado::Value(ado::Null{});
    switch (field.type) {
        case DataType::UnsignedTinyInt:
            return IntegerOf<std::uint8_t>(word);
        case DataType::SmallInt:
            return IntegerOf<std::int16_t>(word);
        case DataType::Integer:
            return IntegerOf<std::int32_t>(word);
        case DataType::Single:
        case DataType::Double:
        case DataType::Currency:
        case DataType::Numeric:
            // The field converts further, and refuses what does not fit into it.
            return AsValue(Number(word));
        case DataType::Boolean:
            return AsValue(Flag(word, texts));
        case DataType::Date:
            return AsValue(Moment(word, locale));
        default:
            return std::nullopt;
    }
}
