#pragma once

#include <array>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <vector>

#include "report/Paper.h"
#include "report/ReportTables.h"

namespace report {

/// A table on paper: row below row over as many pages as it takes, its heading on each. Columns are
/// at least as wide as the words of the report in them, so that none of these is broken; a longer
/// word of the project's goes on in the next line, behind a dot or the like where it has one.
///
/// Draws for itself: a text document of a hundred rows takes a hundred times as long.
class PaperTable {
public:
    /// `paper` is borrowed.
    PaperTable(Paper& paper, const QList<TableHead>& heads);

    /// On the page that is open, or the next one when there is no room.
    void Begin();
    void AddRow(const QList<Lines>& cells);
    void End();

private:
    /// A line as it stands in its cell.
    struct Laid {
        QString text;
        Line::Look look = Line::Look::Plain;
        std::optional<Curve> curve{};
    };
    using LaidCell = std::vector<Laid>;

    void SetWidths(const QList<TableHead>& heads);
    void BeginPage();
    void EndPage();
    void DrawHeading();
    void DrawLines(const std::vector<LaidCell>& cells, std::size_t first, std::size_t count);
    [[nodiscard]] LaidCell LayOut(const Lines& lines, qreal width);
    void Wrap(const QString& text, bool strong, qreal first, qreal width, QStringList& lines);
    [[nodiscard]] qreal WidthOf(const QString& text, bool strong);
    [[nodiscard]] qsizetype FittingPart(const QString& word, bool strong, qreal width);

    Paper& paper_;
    QFont plain_ = PaperFont();
    QFont strong_ = PaperFont();
    QFontMetricsF plainMetrics_{plain_};
    QFontMetricsF strongMetrics_{plain_};
    qreal lineHeight_ = 0;
    QStringList titles_;
    std::vector<qreal> widths_;
    qreal top_ = 0;                                  // of the table on this page
    std::array<QHash<QString, qreal>, 2> widthsOf_;  // of words, plain and strong
};

}  // namespace report
