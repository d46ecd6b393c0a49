#pragma once

#include <optional>
#include <QList>
#include <QLocale>
#include <QString>
#include <QStringMatcher>

/// What a text typed over a column asks of its values:
///
///   pump            contains it, whatever the letter case
///   =pump           is it, as a whole           =    there is nothing
///   <>pump          is another                  <>   there is something
///   >5 >=5 <5 <=5   a number beyond it
///   1..5 ..5 1..    a number between, both included
///   ?               a variable that the project does not have
///   a | b           one of them
///
/// Numbers as the locale writes them, or with a point.
class RowFilter {
public:
    /// A value as it is shown.
    struct Subject {
        QString text;  // empty: there is nothing
        std::optional<double> number{};
        bool isUnknownVariable = false;
    };

    RowFilter() = default;  // asks nothing
    explicit RowFilter(const QString& text, const QLocale& locale = {});

    [[nodiscard]] bool AsksNothing() const { return terms_.isEmpty(); }
    [[nodiscard]] bool Matches(const Subject& subject) const;

    /// The text of a filter for one of several values as they are shown; "" for nothing.
    [[nodiscard]] static QString OneOf(const QStringList& values);
    /// The values of which such a text lets one through; empty where it is another.
    [[nodiscard]] static QStringList ValuesOf(const QString& text);

private:
    enum class Kind { Contains, Is, IsNot, Between, UnknownVariable };
    struct Term {
        Kind kind = Kind::Contains;
        QString text{};
        QStringMatcher matcher{};
        // Between; nothing: open on that side.
        std::optional<double> least{};
        std::optional<double> most{};
        bool isStrict = false;  // the end itself is beyond
    };
    [[nodiscard]] static Term TermOf(const QString& text, const QLocale& locale);
    [[nodiscard]] static bool Matches(const Term& term, const Subject& subject);

    QList<Term> terms_;
};
