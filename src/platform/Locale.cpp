#include "platform/Locale.h"

#include <unicode/uloc.h>

#include <array>
#include <cmath>
#include <limits>
#include <QCoreApplication>
#include <QVariant>

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

// LOCALE_USER_DEFAULT and LOCALE_SYSTEM_DEFAULT.
constexpr Lcid kLcidUser = 0x0400;
constexpr Lcid kLcidSystem = 0x0800;

constexpr char kChosenProperty[] = "kvNumberLocale";

constexpr int kSignificantDigits = 15;

/// What languages are called does not hang on how numbers are written.
QString UserLocaleName() {
    return (NumberLocaleName().isEmpty() ? QLocale() : QLocale::system()).name();
}

QString DisplayName(Lcid lcid, const QString& displayLocale) {
    const QByteArray locale = LocaleName(lcid).toLatin1();
    if (locale.isEmpty()) return {};
    std::array<UChar, 255> name{};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        uloc_getDisplayName(locale.constData(), displayLocale.toLatin1().constData(), name.data(),
                            static_cast<int32_t>(name.size()), &status);
    if (U_FAILURE(status)) return {};
    return QString::fromUtf16(name.data(), length);
}

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

qsizetype SkipDigits(QStringView text, qsizetype from) {
    while (from < text.size() && IsDigit(text[from])) ++from;
    return from;
}

}  // namespace

QString LocaleName(Lcid lcid) {
    if (lcid == kLcidUser || lcid == kLcidSystem) return UserLocaleName();
    std::array<char, ULOC_FULLNAME_CAPACITY> name{};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        uloc_getLocaleForLCID(lcid, name.data(), static_cast<int32_t>(name.size()), &status);
    if (U_FAILURE(status) || length <= 0) return {};
    QString locale = QString::fromLatin1(name.data(), length);
    if (locale == u"root") return {};
    return locale;
}

QString LanguageName(Lcid lcid, Lcid displayLanguage) {
    const QString display = LocaleName(displayLanguage);
    return display.isEmpty() ? LanguageName(lcid) : DisplayName(lcid, display);
}

QString LanguageName(Lcid lcid) {
    return DisplayName(lcid, UserLocaleName());
}

QChar DecimalSeparator(const QLocale& locale) {
    const QString point = locale.decimalPoint();
    return point.isEmpty() ? QChar(u'.') : point.front();
}

void SetNumberLocale(const QString& name) {
    if (NumberLocaleName() == name) return;
    // Of the application object there is one; of this library each add-in has a copy.
    QCoreApplication::instance()->setProperty(kChosenProperty, name);
    QLocale::setDefault(name.isEmpty() ? QLocale::system() : QLocale(name));
}

QString NumberLocaleName() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application != nullptr ? application->property(kChosenProperty).toString() : QString();
}

QLocale NumberLocale(const QLocale& ofLanguage) {
    const QString name = NumberLocaleName();
    return name.isEmpty() ? ofLanguage : QLocale(name);
}

QString NumberToText(double number, const QLocale& locale) {
    QString text = QString::number(number, 'g', kSignificantDigits);
    text.replace(u'e', u'E');
    text.replace(u'.', DecimalSeparator(locale));
    return text;
}

double LeadingNumber(QStringView text, qsizetype* end) {
    qsizetype start = 0;
    while (start < text.size() && IsBlank(text[start])) ++start;
    qsizetype at = start;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-')) ++at;
    const qsizetype whole = at;
    at = SkipDigits(text, at);
    qsizetype digits = at - whole;
    if (at < text.size() && text[at] == u'.') {
        const qsizetype behind = SkipDigits(text, at + 1);
        digits += behind - at - 1;
        at = behind;
    }
    if (end != nullptr) *end = digits > 0 ? at : 0;
    if (digits == 0) return 0;
    if (at < text.size() && text[at].toLower() == u'e') {
        qsizetype power = at + 1;
        if (power < text.size() && (text[power] == u'+' || text[power] == u'-')) ++power;
        if (const qsizetype behind = SkipDigits(text, power); behind > power) at = behind;
    }
    if (end != nullptr) *end = at;
    const double number = text.mid(start, at - start).toDouble();
    if (std::isinf(number)) return std::copysign(std::numeric_limits<double>::max(), number);
    return number;
}

}  // namespace platform
