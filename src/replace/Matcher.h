#pragma once

#include <optional>
#include <QRegularExpression>
#include <QString>
#include <QStringView>
#include <vector>

namespace replace {

/// What is searched for.
struct Term {
    QString text;
    bool isCase = false;        // capitals count
    bool isWord = false;        // between the ends of words
    bool isWhole = false;       // all that stands in a field
    bool isExpression = false;  // `text` is a regular expression

    [[nodiscard]] bool operator==(const Term&) const = default;
};

/// A part of a text, in UTF-16 units.
struct Part {
    qsizetype at = 0;
    qsizetype length = 0;

    [[nodiscard]] bool operator==(const Part&) const = default;
};

/// What is wrong with what has been typed.
struct Fault {
    qsizetype at = 0;  // in UTF-16 units; behind the text where something is missing
    int group = 0;     // of a replacement: the group that the expression does not have
};

/// What takes the place of a part. For an expression "\1" to "\9" stand for its groups, "\0" for
/// the whole part, "\\" for one backslash; else the text is taken as it is.
class Replacement {
public:
    Replacement() = default;
    /// `groups`: how many the expression has; nothing: it is none.
    Replacement(QStringView text, std::optional<int> groups);

    [[nodiscard]] const std::optional<Fault>& Wrong() const noexcept { return wrong_; }
    [[nodiscard]] QString For(const QRegularExpressionMatch& match) const;

private:
    struct Piece {
        QString text;
        int group = -1;  // -1: the text
    };
    std::vector<Piece> pieces_;
    std::optional<Fault> wrong_;
};

/// Finds a term in texts.
class Matcher {
public:
    /// Finds nothing.
    Matcher() = default;
    explicit Matcher(const Term& term);

    /// Where the expression cannot be understood; such a one finds nothing, and so does an empty
    /// term.
    [[nodiscard]] const std::optional<Fault>& Wrong() const noexcept { return wrong_; }
    [[nodiscard]] bool IsEmpty() const noexcept { return isEmpty_; }
    /// Of an expression; nothing for a plain text.
    [[nodiscard]] std::optional<int> Groups() const;

    [[nodiscard]] bool IsIn(QStringView text) const;
    [[nodiscard]] std::vector<Part> PartsOf(QStringView text) const;

    struct Replaced {
        QString text;
        std::vector<Part> parts;  // of it that are new
    };
    [[nodiscard]] Replaced Replace(QStringView text, const Replacement& by) const;

private:
    QRegularExpression expression_;
    std::optional<Fault> wrong_;
    bool isEmpty_ = true;
    bool isExpression_ = false;
};

}  // namespace replace
