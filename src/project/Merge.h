#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"

namespace project {

/// Where two people have changed what goes together. What stands in the result is said with each
/// kind; what does not stand there is told here, so that nothing is lost.
struct MergeConflict {
    enum class Kind : std::uint8_t {
        Field,        // both have changed it; mine stays
        Limits,       // one has changed this limit, one the other, and they fit no more: mine stay
        DeletedMine,  // I have deleted a row that they have changed or made use of: it stays
        DeletedTheirs,  // the other way round
        NameDoubled,    // the row `other` is called the same; both stay
        TableChanged,   // both have changed a table whose rows have no IDs; mine stays
        TableGone,      // they have removed the table; it stays
    };
    Kind kind = Kind::Field;
    std::string table;
    std::int32_t id = 0;  // of the row in the result
    std::u16string name;  // of the row, as far as it has one
    std::string column;   // of Field and Limits
    ado::Value base;
    ado::Value mine;
    ado::Value theirs;
    std::int32_t other = 0;  // of NameDoubled
    std::u16string otherName;
};

struct Merged {
    std::vector<MergeConflict> conflicts;
    /// Rows of theirs that have come under another ID, since I have made one under theirs.
    struct NewNumber {
        std::string table;
        std::int32_t was = 0;
        std::int32_t is = 0;
        std::u16string name;
    };
    std::vector<NewNumber> renumbered;
};

/// Brings into the project `mine` what has been changed from `base` to `theirs`, field by field, in
/// one transaction. `base` may be null: the two have nothing in common then, and rows of the same
/// ID and name are taken for the same one.
///
/// Throws ado::AdoError, and nothing has been changed; so when `theirs` has a table or a column
/// that `mine` does not have. All are open, and borrowed; `mine` is not in a transaction.
[[nodiscard]] Merged Merge(ado::Connection* base, ado::Connection& mine, ado::Connection& theirs);

}  // namespace project
