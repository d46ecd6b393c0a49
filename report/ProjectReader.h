#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <QString>
#include <span>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/CheckSettings.h"
#include "project/Differences.h"
#include "projectdb/Failure.h"
#include "report/Rows.h"

namespace report {

/// Something about the project that its engineer should look at.
struct Problem {
    enum class Kind { Row, Value, MissingText, MissingArchive, Table };
    Kind kind = Kind::Row;
    QString table;
    qint64 row = 0;  // the row's ID; for Kind::Row its place in the table, from 1
    QString name;    // of the archive or trend, where it is known
    QString detail;  // cause, column, or the number that leads nowhere
};

/// What the check of the project has found.
struct CheckedProject {
    project::Judgement judgement;                 // what is open by severity, the gravest first
    std::optional<projectdb::Failure> failure{};  // why nothing is known
};

/// Reads a project for the report, in portions, and changes nothing in it. What it reads is the
/// project as it was when it was opened, whatever others change while the report is shown.
///
/// Collect goes through all rows once and keeps a place for each: eight bytes a trend. The rows
/// themselves are read again when they are shown, so a project of any size needs little memory.
/// A row or value that cannot be read becomes a Problem and the reading goes on. For one thread.
class ProjectReader {
public:
    /// Entry of the table of contents.
    struct Archive {
        std::int32_t id = 0;
        QString name;
        ado::Bookmark row;
        std::vector<ado::Bookmark> trends;
    };
    /// More problems than this are counted but not kept.
    static constexpr std::size_t kMaximumProblems = 2000;

    ProjectReader();
    ~ProjectReader();
    ProjectReader(const ProjectReader&) = delete;
    ProjectReader& operator=(const ProjectReader&) = delete;

    /// `path` may be in the form with backslashes. Throws ado::AdoError when the file cannot be
    /// opened or has no archives and trends. REQUIRES: not opened yet.
    void Open(const QString& path);

    /// Goes on collecting for about `budget`; true when everything has been collected.
    bool Collect(std::chrono::milliseconds budget);
    [[nodiscard]] std::size_t RowsDone() const noexcept { return rowsDone_; }
    /// As far as the file tells; at least 1.
    [[nodiscard]] std::size_t RowsTotal() const noexcept { return rowsTotal_; }

    // The following take their time, and may run in a thread while nobody else uses the reader.
    // `goOn` ends them with false; what is known stays as it was then.

    /// Checks the project; what cannot be checked stands in Findings().
    void Check(const std::function<bool()>& goOn);
    /// Compares with the project in a file, as it is now. Throws ado::AdoError.
    void CompareWith(const QString& file, const std::function<bool()>& goOn);

    [[nodiscard]] const CheckedProject& Findings() const noexcept { return findings_; }
    /// From the other project to this one; null: nobody has asked for them.
    [[nodiscard]] const project::Differences* Differences() const noexcept {
        return differences_.get();
    }
    [[nodiscard]] const QString& ComparedWith() const noexcept { return comparedWith_; }
    /// The project's file without its folder.
    [[nodiscard]] QString Name() const;

    // REQUIRES: everything has been collected.
    [[nodiscard]] const std::vector<Archive>& Archives() const noexcept { return archives_; }
    /// Trends whose archive does not exist, as the trends of an archive without a row.
    [[nodiscard]] const Archive& WithoutArchive() const noexcept { return withoutArchive_; }
    [[nodiscard]] std::size_t TrendCount() const noexcept { return trendCount_; }
    [[nodiscard]] const std::vector<Problem>& Problems() const noexcept { return problems_; }
    [[nodiscard]] std::size_t ProblemCount() const noexcept { return problemCount_; }

    // Reading a row never throws; what went wrong stands in it.
    [[nodiscard]] ArchiveRow ReadArchive(const Archive& archive);
    [[nodiscard]] TrendRow ReadTrend(ado::Bookmark row);

private:
    enum class Stage { Texts, Archives, Trends, Done };
    struct Source {
        QString table;
        ado::Recordset rows;
        std::vector<std::ptrdiff_t> columns;  // positions of the wanted columns; -1: not there
        qint64 place = 0;                     // of the current row, from 1
        bool begun = false;
    };

    void OpenSource(Source& source, std::string_view table,
                    std::span<const project::Column> columns);
    void OpenTexts();
    bool NextRow(Source& source);
    void CollectText();
    void CollectArchive();
    void CollectTrend();
    void ReadCells(Source& source, Row& row, bool note);
    void ReadTexts(Row& row, const Cell& textId);
    void CheckText(const QString& table, const Cell& id, const QString& name, const Cell& textId);
    void Note(Problem problem);
    [[nodiscard]] bool TextExists(std::int32_t id) const;

    ado::Connection connection_;
    // Behind the connection, which must outlive them.
    Source archiveRows_;
    Source trendRows_;
    Source textRows_;
    std::vector<int> lcids_;  // of the text columns, from the third column of textRows_ on
    bool textsReadable_ = false;

    Stage stage_ = Stage::Texts;
    std::size_t rowsDone_ = 0;
    std::size_t rowsTotal_ = 1;
    std::size_t trendCount_ = 0;
    std::vector<std::int32_t> textIds_;  // ascending once all are collected
    std::vector<Archive> archives_;
    std::vector<std::pair<std::int32_t, std::size_t>> archiveById_;  // ascending, likewise
    Archive withoutArchive_;
    std::vector<Problem> problems_;
    CheckedProject findings_;
    std::unique_ptr<const project::Differences> differences_;
    QString comparedWith_;
    QString path_;  // native
    std::size_t problemCount_ = 0;
};

}  // namespace report
