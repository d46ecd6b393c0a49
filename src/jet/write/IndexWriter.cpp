#include "jet/write/IndexWriter.h"

#include "jet/index/EntryCursor.h"
#include "jet/write/IndexLeafEditor.h"
#include "jet/write/UsageMapEditor.h"

namespace jet {
namespace {

constexpr std::size_t kMostDepth = 24;
// More restarts than this would mean that splitting makes no room.
constexpr int kMostRounds = 1000;

std::string EntryOf(const std::string& key, RowId row) {
    std::string entry = key;
    for (const int shift : {16, 8, 0}) entry += static_cast<char>(Raw(row.page) >> shift & 0xFF);
    entry += static_cast<char>(row.row);
    return entry;
}

Status Endless(PageNo root) {
    return Status::Corrupt("the index below " + PageText(root) + " runs in a circle");
}

}  // namespace

Result<IndexNode> IndexWriter::Load(PageNo page) const {
    PageRef ref;
    JET_ASSIGN(ref, cache_.Read(page));
    return IndexNode::Load(std::move(ref), table_);
}

Status IndexWriter::Save(PageNo page, const IndexNode& node) {
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    node.Save(bytes, table_);
    return {};
}

Result<IndexWriter::Path> IndexWriter::Descend(const std::string& entry) const {
    Path path;
    PageNo page = root_;
    while (path.size() < kMostDepth) {
        Result<IndexNode> node = Load(page);
        if (!node.IsOk()) return node.GetStatus();
        std::size_t position = node->LowerBound(entry);
        if (!node->isLeaf) {
            const bool hasTail = Raw(node->tail) != 0;
            if (node->Count() == 0 && !hasTail) {
                return Status::Corrupt("index " + PageText(page) + " leads nowhere");
            }
            if (position == node->Count() && !hasTail) --position;
            const PageNo child = position < node->Count() ? node->Child(position) : node->tail;
            path.push_back({page, std::move(*node), position});
            page = child;
            continue;
        }
        path.push_back({page, std::move(*node), position});
        return path;
    }
    return Endless(root_);
}

Result<IndexWriter::Spot> IndexWriter::Find(const std::string& entry) const {
    Spot spot;
    PageNo page = root_;
    for (std::size_t depth = 0; depth < kMostDepth; ++depth) {
        JET_ASSIGN(spot.leaf, cache_.Read(page));
        JET_ASSIGN(spot.search, IndexSearch::Open(spot.leaf.Bytes(), page, table_));
        spot.place = spot.search.LowerBound(entry);
        if (spot.search.IsLeaf()) return spot;
        if (!spot.place.IsEnd()) {
            page = spot.search.Child(spot.place);
            spot.isOnTail = false;
        } else if (Raw(spot.search.Tail()) != 0) {
            page = spot.search.Tail();
        } else if (spot.search.Size() > 0) {
            page = spot.search.Child(spot.search.Before(spot.place));
            spot.isBelowNodes = false;
            spot.isOnTail = false;
        } else {
            return Status::Corrupt("index " + PageText(page) + " leads nowhere");
        }
    }
    return Endless(root_);
}

/// Rows with the same key stand beside each other.
Result<bool> IndexWriter::HasKey(const Spot& spot, const std::string& key) const {
    const IndexSearch& leaf = spot.search;
    const bool isFirst = spot.place.begin == 0;
    if (!spot.place.IsEnd() && leaf.HasKey(spot.place, key)) return true;
    if (!isFirst && leaf.HasKey(leaf.Before(spot.place), key)) return true;
    const bool isAlone =
        (!isFirst || Raw(leaf.Previous()) == 0) && (!spot.place.IsEnd() || Raw(leaf.Next()) == 0);
    if (isAlone) return false;
    Result<EntryCursor> cursor = EntryCursor::Seek(cache_, table_, root_, key);
    if (!cursor.IsOk()) return cursor.GetStatus();
    bool found = false;
    JET_ASSIGN(found, cursor->Next());
    return found && cursor->Key() == key;
}

/// False when more than the leaf has to be changed.
Result<bool> IndexWriter::InsertInPlace(Spot& spot, const std::string& entry) {
    if (!spot.place.IsEnd() && spot.search.Equals(spot.place, entry)) {
        return Status::Corrupt("index " + PageText(spot.leaf.Number()) + " holds the row already");
    }
    const bool isBelowNodes = spot.isBelowNodes && (spot.isOnTail || !spot.place.IsEnd());
    if (!isBelowNodes || !IndexLeafEditor::CanInsert(spot.search, spot.place, entry)) return false;
    const PageNo page = spot.leaf.Number();
    spot.leaf = PageRef();
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    IndexLeafEditor(bytes, spot.search).Insert(spot.place, entry);
    return true;
}

/// False when more than the leaf has to be changed.
Result<bool> IndexWriter::RemoveInPlace(Spot& spot) {
    const bool isNamed = !spot.isOnTail && spot.place.end == spot.search.Size();
    if (isNamed || !IndexLeafEditor::CanRemove(spot.search, spot.place)) return false;
    const PageNo page = spot.leaf.Number();
    spot.leaf = PageRef();
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    IndexLeafEditor(bytes, spot.search).Remove(spot.place);
    return true;
}

Result<bool> IndexWriter::Insert(const std::string& key, RowId row, bool isUnique) {
    const std::string entry = EntryOf(key, row);
    if (entry.size() > kMostEntry) {
        return Status(StatusCode::TooLong,
                      "an index key of " + std::to_string(key.size()) + " bytes");
    }
    Spot spot;
    JET_ASSIGN(spot, Find(entry));
    bool exists = false;
    JET_ASSIGN(exists, HasKey(spot, key));
    if (exists && isUnique) return Status(StatusCode::Duplicate, "another row has the same key");
    bool done = false;
    JET_ASSIGN(done, InsertInPlace(spot, entry));
    for (int round = 0; round < kMostRounds && !done; ++round) {
        JET_ASSIGN(done, TryInsert(entry));
    }
    if (done) return !exists;
    return Endless(root_);
}

/// False when a page had to be split instead.
Result<bool> IndexWriter::TryInsert(const std::string& entry) {
    Path path;
    JET_ASSIGN(path, Descend(entry));
    // A new greatest entry raises the entries above it; only an only child's can be below it.
    for (std::size_t depth = 0; depth + 1 < path.size(); ++depth) {
        Step& step = path[depth];
        if (step.position >= step.node.Count() || step.node.Entry(step.position) >= entry) continue;
        step.node.Rename(step.position, entry);
        if (!step.node.Fits()) {
            JET_ASSIGN(step.node, Load(step.page));
            JET_TRY(Split(path, depth));
            return false;
        }
        JET_TRY(Save(step.page, step.node));
    }
    Step& leaf = path.back();
    if (leaf.position < leaf.node.Count() && leaf.node.Entry(leaf.position) == entry) {
        return Status::Corrupt("index " + PageText(leaf.page) + " holds the row already");
    }
    leaf.node.Insert(leaf.position, entry);
    if (leaf.node.Fits()) {
        JET_TRY(Save(leaf.page, leaf.node));
        return true;
    }
    leaf.node.Remove(leaf.position);
    JET_TRY(Split(path, path.size() - 1));
    return false;
}

/// Moves the root's content to a new page below it.
Status IndexWriter::GrowRoot(Step& root) {
    PageNo child{};
    JET_ASSIGN(child, PageAllocator(cache_).Allocate());
    JET_TRY(UsageMapEditor(cache_, map_).Add(child));
    JET_TRY(Save(child, root.node));
    IndexNode grown(false);
    grown.level = static_cast<std::uint8_t>(root.node.level + 1);
    grown.tail = child;
    return Save(root_, grown);
}

Status IndexWriter::LinkBefore(PageNo left, IndexNode& leftNode, PageNo right,
                               IndexNode& rightNode) {
    leftNode.previous = rightNode.previous;
    leftNode.next = right;
    if (Raw(rightNode.previous) != 0) {
        Result<IndexNode> neighbour = Load(rightNode.previous);
        if (!neighbour.IsOk()) return neighbour.GetStatus();
        neighbour->next = left;
        JET_TRY(Save(rightNode.previous, *neighbour));
    }
    rightNode.previous = left;
    return {};
}

/// Splits one page of the path, or first the one above it when that has no room for one more
/// entry. The path is of no use afterwards.
Status IndexWriter::Split(Path& path, std::size_t depth) {
    Step& step = path[depth];
    if (depth == 0) return GrowRoot(step);
    IndexNode& node = step.node;
    if (node.Count() < 2) return Status::Corrupt("index " + PageText(step.page) + " is too full");
    // Keys that only grow fill their pages: all but the last entry go to the left.
    const bool atEnd = Raw(node.next) == 0 && step.position + 1 >= node.Count();
    const std::size_t count = atEnd ? node.Count() - 1 : node.Count() / 2;
    IndexNode left(node.isLeaf);
    left.level = node.level;
    node.MoveFront(count, left);
    const std::string separator(left.Entry(left.Count() - 1));
    if (!left.isLeaf && left.Count() > 1) {
        left.tail = left.Child(left.Count() - 1);
        left.Remove(left.Count() - 1);
    }

    Step& above = path[depth - 1];
    PageNo leftPage{};
    IndexNode parent = above.node;
    parent.Insert(above.position, separator, leftPage);
    // An entry in front of an only child makes that child the tail.
    if (Raw(parent.tail) == 0) {
        parent.tail = parent.Child(parent.Count() - 1);
        parent.Remove(parent.Count() - 1);
    }
    if (!parent.Fits()) return Split(path, depth - 1);
    JET_ASSIGN(leftPage, PageAllocator(cache_).Allocate());
    JET_TRY(UsageMapEditor(cache_, map_).Add(leftPage));
    parent.Remove(above.position);
    parent.Insert(above.position, separator, leftPage);
    // A right half with one child keeps it as an ordinary entry.
    JET_TRY(LinkBefore(leftPage, left, step.page, node));
    JET_TRY(Save(leftPage, left));
    JET_TRY(Save(step.page, node));
    return Save(above.page, parent);
}

Result<bool> IndexWriter::HasTwin(const Spot& spot, const std::string& key) const {
    const IndexSearch& leaf = spot.search;
    const bool isFirst = spot.place.begin == 0;
    const IndexSearch::Place behind = leaf.At(spot.place.end);
    if (!isFirst && leaf.HasKey(leaf.Before(spot.place), key)) return true;
    if (!behind.IsEnd() && leaf.HasKey(behind, key)) return true;
    for (const bool toLeft : {true, false}) {
        if (toLeft ? !isFirst : !behind.IsEnd()) continue;
        const PageNo page = toLeft ? leaf.Previous() : leaf.Next();
        if (Raw(page) == 0) continue;
        PageRef ref;
        JET_ASSIGN(ref, cache_.Read(page));
        IndexSearch neighbour;
        JET_ASSIGN(neighbour, IndexSearch::Open(ref.Bytes(), page, table_));
        const std::size_t size = neighbour.Size();
        if (size == 0) continue;
        const auto place = toLeft ? neighbour.Before({size, size}) : neighbour.At(0);
        if (neighbour.HasKey(place, key)) return true;
    }
    return false;
}

Result<bool> IndexWriter::Remove(const std::string& key, RowId row) {
    const std::string entry = EntryOf(key, row);
    Spot spot;
    JET_ASSIGN(spot, Find(entry));
    if (spot.place.IsEnd() || !spot.search.Equals(spot.place, entry)) {
        return Status::Corrupt("index " + PageText(spot.leaf.Number()) +
                               " has no entry for the row; its table must be repaired");
    }
    bool hasTwin = false;
    JET_ASSIGN(hasTwin, HasTwin(spot, key));
    bool isDone = false;
    JET_ASSIGN(isDone, RemoveInPlace(spot));
    if (isDone) return hasTwin;
    Path path;
    JET_ASSIGN(path, Descend(entry));
    Step& leaf = path.back();
    leaf.node.Remove(leaf.position);
    if (leaf.node.Count() > 0 || path.size() == 1) {
        JET_TRY(Save(leaf.page, leaf.node));
    } else {
        JET_TRY(RemoveEmpty(path, path.size() - 1));
    }
    for (int round = 0; round < kMostRounds; ++round) {
        bool done = false;
        JET_ASSIGN(done, MendStale(entry));
        if (done) return hasTwin;
    }
    return Endless(root_);
}

Status IndexWriter::Unlink(const IndexNode& node) {
    for (const bool toLeft : {true, false}) {
        const PageNo page = toLeft ? node.previous : node.next;
        if (Raw(page) == 0) continue;
        Result<IndexNode> neighbour = Load(page);
        if (!neighbour.IsOk()) return neighbour.GetStatus();
        (toLeft ? neighbour->next : neighbour->previous) = toLeft ? node.next : node.previous;
        JET_TRY(Save(page, *neighbour));
    }
    return {};
}

/// Takes the page at `depth`, which holds nothing any more, out of the tree.
Status IndexWriter::RemoveEmpty(Path& path, std::size_t depth) {
    Step& step = path[depth];
    if (depth == 0) return Save(root_, IndexNode(true));
    JET_TRY(Unlink(step.node));
    JET_TRY(UsageMapEditor(cache_, map_).Remove(step.page));
    JET_TRY(PageAllocator(cache_).Free(step.page));
    Step& above = path[depth - 1];
    IndexNode& parent = above.node;
    if (above.position < parent.Count()) {
        parent.Remove(above.position);
    } else if (parent.Count() > 1) {
        parent.tail = parent.Child(parent.Count() - 1);
        parent.Remove(parent.Count() - 1);
    } else {
        parent.tail = PageNo{};
    }
    if (parent.Count() == 0 && Raw(parent.tail) == 0) return RemoveEmpty(path, depth - 1);
    if (parent.Count() == 0) {
        std::string last;
        JET_ASSIGN(last, LastBelow(parent.tail));
        parent.Insert(0, last, parent.tail);
        parent.tail = PageNo{};
    }
    return Save(above.page, parent);
}

Result<std::string> IndexWriter::LastBelow(PageNo page) const {
    for (std::size_t depth = 0; depth < kMostDepth; ++depth) {
        Result<IndexNode> node = Load(page);
        if (!node.IsOk()) return node.GetStatus();
        if (node->Count() == 0 && (node->isLeaf || Raw(node->tail) == 0)) {
            return Status::Corrupt("index " + PageText(page) + " is empty");
        }
        if (node->isLeaf) return std::string(node->Entry(node->Count() - 1));
        page = Raw(node->tail) != 0 ? node->tail : node->Child(node->Count() - 1);
    }
    return Endless(root_);
}

/// Corrects the node entries that still name an entry that is gone. False when a page had to be
/// split for it and the way must be gone again.
Result<bool> IndexWriter::MendStale(const std::string& entry) {
    Path path;
    JET_ASSIGN(path, Descend(entry));
    for (std::size_t depth = path.size() - 1; depth-- > 0;) {
        Step& step = path[depth];
        if (step.position >= step.node.Count() || step.node.Entry(step.position) != entry) continue;
        std::string last;
        JET_ASSIGN(last, LastBelow(step.node.Child(step.position)));
        step.node.Rename(step.position, last);
        if (!step.node.Fits()) {
            JET_ASSIGN(step.node, Load(step.page));
            JET_TRY(Split(path, depth));
            return false;
        }
        JET_TRY(Save(step.page, step.node));
    }
    return true;
}

}  // namespace jet
