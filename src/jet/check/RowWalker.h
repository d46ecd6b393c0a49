#pragma once

#include <unordered_set>
#include <vector>

#include "jet/check/DefinitionCheck.h"
#include "jet/page/DataPage.h"

namespace jet::check {

/// Rows that cannot be read, so that an index is not blamed for them.
struct Unreadable {
    std::unordered_set<std::uint32_t> pages;
    std::unordered_set<std::uint32_t> rows;  // row pointers

    [[nodiscard]] bool Contains(RowId id) const {
        return pages.count(Raw(id.page)) != 0 || rows.count(id.Pointer()) != 0;
    }
};

/// Walks all rows of a table for a check: reports pages of the wrong kind or badly packed, and
/// moved rows and their targets that do not pair. Borrows its arguments.
class RowWalker {
public:
    RowWalker(PageCache& cache, Reporter& report, const PageLedger& pages,
              const CheckedTable& table);

    /// Steps to the next row whose bytes can be reached; false at the end.
    bool Next();
    // REQUIRES: Next() has returned true.
    /// The address under which the indexes know the row.
    [[nodiscard]] RowId Id() const { return id_; }
    [[nodiscard]] Bytes Row() const { return row_; }
    /// Marks the current row as one that cannot be read.
    void Reject() { unreadable_.rows.insert(id_.Pointer()); }

    // After the end.
    /// Rows found, readable or not.
    [[nodiscard]] std::uint64_t Count() const { return count_; }
    [[nodiscard]] const Unreadable& Rejected() const { return unreadable_; }

private:
    [[nodiscard]] bool NextPage();
    [[nodiscard]] bool Follow(const Slot& slot);
    void PairTargets();
    void Error(const std::string& where, const std::string& what) {
        report_.Error(Subject::Rows, table_.name + ", " + where + ": " + what);
    }

    PageCache& cache_;
    Reporter& report_;
    const PageLedger& ledger_;
    const CheckedTable& table_;
    std::span<const PageNo> pages_;
    std::size_t nextPage_ = 0;
    DataPage page_;
    DataPage targetPage_;  // keeps row_ alive when the row has moved
    int nextSlot_ = 0;
    int slots_ = 0;
    bool isPacked_ = true;  // offsets of page_ that are wrong have not been reported yet
    RowId id_;
    Bytes row_;
    std::uint64_t count_ = 0;
    std::vector<std::uint32_t> targets_;   // row pointers of targets found
    std::vector<std::uint32_t> pointers_;  // and of those that moved rows name
    Unreadable unreadable_;
};

}  // namespace jet::check
