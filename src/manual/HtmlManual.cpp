#include "manual/HtmlManual.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTextDocument>

#include "texts/MResources.h"
#include "texts/MResourceTable.h"

// Outside of any namespace, as Qt wants it: a static library's resources are not found by
// themselves.
static void InitResources() {
    Q_INIT_RESOURCE(manual);
}

namespace manual {

using namespace Qt::Literals::StringLiterals;
using Text = MResourceTable::Help;

namespace {

QString Data(const QString& name) {
    InitResources();
    QFile file(u":/manual/"_s + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The table of contents beside a page; `shown` is the page's file.
QString Contents(const Manual& manual, const QString& shown) {
    QString list = u"<ul>\n"_s;
    for (const Chapter& chapter : manual.chapters) {
        list += u"<li class=\"level%1\"><a href=\"%2\"%3>%4</a></li>\n"_s.arg(
            QString::number(chapter.level), chapter.file,
            chapter.file == shown ? u" aria-current=\"page\""_s : QString(),
            chapter.title.toHtmlEscaped());
    }
    return list + u"</ul>\n"_s;
}

QString Page(const Manual& manual, const Chapter& chapter, const MResources::TextTable& texts) {
    QString page = Data(u"page.html"_s);
    const auto fill = [&](const QString& place, const QString& text) {
        page.replace(u"@"_s + place + u"@"_s, text);
    };
    fill(u"LANGUAGE"_s, manual.folder);
    fill(u"TITLE"_s, chapter.title.toHtmlEscaped());
    fill(u"MANUAL"_s, manual.title.toHtmlEscaped());
    fill(u"SEARCH"_s, texts.GetText(Text::Search).toHtmlEscaped());
    fill(u"MATCHES"_s, texts.GetText(Text::Matches).toHtmlEscaped());
    fill(u"NOTHING"_s, texts.GetText(Text::NoMatches, {{u"text", u"…"_s}}).toHtmlEscaped());
    fill(u"CONTENTSNAME"_s, texts.GetText(Text::Contents).toHtmlEscaped());
    fill(u"CONTENTS"_s, Contents(manual, chapter.file));
    fill(u"BODY"_s, chapter.body);
    return page;
}

/// What the search of a browser looks through, as a script, which is the only thing that a page
/// may read beside itself where it comes from a disk.
QByteArray SearchData(const Manual& manual) {
    QJsonArray index;
    for (const help::IndexEntry& entry : manual.index) {
        index += QJsonArray{entry.term, entry.title, entry.page};
    }
    QJsonArray pages;
    for (const Chapter& chapter : manual.chapters) {
        // The index holds every word, and explains none.
        if (&chapter == &manual.chapters.back()) continue;
        QTextDocument words;
        words.setHtml(chapter.body);
        pages += QJsonArray{chapter.title, chapter.file, words.toPlainText().simplified()};
    }
    const QJsonObject data{{u"index"_s, index}, {u"pages"_s, pages}};
    return "const searchData = " + QJsonDocument(data).toJson(QJsonDocument::Compact) + ";\n";
}

/// The pictures that a chapter shows, as paths in the manual.
QStringList PicturesOf(const Chapter& chapter) {
    static const QRegularExpression kSource(u"src=\"\\.\\./([^\"]+)\""_s);
    QStringList paths;
    for (auto found = kSource.globalMatch(chapter.body); found.hasNext();) {
        paths += found.next().captured(1);
    }
    return paths;
}

/// The first page: a manual to choose.
QByteArray FirstPage(const QList<Manual>& manuals) {
    QString links;
    QStringList titles;
    for (const Manual& manual : manuals) {
        links += u"<li lang=\"%1\"><a href=\"%1/%2\">%3: %4</a></li>\n"_s.arg(
            manual.folder, manual.chapters.front().file, manual.language.toHtmlEscaped(),
            manual.title.toHtmlEscaped());
        titles += manual.title;
    }
    return Data(u"first.html"_s)
        .replace(u"@TITLE@"_s, titles.join(u" / "_s).toHtmlEscaped())
        .replace(u"@LINKS@"_s, links)
        .toUtf8();
}

}  // namespace

void WriteHtml(const QList<Manual>& manuals, const QString& pictures, const QString& target) {
    QSet<QString> shown;
    for (const Manual& manual : manuals) {
        MResources::TextTable texts;
        texts.SetLanguage(manual.lcid);
        const QString folder = target + u'/' + manual.folder + u'/';
        for (const Chapter& chapter : manual.chapters) {
            WriteFile(folder + chapter.file, Page(manual, chapter, texts).toUtf8());
            for (const QString& path : PicturesOf(chapter)) shown += path;
        }
        WriteFile(folder + u"search-data.js"_s, SearchData(manual));
    }
    for (const QString& path : shown) WriteFile(target + u'/' + path, ReadFile(path, pictures));
    for (const QString& name : {u"manual.css"_s, u"search.js"_s}) {
        WriteFile(target + u'/' + name, Data(name).toUtf8());
    }
    WriteFile(target + u"/index.html"_s, FirstPage(manuals));
}

}  // namespace manual
