#pragma once

#include <cstdint>
#include <QLocale>
#include <QString>

/// Languages by their Windows number, and numbers as text. Free of state but for the one
/// that the user has chosen; the user's locale is QLocale's default unless a caller names another.
namespace platform {

/// Windows locale identifier, as projects, the settings and the registry store languages.
using Lcid = std::uint32_t;
inline constexpr Lcid kLcidGerman = 1031;
inline constexpr Lcid kLcidEnglish = 1033;

/// Name of the locale for ICU and QLocale: "de_DE" for 1031. Empty for a number that names no
/// language. The two numbers that stand for "whatever the user has set" give the user's locale.
[[nodiscard]] QString LocaleName(Lcid lcid);

/// The full name of a language as a user of another one knows it: 1031 is "German (Germany)" in
/// 1033 and "Deutsch (Deutschland)" in 1031. Empty for a number that names no language; in an
/// unknown display language the user's locale stands in.
[[nodiscard]] QString LanguageName(Lcid lcid, Lcid displayLanguage);
/// The same in the user's locale.
[[nodiscard]] QString LanguageName(Lcid lcid);

/// The decimal separator of the locale: the second character of 1.1 written in it.
[[nodiscard]] QChar DecimalSeparator(const QLocale& locale = QLocale());

/// How the user wants numbers and dates written, by the name of a locale, in host and add-ins
/// alike; QLocale's default is that from now on. Empty: as the desktop does.
void SetNumberLocale(const QString& name);
/// Empty where the user has not chosen.
[[nodiscard]] QString NumberLocaleName();
/// For texts that are written as the interface's language is, unless the user has chosen.
[[nodiscard]] QLocale NumberLocale(const QLocale& ofLanguage);

/// The general number format: as many of 15 significant digits as the number has, the locale's
/// decimal separator, no thousands separators, "E" with a signed exponent below 0.0001 and from
/// 1E+15 on. Digits and minus are always ASCII.
[[nodiscard]] QString NumberToText(double number, const QLocale& locale = QLocale());

/// The number at the start of a text. Blanks in front are skipped; reading stops at the first
/// character that cannot continue a number: sign, digits, one ".", more digits, and an exponent
/// that has digits. No number gives 0, one beyond the range of a double the largest. Where "," is
/// to count as well, the caller replaces it first.
///
/// `end`, when given, receives the position behind the number; 0 when there is none. Linear in
/// the length of the number.
[[nodiscard]] double LeadingNumber(QStringView text, qsizetype* end = nullptr);

}  // namespace platform
