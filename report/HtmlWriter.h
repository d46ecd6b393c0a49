#pragma once

#include <QDateTime>
#include <QPalette>
#include <QString>
#include <vector>

#include "report/Html.h"
#include "report/ProjectReader.h"
#include "report/ReportTexts.h"
#include "report/Wording.h"

namespace report {

/// A piece of the report that is shown, printed or searched at a time.
struct Section {
    enum class Kind { Overview, Archive, WithoutArchive, Problems };
    Kind kind = Kind::Overview;
    std::size_t archive = 0;  // Kind::Archive: position among the archives
    std::size_t first = 0;    // of the trends, or the archives of the contents, that it shows

    [[nodiscard]] bool operator==(const Section&) const = default;
    /// As the address of a link, and back; the overview for an address that is none.
    [[nodiscard]] QString Address() const;
    /// Likewise inside a file.
    [[nodiscard]] QString Anchor() const;
    [[nodiscard]] static Section FromAddress(const QString& address);
};

/// Writes the report as XHTML: for a QTextDocument on the screen or on paper, which knows little of
/// style sheets and gets its curves as named pictures, or for a file that a browser shows.
///
/// Everything is written in pieces no longer than a section. Borrows reader and texts; the reader
/// has collected everything.
class HtmlWriter {
public:
    enum class Target { Screen, Print, File };
    /// Trends of one section at most.
    static constexpr std::size_t kTrendsPerSection = 100;
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

    // The parts of a file: head, then the body of each section in order, then the foot.
    [[nodiscard]] QString FileHead();
    [[nodiscard]] QString FileBody(const Section& section);
    [[nodiscard]] QString FileFoot();

    /// The section without mark-up, a line for each setting; what a search looks through.
    [[nodiscard]] QString PlainText(const Section& section);

private:
    [[nodiscard]] const ProjectReader::Archive& TrendsOf(const Section& section) const;
    [[nodiscard]] std::size_t RowCount(const Section& section) const;
    [[nodiscard]] static std::size_t PerSection(const Section& section);
    [[nodiscard]] bool IsLast(const Section& section) const;
    void Body(Html& html, const Section& section, const std::vector<int>& pages);
    void Facts(Html& html) const;
    void Contents(Html& html, const Section& section, const std::vector<int>& pages);
    void PartLinks(Html& html, const Section& section) const;
    void Settings(Html& html, const Section& section);
    void TrendTable(Html& html, const Section& section);
    void TrendHeading(Html& html, const Section& section) const;
    void ProblemTable(Html& html) const;
    void Cell(Html& html, const Lines& lines) const;
    void Link(Html& html, const Section& section, const QString& text) const;

    ProjectReader& reader_;
    const ReportTexts& texts_;
    Wording wording_;
    QString projectPath_;
    QDateTime madeOn_ = QDateTime::currentDateTime();
    Target target_;
    Html file_;  // its elements are open from one part to the next
};

}  // namespace report
