#pragma once

#include <memory>

#include "jet/Row.h"

namespace jet {

/// Walks the rows of a table in the order in which they are stored. Made by Table::Scan; the
/// database must outlive it.
class RowCursor {
public:
    struct Rep;   // the library's own
    RowCursor();  // of no table: to be assigned one
    explicit RowCursor(std::unique_ptr<Rep> rep);
    RowCursor(RowCursor&&) noexcept;
    RowCursor& operator=(RowCursor&&) noexcept;
    ~RowCursor();

    /// Steps to the next row; false at the end. After a failure, which concerns one row or one
    /// page, the next call goes on behind the damaged place.
    [[nodiscard]] Result<bool> Next();
    /// REQUIRES: Next() has returned true. A copy of it stays what it is when the cursor goes on.
    [[nodiscard]] const Row& Current() const;

private:
    std::unique_ptr<Rep> rep_;
};

}  // namespace jet
