#include "report/Paper.h"

#include <algorithm>
#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QPageLayout>
#include <QPainter>
#include <QTextDocument>

#include "report/Tasks.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qreal kPointsPerInch = 96;
constexpr qreal kHeaderHeight = 22;  // header and footer, each
constexpr int kFontPixels = 10;

/// It ends with its mark.
bool IsWholePdf(const QString& name) {
    constexpr qint64 kLonger = 32;  // than the mark and the end of its line
    QFile file(name);
    return file.open(QIODevice::ReadOnly) &&
           file.seek(std::max<qint64>(0, file.size() - kLonger)) &&
           file.readAll().contains("%%EOF");
}

}  // namespace

QPalette PaperPalette() {
    QPalette palette(Qt::white);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    return palette;
}

QFont PaperFont() {
    QFont font;
    font.setPixelSize(kFontPixels);
    return font;
}

Paper::Paper(std::unique_ptr<QPrinter> printer, const ReportTexts& texts, QString header)
    : printer_(std::move(printer)), texts_(texts), header_(std::move(header)) {
    printer_->setPageOrientation(QPageLayout::Landscape);
    printer_->setPageMargins(QMarginsF(12, 10, 12, 10), QPageLayout::Millimeter);
    const QRectF paper = printer_->pageLayout().paintRect(QPageLayout::Inch);
    body_ =
        QSizeF(paper.width() * kPointsPerInch, paper.height() * kPointsPerInch - 2 * kHeaderHeight);
}

Paper::~Paper() {
    if (done_) return;
    const bool begun = painter_ != nullptr;
    const QString file = printer_->outputFileName();
    if (begun && painter_->isActive()) printer_->abort();
    painter_.reset();
    if (begun && !file.isEmpty()) QFile::remove(file);
}

void Paper::BeginDrawing(int pageCount) {
    pageCount_ = pageCount;
    page_ = 0;
    y_ = 0;
    painter_ = std::make_unique<QPainter>();
    if (painter_->begin(printer_.get())) return;
    painter_.reset();
    Fail();
}

void Paper::Fail() const {
    const QString file = printer_->outputFileName();
    throw TaskError{
        file.isEmpty()
            ? texts_(Text::CannotPrint)
            : texts_(Text::CannotWrite, {{u"file", file}, {u"cause", texts_(Text::CannotPrint)}})};
}

void Paper::NextPage() {
    if (painter_ && page_ > 0 && !printer_->newPage()) Fail();
    ++page_;
    y_ = 0;
    if (painter_) DrawMargins();
}

void Paper::End() {
    const QString file = printer_->outputFileName();
    if (!painter_->end()) Fail();
    // Nobody else tells that the disk has taken a part only.
    if (!file.isEmpty() && !IsWholePdf(file)) Fail();
    done_ = true;
}

/// Header and number; the body's upper left corner is where drawing begins afterwards.
void Paper::DrawMargins() {
    painter_->resetTransform();
    painter_->setClipping(false);
    const qreal scale = printer_->resolution() / kPointsPerInch;
    painter_->scale(scale, scale);
    painter_->setFont(PaperFont());
    painter_->setPen(QColor(0x60, 0x60, 0x60));
    const QRectF header(0, 0, body_.width(), kHeaderHeight - 6);
    const QRectF footer(0, body_.height() + kHeaderHeight + 6, body_.width(), kHeaderHeight - 6);
    const QString number = pageCount_ > 0
                               ? texts_(Text::PageOf, {{u"page", QString::number(page_)},
                                                       {u"pages", QString::number(pageCount_)}})
                               : texts_(Text::Page, {{u"page", QString::number(page_)}});
    painter_->drawText(header, Qt::AlignLeft | Qt::AlignTop, header_);
    painter_->drawText(footer, Qt::AlignRight | Qt::AlignBottom, number);
    painter_->translate(0, kHeaderHeight);
}

void Paper::Draw(const QTextDocument& document) {
    const int count = document.pageCount();
    for (int i = 0; i < count; ++i) {
        if (i > 0) NextPage();
        if (!painter_) continue;
        painter_->save();
        painter_->translate(0, -i * body_.height());
        const QRectF part(0, i * body_.height(), body_.width(), body_.height());
        painter_->setClipRect(part);
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette = PaperPalette();
        context.clip = part;
        document.documentLayout()->draw(painter_.get(), context);
        painter_->restore();
    }
    y_ = document.size().height() - (count - 1) * body_.height();
}

}  // namespace report
