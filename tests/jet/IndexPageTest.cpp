#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <set>

#include "jet/index/IndexNode.h"
#include "jet/write/IndexLeafEditor.h"
#include "JetTesting.h"

namespace jet {
namespace {

constexpr PageNo kTable{7};
constexpr PageNo kPage{8};

/// A page of an index, seen in the three ways in which the engine works with it.
class Page {
public:
    explicit Page(const IndexNode& node) { node.Save(*image_, kTable); }

    MutableBytes Bytes() { return *image_; }
    [[nodiscard]] PageRef Ref() const { return {kPage, image_, image_->size()}; }
    [[nodiscard]] IndexSearch Search() const {
        return Must(IndexSearch::Open(*image_, kPage, kTable));
    }
    [[nodiscard]] std::vector<std::string> Entries() const {
        const IndexPage page = Must(IndexPage::Open(Ref(), kTable));
        std::vector<std::string> entries;
        for (std::size_t i = 0; i < page.Count(); ++i) entries.push_back(page.Entry(i));
        EXPECT_EQ(page.StatedFree(), page.Free());
        return entries;
    }

private:
    std::shared_ptr<PageRef::Image> image_ = std::make_shared<PageRef::Image>();
};

/// Entries of different lengths behind a beginning that they may have in common.
class Entries {
public:
    explicit Entries(unsigned seed) : random_(seed) {}

    std::string Next(std::string entry) {
        entry += static_cast<char>(1 + random_() % 100);
        const std::size_t size = 4 + random_() % 30;
        while (entry.size() < size) entry += static_cast<char>('a' + random_() % 4);
        for (int i = 0; i < 4; ++i) entry += static_cast<char>(random_() % 256);
        return entry;
    }
    std::size_t Below(std::size_t bound) { return random_() % bound; }

private:
    std::mt19937 random_;
};

IndexNode NodeOf(const std::set<std::string>& entries, bool isLeaf) {
    IndexNode node(isLeaf);
    for (const std::string& entry : entries) node.Insert(node.Count(), entry, PageNo{99});
    return node;
}

/// As many entries as a page takes; more than fit one without a common beginning.
std::set<std::string> FullPage(Entries& entries, const std::string& begin, bool isLeaf) {
    std::set<std::string> all;
    for (;;) {
        const std::string entry = entries.Next(begin);
        all.insert(entry);
        if (NodeOf(all, isLeaf).Fits()) continue;
        all.erase(entry);
        return all;
    }
}

TEST(IndexPageTest, SearchFindsWhatThePageHolds) {
    for (const bool isLeaf : {true, false}) {
        for (const char* begin : {"", "abcdefgh"}) {
            SCOPED_TRACE(std::string(isLeaf ? "leaf" : "node") + " \"" + begin + "\"");
            Entries random(1);
            const std::set<std::string> all = FullPage(random, begin, isLeaf);
            const Page page(NodeOf(all, isLeaf));
            const IndexSearch search = page.Search();
            EXPECT_EQ(search.Prefix() > 0, *begin != '\0');
            std::vector<std::string> targets(all.begin(), all.end());
            for (int i = 0; i < 500; ++i) targets.push_back(random.Next(begin));
            for (const char* other : {"", "a", "abcdefgh", "abcdefgi", "zz"}) {
                targets.emplace_back(other);
            }
            for (const std::string& target : targets) {
                const auto wanted = all.lower_bound(target);
                const IndexSearch::Place place = search.LowerBound(target);
                ASSERT_EQ(place.IsEnd(), wanted == all.end());
                if (place.IsEnd()) continue;
                std::string entry;
                search.Read(place, entry);
                ASSERT_EQ(entry, *wanted);
                EXPECT_EQ(search.Equals(place, target), entry == target);
                EXPECT_TRUE(search.HasKey(place, entry.substr(0, entry.size() - 4)));
                EXPECT_FALSE(search.HasKey(place, entry.substr(0, entry.size() - 5)));
                if (isLeaf) continue;
                EXPECT_EQ(search.Child(place), PageNo{99});
            }
        }
    }
}

// However a page has come about, it is written as one that is made of its entries. One of them is
// no more than what all have in common: no byte of it can be left out.
TEST(IndexPageTest, APageThatHasBeenChangedIsWrittenLikeANewOne) {
    const std::string begin = "abcdefgh";
    for (const bool isLeaf : {true, false}) {
        Entries random(4);
        std::set<std::string> all = FullPage(random, begin, isLeaf);
        IndexNode node = NodeOf(all, isLeaf);
        for (int round = 0; round < 400; ++round) {
            SCOPED_TRACE(round);
            const std::string entry = random.Below(8) == 0 ? begin : random.Next(begin);
            const auto place = std::next(
                all.begin(), static_cast<std::ptrdiff_t>(round % 20 == 0 ? 0 : all.size() / 2));
            const auto at = static_cast<std::size_t>(std::distance(all.begin(), place));
            if (all.size() > 100 || all.contains(entry)) {
                all.erase(place);
                node.Remove(at);
            } else if (random.Below(3) == 0 && at > 0 && entry > *std::prev(place) &&
                       (std::next(place) == all.end() || entry < *std::next(place))) {
                all.erase(place);
                all.insert(entry);
                node.Rename(at, entry);
            } else {
                all.insert(entry);
                node.Insert(node.LowerBound(entry), entry, PageNo{99});
            }
            ASSERT_EQ(node.Fits(), NodeOf(all, isLeaf).Fits());
            if (!node.Fits()) continue;
            ASSERT_EQ(Page(node).Entries(), Page(NodeOf(all, isLeaf)).Entries());
        }
        IndexNode left(isLeaf);
        if (!all.contains(begin)) node.Insert(node.LowerBound(begin), begin, PageNo{99});
        node.MoveFront(node.Count() / 2, left);
        const auto copyOf = [&](const IndexNode& half) {
            std::set<std::string> entries;
            for (std::size_t i = 0; i < half.Count(); ++i) entries.emplace(half.Entry(i));
            return NodeOf(entries, isLeaf);
        };
        for (const IndexNode& half : {left, node}) {
            EXPECT_EQ(half.Fits(), copyOf(half).Fits());
            EXPECT_EQ(Page(half).Entries(), Page(copyOf(half)).Entries());
        }
    }
}

// Whatever is changed in place, the page is what it would be when it was written anew.
TEST(IndexPageTest, ChangesInPlaceLeaveASoundPage) {
    for (const char* begin : {"", "abcdefgh"}) {
        Entries random(2);
        std::set<std::string> all = FullPage(random, begin, true);
        Page page(NodeOf(all, true));
        int inserted = 0;
        int removed = 0;
        for (int i = 0; i < 3000; ++i) {
            const IndexSearch search = page.Search();
            // Now and then many go, so that the page is nearly empty once.
            if (random.Below(1000) < (i % 1000 < 600 ? 700U : 300U)) {
                auto entry = all.begin();
                std::advance(entry, random.Below(all.size()));
                const IndexSearch::Place place = search.LowerBound(*entry);
                if (!IndexLeafEditor::CanRemove(search, place)) continue;
                IndexLeafEditor(page.Bytes(), search).Remove(place);
                all.erase(entry);
                ++removed;
            } else {
                const std::string entry = random.Next(begin);
                const IndexSearch::Place place = search.LowerBound(entry);
                if (all.contains(entry)) continue;
                if (!IndexLeafEditor::CanInsert(search, place, entry)) continue;
                IndexLeafEditor(page.Bytes(), search).Insert(place, entry);
                all.insert(entry);
                ++inserted;
            }
            ASSERT_EQ(page.Entries(), std::vector<std::string>(all.begin(), all.end())) << i;
            const auto rest = page.Bytes().subspan(480 + page.Search().Size());
            ASSERT_TRUE(std::all_of(rest.begin(), rest.end(), [](std::byte b) {
                return b == std::byte{0};
            })) << i;
        }
        EXPECT_GT(inserted, 100);
        EXPECT_GT(removed, 100);
    }
}

TEST(IndexPageTest, WhatDoesNotFitThePrefixIsNotPutInPlace) {
    Entries random(3);
    std::set<std::string> all = FullPage(random, "abcdefgh", true);
    // Room for some more entries.
    for (int i = 0; i < 20; ++i) all.erase(std::next(all.begin(), 5));
    const Page page(NodeOf(all, true));
    const IndexSearch search = page.Search();
    ASSERT_GT(search.Prefix(), 0U);
    const auto canInsert = [&](const std::string& entry) {
        return IndexLeafEditor::CanInsert(search, search.LowerBound(entry), entry);
    };
    EXPECT_TRUE(canInsert("abcdefghzbbb1234"));
    EXPECT_FALSE(canInsert("abcdefgizbbb1234"));
    EXPECT_FALSE(canInsert("abcdefgzbbb1234"));
    EXPECT_FALSE(canInsert("abcdefgh"));
    // In front of the one that is stored whole.
    EXPECT_FALSE(canInsert(all.begin()->substr(0, all.begin()->size() - 1)));
    EXPECT_FALSE(IndexLeafEditor::CanInsert(Page(IndexNode(true)).Search(), {}, "key1234"));
}

// Both readers of a page refuse the same masks.
TEST(IndexPageTest, DamagedMasksAreRefused) {
    Entries random(4);
    std::size_t refused = 0;
    for (int round = 0; round < 2000; ++round) {
        const bool isLeaf = round % 2 == 0;
        const char* begin = round % 4 < 2 ? "" : "abcdefgh";
        std::set<std::string> all;
        const std::size_t count = 1 + random.Below(30);
        while (all.size() < count) all.insert(random.Next(begin));
        Page page(NodeOf(all, isLeaf));
        StoreU16(page.Bytes(), 24, random.Below(3) == 0 ? random.Below(30) : 0);
        for (std::size_t flips = random.Below(3); flips > 0; --flips) {
            const std::size_t bit = random.Below(random.Below(2) == 0 ? 453 * 8 : 600);
            page.Bytes()[27 + bit / 8] ^= static_cast<std::byte>(1U << bit % 8);
        }
        const bool isSound = IndexPage::Open(page.Ref(), kTable).IsOk();
        EXPECT_EQ(IndexSearch::Open(page.Bytes(), kPage, kTable).IsOk(), isSound) << round;
        if (!isSound) ++refused;
    }
    EXPECT_GT(refused, 200U);
    EXPECT_LT(refused, 1800U);
}

}  // namespace
}  // namespace jet
