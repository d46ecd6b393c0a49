#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ado/Connection.h"
#include "ado/RowChange.h"

namespace project {

/// What a step has changed: each row of a table once, with all its columns as they were before the
/// step and as they are behind it. A row that the step has made and deleted, and one that is what
/// it was, are none.
class ChangeSet {
public:
    /// Joins further changes, which have come after those that are there.
    void Add(std::vector<ado::RowChange> changes);

    /// In the order in which they were first changed.
    [[nodiscard]] std::span<const ado::RowChange> Rows() const noexcept { return rows_; }
    [[nodiscard]] bool IsEmpty() const noexcept { return rows_.empty(); }
    /// False when something in a row could not be read, or a row has no ID, so that the step cannot
    /// be taken back as a whole.
    [[nodiscard]] bool IsWhole() const;
    /// What it takes of memory, roughly.
    [[nodiscard]] std::size_t Bytes() const;
    /// A row has another ID from now on: in what is known of it, and of rows that name it.
    void Renumber(std::string_view table, std::int32_t was, std::int32_t is);

private:
    using Key = std::pair<std::string, std::int32_t>;  // table, ID

    void RemoveUnchanged();
    void FindPlaces();

    std::vector<ado::RowChange> rows_;
    std::map<Key, std::size_t> places_;  // in rows_, of rows that have an ID
};

/// The ID of a row; nothing in a table without one.
[[nodiscard]] std::optional<std::int32_t> NumberOf(const ado::RowChange& row);

/// The table whose rows a column's values name, its own for the key; empty when it is no such
/// column, or not in this row.
[[nodiscard]] std::string_view TargetOf(const ado::RowChange& row, std::string_view column);

/// Records what is changed through a connection while it is there. The connection has one recorder
/// at a time.
class ChangeRecorder {
public:
    /// `connection` is borrowed.
    explicit ChangeRecorder(ado::Connection& connection);
    ~ChangeRecorder();
    ChangeRecorder(const ChangeRecorder&) = delete;
    ChangeRecorder& operator=(const ChangeRecorder&) = delete;

    /// What has been changed since the last call: one step. What is in a transaction that is going
    /// on belongs to the next.
    [[nodiscard]] ChangeSet Take();

private:
    ado::Connection& connection_;
    ChangeSet step_;
};

}  // namespace project
