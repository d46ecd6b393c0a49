#pragma once

#include <concepts>
#include <QLocale>
#include <QString>
#include <variant>

/// One value of the settings: a Boolean, a number or a text.
class InitValue {
public:
    /// The empty text.
    InitValue() = default;
    InitValue(bool value) : value_(value) {}
    template <typename Number>
    requires(std::integral<Number> || std::floating_point<Number>) InitValue(Number value)
        : value_(static_cast<double>(value)) {}
    InitValue(const QString& value) : value_(value) {}
    InitValue(const void*) = delete;  // a literal would become a Boolean

    /// Reads a value as the settings file has it. "True", "TRUE", "true" and the like for False
    /// are Booleans, and no other mixture of capitals is; what begins with a digit is the number
    /// at its start, with "," or "." as decimal separator; all else is text. A sign is no digit,
    /// so "-5" is text, deliberately. Blanks in front do not count.
    [[nodiscard]] static InitValue Parse(QStringView text);
    /// The form for the file: "True", "False", the number in the user's locale, the text.
    [[nodiscard]] QString Format(const QLocale& locale = QLocale()) const;

    [[nodiscard]] bool IsNumber() const { return std::holds_alternative<double>(value_); }
    [[nodiscard]] bool IsText() const { return std::holds_alternative<QString>(value_); }

    /// The value as another kind; `fallback` where a text has no such meaning. True is -1. As a
    /// text holds what the user has typed into the file, it is read more willingly than by Parse:
    /// in any capitals, with a sign.
    [[nodiscard]] bool AsBoolean(bool fallback = false) const;
    [[nodiscard]] double AsNumber(double fallback = 0) const;
    [[nodiscard]] QString AsText() const { return Format(); }

    friend bool operator==(const InitValue&, const InitValue&) = default;

private:
    std::variant<QString, bool, double> value_;
};
