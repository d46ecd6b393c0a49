#pragma once

#include <memory>
#include <string_view>

#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// Reads a memo or OLE value piece by piece, so that a value of a gigabyte needs one page of
/// memory. Made by Table::OpenLongValue; the table must outlive it.
class LongValueReader {
public:
    struct Rep;  // the library's own
    explicit LongValueReader(std::unique_ptr<Rep> rep);
    LongValueReader(LongValueReader&&) noexcept;
    ~LongValueReader();

    /// The next piece; empty at the end. Valid until the next call.
    [[nodiscard]] Result<Bytes> Next();

private:
    std::unique_ptr<Rep> rep_;
};

/// Reads a memo's text piece by piece. Made by Table::OpenMemo; the table must outlive it.
class MemoReader {
public:
    struct Rep;  // the library's own
    explicit MemoReader(std::unique_ptr<Rep> rep);
    MemoReader(MemoReader&&) noexcept;
    ~MemoReader();

    /// The next piece; empty at the end. A surrogate pair is never cut in two. Valid until the
    /// next call.
    [[nodiscard]] Result<std::u16string_view> Next();

private:
    std::unique_ptr<Rep> rep_;
};

}  // namespace jet
