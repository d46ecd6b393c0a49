#pragma once

#include <QDateTime>
#include <QPalette>
#include <QString>
#include <vector>

#include "report/Html.h"
#include "report/ProjectReader.h"
#include "report/ReportTables.h"
#include "report/ReportTexts.h"
#include "report/Section.h"
#include "report/Wording.h"

namespace report {

/// Writes the report as XHTML: for a QTextDocument on the screen or on paper, which knows little of
/// style sheets and gets its curves as named pictures, or for a file that a browser shows.
///
/// Everything is written in pieces no longer than a section. Borrows reader and texts; the reader
/// has collected everything.
class HtmlWriter {
public:
    enum class Target { Screen, Print, File };
    /// Rows of one section's table at most.
    static constexpr std::size_t kRowsPerSection = 100;
    /// Archives of one part of the table of contents at most.
    static constexpr std::size_t kArchivesPerSection = 200;

    HtmlWriter(ProjectReader& reader, const ReportTexts& texts, QString projectPath, Target target);

    /// All sections in their order.
    [[nodiscard]] std::vector<Section> Sections() const;
    [[nodiscard]] QString Title(const Section& section) const;

    /// A whole page for a document. `pages` are the first pages of all sections, for the table of
    /// contents of a printed report; empty: it shows none.
    [[nodiscard]] QString Page(const Section& section, const QPalette& palette,
                               const std::vector<int>& pages = {});

    /// The page of a section without its long table, which is Tables().
    [[nodiscard]] QString HeadPage(const Section& section);
    [[nodiscard]] const ReportTables& Tables() const noexcept { return tables_; }
    /// Behind the last row of the table that a section shows; the first one is section.first.
    [[nodiscard]] std::size_t EndRow(const Section& section) const;
    [[nodiscard]] bool IsLast(const Section& section) const;

    // The parts of a file: head, then the body of each section in order, then the foot.
    [[nodiscard]] QString FileHead();
    [[nodiscard]] QString FileBody(const Section& section);
    [[nodiscard]] QString FileFoot();

    /// The section without mark-up, a line for each setting; what a search looks through.
    [[nodiscard]] QString PlainText(const Section& section);

private:
    [[nodiscard]] std::size_t RowCount(const Section& section) const;
    [[nodiscard]] static std::size_t PerSection(const Section& section);
    void BeginPage(Html& html, const QPalette& palette) const;
    void Chapter(Html& html, const Section& section);
    void Body(Html& html, const Section& section, const std::vector<int>& pages);
    void Facts(Html& html) const;
    [[nodiscard]] QString FindingsText() const;
    void Contents(Html& html, const Section& section, const std::vector<int>& pages);
    void PartLinks(Html& html, const Section& section) const;
    void Settings(Html& html, const Section& section);
    void Table(Html& html, const Section& section);
    void TrendHeading(Html& html, const Section& section) const;
    void ProblemTable(Html& html) const;
    void Cell(Html& html, const Lines& lines) const;
    void Link(Html& html, const Section& section, const QString& text) const;

    ProjectReader& reader_;
    const ReportTexts& texts_;
    Wording wording_;
    ReportTables tables_;
    QString projectPath_;
    QDateTime madeOn_ = QDateTime::currentDateTime();
    Target target_;
    Html file_;  // its elements are open from one part to the next
};

}  // namespace report
