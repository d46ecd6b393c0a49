#include "help/detail/PageIndex.h"

#include <algorithm>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

#include "help/detail/HtmlText.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Letters alone, for the order: "Übersicht" among those with U.
QString Plain(const QString& text) {
    QString plain;
    for (const QChar c : text.normalized(QString::NormalizationForm_KD)) {
        if (c.isLetterOrNumber() || c == u' ') plain += c.toLower();
    }
    return plain;
}

bool IsWord(const QString& term) {
    static const QRegularExpression kKey(u"^F\\d+$|\\+\\S|\\|"_s);
    return term.size() > 2 && term.front().isLetter() && !kKey.match(term).hasMatch();
}

/// Reads a page once from its beginning to its end.
class Reader {
public:
    Reader(const QByteArray& page, QString path, QString title)
        : xml_(page), path_(std::move(path)), title_(std::move(title)) {}

    QList<IndexEntry> Read() {
        Add(title_, {});
        while (!xml_.atEnd()) {
            const QXmlStreamReader::TokenType token = xml_.readNext();
            if (token == QXmlStreamReader::StartElement) Begin();
            if (token == QXmlStreamReader::Characters && depth_ > 0) text_ += xml_.text();
            if (token == QXmlStreamReader::EndElement) End();
        }
        return entries_;
    }

private:
    void Begin() {
        const QStringView name = xml_.name();
        const QXmlStreamAttributes attributes = xml_.attributes();
        if (name == u"meta" && attributes.value("name"_L1) == u"keywords") {
            for (const QString& word : attributes.value("content"_L1).toString().split(u';')) {
                Add(word, {});
            }
        }
        if (name == u"h2") place_.clear();
        if (name == u"a" && attributes.hasAttribute("name"_L1)) {
            place_ = attributes.value("name"_L1).toString();
        }
        if (name == u"tr") cells_ = 0;
        if (name == u"td") ++cells_;
        const bool isLabel = name == u"b" && cells_ == 1 && isInCell_;
        if (name == u"td") isInCell_ = true;
        if (depth_ > 0) {
            ++depth_;
        } else if (name == u"h2" || isLabel) {
            depth_ = 1;
            text_.clear();
        }
    }

    void End() {
        if (xml_.name() == u"td") isInCell_ = false;
        if (depth_ > 0 && --depth_ == 0) Add(text_, place_);
    }

    void Add(const QString& word, const QString& place) {
        QString term = word.simplified();
        if (term.endsWith(u"..."_s)) term.chop(3);  // of a command that asks first
        if (IsWord(term))
            entries_ += {term, title_, place.isEmpty() ? path_ : path_ + u'#' + place};
    }

    QXmlStreamReader xml_;
    QString path_;
    QString title_;
    QString place_;
    QString text_;
    QList<IndexEntry> entries_;
    int depth_ = 0;  // of elements inside the one whose words are gathered; 0: none is
    int cells_ = 0;  // of the row
    bool isInCell_ = false;
};

}  // namespace

QList<IndexEntry> TermsOf(const QByteArray& page, const QString& path) {
    return Reader(page, path, HtmlTitle(page)).Read();
}

void Sort(QList<IndexEntry>& entries) {
    std::ranges::stable_sort(entries, {}, [](const IndexEntry& entry) {
        return std::pair(Plain(entry.term), entry.term);
    });
    const auto isSame = [](const IndexEntry& a, const IndexEntry& b) {
        return a.term.compare(b.term, Qt::CaseInsensitive) == 0 && a.title == b.title;
    };
    const auto rest = std::ranges::unique(entries, isSame);
    entries.erase(rest.begin(), rest.end());
}

QChar LetterOf(const QString& term) {
    const QString plain = Plain(term);
    return plain.isEmpty() ? u'#' : plain.front().toUpper();
}

QString IndexHtml(const QList<IndexEntry>& entries) {
    QString html;
    QString last;
    for (const IndexEntry& entry : entries) {
        const QString link = u"<a href=\"%1\">%2</a>"_s.arg(
            entry.page.section(u'/', -1).toHtmlEscaped(), entry.title.toHtmlEscaped());
        if (entry.term.compare(last, Qt::CaseInsensitive) == 0) {
            html += u", "_s + link;
            continue;
        }
        const bool isNewLetter = last.isEmpty() || LetterOf(last) != LetterOf(entry.term);
        if (!last.isEmpty()) html += isNewLetter ? u"</p>\n"_s : u"<br/>\n"_s;
        if (isNewLetter) html += u"<h2>%1</h2>\n<p>"_s.arg(LetterOf(entry.term));
        html += entry.term.toHtmlEscaped() + u": "_s + link;
        last = entry.term;
    }
    return last.isEmpty() ? html : html + u"</p>\n"_s;
}

}  // namespace help
