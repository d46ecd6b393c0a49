#include "manual/PdfManual.h"

#include <algorithm>
#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSet>
#include <QSvgRenderer>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <stdexcept>

#include "manual/PdfBookmarks.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace manual {

using namespace Qt::Literals::StringLiterals;

namespace {

// Laid out in points of a screen with 96 to the inch, and drawn larger.
constexpr int kResolution = 1200;
constexpr QSizeF kText(640, 960);  // of a page, without its margins
constexpr qreal kFoot = 24;        // below it, for the number
constexpr qreal kFigureScale = 3;  // pixels of a figure in a point
constexpr qreal kFontSize = 10;
constexpr int kFootFont = 11;  // in points of the layout

/// A document that finds its pictures in the manual.
class Document final : public QTextDocument {
public:
    explicit Document(QString pictures) : pictures_(std::move(pictures)) {
        setUndoRedoEnabled(false);
        setDocumentMargin(0);
        setPageSize(kText);
        QFont font(u"DejaVu Sans"_s);
        font.setPointSizeF(kFontSize);
        setDefaultFont(font);
        setUseDesignMetrics(true);
        QFile sheet(u":/manual/print.css"_s);
        if (sheet.open(QIODevice::ReadOnly)) {
            setDefaultStyleSheet(QString::fromUtf8(sheet.readAll()));
        }
    }

    [[nodiscard]] QVariant loadResource(int type, const QUrl& name) override {
        const QString path = name.toString();
        if (type != ImageResource || !path.startsWith(u"../"_s)) return {};
        const QByteArray bytes = ReadFile(path.mid(3), pictures_);
        return path.endsWith(u".svg"_s) ? Figure(bytes) : Window(bytes);
    }

    /// The page that a block begins on, from 0.
    [[nodiscard]] int PageOf(const QTextBlock& block) const {
        qreal top = documentLayout()->blockBoundingRect(block).top();
        // Its first line may stand on the page behind.
        if (block.layout()->lineCount() > 0) top += block.layout()->lineAt(0).y();
        return static_cast<int>(top / kText.height());
    }

private:
    static QImage Figure(const QByteArray& bytes) {
        QSvgRenderer renderer(bytes);
        QImage image(renderer.defaultSize() * kFigureScale, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        renderer.render(&painter, QRectF(QPointF(), QSizeF(image.size())));
        painter.end();
        image.setDevicePixelRatio(kFigureScale);
        return image;
    }

    /// No wider than the page, and no higher than half of it.
    static QImage Window(const QByteArray& bytes) {
        QImage image = QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32);
        const qreal scale =
            std::max({1.25, image.width() / kText.width(), image.height() / (kText.height() / 2)});
        image.setDevicePixelRatio(scale);
        return image;
    }

    QString pictures_;
};

/// Headings that stand alone at the end of a page, by their numbers in the document. Each page has
/// one at most.
QList<int> LonelyHeadings(const Document& document) {
    QList<int> lonely;
    int number = -1;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0) continue;
        ++number;
        if (!block.next().isValid()) continue;
        if (document.PageOf(block) != document.PageOf(block.next())) lonely += number;
    }
    return lonely;
}

/// Lays chapters out so that each heading stands on the page of what it heads.
void SetChapters(Document& document, const QString& html) {
    static const QRegularExpression kHeading(u"<h[12]"_s);
    constexpr int kMostTurns = 20;  // a break moves what follows, which takes a few
    QSet<int> broken;
    for (int turn = 0; turn < kMostTurns; ++turn) {
        QString broke = html;
        qsizetype at = 0;
        for (int number = 0; (at = broke.indexOf(kHeading, at)) >= 0; ++number) {
            at += 3;  // of "<h2"
            if (!broken.contains(number)) continue;
            broke.insert(at, u" style=\"page-break-before: always\""_s);
        }
        document.setHtml(broke);
        const QList<int> lonely = LonelyHeadings(document);
        if (lonely.isEmpty()) return;
        for (const int number : lonely) broken += number;
    }
}

/// Pages of the places that are named in a document.
QHash<QString, int> PlacesOf(const Document& document) {
    QHash<QString, int> places;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            for (const QString& name : part.fragment().charFormat().anchorNames()) {
                places.insert(name, document.PageOf(block));
            }
        }
    }
    return places;
}

/// A chapter's body with places that bear the chapter's name: "trend.html", "window.html#undo".
QString Body(const Chapter& chapter, bool isFirst) {
    static const QRegularExpression kPlace(u"<a name=\"([^\"]+)\"></a>"_s);
    QString body = chapter.body;
    // A place needs a character of its own, or it is none.
    body.replace(kPlace, u"<a name=\"%1#\\1\">&#8203;</a>"_s.arg(chapter.file));
    const qsizetype heading = body.indexOf(u"<h1>"_s);
    const QString style = isFirst ? QString() : u" style=\"page-break-before: always\""_s;
    return body.replace(heading, 4, u"<h1%1><a name=\"%2\">&#8203;</a>"_s.arg(style, chapter.file));
}

QString NumberRow(const QString& style, const QString& text, const QString& numbers) {
    return u"<tr><td class=\"number\"%1>%2</td>"
           "<td class=\"number\" align=\"right\">%3</td></tr>\n"_s.arg(style, text.toHtmlEscaped(),
                                                                       numbers);
}

QString Contents(const Manual& manual, const QHash<QString, int>& places, int before,
                 const QString& heading) {
    QString html =
        u"<p style=\"font-size: 26pt; margin-top: 60px\">%1</p><h2>%2</h2>"
        "<table width=\"100%\">"_s.arg(manual.title.toHtmlEscaped(), heading.toHtmlEscaped());
    for (const Chapter& chapter : manual.chapters) {
        html += NumberRow(u" style=\"padding-left: %1px\""_s.arg(chapter.level * 20), chapter.title,
                          QString::number(places.value(chapter.file) + before + 1));
    }
    return html + u"</table>"_s;
}

QString Index(const Manual& manual, const QHash<QString, int>& places, int before) {
    QString html =
        u"<h1>%1</h1><table width=\"100%\">"_s.arg(manual.chapters.back().title.toHtmlEscaped());
    for (qsizetype i = 0; i < manual.index.size();) {
        const QString term = manual.index[i].term;
        QList<int> numbers;
        for (; i < manual.index.size() && manual.index[i].term == term; ++i) {
            const int number = places.value(manual.index[i].page) + before + 1;
            if (!numbers.contains(number)) numbers += number;
        }
        std::ranges::sort(numbers);
        QStringList shown;
        for (const int number : numbers) shown += QString::number(number);
        html += NumberRow({}, term, shown.join(u", "_s));
    }
    return html + u"</table>"_s;
}

/// Draws documents one behind the other, numbering their pages.
class Printer {
public:
    Printer(const QString& file, const QString& title) : writer_(file), title_(title) {
        writer_.setTitle(title);
        writer_.setCreator(u"KVArchivEditor " KV_VERSION ""_s);
        writer_.setResolution(kResolution);
        writer_.setPageSize(QPageSize(QPageSize::A4));
        writer_.setPageMargins(QMarginsF(20, 18, 20, 18), QPageLayout::Millimeter);
        if (!painter_.begin(&writer_)) {
            throw std::runtime_error(file.toStdString() + ": cannot be written");
        }
        painter_.setRenderHint(QPainter::LosslessImageRendering);
        const qreal scale = writer_.width() / kText.width();
        painter_.scale(scale, scale);
    }

    void Draw(const QTextDocument& document) {
        for (int page = 0; page < document.pageCount(); ++page) {
            if (number_++ > 0 && !writer_.newPage()) {
                throw std::runtime_error(title_.toStdString() + ": a page cannot be written");
            }
            const QRectF part(QPointF(0, page * kText.height()), kText);
            painter_.save();
            painter_.translate(0, -part.top());
            QAbstractTextDocumentLayout::PaintContext context;
            context.clip = part;
            context.palette.setColor(QPalette::Text, Qt::black);
            painter_.setClipRect(part);
            document.documentLayout()->draw(&painter_, context);
            painter_.restore();
            QFont font = document.defaultFont();
            font.setPixelSize(kFootFont);
            painter_.setFont(font);
            painter_.drawText(QRectF(0, kText.height(), kText.width(), kFoot),
                              Qt::AlignRight | Qt::AlignBottom,
                              title_ + u"   "_s + QString::number(number_));
        }
    }

private:
    QPdfWriter writer_;
    QPainter painter_;
    QString title_;
    int number_ = 0;
};

}  // namespace

void WritePdf(const Manual& manual, const QString& pictures, const QString& file) {
    MResources::TextTable texts;
    texts.SetLanguage(manual.lcid);
    const QString heading = texts.GetText(MResourceTable::Help::Contents);

    Document chapters(pictures);
    QString html;
    for (const Chapter& chapter : manual.chapters) {
        // The last one is the index, which has pages here in the place of links.
        if (&chapter != &manual.chapters.back()) html += Body(chapter, html.isEmpty());
    }
    SetChapters(chapters, html);
    QHash<QString, int> places = PlacesOf(chapters);
    places.insert(manual.chapters.back().file, chapters.pageCount());

    Document contents(pictures);
    contents.setHtml(Contents(manual, places, 0, heading));
    const int before = contents.pageCount();
    contents.setHtml(Contents(manual, places, before, heading));
    Document index(pictures);
    index.setHtml(Index(manual, places, before));

    {
        Printer printer(file, manual.title);
        for (const Document* part : {&contents, &chapters, &index}) printer.Draw(*part);
    }
    QList<Bookmark> bookmarks;
    for (const Chapter& chapter : manual.chapters) {
        bookmarks += {chapter.level, chapter.title, places.value(chapter.file) + before};
    }
    AddBookmarks(file, bookmarks);
}

}  // namespace manual
