#include "controls/detail/CellValue.h"

#include <cmath>
#include <QRegularExpression>

namespace cellvalue {
namespace {

using namespace Qt::Literals::StringLiterals;

// Beyond these a number is shown with an exponent.
constexpr double kSmallestPlain = 1e-5;
constexpr double kLargestPlain = 1e15;

std::optional<QVariant> ParseNumber(QString text) {
    bool ok = false;
    const double number = text.replace(u',', u'.').toDouble(&ok);
    if (!ok || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::optional<QVariant> ParseInteger(const QString& text) {
    bool ok = false;
    const qlonglong number = text.toLongLong(&ok);
    if (!ok) return std::nullopt;
    return number;
}

std::optional<QVariant> ParseColour(const QString& text) {
    bool ok = false;
    if (text.startsWith(u'#')) {
        const uint rgb = text.mid(1).toUInt(&ok, 16);
        if (!ok || text.size() != 7) return std::nullopt;
        return qlonglong{(rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16};
    }
    // Also the number as it is stored.
    const qlonglong number = text.toLongLong(&ok);
    if (!ok || number < 0 || number > 0xFFFFFF) return std::nullopt;
    return number;
}

}  // namespace

QString GeneralNumber(const QVariant& stored, const QLocale& locale) {
    if (!stored.isValid() || stored.isNull()) return {};
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    switch (stored.typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short:
        case QMetaType::LongLong:
            return plain.toString(stored.toLongLong());
        case QMetaType::Float:
        case QMetaType::Double:
            break;
        default:
            return stored.toString();
    }
    const double number = stored.toDouble();
    const double size = std::abs(number);
    const bool exponent = size != 0 && (size < kSmallestPlain || size >= kLargestPlain);
    if (stored.typeId() == QMetaType::Float) {
        // As many places as tell one single from the next: its double has more.
        return plain.toString(stored.toFloat(), exponent ? 'g' : 'f',
                              QLocale::FloatingPointShortest);
    }
    return plain.toString(number, exponent ? 'g' : 'f', QLocale::FloatingPointShortest);
}

QString ColourText(int stored) {
    const auto bits = static_cast<uint>(stored);
    if (bits > 0xFFFFFF) return u"&H%1"_s.arg(QString::number(bits, 16).toUpper());
    const uint rgb = (bits & 0xFF) << 16 | (bits & 0xFF00) | bits >> 16;
    return u"#%1"_s.arg(QString::number(rgb, 16).toUpper(), 6, u'0');
}

QString InputPattern(GridKind kind) {
    switch (kind) {
        case GridKind::Integer:
            return u"[+-]?\\d{0,10}"_s;
        case GridKind::Number:
            // A second separator may be typed and is refused with the number as a whole: without it
            // the digits behind it would go on the first one's.
            return u"[+-]?[\\d.,]*([eE][+-]?\\d{0,3})?"_s;
        case GridKind::Colour:
            return u"#[0-9a-fA-F]{0,6}|\\d{0,8}"_s;
        case GridKind::Text:
            break;
    }
    return {};
}

bool Accepts(const QString& typed, GridKind kind) {
    const QString pattern = InputPattern(kind);
    if (pattern.isEmpty()) return true;
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    return expression.match(typed, 0, QRegularExpression::PartialPreferCompleteMatch).hasMatch();
}

std::optional<QVariant> Parse(const QString& text, GridKind kind) {
    if (text.isEmpty()) return QVariant();
    switch (kind) {
        case GridKind::Integer:
            return ParseInteger(text.trimmed());
        case GridKind::Number:
            return ParseNumber(text.trimmed());
        case GridKind::Colour:
            return ParseColour(text.trimmed());
        case GridKind::Text:
            break;
    }
    return text;
}

std::optional<double> WholeNumber(const QString& text) {
    bool ok = false;
    const double number = QString(text).trimmed().replace(u',', u'.').toDouble(&ok);
    if (!ok || !std::isfinite(number)) return std::nullopt;
    return number;
}

}  // namespace cellvalue
