#include "help/detail/HtmlText.h"

#include <algorithm>
#include <QRegularExpression>

#include "platform/Windows1252.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype kHeadLength = 2048;      // where a page names its encoding
constexpr qsizetype kMaximumPage = 2 << 20;  // characters that are shown
constexpr int kMaximumDepth = 40;
constexpr qsizetype kMaximumTags = 50000;

struct Entity {
    QLatin1StringView name;
    char16_t character;
};
constexpr Entity kEntities[] = {
    {"amp"_L1, u'&'},        {"lt"_L1, u'<'},        {"gt"_L1, u'>'},        {"quot"_L1, u'"'},
    {"apos"_L1, u'\''},      {"nbsp"_L1, u' '},      {"auml"_L1, u'\u00E4'}, {"ouml"_L1, u'\u00F6'},
    {"uuml"_L1, u'\u00FC'},  {"Auml"_L1, u'\u00C4'}, {"Ouml"_L1, u'\u00D6'}, {"Uuml"_L1, u'\u00DC'},
    {"szlig"_L1, u'\u00DF'},
};

/// The name of the element whose tag begins behind the "<" at `at`, in small letters; "/" in front
/// for its end.
QString TagName(QStringView html, qsizetype at) {
    qsizetype end = at;
    while (end < html.size() && end - at < 16 &&
           (html[end].isLetterOrNumber() || (end == at && html[end] == u'/'))) {
        ++end;
    }
    return html.mid(at, end - at).toString().toLower();
}

bool Nests(const QString& name) {
    static const QStringList kNesting = {
        u"table"_s, u"tr"_s, u"td"_s,         u"th"_s,     u"div"_s,  u"ul"_s,   u"ol"_s, u"li"_s,
        u"dl"_s,    u"dd"_s, u"blockquote"_s, u"center"_s, u"font"_s, u"span"_s, u"b"_s,  u"i"_s};
    return kNesting.contains(name);
}

/// Whether the elements that a layout goes into recursively are nested within reason. An end
/// without its begin does not count: whoever leaves out ends is nested deeper, not less.
bool IsShallow(QStringView html) {
    int depth = 0;
    qsizetype tags = 0;
    for (qsizetype at = html.indexOf(u'<'); at >= 0; at = html.indexOf(u'<', at + 1)) {
        if (++tags > kMaximumTags) return false;
        const QString name = TagName(html, at + 1);
        if (name.startsWith(u'/')) {
            if (Nests(name.mid(1))) depth = std::max(depth - 1, 0);
        } else if (Nests(name) && ++depth > kMaximumDepth) {
            // Lists are often written without the ends of their items.
            if (name != u"li" && name != u"dd") return false;
            --depth;
        }
    }
    return true;
}

QChar EntityCharacter(QStringView name) {
    if (name.startsWith(u'#')) {
        const bool hex = name.size() > 1 && name[1].toLower() == u'x';
        bool ok = false;
        const uint code = name.mid(hex ? 2 : 1).toUInt(&ok, hex ? 16 : 10);
        return ok && code >= 0x20 && code < 0xD800 ? QChar(static_cast<char16_t>(code)) : QChar();
    }
    for (const Entity& entity : kEntities) {
        if (name == entity.name) return QChar(entity.character);
    }
    return {};
}

}  // namespace

QString DecodeHtml(const QByteArray& page) {
    const QByteArray head = page.left(kHeadLength).toLower();
    if (page.startsWith("\xEF\xBB\xBF")) return QString::fromUtf8(page.mid(3));
    if (head.contains("utf-8") || head.contains("utf8")) return QString::fromUtf8(page);
    return platform::FromWindows1252(page);
}

QString HtmlTitle(const QByteArray& page) {
    const QString html = DecodeHtml(page.left(4 * kHeadLength));
    const qsizetype begin = html.indexOf(u"<title>"_s, 0, Qt::CaseInsensitive);
    if (begin < 0) return {};
    const qsizetype end = html.indexOf(u"</title>"_s, begin, Qt::CaseInsensitive);
    if (end < 0) return {};
    return DecodeEntities(QStringView(html).mid(begin + 7, end - begin - 7)).simplified();
}

QString DecodeEntities(QStringView text) {
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&') {
            const qsizetype end = text.mid(i, 12).indexOf(u';');
            const QChar c = end > 1 ? EntityCharacter(text.mid(i + 1, end - 1)) : QChar();
            if (!c.isNull()) {
                result += c;
                i += end;
                continue;
            }
        }
        result += text[i];
    }
    return result;
}

QString HtmlToText(QStringView html) {
    QString text;
    text.reserve(html.size());
    qsizetype at = 0;
    while (at < html.size()) {
        const qsizetype tag = html.indexOf(u'<', at);
        text += html.mid(at, tag < 0 ? -1 : tag - at);
        if (tag < 0) break;
        const QString name = TagName(html, tag + 1);
        // Elements whose words nobody reads are passed over as a whole.
        qsizetype from = tag;
        if (name == u"head" || name == u"script" || name == u"style") {
            from = html.indexOf(QString(u"</"_s + name), tag, Qt::CaseInsensitive);
            if (from < 0) break;
        }
        const bool comment = html.mid(tag, 4) == u"<!--";
        const qsizetype end = comment ? html.indexOf(u"-->", tag) : html.indexOf(u'>', from);
        if (end < 0) break;
        at = end + (comment ? 3 : 1);
        text += u' ';
    }
    return DecodeEntities(text).simplified();
}

QString HarmlessHtml(const QString& html) {
    if (html.size() > kMaximumPage || !IsShallow(html)) {
        return u"<p>"_s + HtmlToText(html).left(kMaximumPage).toHtmlEscaped() + u"</p>"_s;
    }
    static const QRegularExpression kSpans(uR"(\b((?:col|row)span\s*=\s*["']?\s*)\d{3,})"_s,
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression kLengths(
        uR"(\b((?:width|height|cellpadding|cellspacing|border|size)\s*=\s*["']?\s*)\d{5,})"_s,
        QRegularExpression::CaseInsensitiveOption);
    QString result = html;
    result.replace(kSpans, u"\\1 1"_s);
    result.replace(kLengths, u"\\1 0"_s);
    return result;
}

}  // namespace help
