#include "help/detail/ChmTables.h"

#include <algorithm>
#include <QDir>
#include <QtEndian>

#include "help/detail/HtmlText.h"
#include "platform/Windows1252.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype kMaximumTopics = 65536;
constexpr qsizetype kMaximumEntries = 20000;
constexpr int kMaximumLevel = 30;
constexpr qsizetype kMaximumText = 512;  // characters of a title or path

/// REQUIRES: as many bytes are there.
template <typename Number>
Number Read(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

QString TextAt(const QByteArray& bytes, qsizetype at) {
    if (at < 0 || at >= bytes.size()) return {};
    const QByteArray rest = bytes.mid(at, kMaximumText);
    const qsizetype end = rest.indexOf('\0');
    return end < 0 ? QString() : platform::FromWindows1252(QByteArrayView(rest).first(end));
}

/// The value of an attribute inside one tag, quoted or not.
QString Attribute(QStringView tag, QStringView name) {
    qsizetype at = 0;
    while ((at = tag.indexOf(name, at, Qt::CaseInsensitive)) >= 0) {
        const bool begins = at > 0 && tag[at - 1].isSpace();
        at += name.size();
        QStringView rest = tag.mid(at).trimmed();
        if (!begins || !rest.startsWith(u'=')) continue;
        rest = rest.mid(1).trimmed();
        if (rest.startsWith(u'"') || rest.startsWith(u'\'')) {
            const qsizetype end = rest.indexOf(rest.front(), 1);
            return end < 0 ? QString()
                           : DecodeEntities(rest.mid(1, std::min(end - 1, kMaximumText)));
        }
        qsizetype end = 0;
        while (end < rest.size() && !rest[end].isSpace() && rest[end] != u'>') ++end;
        return DecodeEntities(rest.first(std::min(end, kMaximumText)));
    }
    return {};
}

}  // namespace

QHash<quint32, QString> ReadTopics(const QByteArray& ivb, const QByteArray& strings) {
    QHash<quint32, QString> topics;
    if (ivb.size() < 4) return topics;
    const qsizetype told = static_cast<qsizetype>(Read<quint32>(ivb, 0)) + 4;
    const qsizetype end = std::min({ivb.size(), told, 4 + 8 * kMaximumTopics});
    for (qsizetype at = 4; at + 8 <= end; at += 8) {
        const QString page = CleanPagePath(TextAt(strings, Read<quint32>(ivb, at + 4)));
        if (!page.isEmpty()) topics.insert(Read<quint32>(ivb, at), page);
    }
    return topics;
}

ChmSystem ReadSystem(const QByteArray& system) {
    ChmSystem result;
    qsizetype at = 4;
    while (at + 4 <= system.size()) {
        const quint16 code = Read<quint16>(system, at);
        const quint16 length = Read<quint16>(system, at + 2);
        const QString text = TextAt(system.mid(at + 4, length) + '\0', 0);
        if (code == 0) result.contentsFile = CleanPagePath(text);
        if (code == 2) result.homePage = CleanPagePath(text);
        if (code == 3) result.title = text;
        at += 4 + length;
    }
    return result;
}

QList<ContentsEntry> ReadSitemap(const QByteArray& sitemap) {
    QList<ContentsEntry> entries;
    const QString html = DecodeHtml(sitemap);
    int level = -1;
    ContentsEntry entry;
    for (qsizetype at = html.indexOf(u'<'); at >= 0; at = html.indexOf(u'<', at + 1)) {
        const qsizetype end = html.indexOf(u'>', at);
        if (end < 0 || entries.size() >= kMaximumEntries) break;
        const QStringView tag = QStringView(html).mid(at + 1, end - at - 1);
        const auto is = [&](QStringView name) {
            return tag.startsWith(name, Qt::CaseInsensitive) &&
                   (tag.size() == name.size() || tag[name.size()].isSpace());
        };
        if (is(u"ul")) level = std::min(level + 1, kMaximumLevel);
        if (is(u"/ul")) level = std::max(level - 1, -1);
        if (is(u"object")) entry = {std::max(level, 0), {}, {}};
        if (is(u"param")) {
            const QString name = Attribute(tag, u"name").toLower();
            const QString value = Attribute(tag, u"value");
            if (name == u"name" && entry.title.isEmpty()) entry.title = value.simplified();
            if (name == u"local") entry.page = CleanPagePath(value);
        }
        if (is(u"/object") && level >= 0 && !entry.title.isEmpty()) entries += entry;
        at = end;
    }
    return entries;
}

QString CleanPagePath(QString path) {
    // "mk:@MSITStore:C:\x.chm::/page.htm" and "x.chm::/page.htm"
    if (const qsizetype inside = path.lastIndexOf(u"::"_s); inside >= 0)
        path = path.mid(inside + 2);
    if (path.contains(u"://"_s) || path.startsWith(u"javascript:"_s, Qt::CaseInsensitive))
        return {};
    const qsizetype mark = path.indexOf(u'#');
    const QString place = mark < 0 ? QString() : path.mid(mark);
    if (mark >= 0) path.truncate(mark);
    path.replace(u'\\', u'/');
    while (path.startsWith(u'/')) path.remove(0, 1);
    if (path.isEmpty()) return {};
    path = QDir::cleanPath(path);
    if (path == u"." || path == u".." || path.startsWith(u"../"_s)) return {};
    return path + place;
}

}  // namespace help
