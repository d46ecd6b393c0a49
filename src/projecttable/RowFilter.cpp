#include "projecttable/RowFilter.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kOr = u" | "_s;

std::optional<double> NumberOf(const QString& text, const QLocale& locale) {
    bool isNumber = false;
    double number = locale.toDouble(text, &isNumber);
    if (!isNumber) number = QLocale::c().toDouble(text, &isNumber);
    if (!isNumber || !std::isfinite(number)) return std::nullopt;
    return number;
}

}  // namespace

RowFilter::RowFilter(const QString& text, const QLocale& locale) {
    if (text.trimmed().isEmpty()) return;
    for (const QString& part : text.split(kOr)) terms_.append(TermOf(part.trimmed(), locale));
}

RowFilter::Term RowFilter::TermOf(const QString& text, const QLocale& locale) {
    if (text == u'?') return {.kind = Kind::UnknownVariable};
    if (text.startsWith(u"<>")) return {.kind = Kind::IsNot, .text = text.mid(2).trimmed()};
    if (text.startsWith(u'=')) return {.kind = Kind::Is, .text = text.mid(1).trimmed()};
    if (text.startsWith(u'>') || text.startsWith(u'<')) {
        const bool isEqualToo = text.mid(1).startsWith(u'=');
        if (const auto end = NumberOf(text.mid(isEqualToo ? 2 : 1).trimmed(), locale)) {
            Term term{.kind = Kind::Between, .isStrict = !isEqualToo};
            (text.startsWith(u'>') ? term.least : term.most) = end;
            return term;
        }
    }
    if (const qsizetype dots = text.indexOf(u".."); dots >= 0) {
        const QString from = text.left(dots).trimmed();
        const QString to = text.mid(dots + 2).trimmed();
        const auto least = NumberOf(from, locale);
        const auto most = NumberOf(to, locale);
        const bool isRange = (least || from.isEmpty()) && (most || to.isEmpty()) && (least || most);
        if (isRange) return {.kind = Kind::Between, .least = least, .most = most};
    }
    return {.text = text, .matcher = QStringMatcher(text, Qt::CaseInsensitive)};
}

bool RowFilter::Matches(const Subject& subject) const {
    return terms_.isEmpty() || std::any_of(terms_.begin(), terms_.end(), [&](const Term& term) {
               return Matches(term, subject);
           });
}

bool RowFilter::Matches(const Term& term, const Subject& subject) {
    switch (term.kind) {
        case Kind::Contains:
            return term.matcher.indexIn(subject.text) >= 0;
        case Kind::Is:
            return subject.text.trimmed().compare(term.text, Qt::CaseInsensitive) == 0;
        case Kind::IsNot:
            return subject.text.trimmed().compare(term.text, Qt::CaseInsensitive) != 0;
        case Kind::Between: {
            if (!subject.number) return false;
            const double number = *subject.number;
            if (term.isStrict) {
                return (!term.least || number > *term.least) && (!term.most || number < *term.most);
            }
            return (!term.least || number >= *term.least) && (!term.most || number <= *term.most);
        }
        case Kind::UnknownVariable:
            return subject.isUnknownVariable;
    }
    return false;
}

QString RowFilter::OneOf(const QStringList& values) {
    QStringList terms;
    for (const QString& value : values) terms.append(u'=' + value);
    return terms.join(kOr);
}

QStringList RowFilter::ValuesOf(const QString& text) {
    QStringList values;
    for (const QString& part : text.split(kOr, Qt::SkipEmptyParts)) {
        if (!part.trimmed().startsWith(u'=')) return {};
        values.append(part.trimmed().mid(1));
    }
    return values;
}
