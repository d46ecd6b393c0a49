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
/// Two locks for this engine's own programs:
///   writer  one program at a time changes the file; held from the beginning of a transaction to
///           its end
///   pages   shared while something is read, exclusive while a transaction's pages are written, so
///           that nobody ever reads a mixture of old and new
/// and what other programs look at: a user's slot, held while the database is open, and a lock for
/// each page while it is written.
class Locks {
public:
    virtual ~Locks() = default;

    virtual Status LockWriter(std::chrono::milliseconds wait) = 0;
    virtual void UnlockWriter() = 0;

    virtual Status LockPagesShared(std::chrono::milliseconds wait) = 0;
    /// Also takes the locks by which other programs guard single pages. `changed` holds the
    /// numbers of the pages to be written.
    virtual Status LockPages(std::span<const PageNo> changed, std::chrono::milliseconds wait) = 0;
    virtual void UnlockPages() = 0;
    /// For who is about to read for long, before it locks the pages: returns when no program waits
    /// to write its changes. Several such readers, one behind the other, would leave it no gap.
    virtual Status LetWriterFirst(std::chrono::milliseconds wait) = 0;
    /// Whether a program waits to write its changes just now: who reads for long may give way.
    [[nodiscard]] virtual bool IsWriterWaiting() const { return false; }

    /// This program's slot, 1..255.
    [[nodiscard]] virtual int User() const = 0;
    /// Who else has the database open, by computer names.
    [[nodiscard]] virtual std::vector<std::string> OtherUsers() = 0;
    /// Makes sure that nobody else has the database open, and that nobody can open it before the
    /// locks are given up. Busy, naming them, when others are there.
    virtual Status LockAlone() = 0;

    /// What the user should know about the place where the database lies; empty for nothing.
    [[nodiscard]] virtual std::string Notice() const { return {}; }
};

/// Busy, naming the computers.
[[nodiscard]] Status OthersAreThere(const std::vector<std::string>& computers);

}  // namespace jet
