#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"
#include "project/Changes.h"

namespace project {

/// Where somebody else has come between a step and its being taken back.
struct Conflict {
    enum class Kind : std::uint8_t {
        Field,        // holds neither what the step left there nor what was there before it
        RowGone,      // a row that the step has changed has been deleted
        RowChanged,   // a row that the step has made has been changed
        RowInUse,     // an archive that the step has made has trends that are not of the step
        NumberTaken,  // the ID of a row that the step has deleted is another row's now
    };
    Kind kind = Kind::Field;
    std::string table;
    std::int32_t id = 0;
    std::string column;   // of Field
    std::u16string name;  // of the row, as far as it has one
    ado::Value was;       // what the step left
    ado::Value theirs;    // what stands there now
    ado::Value mine;      // what was there before the step
};

/// What is to be done about a conflict. It holds for what the user has seen: when another value
/// stands there by then, the conflict is a new one.
struct Settlement {
    Conflict conflict;
    bool takeMine = false;  // else what stands there stays
};

struct TakenBack {
    /// When there are any, nothing has been changed.
    std::vector<Conflict> open;
    /// Rows that have come back under another ID, which all that name them have been told.
    struct NewNumber {
        std::string table;
        std::int32_t was = 0;
        std::int32_t is = 0;
    };
    std::vector<NewNumber> renumbered;
};

/// Gives the rows of a step back as they were before it, field by field: only what the step has
/// changed is written, and only where what it left still stands; what holds the old value already
/// is passed over. Rows come back under their old ID with all their columns. One transaction;
/// without anything to write the file is not touched. RowInUse cannot be settled by `takeMine`;
/// NumberTaken is settled by it alone: the row gets a new ID.
///
/// Throws ado::AdoError, and nothing has been changed. REQUIRES: `step` is whole; `connection` is
/// open and not in a transaction.
[[nodiscard]] TakenBack TakeBack(ado::Connection& connection, const ChangeSet& step,
                                 std::span<const Settlement> settled = {});

}  // namespace project
