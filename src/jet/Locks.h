#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// What keeps the programs on one database apart: one of these a program and database. All waits
/// are bounded; Busy tells that one was not enough.
///
/// Three locks for this engine's own programs:
///   user    held while the database is open: the slot shows the others who is there
///   writer  one program at a time changes the file; held from the beginning of a transaction to
///           its end
///   pages   shared while something is read, exclusive while a transaction's pages are written, so
///           that nobody ever reads a mixture of old and new
class Locks {
public:
    virtual ~Locks() = default;

    virtual Status LockWriter(std::chrono::milliseconds wait) = 0;
    virtual void UnlockWriter() = 0;
    /// True when another program holds the writer lock. Not asked while this one holds it.
    [[nodiscard]] virtual bool IsWriterAtWork() = 0;

    virtual Status LockPagesShared(std::chrono::milliseconds wait) = 0;
    /// Also takes the locks by which other programs guard single pages. `changed` holds the
    /// numbers of the pages to be written.
    virtual Status LockPages(std::span<const PageNo> changed, std::chrono::milliseconds wait) = 0;
    virtual void UnlockPages() = 0;

    /// This program's slot, 1..255.
    [[nodiscard]] virtual int User() const = 0;
    /// Who else has the database open, by computer names.
    [[nodiscard]] virtual std::vector<std::string> OtherUsers() = 0;
    /// Makes sure that nobody else has the database open, and that nobody can open it before the
    /// locks are given up. Busy, naming them, when others are there.
    virtual Status LockAlone() = 0;
};

/// Busy, naming the computers.
[[nodiscard]] Status OthersAreThere(const std::vector<std::string>& computers);

/// Locks in the lock file beside the database, as other programs on it use them. The file is made
/// by the first and removed by the last. Where it cannot be made, as on read-only media, and only
/// reading is wanted, there is nobody to be kept apart from, and the locks do nothing.
[[nodiscard]] Result<std::unique_ptr<Locks>> OpenLockFile(const std::string& database,
                                                          bool forWriting);

}  // namespace jet
