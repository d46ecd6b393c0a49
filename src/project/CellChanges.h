#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"

/// Values for fields of rows that are there, anywhere in a project: all are written or none.
namespace project {

struct CellChange {
    std::string_view table;  // of the schema
    std::int32_t id = 0;     // of the row
    std::string column;
    ado::Value was;  // what the user has seen there
    ado::Value is;   // what he wants there
};

/// Why a change cannot be made.
struct CellRefusal {
    enum class Cause {
        RowGone,
        Changed,     // another program has written the field
        NoField,     // the table has no such column, or it is not to be written
        DoesNotFit,  // too long or too large for the field, or for what is named after it
        WrongType,
        NameEmpty,
        NameDouble,  // another archive, another trend of the archive has the name
    };
    std::size_t change = 0;  // position among the changes
    Cause cause{};
    ado::Value stands{};  // Changed: what is in the field now
};

/// What stands against the changes, in their order; nothing is written. Names are taken as a set:
/// one that another row gives up is free. A name that stays the same but for its case is not
/// refused. Throws ado::AdoError where the file cannot be read. `connection` is borrowed and open.
[[nodiscard]] std::vector<CellRefusal> CheckCells(ado::Connection& connection,
                                                  std::span<const CellChange> changes);

struct WrittenCells {
    bool isDone = false;  // false: nothing is written
    std::vector<CellRefusal> refusals{};
};

/// Makes the changes as one transaction, unless something stands against one of them. The index
/// text of a trend follows its name where it had the name that the rule gives; group and text of an
/// archive follow always. `goOn` hears how far it is, looking at the rows and writing them being
/// the halves of the way, and takes everything back with false; it may be empty. Throws
/// ado::AdoError, which names the row; nothing is written then.
[[nodiscard]] WrittenCells WriteCells(ado::Connection& connection,
                                      std::span<const CellChange> changes,
                                      const std::function<bool(int done, int total)>& goOn = {});

}  // namespace project
