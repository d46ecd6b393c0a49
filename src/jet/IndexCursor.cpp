#include "jet/IndexCursor.h"

#include "jet/detail/Bytes.h"

namespace jet {
namespace {

// 3616 bytes hold at least two entries, and 2^24 pages are the most that can be addressed.
constexpr int kMaxDepth = 24;

}  // namespace

Result<IndexPage> IndexCursor::Open(PageNo page) {
    PageRef ref;
    JET_ASSIGN(ref, cache_->Read(page));
    return IndexPage::Open(std::move(ref), table_);
}

Result<IndexCursor> IndexCursor::Seek(PageCache& cache, PageNo table, PageNo root,
                                      std::string from) {
    IndexCursor cursor(cache, table);
    PageNo number = root;
    for (int depth = 0; depth < kMaxDepth; ++depth) {
        Result<IndexPage> page = cursor.Open(number);
        if (!page.IsOk()) return page.GetStatus();
        const std::size_t position = page->LowerBound(from);
        if (page->IsLeaf()) {
            cursor.leaf_ = std::move(*page);
            cursor.at_ = position;
            return cursor;
        }
        if (position < page->Count()) {
            number = page->Child(position);
        } else if (Raw(page->Tail()) != 0) {
            number = page->Tail();
        } else if (page->Count() > 0) {
            number = page->Child(page->Count() - 1);
        } else {
            return Status::Corrupt("index " + PageText(number) + " leads nowhere");
        }
    }
    return Status::Corrupt("the index below " + PageText(root) + " runs in a circle");
}

Result<bool> IndexCursor::Next() {
    Result<bool> stepped = Step();
    if (!stepped.IsOk() || !*stepped) leaf_.reset();
    return stepped;
}

Result<bool> IndexCursor::Step() {
    while (leaf_ && at_ >= leaf_->Count()) {
        const PageNo next = leaf_->Next();
        if (Raw(next) == 0) return false;
        if (++leaves_ > cache_->PageCount()) {
            return Status::Corrupt("the leaves behind index " + PageText(next) +
                                   " run in a circle");
        }
        Result<IndexPage> page = Open(next);
        if (!page.IsOk()) return page.GetStatus();
        if (!page->IsLeaf()) {
            return Status::Corrupt("index " + PageText(next) + " is not a leaf");
        }
        leaf_ = std::move(*page);
        at_ = 0;
    }
    if (!leaf_) return false;
    key_ = leaf_->Entry(at_++);
    const Bytes bytes = std::as_bytes(std::span(key_));
    row_ = {PageNo{LoadU24BigEndian(bytes, bytes.size() - 4)}, LoadU8(bytes, bytes.size() - 1)};
    key_.resize(key_.size() - 4);
    return true;
}

}  // namespace jet
