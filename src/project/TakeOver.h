#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/RowChange.h"
#include "project/Differences.h"

/// What another project has, brought into this one. In the differences between the two `before` is
/// what the other project holds and `after` what this one does.
namespace project {

/// A difference that is to go.
struct Wanted {
    std::size_t row = 0;  // position among Differences::rows
    std::string column;   // empty: the row as a whole
};

/// Whether rows of the table can be taken over: archives, trends, their texts and groups. Other
/// tables belong to other editors.
[[nodiscard]] bool IsTakenOver(const Differences& differences, const std::string& table);

/// The rows to be written for what is wanted, with what cannot stay behind. A row that comes brings
/// what it names; an archive its group, its text and its trends. An archive that goes takes its
/// trends along, and a row that goes its text, when no other row that stays names that. A row as a
/// whole goes with its text, an archive's name with text and group. What cannot be taken over is
/// left out.
[[nodiscard]] std::vector<ado::RowChange> PlanTakeOver(const Differences& differences,
                                                       std::span<const Wanted> wanted);

/// Why a row cannot be taken over.
struct TakeOverRefusal {
    enum class Cause : std::uint8_t {
        NameInUse,  // by another archive, another trend of the archive
        HasTrends,  // an archive that is to go has trends that stay
        Changed,    // the row is not what it was when the projects were compared
    };
    Cause cause{};
    std::string table;
    std::int32_t id = 0;
    std::u16string name;  // of the row, as far as it has one
};

/// Writes planned rows as one transaction, all of them or none; columns that this project does not
/// have are passed over. When something is refused, nothing is written. Throws ado::AdoError, and
/// nothing is written. `connection` is borrowed, open and not in a transaction.
[[nodiscard]] std::vector<TakeOverRefusal> TakeOver(ado::Connection& connection,
                                                    std::vector<ado::RowChange> rows);

}  // namespace project
