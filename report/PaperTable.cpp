#include "report/PaperTable.h"

#include <algorithm>
#include <numeric>
#include <QPainter>

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qreal kPadding = 4;
constexpr qreal kCurveGap = 4;  // between a curve and its text
constexpr qsizetype kKnownWords = 50000;
const QColor kBorder(0xb8, 0xb8, 0xb8);
const QColor kHeading(0xee, 0xf1, 0xf4);

bool IsStrong(Line::Look look) {
    return look == Line::Look::Strong || look == Line::Look::Warning;
}

QColor ColourOf(Line::Look look) {
    if (look == Line::Look::Muted) return QColor(0x60, 0x60, 0x60);
    return look == Line::Look::Warning ? QColor(0xb0, 0x00, 0x20) : QColor(Qt::black);
}

/// Whether a word may go on in the next line behind this character.
bool EndsPart(QChar c) {
    return u"._-/\\:;,|"_s.contains(c);
}

}  // namespace

PaperTable::PaperTable(Paper& paper, const QList<TableHead>& heads) : paper_(paper) {
    strong_.setBold(true);
    strongMetrics_ = QFontMetricsF(strong_);
    lineHeight_ = std::max<qreal>(plainMetrics_.lineSpacing(), Curve::kSampleHeight + 1);
    for (const TableHead& head : heads) titles_ += head.title;
    SetWidths(heads);
}

/// The shares, but for columns whose words need more; the others give it.
void PaperTable::SetWidths(const QList<TableHead>& heads) {
    const qreal total = paper_.Body().width();
    std::vector<qreal> least;
    for (const TableHead& head : heads) {
        qreal width = 0;
        for (const QString& word : head.title.split(u' ')) {
            width = std::max(width, WidthOf(word, true));
        }
        for (const QString& text : head.words) {
            for (const QString& word : text.split(u' ')) {
                width = std::max(width, WidthOf(word, false));
            }
        }
        least.push_back(width + 2 * kPadding + 1);
        widths_.push_back(total * head.width / 100);
    }
    qreal lacks = 0;
    qreal spare = 0;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        lacks += std::max(0.0, least[i] - widths_[i]);
        spare += std::max(0.0, widths_[i] - least[i]);
    }
    const qreal part = spare > 0 ? std::min(1.0, lacks / spare) : 0;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        widths_[i] = widths_[i] < least[i] ? least[i] : widths_[i] - (widths_[i] - least[i]) * part;
    }
}

qreal PaperTable::WidthOf(const QString& text, bool strong) {
    QHash<QString, qreal>& known = widthsOf_[strong ? 1 : 0];
    if (known.size() > kKnownWords) known.clear();
    const auto found = known.constFind(text);
    if (found != known.constEnd()) return *found;
    const qreal width = (strong ? strongMetrics_ : plainMetrics_).horizontalAdvance(text);
    known.insert(text, width);
    return width;
}

/// How much of a word that is too long for a line fits on one: up to a dot or the like, or else as
/// many characters as there is room for.
qsizetype PaperTable::FittingPart(const QString& word, bool strong, qreal width) {
    const QFontMetricsF& metrics = strong ? strongMetrics_ : plainMetrics_;
    qsizetype fits = word.size() - 1;
    while (fits > 1 && metrics.horizontalAdvance(word.left(fits)) > width) --fits;
    for (qsizetype i = fits; i > 1; --i) {
        if (EndsPart(word[i - 1])) return i;
    }
    if (fits > 1 && word[fits - 1].isHighSurrogate()) --fits;
    return std::max<qsizetype>(fits, 1);
}

/// Adds the lines of a text that begins with the width `first`.
void PaperTable::Wrap(const QString& text, bool strong, qreal first, qreal width,
                      QStringList& lines) {
    const qreal blank = WidthOf(u" "_s, strong);
    QString line;
    qreal used = 0;
    qreal room = first;
    const auto end = [&] {
        lines += line;
        line.clear();
        used = 0;
        room = width;
    };
    for (QString word : text.split(u' ')) {
        qreal wide = WidthOf(word, strong);
        if (!line.isEmpty() && used + blank + wide > room) end();
        while (line.isEmpty() && wide > room && word.size() > 1) {
            const qsizetype part = FittingPart(word, strong, room);
            line = word.left(part);
            word.remove(0, part);
            end();
            wide = WidthOf(word, strong);
        }
        if (!line.isEmpty()) {
            line += u' ';
            used += blank;
        }
        line += word;
        used += wide;
    }
    end();
}

PaperTable::LaidCell PaperTable::LayOut(const Lines& lines, qreal width) {
    LaidCell cell;
    for (const Line& line : lines) {
        const qreal curve = line.curve ? Curve::kSampleWidth + kCurveGap : 0;
        QStringList wrapped;
        for (const QString& part : line.text.split(u'\n')) {
            const bool isFirst = wrapped.isEmpty();
            Wrap(part, IsStrong(line.look), isFirst ? width - curve : width, width, wrapped);
        }
        for (qsizetype i = 0; i < wrapped.size(); ++i) {
            cell.push_back({wrapped[i], line.look, i == 0 ? line.curve : std::nullopt});
        }
    }
    return cell;
}

void PaperTable::Begin() {
    constexpr int kRowsWithHeading = 4;  // lines; a heading alone at the end of a page helps nobody
    if (paper_.Page() == 0 || paper_.Room() < kRowsWithHeading * lineHeight_) paper_.NextPage();
    BeginPage();
}

void PaperTable::BeginPage() {
    top_ = paper_.Y();
    DrawHeading();
}

void PaperTable::DrawHeading() {
    std::vector<LaidCell> cells;
    std::size_t lines = 1;
    for (qsizetype i = 0; i < titles_.size(); ++i) {
        const Line title{titles_[i], Line::Look::Strong};
        cells.push_back(LayOut({title}, widths_[static_cast<std::size_t>(i)] - 2 * kPadding));
        lines = std::max(lines, cells.back().size());
    }
    if (QPainter* painter = paper_.Painter()) {
        const qreal height = static_cast<qreal>(lines) * lineHeight_ + kPadding;
        const qreal width = std::accumulate(widths_.begin(), widths_.end(), 0.0);
        painter->fillRect(QRectF(0, top_, width, height), kHeading);
        painter->setPen(QPen(kBorder, 1));
        painter->drawLine(QPointF(0, top_), QPointF(width, top_));
    }
    DrawLines(cells, 0, lines);
}

void PaperTable::AddRow(const QList<Lines>& cells) {
    std::vector<LaidCell> laid;
    std::size_t lines = 1;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        laid.push_back(LayOut(cells[i], widths_[static_cast<std::size_t>(i)] - 2 * kPadding));
        lines = std::max(lines, laid.back().size());
    }
    for (std::size_t first = 0; first < lines;) {
        const auto rest = lines - first;
        const qreal room = paper_.Room() - kPadding;
        auto fits = static_cast<std::size_t>(std::max(0.0, room / lineHeight_));
        // A row goes to the next page as a whole, unless it is longer than a page.
        const bool isLong = static_cast<qreal>(rest) * lineHeight_ > paper_.Body().height() / 2;
        if (fits < rest && (!isLong || fits == 0)) {
            EndPage();
            paper_.NextPage();
            BeginPage();
            fits = static_cast<std::size_t>((paper_.Room() - kPadding) / lineHeight_);
        }
        const std::size_t count = std::min(rest, std::max<std::size_t>(fits, 1));
        DrawLines(laid, first, count);
        first += count;
    }
}

/// Lines of a row, with the border below it.
void PaperTable::DrawLines(const std::vector<LaidCell>& cells, std::size_t first,
                           std::size_t count) {
    const qreal height = static_cast<qreal>(count) * lineHeight_ + kPadding;
    QPainter* painter = paper_.Painter();
    qreal x = 0;
    for (std::size_t i = 0; painter != nullptr && i < cells.size(); ++i) {
        qreal y = paper_.Y() + kPadding / 2;
        for (std::size_t at = first; at < std::min(first + count, cells[i].size()); ++at) {
            const Laid& line = cells[i][at];
            qreal left = x + kPadding;
            if (line.curve) {
                line.curve->Draw(*painter, QPointF(left, y));
                left += Curve::kSampleWidth + kCurveGap;
            }
            if (!line.text.isEmpty()) {
                painter->setFont(IsStrong(line.look) ? strong_ : plain_);
                painter->setPen(ColourOf(line.look));
                painter->drawText(QPointF(left, y + plainMetrics_.ascent()), line.text);
            }
            y += lineHeight_;
        }
        x += widths_[i];
    }
    paper_.Advance(height);
    if (painter == nullptr) return;
    painter->setPen(QPen(kBorder, 1));
    painter->drawLine(QPointF(0, paper_.Y()), QPointF(x, paper_.Y()));
}

/// The borders between the columns, each as one line.
void PaperTable::EndPage() {
    QPainter* painter = paper_.Painter();
    if (painter == nullptr) return;
    painter->setPen(QPen(kBorder, 1));
    qreal x = 0;
    for (std::size_t i = 0; i <= widths_.size(); ++i) {
        painter->drawLine(QPointF(x, top_), QPointF(x, paper_.Y()));
        if (i < widths_.size()) x += widths_[i];
    }
}

void PaperTable::End() {
    EndPage();
    paper_.Advance(lineHeight_);
}

}  // namespace report
