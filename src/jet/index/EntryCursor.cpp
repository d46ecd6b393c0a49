#include "jet/index/EntryCursor.h"

#include "jet/page/Bytes.h"

namespace jet {
namespace {

// 3616 bytes hold at least two entries, and 2^24 pages are the most that can be addressed.
constexpr int kMaxDepth = 24;

}  // namespace

Status EntryCursor::Open(PageNo page) {
    JET_ASSIGN(leaf_, cache_->Read(page));
    JET_ASSIGN(search_, IndexSearch::Open(leaf_.Bytes(), page, table_));
    return {};
}

Result<EntryCursor> EntryCursor::Seek(PageCache& cache, PageNo table, PageNo root,
                                      const std::string& from) {
    EntryCursor cursor(cache, table, root);
    cursor.from_ = from;
    JET_TRY(cursor.Descend(from));
    return cursor;
}

Status EntryCursor::MoveTo(const std::string& from) {
    entry_.clear();
    from_ = from;
    bool isInLeaf = false;
    JET_ASSIGN(isInLeaf, IsInLeaf(from));
    return isInLeaf ? Status() : Descend(from);
}

/// True, and stands there, when the leaf at hand is still as it was read and the place lies in it.
Result<bool> EntryCursor::IsInLeaf(const std::string& from) {
    if (!leaf_ || generation_ != cache_->Generation()) return false;
    PageRef now;
    JET_ASSIGN(now, cache_->Read(leaf_.Number()));
    // A page that somebody holds is not changed: it gets a new image.
    if (now.Shared() != leaf_.Shared()) return false;
    at_ = search_.LowerBound(from);
    return at_.begin > 0 && !at_.IsEnd();
}

Status EntryCursor::Descend(const std::string& from) {
    generation_ = cache_->Generation();
    PageNo number = root_;
    for (int depth = 0; depth < kMaxDepth; ++depth) {
        JET_TRY(Open(number));
        at_ = search_.LowerBound(from);
        if (search_.IsLeaf()) return {};
        if (!at_.IsEnd()) {
            number = search_.Child(at_);
        } else if (Raw(search_.Tail()) != 0) {
            number = search_.Tail();
        } else if (search_.Size() > 0) {
            number = search_.Child(search_.Before(at_));
        } else {
            return Status::Corrupt("index " + PageText(number) + " leads nowhere");
        }
    }
    return Status::Corrupt("the index below " + PageText(root_) + " runs in a circle");
}

Result<bool> EntryCursor::Next() {
    Result<bool> stepped = Step();
    if (stepped.IsOk() && *stepped) return true;
    leaf_ = PageRef();
    return stepped;
}

Status EntryCursor::GoToNextLeaf() {
    const ReadScope scope(*cache_);
    JET_TRY(scope.GetStatus());
    if (generation_ != cache_->Generation()) {
        // Another program has changed the file: the leaves may hang together in another way.
        JET_TRY(Descend(entry_.empty() ? from_ : entry_ + std::string(1, '\0')));
        if (!at_.IsEnd()) return {};
    }
    const PageNo next = search_.Next();
    if (Raw(next) == 0) {
        leaf_ = PageRef();
        return {};
    }
    JET_TRY(Open(next));
    if (!search_.IsLeaf()) return Status::Corrupt("index " + PageText(next) + " is not a leaf");
    at_ = search_.At(0);
    return {};
}

Result<bool> EntryCursor::Step() {
    // Empty leaves are rare; more of them in a row than the file has pages are a circle.
    for (std::uint32_t hops = 0; leaf_ && at_.IsEnd(); ++hops) {
        if (hops > cache_->PageCount()) {
            return Status::Corrupt("the leaves at index " + PageText(leaf_.Number()) +
                                   " run in a circle");
        }
        JET_TRY(GoToNextLeaf());
    }
    if (!leaf_) return false;
    // Entries only ever ascend, so that leaves which run in a circle are noticed at once.
    search_.Read(at_, next_);
    if (!entry_.empty() && next_ <= entry_) {
        return Status::Corrupt("the entries of index " + PageText(leaf_.Number()) +
                               " are out of order");
    }
    entry_.swap(next_);
    at_ = search_.At(at_.end);
    const Bytes bytes = std::as_bytes(std::span(entry_));
    row_ = {PageNo{LoadU24BigEndian(bytes, bytes.size() - 4)}, LoadU8(bytes, bytes.size() - 1)};
    key_.assign(entry_, 0, entry_.size() - 4);
    return true;
}

}  // namespace jet
