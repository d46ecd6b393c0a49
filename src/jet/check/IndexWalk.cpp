#include "jet/check/IndexWalk.h"

#include <tuple>
#include <vector>

#include "jet/check/IndexKeys.h"
#include "jet/page/Bytes.h"

namespace jet::check {
namespace {

constexpr int kMaxDepth = 24;        // two entries a node reach every page there can be
constexpr std::size_t kRowSize = 4;  // of an entry, behind its key
constexpr std::size_t kLevel = 26;

std::string_view KeyOf(std::string_view entry) {
    return entry.substr(0, entry.size() - kRowSize);
}

}  // namespace

IndexWalk::IndexWalk(PageCache& cache, Reporter& report, PageLedger& pages,
                     const CheckedTable& table, std::size_t realIndex, EntrySink sink)
    : cache_(cache),
      report_(report),
      pages_(pages),
      index_(table.def.realIndexes[realIndex]),
      table_(table.def.page),
      owner_(table.indexes[realIndex]),
      name_(table.IndexName(realIndex)),
      sink_(std::move(sink)) {}

void IndexWalk::Error(PageNo page, const std::string& what) {
    report_.Error(Subject::Indexes, name_ + ", " + PageText(page) + ": " + what);
}

void IndexWalk::Run() {
    pages_.BeginWalk();
    Visit(index_.root, 0);
    if (report_.IsStopped()) return;
    if (Raw(lastLeaf_) != 0 && Raw(linkOfLastLeaf_) != 0) {
        Error(lastLeaf_, "the last leaf is linked to " + PageText(linkOfLastLeaf_));
    }
    CheckUnvisited();
}

void IndexWalk::CheckUnvisited() {
    for (const PageNo page : pages_.PagesOf(owner_)) {
        if (!pages_.WasVisited(page)) Error(page, "cannot be reached from the root");
    }
}

void IndexWalk::RunPages() {
    pages_.BeginWalk();
    VisitPlace(index_.root, 0);
    if (!report_.IsStopped()) CheckUnvisited();
}

bool IndexWalk::VisitPlace(PageNo number, int depth) {
    if (!Enter(number, depth)) return false;
    PageRef ref;
    const Result<IndexPage> page = Open(number, ref);
    if (!page.IsOk()) return false;
    if (page->IsLeaf()) return true;
    std::vector<PageNo> children;
    for (std::size_t i = 0; i < page->Count(); ++i) children.push_back(page->Child(i));
    if (Raw(page->Tail()) != 0) children.push_back(page->Tail());
    bool areLeaves = false;
    for (std::size_t i = 0; i < children.size() && !report_.IsStopped(); ++i) {
        if (i > 0 && areLeaves) {
            std::ignore = Enter(children[i], depth + 1);
        } else {
            areLeaves = VisitPlace(children[i], depth + 1);
        }
    }
    return false;
}

bool IndexWalk::Enter(PageNo number, int depth) {
    if (report_.IsStopped()) return false;
    if (depth > kMaxDepth) {
        Error(number, "lies too deep in the tree");
        return false;
    }
    if (pages_.OwnerOf(number) != owner_) {
        Error(number, "is in the tree but not in the map of its pages");
        return false;
    }
    if (!pages_.Visit(number)) {
        Error(number, "is in the tree twice");
        return false;
    }
    return true;
}

Result<IndexPage> IndexWalk::Open(PageNo number, PageRef& ref) {
    Result<PageRef> read = cache_.ReadOnce(number);
    if (read.IsOk()) ref = *read;
    Result<IndexPage> page =
        read.IsOk() ? IndexPage::Open(ref, table_) : Result<IndexPage>(read.GetStatus());
    if (!page.IsOk()) report_.Error(Subject::Indexes, name_ + ": " + page.GetStatus().Text());
    return page;
}

/// False when something below could not be read, so that the entry above it proves nothing.
bool IndexWalk::Visit(PageNo number, int depth) {
    if (!Enter(number, depth)) return false;
    PageRef ref;
    const Result<IndexPage> page = Open(number, ref);
    if (!page.IsOk()) return false;
    if (page->StatedFree() != page->Free()) {
        Error(number, "states " + std::to_string(page->StatedFree()) + " free bytes instead of " +
                          std::to_string(page->Free()));
    }
    if (!page->IsLeaf()) return VisitNode(*page, depth);
    if (LoadU8(ref.Bytes(), kLevel) != 0) Error(number, "a leaf is not on level 0");
    return VisitLeaf(*page, depth == 0);
}

bool IndexWalk::VisitNode(const IndexPage& page, int depth) {
    const bool hasTail = Raw(page.Tail()) != 0;
    const bool isWellFormed = page.Count() == 1 || (page.Count() > 1 && hasTail);
    if (!isWellFormed) {
        Error(page.Number(), "a node of " + std::to_string(page.Count()) + " entries " +
                                 (hasTail ? "with" : "without") + " a child behind them");
    }
    bool isComplete = true;
    for (std::size_t i = 0; i < page.Count() && !report_.IsStopped(); ++i) {
        const std::uint64_t before = entries_;
        const bool visited = Visit(page.Child(i), depth + 1);
        isComplete = isComplete && visited;
        if (visited && entries_ > before && page.Entry(i) != last_) {
            Error(page.Number(), "entry " + std::to_string(i) + " is not the last one below " +
                                     PageText(page.Child(i)));
        }
    }
    if (hasTail && !Visit(page.Tail(), depth + 1)) isComplete = false;
    return isComplete;
}

void IndexWalk::CheckLeafLink(const IndexPage& page) {
    if (page.Previous() != lastLeaf_) {
        Error(page.Number(), "the leaf in front of it is " + PageText(lastLeaf_) +
                                 ", its link names " + PageText(page.Previous()));
    }
    if (Raw(lastLeaf_) != 0 && linkOfLastLeaf_ != page.Number()) {
        Error(lastLeaf_, "the leaf behind it is " + PageText(page.Number()) + ", its link names " +
                             PageText(linkOfLastLeaf_));
    }
    lastLeaf_ = page.Number();
    linkOfLastLeaf_ = page.Next();
}

bool IndexWalk::VisitLeaf(const IndexPage& page, bool isRoot) {
    CheckLeafLink(page);
    if (page.Count() == 0 && !isRoot) Error(page.Number(), "an empty leaf");
    for (std::size_t i = 0; i < page.Count(); ++i) {
        entry_ = page.Entry(i);
        CheckEntry(page, i);
        const Bytes bytes = std::as_bytes(std::span(entry_));
        sink_(KeyOf(entry_), {PageNo{LoadU24BigEndian(bytes, bytes.size() - kRowSize)},
                              LoadU8(bytes, bytes.size() - 1)});
        last_.swap(entry_);
        ++entries_;
    }
    return true;
}

/// Holds entry_ against the one before it.
void IndexWalk::CheckEntry(const IndexPage& page, std::size_t i) {
    const bool isNew = entries_ == 0 || KeyOf(entry_) != KeyOf(last_);
    if (isNew) ++distinct_;
    if (entries_ == 0) return;
    const auto named = [&](const char* what) {
        Error(page.Number(), "entry " + std::to_string(i) + what);
    };
    if (entry_ <= last_) named(" is not greater than the one before");
    if (!isNew && index_.IsUnique() && !IsKeyOfNulls(index_, KeyOf(entry_))) {
        named(" has the key of the one before, in a unique index");
    }
}

}  // namespace jet::check
