#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "exchange/Cell.h"

namespace exchange {

/// Takes the rows of a sheet.
class SheetWriter {
public:
    SheetWriter() = default;
    virtual ~SheetWriter() = default;
    SheetWriter(const SheetWriter&) = delete;
    SheetWriter& operator=(const SheetWriter&) = delete;

    /// Before the first row of each sheet.
    virtual void Begin(const Sheet& sheet, const words::Language& language) = 0;
    /// A cell for each column of the sheet; they are used again.
    virtual void Row(std::span<const Cell> cells) = 0;
};

/// What is exported: archives by their names or IDs, with their trends; all when there are none.
struct Selection {
    std::vector<std::u16string> archives{};
    std::unordered_set<std::int32_t> archiveIds{};
    // Only these; all of the archives when there are none. Without archives, theirs are meant.
    std::unordered_set<std::int32_t> trends{};
};

/// Writes a sheet: archives by their ID, trends by that of their archive, then by their own. All of
/// one committed state. Throws ado::AdoError, also for a selected name that no archive has.
void Export(ado::Connection& connection, SheetKind kind, const Selection& selection,
            const words::Language& language, SheetWriter& writer);

}  // namespace exchange
