#include <filesystem>
#include <functional>
#include <random>

#include "DamagedSample.h"
#include "Harvest.h"
#include "support/NewFolder.h"

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

TEST(DamageTest, ABrokenLeafEndsACursorAndIsNamed) {
    std::size_t broken = 0;
    for (const std::string& file : SampleFiles()) {
        DamagedSample sample(file);
        auto whole = Must(Database::Open(file));
        if (whole->FileFormat() == Format::Jet3) continue;
        for (const CatalogEntry& entry : Must(whole->Tables())) {
            const char* name = entry.name.c_str();
            if (sample.Def(name).realIndexes.empty()) continue;
            const PageNo last = sample.Node(sample.Root(name), name).Tail();
            if (Raw(last) == 0) continue;
            ++broken;
            *sample.At(last, 0) = std::byte{0x77};
            auto database = OpenBytes(sample.bytes);
            auto table = Must(database->OpenTable(name));
            IndexCursor cursor = Must(table->Seek(0, ""));
            Result<bool> found = cursor.Next();
            while (found.IsOk() && *found) found = cursor.Next();
            EXPECT_EQ(StatusOf(found).Code(), StatusCode::Corrupt);
            EXPECT_THAT(StatusOf(found).Text(),
                        testing::AllOf(testing::StartsWith(TableText(entry.name) + ": "),
                                       testing::HasSubstr(PageText(last))));
            EXPECT_FALSE(Must(cursor.Next()));
            break;
        }
    }
    EXPECT_GT(broken, 0U);
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

std::size_t OffsetOf(RowId row, const std::vector<std::byte>& bytes) {
    const std::size_t page = Raw(row.page) * kPageSizeJet4;
    return page + (LoadU16(bytes, page + 14 + 2 * std::size_t{row.row}) & 0x1FFF);
}

// Page numbers behind the greatest one must not come round to the first.
TEST(DamageTest, AMapThatBeginsNearTheLastNumberEnds) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    std::uint32_t pointer = 0;
    {
        auto whole = OpenBytes(bytes);
        pointer = Must(whole->OpenTable("TchrTrends"))->Definition().ownedMap;
    }
    const std::uint32_t start = 0xFFFFFFF8;
    const std::size_t row = OffsetOf(RowId::FromPointer(pointer), bytes);
    std::memcpy(bytes.data() + row + 1, &start, sizeof start);
    auto damaged = OpenBytes(bytes);
    auto table = Must(damaged->OpenTable("TchrTrends"));
    RowCursor cursor = Must(table->Scan());
    EXPECT_EQ(StatusOf(cursor.Next()).Code(), StatusCode::Corrupt);
    EXPECT_FALSE(Must(cursor.Next()));
}

// Row numbers are bytes: a page with more slots would give two rows the same address.
TEST(DamageTest, APageWithTooManySlotsIsRefused) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    auto whole = OpenBytes(bytes);
    const PageNo page = PagesOf(*whole, "TchrTrends")[1];
    const std::uint16_t slots = 300;
    std::memcpy(bytes.data() + Raw(page) * kPageSizeJet4 + 12, &slots, sizeof slots);
    auto damaged = OpenBytes(bytes);
    EXPECT_THAT(ReadEverything(*damaged).damage.at(0).Text(), testing::HasSubstr("300 rows"));
}

TEST(DamageTest, AFileThatIsReplacedWhileItIsOpenIsNoticed) {
    namespace fs = std::filesystem;
    const std::string folder = NewFolder("kv-jet").string();
    const std::string path = folder + "/project.kvs";
    struct Case {
        const char* how;
        std::function<void()> replace;
    };
    const Case cases[] = {
        {"renamed over",
         [&] {
             fs::copy_file(TestData("Leer.kvs"), folder + "/new.kvs");
             EXPECT_TRUE(SystemDisk().Replace(folder + "/new.kvs", path).IsOk());
         }},
        {"removed", [&] { EXPECT_TRUE(SystemDisk().Remove(path).IsOk()); }},
        {"overwritten",
         [&] {
             std::ofstream(path, std::ios::binary)
                 << std::ifstream(TestData("overflowTestV2000.mdb"), std::ios::binary).rdbuf();
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.how);
        fs::copy_file(Example("Brauerei.kvs"), path, fs::copy_options::overwrite_existing);
        auto database = Must(Database::Open(path));
        auto table = Must(database->OpenTable("TchrArchives"));
        const RowId row = AllRows(*table).front().Id();
        c.replace();
        EXPECT_EQ(StatusOf(table->Fetch(row)).Code(), StatusCode::Conflict);
        EXPECT_EQ(StatusOf(database->OpenTable("TchrArchives")).Code(), StatusCode::Conflict);
    }
    fs::remove_all(folder);
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
