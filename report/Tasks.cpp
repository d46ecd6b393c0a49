#include "report/Tasks.h"

#include <algorithm>
#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>

#include "report/ReportDocument.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qreal kPointsPerInch = 96;
constexpr qreal kHeaderHeight = 22;  // header and footer, each
constexpr int kFontPixels = 10;

int AsPermille(std::size_t done, std::size_t total) {
    return static_cast<int>(
        std::min<std::size_t>(1000, done * 1000 / std::max<std::size_t>(total, 1)));
}

/// What is printed is black on white, whatever the desktop looks like.
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

}  // namespace

int CollectTask::Permille() const {
    return AsPermille(reader_.RowsDone(), reader_.RowsTotal());
}

SectionTask::SectionTask(ProjectReader& reader, const ReportTexts& texts,
                         const QString& projectPath, HtmlWriter::Target target)
    : texts_(texts), writer_(reader, texts, projectPath, target), sections_(writer_.Sections()) {}

bool SectionTask::Step(std::chrono::milliseconds budget) {
    const auto end = std::chrono::steady_clock::now() + budget;
    do {
        const std::size_t count = sections_.size();
        if (position_ == count) {
            if (Finish()) return true;
            position_ = 0;
            return false;
        }
        const std::size_t offset = backward_ ? count - position_ : position_;
        const bool goOn = DoSection((start_ + offset) % count);
        ++position_;
        if (!goOn) return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

int SectionTask::Permille() const {
    return AsPermille(position_, sections_.size());
}

FindTask::FindTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                   QString needle, const Section& from, bool backward)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::Screen),
      needle_(std::move(needle)) {
    const std::size_t count = sections_.size();
    const auto here = std::find(sections_.begin(), sections_.end(), from);
    const auto index = static_cast<std::size_t>(here - sections_.begin());
    start_ = (index + (backward ? count - 1 : 1)) % count;
    backward_ = backward;
}

bool FindTask::DoSection(std::size_t index) {
    if (!writer_.PlainText(sections_[index]).contains(needle_, Qt::CaseInsensitive)) return true;
    found_ = sections_[index];
    return false;
}

HtmlExportTask::HtmlExportTask(ProjectReader& reader, const ReportTexts& texts,
                               const QString& projectPath, const QString& file)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::File), file_(file) {}

bool HtmlExportTask::DoSection(std::size_t index) {
    if (!file_.isOpen()) {
        if (!file_.open(QIODevice::WriteOnly)) {
            throw TaskError{texts_(Text::CannotWrite,
                                   {{u"file", file_.fileName()}, {u"cause", file_.errorString()}})};
        }
        Write(writer_.FileHead());
    }
    Write(writer_.FileBody(sections_[index]));
    return true;
}

bool HtmlExportTask::Finish() {
    Write(writer_.FileFoot());
    // Committing alone does not tell that the last bytes, still in memory, find no room.
    if (!file_.flush() || !file_.commit()) {
        throw TaskError{texts_(Text::CannotWrite,
                               {{u"file", file_.fileName()}, {u"cause", file_.errorString()}})};
    }
    return true;
}

void HtmlExportTask::Write(const QString& html) {
    const QByteArray bytes = html.toUtf8();
    if (file_.write(bytes) != bytes.size()) {
        throw TaskError{texts_(Text::CannotWrite,
                               {{u"file", file_.fileName()}, {u"cause", file_.errorString()}})};
    }
}

PrintTask::PrintTask(ProjectReader& reader, const ReportTexts& texts, const QString& projectPath,
                     std::unique_ptr<QPrinter> printer)
    : SectionTask(reader, texts, projectPath, HtmlWriter::Target::Print),
      printer_(std::move(printer)),
      header_(texts(Text::WindowTitle, {{u"project", projectPath}})),
      firstPages_(sections_.size()),
      counting_(reader.TrendCount() <= kTrendsToCount) {
    printer_->setPageOrientation(QPageLayout::Landscape);
    printer_->setPageMargins(QMarginsF(12, 10, 12, 10), QPageLayout::Millimeter);
    const QRectF paper = printer_->pageLayout().paintRect(QPageLayout::Inch);
    body_ =
        QSizeF(paper.width() * kPointsPerInch, paper.height() * kPointsPerInch - 2 * kHeaderHeight);
}

PrintTask::~PrintTask() {
    if (done_) return;
    const bool begun = painter_ != nullptr;
    const QString file = printer_->outputFileName();
    if (begun) printer_->abort();
    painter_.reset();
    if (begun && !file.isEmpty()) QFile::remove(file);
}

QString PrintTask::Label() const {
    return texts_(counting_ ? Text::CountingPages : Text::Printing);
}

int PrintTask::Permille() const {
    const int permille = SectionTask::Permille();
    if (pageCount_ > 0) return 500 + permille / 2;
    return counting_ ? permille / 2 : permille;
}

void PrintTask::Begin() {
    const QString file = printer_->outputFileName();
    painter_ = std::make_unique<QPainter>();
    if (painter_->begin(printer_.get())) return;
    painter_.reset();
    throw TaskError{
        file.isEmpty()
            ? texts_(Text::CannotPrint)
            : texts_(Text::CannotWrite, {{u"file", file}, {u"cause", texts_(Text::CannotPrint)}})};
}

bool PrintTask::DoSection(std::size_t index) {
    if (!counting_ && !painter_) Begin();
    const bool numbered = pageCount_ > 0 || counting_;
    ReportDocument document;
    document.setDefaultFont(PaperFont());
    document.setPageSize(body_);
    document.setDocumentMargin(0);
    document.setHtml(writer_.Page(sections_[index], PaperPalette(),
                                  numbered ? firstPages_ : std::vector<int>()));
    firstPages_[index] = page_ + 1;
    const int count = document.pageCount();
    for (int i = 0; i < count && !counting_; ++i) {
        if (page_ + i > 0 && !printer_->newPage()) throw TaskError{texts_(Text::CannotPrint)};
        page_ += i;
        DrawPage(document, i);
        page_ -= i;
    }
    page_ += count;
    return true;
}

bool PrintTask::Finish() {
    if (counting_) {
        counting_ = false;
        pageCount_ = page_;
        page_ = 0;
        return false;
    }
    done_ = painter_->end();
    if (!done_) throw TaskError{texts_(Text::CannotPrint)};
    return true;
}

void PrintTask::DrawPage(const QTextDocument& document, int page) {
    painter_->save();
    const qreal scale = printer_->resolution() / kPointsPerInch;
    painter_->scale(scale, scale);
    painter_->setFont(PaperFont());
    painter_->setPen(QColor(0x60, 0x60, 0x60));
    const QRectF header(0, 0, body_.width(), kHeaderHeight - 6);
    const QRectF footer(0, body_.height() + kHeaderHeight + 6, body_.width(), kHeaderHeight - 6);
    const QString number = pageCount_ > 0
                               ? texts_(Text::PageOf, {{u"page", QString::number(page_ + 1)},
                                                       {u"pages", QString::number(pageCount_)}})
                               : texts_(Text::Page, {{u"page", QString::number(page_ + 1)}});
    painter_->drawText(header, Qt::AlignLeft | Qt::AlignTop, header_);
    painter_->drawText(footer, Qt::AlignRight | Qt::AlignBottom, number);

    painter_->translate(0, kHeaderHeight - page * body_.height());
    const QRectF part(0, page * body_.height(), body_.width(), body_.height());
    painter_->setClipRect(part);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = PaperPalette();
    context.clip = part;
    document.documentLayout()->draw(painter_.get(), context);
    painter_->restore();
}

}  // namespace report
