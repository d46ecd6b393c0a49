#include "help/HelpPage.h"

#include <QBuffer>
#include <QDesktopServices>
#include <QEvent>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>

#include "help/detail/ChmTables.h"
#include "help/detail/HtmlText.h"

namespace help {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kScheme = u"kvhelp"_s;
constexpr int kMaximumPictureSide = 4000;       // pixels
constexpr qsizetype kMaximumPicture = 4 << 20;  // bytes

/// The colours in which our pages and pictures are drawn, and what they become on a dark desktop.
struct ColourPair {
    const char* light;
    const char* dark;
};
constexpr ColourPair kDarkColours[] = {
    {"#333333", "#dcdcdc"}, {"#ffffff", "#1e2022"}, {"#f4f7fa", "#2a2e32"},
    {"#e8f0f8", "#26384a"}, {"#bbbbbb", "#707070"}, {"#0a58a6", "#7db7f0"},
    {"#1f6fb2", "#5aa9e6"}, {"#c0392b", "#ff7b6b"}, {"#2e8b57", "#5cc48a"},
};

}  // namespace

HelpPage::HelpPage(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, &HelpPage::Follow);
}

void HelpPage::SetSource(const IHelpSource* source) {
    source_ = source;
    clearHistory();
    clear();
}

QUrl HelpPage::Address(const QString& page) {
    QUrl url;
    url.setScheme(kScheme);
    url.setPath(u'/' + page.section(u'#', 0, 0));
    if (page.contains(u'#')) url.setFragment(page.section(u'#', 1));
    return url;
}

QString HelpPage::PageOf(const QUrl& address) {
    if (address.scheme() != kScheme) return {};
    return CleanPagePath(address.path());
}

void HelpPage::ShowPage(const QString& page) {
    if (source_ != nullptr && !page.isEmpty())
        setSource(Address(page), QTextDocument::HtmlResource);
}

QString HelpPage::ShownPage() const {
    return PageOf(source());
}

void HelpPage::Follow(const QUrl& link) {
    const QUrl target = source().resolved(link);
    if (target.scheme() == kScheme) {
        setSource(target, QTextDocument::HtmlResource);
    } else if (target.scheme() == u"http" || target.scheme() == u"https") {
        QDesktopServices::openUrl(target);
    } else if (const QString inside = CleanPagePath(link.toString()); !inside.isEmpty()) {
        ShowPage(inside);  // "ms-its:name.chm::/page.htm"
    }
}

QVariant HelpPage::loadResource(int type, const QUrl& name) {
    const QString path = PageOf(source().isEmpty() ? name : source().resolved(name));
    if (source_ == nullptr || path.isEmpty()) return {};
    const std::optional<QByteArray> bytes = source_->Read(path);
    if (!bytes) return {};
    switch (type) {
        case QTextDocument::HtmlResource: {
            const QString html = DecodeHtml(*bytes);
            return source_->IsBuiltIn() ? html : HarmlessHtml(html);
        }
        case QTextDocument::ImageResource:
            return Picture(path, *bytes);
        case QTextDocument::StyleSheetResource:
            // A stranger's colours would not go with the desktop's.
            if (source_->IsBuiltIn()) return QString::fromUtf8(InDesktopColours(*bytes));
            break;
        default:
            break;
    }
    return {};
}

QVariant HelpPage::Picture(const QString& path, const QByteArray& bytes) const {
    if (source_->IsBuiltIn() && path.endsWith(u".svg"_s)) {
        QSvgRenderer renderer(InDesktopColours(bytes));
        const qreal scale = devicePixelRatioF();
        QImage image(renderer.defaultSize() * scale, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter, QRectF(QPointF(), QSizeF(image.size())));
        painter.end();
        image.setDevicePixelRatio(scale);
        return image;
    }
    // Only the formats that pages of this kind use; each decoder more is one more to trust.
    static const QList<QByteArray> kFormats = {"png", "gif", "jpg", "jpeg", "bmp"};
    if (bytes.size() > kMaximumPicture) return {};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!kFormats.contains(reader.format()) || size.width() > kMaximumPictureSide ||
        size.height() > kMaximumPictureSide) {
        return {};
    }
    return reader.read();
}

QByteArray HelpPage::InDesktopColours(QByteArray text) const {
    if (palette().color(QPalette::Base).lightness() >= 128) return text;
    for (const ColourPair& colour : kDarkColours) text.replace(colour.light, colour.dark);
    return text;
}

void HelpPage::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !source().isEmpty()) reload();
}

}  // namespace help
