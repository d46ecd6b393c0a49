#pragma once

#include <QDateTime>
#include <QPalette>
#include <QString>
#include <vector>

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
    [[nodiscard]] QString FileHead() const;
    [[nodiscard]] QString FileBody(const Section& section);
    [[nodiscard]] QString FileFoot() const;

    /// The section without mark-up, a line for each setting; what a search looks through.
    [[nodiscard]] QString PlainText(const Section& section);

private:
    [[nodiscard]] const ProjectReader::Archive& TrendsOf(const Section& section) const;
    [[nodiscard]] std::size_t RowCount(const Section& section) const;
    [[nodiscard]] static std::size_t PerSection(const Section& section);
    [[nodiscard]] bool IsLast(const Section& section) const;
    [[nodiscard]] QString Body(const Section& section, const std::vector<int>& pages);
    [[nodiscard]] QString Facts() const;
    [[nodiscard]] QString Contents(const Section& section, const std::vector<int>& pages);
    [[nodiscard]] QString PartLinks(const Section& section) const;
    [[nodiscard]] QString ContentsRow(const Section& section, const QString& name,
                                      const QString& type, std::size_t trends, int page) const;
    [[nodiscard]] QString Settings(const Section& section);
    [[nodiscard]] QString TrendTable(const Section& section);
    [[nodiscard]] QString TrendHeading(const Section& section) const;
    [[nodiscard]] QString ProblemTable() const;
    [[nodiscard]] QString Cell(const Lines& lines) const;
    [[nodiscard]] QString Link(const Section& section, const QString& text) const;

    ProjectReader& reader_;
    const ReportTexts& texts_;
    Wording wording_;
    QString projectPath_;
    QDateTime madeOn_ = QDateTime::currentDateTime();
    Target target_;
};

}  // namespace report
