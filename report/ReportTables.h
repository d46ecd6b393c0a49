#pragma once

#include <cstddef>
#include <QList>
#include <QString>
#include <QStringList>

#include "report/ProjectReader.h"
#include "report/ReportTexts.h"
#include "report/Section.h"
#include "report/Wording.h"

namespace report {

/// A column of a table of the report.
struct TableHead {
    QString title;
    int width = 0;      // percent, as far as the words allow
    QStringList words;  // texts of the report that stand in it
};

/// The long tables of the report, row by row: trends, findings of the check, differences. Borrows
/// reader and texts.
class ReportTables {
public:
    ReportTables(ProjectReader& reader, const ReportTexts& texts, const Wording& wording)
        : reader_(reader), texts_(texts), wording_(wording) {}

    [[nodiscard]] static bool IsTable(Section::Kind kind) {
        return kind != Section::Kind::Overview && kind != Section::Kind::Problems;
    }
    [[nodiscard]] const ProjectReader::Archive& TrendsOf(const Section& section) const;
    // REQUIRES: IsTable.
    [[nodiscard]] std::size_t RowCount(const Section& section) const;
    [[nodiscard]] QList<TableHead> Heads(Section::Kind kind) const;
    [[nodiscard]] QList<Lines> Row(const Section& section, std::size_t row) const;

private:
    [[nodiscard]] QList<Lines> FindingRow(std::size_t row) const;
    [[nodiscard]] QList<Lines> DifferenceRow(std::size_t row) const;

    ProjectReader& reader_;
    const ReportTexts& texts_;
    const Wording& wording_;
};

}  // namespace report
