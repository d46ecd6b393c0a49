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
                                      const std::string& from) {
    IndexCursor cursor(cache, table, root);
    cursor.from_ = from;
    JET_TRY(cursor.Descend(from));
    return cursor;
}

Status IndexCursor::Descend(const std::string& from) {
    generation_ = cache_->Generation();
    PageNo number = root_;
    for (int depth = 0; depth < kMaxDepth; ++depth) {
        Result<IndexPage> page = Open(number);
        if (!page.IsOk()) return page.GetStatus();
        const std::size_t position = page->LowerBound(from);
        if (page->IsLeaf()) {
            leaf_ = std::move(*page);
            at_ = position;
            return {};
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
    return Status::Corrupt("the index below " + PageText(root_) + " runs in a circle");
}

Result<bool> IndexCursor::Next() {
    Result<bool> stepped = Step();
    if (stepped.IsOk() && *stepped) return true;
    leaf_.reset();
    if (!stepped.IsOk()) return stepped.GetStatus().In(name_);
    return false;
}

Status IndexCursor::GoToNextLeaf() {
    const ReadScope scope(*cache_);
    JET_TRY(scope.GetStatus());
    if (generation_ != cache_->Generation()) {
        // Another program has changed the file: the leaves may hang together in another way.
        JET_TRY(Descend(entry_.empty() ? from_ : entry_ + std::string(1, '\0')));
        if (at_ < leaf_->Count()) return {};
    }
    const PageNo next = leaf_->Next();
    if (Raw(next) == 0) {
        leaf_.reset();
        return {};
    }
    Result<IndexPage> page = Open(next);
    if (!page.IsOk()) return page.GetStatus();
    if (!page->IsLeaf()) return Status::Corrupt("index " + PageText(next) + " is not a leaf");
    leaf_ = std::move(*page);
    at_ = 0;
    return {};
}

Result<bool> IndexCursor::Step() {
    // Empty leaves are rare; more of them in a row than the file has pages are a circle.
    for (std::uint32_t hops = 0; leaf_ && at_ >= leaf_->Count(); ++hops) {
        if (hops > cache_->PageCount()) {
            return Status::Corrupt("the leaves at index " + PageText(leaf_->Number()) +
                                   " run in a circle");
        }
        JET_TRY(GoToNextLeaf());
    }
    if (!leaf_) return false;
    std::string entry = leaf_->Entry(at_++);
    // Entries only ever ascend, so that leaves which run in a circle are noticed at once.
    if (!entry_.empty() && entry <= entry_) {
        return Status::Corrupt("the entries of index " + PageText(leaf_->Number()) +
                               " are out of order");
    }
    entry_ = std::move(entry);
    const Bytes bytes = std::as_bytes(std::span(entry_));
    row_ = {PageNo{LoadU24BigEndian(bytes, bytes.size() - 4)}, LoadU8(bytes, bytes.size() - 1)};
    key_.assign(entry_, 0, entry_.size() - 4);
    return true;
}

}  // namespace jet
