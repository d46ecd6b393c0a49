#include "jet/compact/IndexBuilder.h"

#include <array>
#include <utility>

namespace jet::compact {
namespace {

constexpr std::size_t kRowSize = 4;  // of an entry, behind its key

}  // namespace

Result<PageNo> IndexBuilder::Take() {
    JET_ASSIGN(pages_.emplace_back(), draft_.Take());
    return pages_.back();
}

Status IndexBuilder::Save(const Level& level) {
    std::array<std::byte, kPageSizeJet4> image{};
    level.node.Save(image, table_);
    return draft_.Write(level.page, image);
}

Status IndexBuilder::Add(std::string_view key, RowId row) {
    std::string entry(key);
    for (const int shift : {16, 8, 0}) entry += static_cast<char>(Raw(row.page) >> shift & 0xFF);
    entry += static_cast<char>(row.row);
    const bool isFirst = last_.empty();
    if (!isFirst && entry <= last_) return Status::Corrupt("its entries are not in order");
    if (isFirst || key != std::string_view(last_).substr(0, last_.size() - kRowSize)) ++distinct_;
    JET_TRY(AddLeafEntry(entry));
    last_ = std::move(entry);
    return {};
}

Status IndexBuilder::AddLeafEntry(std::string_view entry) {
    if (levels_.empty()) {
        levels_.push_back({IndexNode(true), {}, {}});
        JET_ASSIGN(levels_[0].page, Take());
    }
    IndexNode& leaf = levels_[0].node;
    leaf.Insert(leaf.Count(), entry);
    if (leaf.Fits()) return {};
    leaf.Remove(leaf.Count() - 1);
    if (leaf.Count() == 0) return Status::Corrupt("an entry fits no page");
    Child full{std::string(leaf.Entry(leaf.Count() - 1)), levels_[0].page};
    JET_TRY(Turn(0));
    levels_[0].node.Insert(0, entry);
    return AddChild(1, std::move(full));
}

Status IndexBuilder::Turn(std::size_t depth) {
    Level& level = levels_[depth];
    PageNo next{};
    JET_ASSIGN(next, Take());
    level.node.next = next;
    JET_TRY(Save(level));
    IndexNode node(level.node.isLeaf);
    node.level = level.node.level;
    node.previous = level.page;
    level.node = std::move(node);
    level.page = next;
    return {};
}

Status IndexBuilder::AddChild(std::size_t depth, Child child) {
    if (depth == levels_.size()) {
        levels_.push_back({IndexNode(false), {}, {}});
        levels_[depth].node.level = static_cast<std::uint8_t>(depth);
        JET_ASSIGN(levels_[depth].page, Take());
    }
    Level& level = levels_[depth];
    std::optional<Child> before = std::exchange(level.pending, std::move(child));
    if (!before) return {};
    level.node.Insert(level.node.Count(), before->last, before->page);
    if (level.node.Fits()) return {};
    level.node.Remove(level.node.Count() - 1);
    level.node.tail = before->page;
    Child full{before->last, level.page};
    JET_TRY(Turn(depth));
    return AddChild(depth + 1, std::move(full));
}

Result<PageNo> IndexBuilder::Finish() {
    if (levels_.empty()) {
        levels_.push_back({IndexNode(true), {}, {}});
        JET_ASSIGN(levels_[0].page, Take());
    }
    std::string last = last_;
    for (std::size_t depth = 0; depth < levels_.size(); ++depth) {
        Level& level = levels_[depth];
        if (level.pending) {
            // Without others before it the child is an ordinary entry.
            if (level.node.Count() == 0) {
                level.node.Insert(0, level.pending->last, level.pending->page);
            } else {
                level.node.tail = level.pending->page;
            }
            last = level.pending->last;
        }
        JET_TRY(Save(level));
        const PageNo page = level.page;
        if (depth + 1 == levels_.size()) return page;
        JET_TRY(AddChild(depth + 1, {last, page}));
    }
    return levels_.back().page;
}

}  // namespace jet::compact
