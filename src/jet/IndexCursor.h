#pragma once

#include <memory>
#include <string>

#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// Walks the entries of an index in ascending order of their bytes. Made by Table::Seek; the table
/// must outlive it. After a failure it is at its end.
class IndexCursor {
public:
    struct Rep;  // the library's own
    explicit IndexCursor(std::unique_ptr<Rep> rep);
    IndexCursor(IndexCursor&&) noexcept;
    IndexCursor& operator=(IndexCursor&&) noexcept;
    ~IndexCursor();

    /// Steps to the next entry; false at the end.
    [[nodiscard]] Result<bool> Next();

    // REQUIRES: Next() has returned true.
    [[nodiscard]] const std::string& Key() const;
    [[nodiscard]] RowId Row() const;
    [[nodiscard]] bool KeyStartsWith(const std::string& prefix) const {
        return Key().compare(0, prefix.size(), prefix) == 0;
    }

private:
    friend struct Inside;
    std::unique_ptr<Rep> rep_;
};

}  // namespace jet
