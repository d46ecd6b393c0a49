#include "report/Paper.h"

#include <QAbstractTextDocumentLayout>
#include <QPagedPaintDevice>
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

Paper::Paper(std::unique_ptr<PageTarget> target, const ReportTexts& texts, QString header)
    : target_(std::move(target)), texts_(texts), header_(std::move(header)) {
    QPagedPaintDevice& device = target_->Device();
    device.setPageOrientation(QPageLayout::Landscape);
    device.setPageMargins(QMarginsF(12, 10, 12, 10), QPageLayout::Millimeter);
    const QRectF paper = device.pageLayout().paintRect(QPageLayout::Inch);
    body_ =
        QSizeF(paper.width() * kPointsPerInch, paper.height() * kPointsPerInch - 2 * kHeaderHeight);
}

Paper::~Paper() {
    if (done_) return;
    if (painter_ != nullptr) target_->GiveUp();
    painter_.reset();
}

void Paper::BeginDrawing(int pageCount) {
    pageCount_ = pageCount;
    page_ = 0;
    y_ = 0;
    target_->RequireGood();
    painter_ = std::make_unique<QPainter>();
    if (painter_->begin(&target_->Device())) return;
    painter_.reset();
    throw TaskError{texts_(Text::CannotPrint)};
}

void Paper::NextPage() {
    if (painter_) target_->RequireGood();
    if (painter_ && page_ > 0 && !target_->Device().newPage()) {
        throw TaskError{texts_(Text::CannotPrint)};
    }
    ++page_;
    y_ = 0;
    if (painter_) DrawMargins();
}

void Paper::End() {
    const bool isDrawn = painter_->end();
    painter_.reset();
    if (!isDrawn) throw TaskError{texts_(Text::CannotPrint)};
    target_->Finish();
    done_ = true;
}

/// Header and number; the body's upper left corner is where drawing begins afterwards.
void Paper::DrawMargins() {
    painter_->resetTransform();
    painter_->setClipping(false);
    const qreal scale = target_->Device().logicalDpiX() / kPointsPerInch;
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
