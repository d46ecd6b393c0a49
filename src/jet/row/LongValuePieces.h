#pragma once

#include "jet/page/DataPage.h"
#include "jet/row/TextDecoder.h"
#include "jet/Status.h"
#include "jet/Value.h"

namespace jet {

/// Reads a memo or OLE value piece by piece, so that a value of a gigabyte needs one page of
/// memory. The cache must outlive it.
class LongValuePieces {
public:
    /// `name`, when it is not empty, stands in front of its messages.
    LongValuePieces(PageCache& cache, Format format, const LongValue& value, std::string name = {});

    /// The next piece; empty at the end. Valid until the next call.
    [[nodiscard]] Result<Bytes> Next();

private:
    [[nodiscard]] Result<Bytes> NextPiece();
    [[nodiscard]] Result<Bytes> NextRow(RowId id, std::size_t atLeast);
    [[nodiscard]] Status Damage(const std::string& what) const;

    PageCache& cache_;
    Format format_;
    LongValue value_;
    std::size_t left_;  // bytes
    RowId next_;
    std::string name_;
    std::uint64_t changes_ = 0;  // of the page cache at the first piece
    std::uint32_t pieces_ = 0;
    RowId mark_;     // a piece to be met again when the chain runs in a circle
    DataPage page_;  // keeps the piece alive
};

/// Reads a memo's text piece by piece.
class MemoPieces {
public:
    /// `codePage` is null for Jet 4.
    MemoPieces(LongValuePieces bytes, const CodePage* codePage)
        : bytes_(std::move(bytes)), decoder_(codePage) {}

    /// The next piece; empty at the end. A surrogate pair is never cut in two. Valid until the
    /// next call.
    [[nodiscard]] Result<std::u16string_view> Next();

private:
    LongValuePieces bytes_;
    TextDecoder decoder_;
    std::u16string text_;
    std::u16string held_;  // a first half that waits for its second
};

}  // namespace jet
