#include "settings/InitValue.h"

#include <optional>

#include "platform/Locale.h"

namespace {

using namespace Qt::Literals::StringLiterals;

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

/// The number that the whole text is, blanks at its ends aside.
std::optional<double> WholeNumber(const QString& text) {
    const QString trimmed = QString(text).replace(u',', u'.').trimmed();
    qsizetype end = 0;
    const double number = platform::LeadingNumber(trimmed, &end);
    if (end == 0 || end != trimmed.size()) return std::nullopt;
    return number;
}

}  // namespace

InitValue InitValue::Parse(QStringView text) {
    while (!text.isEmpty() && IsBlank(text.front())) text = text.sliced(1);
    if (text == u"FALSE" || text == u"False" || text == u"false") return false;
    if (text == u"TRUE" || text == u"True" || text == u"true") return true;
    if (!text.isEmpty() && text.front() >= u'0' && text.front() <= u'9') {
        return platform::LeadingNumber(text.toString().replace(u',', u'.'));
    }
    return text.toString();
}

QString InitValue::Format(const QLocale& locale) const {
    if (const auto* text = std::get_if<QString>(&value_)) return *text;
    if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean ? u"True"_s : u"False"_s;
    QString number = platform::NumberToText(std::get<double>(value_), locale);
    // Only these two are understood when the file is read.
    const QChar separator = platform::DecimalSeparator(locale);
    if (separator != u',' && separator != u'.') number.replace(separator, u'.');
    return number;
}

bool InitValue::AsBoolean(bool fallback) const {
    if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean;
    if (const auto* number = std::get_if<double>(&value_)) return *number != 0;
    const QString text = std::get<QString>(value_).trimmed();
    if (text.compare(u"true", Qt::CaseInsensitive) == 0) return true;
    if (text.compare(u"false", Qt::CaseInsensitive) == 0) return false;
    const std::optional<double> number = WholeNumber(text);
    return number ? *number != 0 : fallback;
}

double InitValue::AsNumber(double fallback) const {
    if (const auto* number = std::get_if<double>(&value_)) return *number;
    if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean ? -1 : 0;
    return WholeNumber(std::get<QString>(value_)).value_or(fallback);
}
