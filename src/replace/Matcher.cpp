#include "replace/Matcher.h"

namespace replace {

using namespace Qt::Literals::StringLiterals;

Replacement::Replacement(QStringView text, std::optional<int> groups) {
    QString plain;
    const auto endPlain = [&] {
        if (!plain.isEmpty()) pieces_.push_back({plain, -1});
        plain.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isMark = groups && text[i] == u'\\' && i + 1 < text.size();
        if (!isMark || (text[i + 1] != u'\\' && !text[i + 1].isDigit())) {
            plain += text[i];
            continue;
        }
        const QChar meant = text[++i];
        if (meant == u'\\') {
            plain += meant;
            continue;
        }
        endPlain();
        pieces_.push_back({{}, meant.digitValue()});
        if (!wrong_ && meant.digitValue() > *groups) wrong_ = Fault{i - 1, meant.digitValue()};
    }
    endPlain();
}

QString Replacement::For(const QRegularExpressionMatch& match) const {
    QString text;
    for (const Piece& piece : pieces_) {
        text += piece.group < 0 ? QStringView(piece.text) : match.capturedView(piece.group);
    }
    return text;
}

Matcher::Matcher(const Term& term)
    : isEmpty_(term.text.isEmpty()), isExpression_(term.isExpression) {
    if (isEmpty_) return;
    QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
    if (!term.isCase) options |= QRegularExpression::CaseInsensitiveOption;
    const QString pattern = term.isExpression ? term.text : QRegularExpression::escape(term.text);
    // By itself first: what is put around it could make up for what it lacks.
    expression_ = QRegularExpression(pattern, options);
    if (!expression_.isValid()) {
        wrong_ = Fault{expression_.patternErrorOffset()};
        return;
    }
    if (term.isWord) expression_.setPattern(u"(?<!\\w)(?:%1)(?!\\w)"_s.arg(pattern));
    if (term.isWhole) expression_.setPattern(u"\\A(?:%1)\\z"_s.arg(pattern));
    expression_.optimize();
}

std::optional<int> Matcher::Groups() const {
    if (!isExpression_) return std::nullopt;
    return wrong_ ? 0 : expression_.captureCount();
}

bool Matcher::IsIn(QStringView text) const {
    return !isEmpty_ && !wrong_ && expression_.match(text).hasMatch();
}

std::vector<Part> Matcher::PartsOf(QStringView text) const {
    std::vector<Part> parts;
    if (isEmpty_ || wrong_) return parts;
    for (auto matches = expression_.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        parts.push_back({match.capturedStart(), match.capturedLength()});
    }
    return parts;
}

Matcher::Replaced Matcher::Replace(QStringView text, const Replacement& by) const {
    Replaced replaced;
    qsizetype done = 0;
    if (!isEmpty_ && !wrong_) {
        for (auto matches = expression_.globalMatch(text); matches.hasNext();) {
            const QRegularExpressionMatch match = matches.next();
            replaced.text += text.mid(done, match.capturedStart() - done);
            const QString part = by.For(match);
            replaced.parts.push_back({replaced.text.size(), part.size()});
            replaced.text += part;
            done = match.capturedEnd();
        }
    }
    replaced.text += text.mid(done);
    return replaced;
}

}  // namespace replace
