#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "exchange/Cell.h"
#include "exchange/InputRows.h"

namespace exchange {

class ArchiveNames;

/// How rows that come in find those that they mean.
enum class MatchBy : std::uint8_t {
    Both,  // the ID, held against archive and name; without an ID of the project by these
    Id,    // the ID alone
    Name,  // archive and name alone
};

struct PlanOptions {
    MatchBy matchBy = MatchBy::Both;
    bool deleteMissing = false;
    // Rows that are not wanted, by their sheet and their line, or the ID of a missing one.
    std::set<std::pair<SheetKind, std::size_t>> leftOut{};
    std::set<std::pair<SheetKind, std::int32_t>> kept{};
};

/// A field that an import writes.
struct FieldChange {
    std::string table{};
    std::string column{};
    std::int32_t mask = 0;                     // of a number: only these bits; 0: all
    std::optional<std::size_t> sheetColumn{};  // none: it follows from another change
    ado::Value was;                            // Null in a new row
    ado::Value is;
    Suspicion suspicion = Suspicion::None;
};

/// What an import does with a row, or why it does nothing.
struct PlannedRow {
    enum class State : std::uint8_t {
        New,
        Changed,
        Missing,    // stored, and not among the rows that have come in
        Ambiguous,  // it cannot be told which row is meant
        Refused,
    };
    enum class Cause : std::uint8_t {
        None,
        BadCell,          // no value for its column: `problem`
        NoName,           // a row without a name
        NoArchive,        // a trend of no archive, or of one that is not there
        SeveralArchives,  // of that name
        SeveralRows,      // of that archive and name
        OtherNames,       // the ID is that of a row of another archive and another name
        GivenTwice,       // line `other` means the same row
        NameInUse,        // by another row of the archive, as it would be afterwards
        TooManyCells,     // more than the heading row has
        NoResult,         // a cell that holds an error, or a formula without its result
        LeftOut,          // it is not wanted
    };
    State state = State::Changed;
    Cause cause = Cause::None;
    std::size_t line = 0;                     // 0: of a missing one
    std::int32_t id = 0;                      // 0: of a new one, or not known
    std::optional<std::int32_t> archiveId{};  // of a trend: where it is
    std::u16string archive{};                 // of a trend
    std::u16string name{};                    // as it is stored; of a new one as it comes
    std::u16string target{};                  // of a trend that moves: the archive
    std::vector<FieldChange> changes{};
    bool ownText = false;    // its text is another row's as well: it gets one of its own
    std::size_t trends = 0;  // of a missing archive: as many go with it
    // Of a cause.
    std::size_t column = 0;  // of the sheet
    std::u16string given{};
    project::Problem problem = project::Problem::None;
    Suspicion suspicion = Suspicion::None;
    std::size_t other = 0;
};

/// What an import would do. Missing rows come last.
struct Plan {
    SheetKind kind = SheetKind::Trends;
    std::u16string sheet{};                            // its name, of one among several
    std::vector<std::optional<std::size_t>> places{};  // where each column of the sheet stands
    std::vector<PlannedRow> rows{};                    // but for those that stay as they are
    std::size_t same = 0;
    bool deleteMissing = false;  // rows that are missing go

    [[nodiscard]] std::size_t Count(PlannedRow::State state) const;
    /// Whether there is something to be done.
    [[nodiscard]] bool HasWork() const;
};

/// Holds what comes in against the project: rows by their IDs and names, columns by their headings
/// in any language, field by field. Columns that are not there are left as they are, in a new row
/// they get their defaults; a cell with nothing in it is Null, and differs from an empty text. A
/// cell that says what is stored is no change. Archives that no row names miss nothing of their
/// trends.
///
/// Nothing is written. Throws ado::AdoError for headings of which no sheet is made, and what the
/// input itself is wrong with, and GivenUp.
[[nodiscard]] Plan MakePlan(ado::Connection& connection, Input& input, const PlanOptions& options,
                            const ReadOptions& reading = {});
/// `before`: the archives' names of a moment ago; rows may still say them. May be null.
[[nodiscard]] Plan MakePlan(ado::Connection& connection, const InputRows& input,
                            const PlanOptions& options, const ArchiveNames* before = nullptr,
                            const GoOn& goOn = {});

/// The same for sheets that come in together: archives, then trends, which are planned as if the
/// archives were done. For that they are done, in a transaction that is taken back; a project that
/// can only be read is planned as well when there is nothing to do with its archives.
[[nodiscard]] std::vector<Plan> MakePlans(ado::Connection& connection,
                                          std::span<const InputRows> sheets,
                                          const PlanOptions& options, const GoOn& goOn = {});

}  // namespace exchange
