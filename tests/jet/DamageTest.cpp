#include <random>

#include "Harvest.h"
#include "jet/detail/Bytes.h"
#include "JetTesting.h"

namespace jet {
namespace {

/// Data pages of a table, found through its rows.
std::vector<PageNo> PagesOf(Database& database, const char* name) {
    std::vector<PageNo> pages;
    auto table = Must(database.OpenTable(name));
    for (const Row& row : AllRows(*table)) {
        if (pages.empty() || pages.back() != row.Id().page) pages.push_back(row.Id().page);
    }
    return pages;
}

TEST(DamageTest, OneBrokenPageCostsItsRowsOnlyAndIsNamed) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    auto whole = OpenBytes(bytes);
    const std::size_t allRows = ReadEverything(*whole).rows;
    const std::vector<PageNo> pages = PagesOf(*whole, "TchrTrends");
    ASSERT_GT(pages.size(), 2U);
    std::size_t lost = 0;
    for (const Row& row : AllRows(*Must(whole->OpenTable("TchrTrends")))) {
        lost += row.Id().page == pages[1] ? 1 : 0;
    }
    bytes[Raw(pages[1]) * kPageSizeJet4] = std::byte{0x77};
    auto damaged = OpenBytes(bytes);
    const Harvest harvest = ReadEverything(*damaged);
    EXPECT_EQ(harvest.rows, allRows - lost);
    ASSERT_FALSE(harvest.damage.empty());
    EXPECT_THAT(harvest.damage[0].Text(),
                testing::AllOf(testing::HasSubstr("TchrTrends"),
                               testing::HasSubstr("page " + std::to_string(Raw(pages[1])))));
}

// The place where a row begins is also where the next one ends.
TEST(DamageTest, OneBrokenOffsetCostsTwoRows) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    auto whole = OpenBytes(bytes);
    const std::size_t allRows = ReadEverything(*whole).rows;
    const PageNo page = PagesOf(*whole, "TchrTrends")[0];
    // Slot 3 begins behind its end.
    const std::uint16_t offset = 0x0FFF;
    std::memcpy(bytes.data() + Raw(page) * kPageSizeJet4 + 14 + 6, &offset, sizeof offset);
    auto damaged = OpenBytes(bytes);
    const Harvest harvest = ReadEverything(*damaged);
    EXPECT_EQ(harvest.rows, allRows - 2);
    EXPECT_THAT(harvest.damage.at(0).Text(), testing::HasSubstr("row 3"));
}

TEST(DamageTest, AFileThatEndsTooEarlyStaysReadableUpToThere) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    auto whole = OpenBytes(bytes);
    const std::size_t allRows = ReadEverything(*whole).rows;
    bytes.resize(bytes.size() * 3 / 4 + 100);
    auto cut = OpenBytes(bytes);
    const Harvest harvest = ReadEverything(*cut);
    EXPECT_GT(harvest.rows, 0U);
    EXPECT_LT(harvest.rows, allRows);
    EXPECT_FALSE(harvest.damage.empty());
}

// Whatever stands in the file, reading ends, stays inside its memory and says what is wrong.
TEST(DamageTest, RandomDamageIsSurvived) {
    const unsigned start = std::random_device{}();
    SCOPED_TRACE("random start " + std::to_string(start));
    std::mt19937 random(start);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    for (const char* name : {"Grenzfaelle.kvs", "overflowTestV2000.mdb", "overflowTestV1997.mdb"}) {
        const std::vector<std::byte> original = ReadWhole(TestData(name));
        for (int round = 0; round < 150; ++round) {
            std::vector<std::byte> bytes = original;
            for (std::size_t i = 0; i < 1 + below(40); ++i) {
                // Mostly in the heads of pages, where the structure is.
                const std::size_t page = below(bytes.size() / kPageSizeJet4);
                const std::size_t at = page * kPageSizeJet4 + below(below(2) != 0 ? 64 : 4096);
                bytes[std::max<std::size_t>(at, 0x98)] = static_cast<std::byte>(below(256));
            }
            auto database = Database::Open(std::make_unique<MemoryFile>(bytes), 1 << 16);
            if (database.IsOk()) ReadEverything(**database);
        }
    }
}

}  // namespace
}  // namespace jet
