#include "jet/Repair.h"

#include <functional>
#include <map>

#include "DamagedSample.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kRepaired = "repaired.kvs";
constexpr const char* kTrends = "TchrTrends";
using Content = std::map<std::string, std::vector<std::vector<Value>>>;
using Sample = DamagedSample;

Content ContentOf(TestDisk& disk, const char* path) {
    auto database = Must(Database::Open(disk, path, OpenMode::Read));
    Content content;
    for (const CatalogEntry& entry : Must(database->Tables())) {
        content[entry.name] = RowsOf(*database, entry.name);
    }
    return content;
}

/// A repair of a damaged copy of a file, and what came of it.
struct Repaired {
    Repaired(const std::string& path, const std::function<void(Sample&)>& damage) {
        disk.Put(kProject, ReadWhole(path));
        before = ContentOf(disk, kProject);
        Sample sample(path);
        damage(sample);
        disk.Put(kProject, sample.bytes);
        const auto lose = [&](const std::string& text) { losses.push_back(text); };
        sums = Must(Repair(disk, kProject, kRepaired, lose));
        EXPECT_EQ(disk.Content(kProject), sample.bytes) << "the old file is only read";
        EXPECT_EQ(sums.losses, losses.size());
        after = ContentOf(disk, kRepaired);
        disk.Put(kProject, disk.Content(kRepaired));
        EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    }
    /// Rows of a table that are not there any more; none may have come.
    [[nodiscard]] std::size_t Missing(const std::string& table) {
        const auto& now = after[table];
        std::size_t found = 0;
        for (const auto& row : before[table]) {
            found += std::count(now.begin(), now.end(), row) > 0 ? 1U : 0U;
        }
        EXPECT_EQ(found, now.size()) << table;
        return before[table].size() - found;
    }

    TestDisk disk;  // the repaired file under both names
    Content before;
    Content after;
    std::vector<std::string> losses;
    RepairSums sums;
};

void Clear(Sample& sample, PageNo page) {
    std::fill_n(sample.At(page, 0), kPageSizeJet4, std::byte{0});
}

/// Clears all pages of these types that `isMeant` is true for.
void ClearPages(Sample& sample, std::initializer_list<int> types,
                const std::function<bool(std::uint32_t owner)>& isMeant) {
    for (std::uint32_t page = 1; page < sample.bytes.size() / kPageSizeJet4; ++page) {
        const int type = std::to_integer<int>(*sample.At(PageNo{page}, 0));
        if (std::count(types.begin(), types.end(), type) == 0) continue;
        if (isMeant(sample.Get<std::uint32_t>(sample.At(PageNo{page}, 4)))) {
            Clear(sample, PageNo{page});
        }
    }
}

// Rows are found by the pages on which they stand, so that nothing else is needed for them.
TEST(RepairTest, NothingIsLostWithMapsAndIndexesAndCounters) {
    const std::pair<const char*, std::function<void(Sample&)>> damages[] = {
        {"nothing", [](Sample&) {}},
        {"the maps and the indexes",
         [](Sample& s) {
             ClearPages(s, {1}, [](auto owner) { return owner < 2; });
             ClearPages(s, {3, 4, 5}, [](auto) { return true; });
         }},
        {"every page is called free",
         [](Sample& s) { std::fill_n(s.MapAt(0x100) + 5, 64, std::byte{0xFF}); }},
    };
    for (const std::string& path : SampleFiles()) {
        if (path.find("V1997") != std::string::npos) continue;
        for (const auto& [name, damage] : damages) {
            SCOPED_TRACE(path + ": " + name);
            const Repaired repaired(path, damage);
            EXPECT_THAT(repaired.losses, IsEmpty());
            EXPECT_TRUE(repaired.before == repaired.after);
        }
    }
}

TEST(RepairTest, WhatCannotBeReadIsNamedAndTheRestIsSaved) {
    struct Case {
        const char* file;
        const char* table;
        std::size_t missing;  // rows, of which a value counts as well
        const char* words;    // of a message; empty: nothing is lost
        std::function<void(Sample&)> damage;
    };
    const Case cases[] = {
        {"Brauerei.kvs", kTrends, 1, "offset table",
         [](Sample& s) { s.Add(s.RowAt(s.Rows(kTrends)[7].Id()), 40); }},
        {"Brauerei.kvs", kTrends, 0, "",
         [](Sample& s) { *s.At(s.Rows(kTrends)[0].Id().page, 0) = std::byte{4}; }},
        {"Brauerei.kvs", kTrends, 0, "",
         [](Sample& s) { s.Put(s.At(s.Rows(kTrends)[0].Id().page, 4), std::uint32_t{0}); }},
        {"Brauerei.kvs", kTrends, 1, "must have one",
         [](Sample& s) {
             const std::size_t mask = (s.Def(kTrends).highestColumnCount + 7U) / 8;
             *(s.RowEnd(s.Rows(kTrends)[5].Id()) - mask) &= std::byte{0xFE};
         }},
        {"Brauerei.kvs", kTrends, 1, "the same value in \"ID\"",
         [](Sample& s) {
             // The primary key stands first in the fixed area.
             std::memcpy(s.RowAt(s.Rows(kTrends)[5].Id()) + 2, s.RowAt(s.Rows(kTrends)[4].Id()) + 2,
                         4);
         }},
        {"Brauerei.kvs", "TidxGroups", 0, "",
         [](Sample& s) { std::fill_n(s.InDef("TidxGroups", 0x10), 8, std::byte{0xFF}); }},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(std::string(example.table) + " " + example.words);
        Repaired repaired(Example(example.file), example.damage);
        EXPECT_EQ(repaired.Missing(example.table), example.missing);
        for (const auto& [table, rows] : repaired.before) {
            if (table == example.table) continue;
            EXPECT_TRUE(repaired.after[table] == rows) << table;
        }
        ASSERT_EQ(repaired.losses.empty(), *example.words == '\0');
        if (repaired.losses.empty()) continue;
        EXPECT_THAT(repaired.losses.front(), HasSubstr(example.words));
        EXPECT_THAT(repaired.losses.front(), HasSubstr(example.table));
    }
}

TEST(RepairTest, RowsOnAPageThatIsGoneAreMissingAndNoOthers) {
    std::size_t onPage = 0;
    Repaired repaired(Example("Brauerei.kvs"), [&](Sample& s) {
        const PageNo page = s.Rows(kTrends)[0].Id().page;
        for (const Row& row : s.Rows(kTrends)) onPage += row.Id().page == page ? 1U : 0U;
        Clear(s, page);
    });
    ASSERT_GT(onPage, 2U);
    EXPECT_EQ(repaired.Missing(kTrends), onPage);
    EXPECT_THAT(repaired.losses,
                testing::ElementsAre(testing::AllOf(HasSubstr(kTrends), HasSubstr("page 76"))));

    // Without the map it is the count that tells.
    Repaired unmapped(Example("Brauerei.kvs"), [&](Sample& s) {
        Clear(s, s.Rows(kTrends)[0].Id().page);
        Clear(s, RowId::FromPointer(s.Def(kTrends).ownedMap).page);
    });
    EXPECT_EQ(unmapped.Missing(kTrends), onPage);
    EXPECT_THAT(unmapped.losses,
                testing::ElementsAre(testing::AllOf(HasSubstr(kTrends), HasSubstr("228 rows"))));
}

TEST(RepairTest, AValueThatCannotBeReadBecomesNull) {
    Repaired repaired(TestData("test2V2000.mdb"), [](Sample& s) {
        s.Add(s.Descriptor(LongValue::Kind::Chain) + 8, 1);  // the stamp
        s.Put(s.Descriptor(LongValue::Kind::SingleRow) + 4, std::uint32_t{0x300});
    });
    ASSERT_EQ(repaired.losses.size(), 2U);
    std::size_t different = 0;
    for (const auto& [table, rows] : repaired.before) {
        const auto& now = repaired.after[table];
        ASSERT_EQ(now.size(), rows.size()) << table;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t k = 0; k < rows[i].size(); ++k) {
                if (now[i][k] == rows[i][k]) continue;
                EXPECT_EQ(now[i][k], Value(Null{}));
                ++different;
            }
        }
    }
    EXPECT_EQ(different, 2U);
}

TEST(RepairTest, ATableWithoutItsDefinitionIsForgottenWithItsRelationships) {
    Repaired repaired(TestData("indexTestV2000.mdb"),
                      [](Sample& s) { Clear(s, s.Def("Table1").page); });
    EXPECT_THAT(repaired.losses, testing::Contains(HasSubstr("the table is lost")));
    EXPECT_THAT(repaired.losses, testing::Contains(HasSubstr("its relationship")));
    EXPECT_FALSE(repaired.after.contains("Table1"));
    EXPECT_EQ(repaired.Missing("Table2"), 0U);
    EXPECT_EQ(repaired.Missing("MSysObjects"), 1U);
}

// A single number near the end of the numbers made a table refuse every further row.
TEST(RepairTest, AutoNumbersThatHaveComeToTheirEndAreSetBack) {
    for (const bool isInARow : {false, true}) {
        const std::string path = Example("Brauerei.kvs");
        TestDisk full;
        full.Put(kProject, ReadWhole(path));
        const auto insert = [&](TestDisk& disk, std::vector<Assignment> values) -> Result<Value> {
            auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
            auto table = Must(database->OpenTable(kTrends));
            JET_TRY(database->Begin());
            Result<RowId> row = TableWriter(*table).Insert(values);
            if (!row.IsOk()) return row.GetStatus();
            JET_TRY(database->Commit());
            return Must(table->Fetch(*row)).Get(0);
        };
        if (isInARow) {
            ASSERT_OK(insert(full, {{0, Value(std::int32_t{INT32_MAX})}}));
        } else {
            Sample sample(path);
            sample.Put(sample.InDef(kTrends, 0x14), std::int32_t{INT32_MAX});
            full.Put(kProject, sample.bytes);
        }
        const Status status = StatusOf(insert(full, {}));
        EXPECT_EQ(status.Code(), StatusCode::UsedUp);
        for (const char* word : {"TchrTrends", "\"ID\"", "2147483647", "repair"}) {
            EXPECT_THAT(status.Text(), HasSubstr(word));
        }
        ASSERT_OK(Repair(full, kProject, kRepaired,
                         [](const std::string& text) { ADD_FAILURE() << text; }));
        TestDisk repaired;
        repaired.Put(kProject, full.Content(kRepaired));
        EXPECT_EQ(Must(insert(repaired, {})), Value(std::int32_t{229}));
        EXPECT_THAT(ErrorsIn(repaired), IsEmpty());
    }
}

TEST(RepairTest, AFailureLeavesTheOldFileAndNoNewOne) {
    const std::vector<std::byte> old = ReadWhole(TestData("Leer.kvs"));
    const auto ignore = [](const std::string&) {};
    TestDisk whole;
    whole.Put(kProject, old);
    whole.FailFrom(-1);
    ASSERT_OK(Repair(whole, kProject, kRepaired, ignore));
    const int operations = whole.Operations();
    ASSERT_GT(operations, 30);
    for (int n = 0; n < operations; n += 7) {
        SCOPED_TRACE(n);
        TestDisk disk;
        disk.Put(kProject, old);
        disk.FailFrom(n);
        EXPECT_FALSE(Repair(disk, kProject, kRepaired, ignore).IsOk());
        EXPECT_FALSE(disk.Has(kRepaired));
        EXPECT_EQ(disk.Content(kProject), old);
        // What is left of the failed one does not stand in the way.
        disk.FailFrom(-1);
        ASSERT_OK(Repair(disk, kProject, kRepaired, ignore));
        EXPECT_EQ(disk.Content(kRepaired), whole.Content(kRepaired));
    }
    EXPECT_EQ(StatusOf(Repair(whole, kProject, kRepaired, ignore)).Code(), StatusCode::Duplicate);
    EXPECT_EQ(StatusOf(Repair(whole, kProject, kProject, ignore)).Code(), StatusCode::Duplicate);
    EXPECT_EQ(whole.Content(kProject), old);
}

TEST(RepairTest, WhatIsNoJet4FileIsRefused) {
    TestDisk disk;
    const auto ignore = [](const std::string&) {};
    disk.Put(kProject, ReadWhole(TestData("test2V1997.mdb")));
    EXPECT_EQ(StatusOf(Repair(disk, kProject, kRepaired, ignore)).Code(), StatusCode::Unsupported);
    disk.Put(kProject, std::vector<std::byte>(5000));
    EXPECT_FALSE(Repair(disk, kProject, kRepaired, ignore).IsOk());
    EXPECT_EQ(disk.Count(), 1U);
}

}  // namespace
}  // namespace jet
