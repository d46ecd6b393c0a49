#include <random>

#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "jet/index/IndexPage.h"
#include "WriterTesting.h"

namespace jet {
namespace {

/// Holds the links of all pages of the table's index against the order in which the nodes name
/// them, level by level. Returns how many levels there are.
std::size_t CheckLinks(const TestDisk& disk, const TableDef& def) {
    MemoryFile file(disk.Content(kProject));
    PageCache cache(file, 1 << 20);
    EXPECT_TRUE(cache.Revalidate().IsOk());
    std::vector<PageNo> level = {def.realIndexes.at(0).root};
    for (std::size_t depth = 1;; ++depth) {
        std::vector<PageNo> below;
        for (std::size_t i = 0; i < level.size(); ++i) {
            const IndexPage page = Must(IndexPage::Open(Must(cache.Read(level[i])), def.page));
            EXPECT_EQ(page.Previous(), i == 0 ? PageNo{} : level[i - 1]) << "level " << depth;
            EXPECT_EQ(page.Next(), i + 1 == level.size() ? PageNo{} : level[i + 1])
                << "level " << depth;
            if (page.IsLeaf()) continue;
            for (std::size_t k = 0; k < page.Count(); ++k) below.push_back(page.Child(k));
            if (Raw(page.Tail()) != 0) below.push_back(page.Tail());
        }
        if (below.empty()) return depth;
        level = std::move(below);
    }
}

// Pages are split and go everywhere in the tree, nodes too; a wrong link is met by who walks the
// other way, or by the next change beside it.
TEST(IndexTreeTest, PagesOfALevelStayLinkedBothWays) {
    TestDisk disk;
    const TableSpec wanted{
        "T", {{"K", ColumnType::Text, 255}}, {{"K", IndexSpec::Kind::Plain, {{"K"}}}}};
    ASSERT_OK(CreateDatabase(disk, kProject,
                             [&](Database& database) { return CreateTable(database, wanted); }));
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("T"));
    TableWriter writer(*table);
    std::mt19937 random(3);
    std::vector<RowId> rows;
    std::size_t levels = 0;
    for (const bool growing : {true, false}) {
        while (growing ? rows.size() < 1500 : !rows.empty()) {
            ASSERT_OK(database->Begin());
            for (int i = 0; i < 50; ++i) {
                if (growing) {
                    std::u16string key;
                    while (key.size() < 220) key += static_cast<char16_t>(u'a' + random() % 20);
                    rows.push_back(Must(writer.Insert(std::vector<Assignment>{{0, key}})));
                } else {
                    std::swap(rows[random() % rows.size()], rows.back());
                    ASSERT_OK(writer.Delete(rows.back()));
                    rows.pop_back();
                }
            }
            ASSERT_OK(database->Commit());
            levels = std::max(levels, CheckLinks(disk, table->Definition()));
            if (HasFailure()) return;
        }
    }
    EXPECT_GE(levels, 3U) << "too low a tree to prove anything";
    EXPECT_EQ(CheckLinks(disk, table->Definition()), 1U);
    EXPECT_THAT(ErrorsIn(disk), testing::IsEmpty());
}

}  // namespace
}  // namespace jet
