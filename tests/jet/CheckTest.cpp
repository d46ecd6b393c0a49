#include "jet/Check.h"

#include <functional>
#include <random>

#include "DamagedSample.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using Sample = DamagedSample;
using Severity = Finding::Severity;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> Check(std::vector<std::byte> bytes, Severity severity,
                               const CheckOptions& options = {}) {
    MemoryFile file(std::move(bytes));
    std::vector<std::string> texts;
    const auto sink = [&](const Finding& finding) {
        if (finding.severity == severity) texts.push_back(finding.text);
        return true;
    };
    const Status status = jet::Check(file, sink, options);
    EXPECT_TRUE(status.IsOk()) << status.Text();
    return texts;
}

TEST(CheckTest, FilesOfOtherProgramsHaveNoErrors) {
    int checked = 0;
    for (const std::string& path : SampleFiles()) {
        SCOPED_TRACE(path);
        if (Must(Database::Open(path))->FileFormat() != Format::Jet4) continue;
        EXPECT_THAT(Check(ReadWhole(path), Severity::Error), IsEmpty());
        ++checked;
    }
    EXPECT_GE(checked, 13);
}

struct Damage {
    const char* file;
    const char* words;       // of one of the findings
    const char* otherWords;  // of the same finding
    std::function<void(Sample&)> make;
};

void ExpectFindings(const std::vector<Damage>& damages, Severity severity) {
    for (const Damage& damage : damages) {
        const bool isExample = std::string(damage.file) == "Brauerei.kvs";
        Sample sample(isExample ? Example(damage.file) : TestData(damage.file));
        SCOPED_TRACE(std::string(damage.words) + " " + damage.otherWords);
        damage.make(sample);
        EXPECT_THAT(
            Check(sample.bytes, severity),
            testing::Contains(AllOf(HasSubstr(damage.words), HasSubstr(damage.otherWords))));
    }
}

constexpr const char* kBrewery = "Brauerei.kvs";
constexpr const char* kIndexes = "indexTestV2000.mdb";    // relations, a chain, a moved row
constexpr const char* kNodes = "compIndexTestV2000.mdb";  // an index of two levels
constexpr const char* kChains = "test2V2000.mdb";
constexpr const char* kMoved = "overflowTestV2000.mdb";
constexpr const char* kTrends = "TchrTrends";

TEST(CheckTest, FindsDamageToTheFileAndItsPages) {
    ExpectFindings(
        {
            {kBrewery, "size", "4096", [](Sample& s) { s.bytes.resize(s.bytes.size() + 100); }},
            {kBrewery, "page 0", "not a Jet", [](Sample& s) { s.bytes[1] = std::byte{7}; }},
            {kBrewery, "page 0", "constants", [](Sample& s) { s.bytes[0x98] ^= std::byte{1}; }},
            {kBrewery, "global map", "rows",
             [](Sample& s) { s.Put(s.At(PageNo{1}, 12), std::uint16_t{1}); }},
            {kBrewery, "the global map", "not a usage map",
             [](Sample& s) { *s.MapAt(0x100) = std::byte{7}; }},
            {kBrewery, "catalog lacks", "MSysDb",
             [](Sample& s) { s.Put(s.RowAt(s.CatalogRow("MSysDb")) + 2 + 8, std::uint16_t{9}); }},
            {kBrewery, "two objects", "TidxGroups",
             [](Sample& s) {
                 // The name is the first variable value, behind the fixed area of 30 bytes.
                 std::memcpy(s.RowAt(s.CatalogRow(kTrends)) + 32,
                             s.RowAt(s.CatalogRow("TidxGroups")) + 32, 20);
             }},
            {kBrewery, kTrends, "not a table definition",
             [](Sample& s) { *s.InDef(kTrends, 0) = std::byte{8}; }},
            {kBrewery, "usage map on page", "no such row",
             [](Sample& s) { *s.InDef(kTrends, 0x37) = std::byte{200}; }},
            {kBrewery, "serves something else", "usage map",
             [](Sample& s) {
                 s.Put(s.InDef(kTrends, 0x3B), s.Get<std::uint32_t>(s.InDef(kTrends, 0x37)));
             }},
            {kIndexes, "free at the same time", "the rows of table \"Table1\"",
             [](Sample& s) { s.FlipInMap(0x100, Raw(s.Rows("Table1").at(0).Id().page)); }},
            {kIndexes, "belongs to the rows of table \"Table1\"", "Table2",
             [](Sample& s) {
                 s.FlipInMap(s.Def("Table2").ownedMap, Raw(s.Rows("Table1").at(0).Id().page));
             }},
            {kIndexes, "behind the end", "Table1",
             [](Sample& s) { s.FlipInMap(s.Def("Table1").ownedMap, 100); }},
            {kIndexes, "map of pages with room", "Table1",
             [](Sample& s) { s.FlipInMap(s.Def("Table1").freeMap, 8); }},
            {kBrewery, kTrends, "names another owner",
             [](Sample& s) { s.Put(s.At(s.Rows(kTrends)[0].Id().page, 4), std::uint32_t{2}); }},
            {kBrewery, kTrends, "not a data page",
             [](Sample& s) { *s.At(s.Rows(kTrends)[0].Id().page, 0) = std::byte{4}; }},
            {kBrewery, kTrends, "free bytes instead of",
             [](Sample& s) { s.Add(s.At(s.Rows(kTrends)[0].Id().page, 2), 3); }},
            {kBrewery, "row 3", "impossible offset",
             [](Sample& s) { s.Put(s.SlotOf(s.Rows(kTrends)[3].Id()), std::uint16_t{0x0FFF}); }},
        },
        Severity::Error);
}

/// First byte of the block of a column.
std::byte* ColumnBlock(Sample& s, const char* table, std::size_t position) {
    return s.InDef(table, 0x3F + 12 * s.Def(table).realIndexes.size() + 25 * position);
}

/// First byte of the block of a logical index.
std::byte* LogicalBlock(Sample& s, const char* table, std::size_t position) {
    const TableDef def = s.Def(table);
    std::byte* at = ColumnBlock(s, table, def.columns.size());
    for (std::size_t i = 0; i < def.columns.size(); ++i) at += 2 + s.Get<std::uint16_t>(at);
    return at + 52 * def.realIndexes.size() + 28 * position;
}

/// First byte of the block of a real index.
std::byte* RealBlock(Sample& s, const char* table, std::size_t position) {
    const std::size_t count = s.Def(table).realIndexes.size();
    return LogicalBlock(s, table, 0) - 52 * static_cast<int>(count - position);
}

TEST(CheckTest, FindsDamageToDefinitions) {
    ExpectFindings(
        {
            {kBrewery, kTrends, "free bytes instead of",
             [](Sample& s) { s.Add(s.InDef(kTrends, 2), -1); }},
            {kBrewery, kTrends, "bytes and takes",
             [](Sample& s) {
                 s.Add(s.InDef(kTrends, 8), 6);
                 s.Add(s.InDef(kTrends, 2), -6);
             }},
            {kBrewery, "belongs to the definition of table \"TchrTrends\"", "once more",
             [](Sample& s) { s.Put(s.InDef(kTrends, 4), Raw(s.Def(kTrends).page)); }},
            {kBrewery, kTrends, "goes on behind its stated length",
             [](Sample& s) { s.Put(s.InDef(kTrends, 4), Raw(s.Def("TidxGroups").page)); }},
            {kIndexes, "Table1", "impossible number",
             [](Sample& s) { s.Put(ColumnBlock(s, "Table1", 0) + 5, std::uint16_t{77}); }},
            {kIndexes, "MSysObjects", "is variable column 50",
             [](Sample& s) { s.Put(ColumnBlock(s, "MSysObjects", 0) + 7, std::uint16_t{50}); }},
            {kIndexes, "MSysObjects", "shares its place",
             [](Sample& s) { s.Put(ColumnBlock(s, "MSysObjects", 0) + 7, std::uint16_t{0}); }},
            {kIndexes, "\"DateCreate\"", "overlaps",
             [](Sample& s) { s.Put(ColumnBlock(s, "MSysObjects", 2) + 21, std::uint16_t{5}); }},
            {kIndexes, "an index that does not exist", "Table1",
             [](Sample& s) { s.Put(LogicalBlock(s, "Table1", 0) + 8, std::uint32_t{9}); }},
            {kIndexes, "one end of a relationship", "Table1",
             [](Sample& s) {
                 const auto& indexes = s.Def("Table1").logicalIndexes;
                 const auto isForeign = [](const LogicalIndex& index) {
                     return index.role == LogicalIndex::Role::ForeignKey;
                 };
                 const auto found = std::find_if(indexes.begin(), indexes.end(), isForeign);
                 const auto at = static_cast<std::size_t>(found - indexes.begin());
                 s.Put(LogicalBlock(s, "Table1", at) + 13, std::int32_t{33});
             }},
        },
        Severity::Error);
}

TEST(CheckTest, FindsDamageToRowsAndLongValues) {
    const auto chain = LongValue::Kind::Chain;
    const auto single = LongValue::Kind::SingleRow;
    ExpectFindings(
        {
            {kBrewery, "row 0", "columns, the table never had",
             [](Sample& s) { s.Add(s.RowAt(s.Rows(kTrends)[0].Id()), 40); }},
            {kBrewery, "page 14 row 0", "impossible offset",
             [](Sample& s) {
                 s.Add(s.RowEnd({PageNo{14}, 0}) - 3 - 4, 900);
             }},
            {kBrewery, "page 14 row 0", "too short for column",
             [](Sample& s) {
                 s.Add(s.RowEnd({PageNo{14}, 0}) - 3 - 4, -20);
             }},
            {kBrewery, "\"Name\"", "inside a character",
             [](Sample& s) {
                 s.Add(s.RowEnd({PageNo{14}, 0}) - 3 - 6, -1);
             }},
            {kMoved, "has moved to", "no page of the table",
             [](Sample& s) {
                 for (const Row& row : s.Rows("Table1")) {
                     if ((s.Get<std::uint16_t>(s.SlotOf(row.Id())) & 0x4000) != 0) {
                         *(s.RowAt(row.Id()) + 1) = std::byte{3};
                     }
                 }
             }},
            {kMoved, "has moved to", "holds no moved row",
             [](Sample& s) {
                 for (const Row& row : s.Rows("Table1")) {
                     if ((s.Get<std::uint16_t>(s.SlotOf(row.Id())) & 0x4000) == 0) continue;
                     const auto to = RowId::FromPointer(s.Get<std::uint32_t>(s.RowAt(row.Id())));
                     *(s.SlotOf(to) + 1) &= std::byte{0x3F};
                 }
             }},
            {kChains, "instead of", "long value",
             [&](Sample& s) { s.Add(s.Descriptor(chain), 1); }},
            {kChains, "has the stamp", "row",
             [&](Sample& s) { s.Add(s.Descriptor(chain) + 8, 1); }},
            {kChains, "on no page of the column", "long value",
             [&](Sample& s) { s.Put(s.Descriptor(chain) + 5, std::uint16_t{3}); }},
            {"Grenzfaelle.kvs", "instead of", "long value",
             [&](Sample& s) { s.Add(s.Descriptor(single), 1); }},
            {"Grenzfaelle.kvs", "is used twice", "long value",
             [&](Sample& s) { std::memcpy(s.Descriptor(single, 2), s.Descriptor(single), 12); }},
        },
        Severity::Error);
}

TEST(CheckTest, FindsDamageToIndexes) {
    // Entries of the primary key of TchrTrends, on the first leaf: flag, number, page and row.
    const std::size_t entry = 1 + 4 + 4;
    const auto leaf = [](Sample& s, std::size_t offset) {
        return s.At(s.Root(kTrends, s.Def(kTrends).PrimaryKey().value()), offset);
    };
    const auto nodes = [](Sample& s) {
        const TableDef def = s.Def("Table1");
        for (const RealIndex& index : def.realIndexes) {
            if (!s.Node(index.root, "Table1").IsLeaf()) return index;
        }
        throw std::runtime_error("no index with nodes");
    };
    ExpectFindings(
        {
            {kBrewery, kTrends, "free bytes instead of", [&](Sample& s) { s.Add(leaf(s, 2), 5); }},
            {kBrewery, kTrends, "impossible entry",
             [&](Sample& s) { *leaf(s, 27) = std::byte{1}; }},
            {kBrewery, kTrends, "is not greater",
             [&](Sample& s) {
                 std::swap_ranges(leaf(s, 480), leaf(s, 480 + entry), leaf(s, 480 + entry));
             }},
            {kBrewery, "last leaf", "linked",
             [&](Sample& s) { s.Put(leaf(s, 16), std::uint32_t{7}); }},
            {kBrewery, "is in the tree but not in the map", kTrends,
             [&](Sample& s) { s.Put(RealBlock(s, kTrends, 0) + 38, Raw(s.Root("TidxGroups"))); }},
            {kBrewery, "cannot be reached", kTrends,
             [&](Sample& s) { s.Put(RealBlock(s, kTrends, 0) + 38, Raw(s.Root("TidxGroups"))); }},
            {kNodes, "the leaf", "its link names",
             [&](Sample& s) {
                 const PageNo child = s.Node(nodes(s).root, "Table1").Child(0);
                 s.Put(s.At(child, 16), std::uint32_t{0});
             }},
            {kNodes, "is not the last one below", "entry 0",
             [&](Sample& s) { *s.At(nodes(s).root, 480 + 1) ^= std::byte{1}; }},
            {kNodes, "in the tree twice", "page",
             [&](Sample& s) {
                 const IndexPage node = s.Node(nodes(s).root, "Table1");
                 s.Put(s.At(nodes(s).root, 20), Raw(node.Child(0)));
             }},
            {kNodes, "cannot be reached", "page",
             [&](Sample& s) { s.Put(s.At(nodes(s).root, 20), std::uint32_t{0}); }},
            {kBrewery, "has another key than the row", kTrends,
             [&](Sample& s) {
                 // The primary key stands first in the fixed area.
                 s.Add(s.RowAt(s.Rows(kTrends)[5].Id()) + 2, 1000);
             }},
            {kBrewery, "no such row", kTrends,
             [&](Sample& s) { *(s.SlotOf(s.Rows(kTrends)[5].Id()) + 1) |= std::byte{0xC0}; }},
            {kBrewery, "the row has no entry", kTrends,
             [&](Sample& s) { *leaf(s, 480 + entry - 1) = std::byte{0x77}; }},
            {kBrewery, "in a unique index", kTrends,
             [&](Sample& s) { std::copy_n(leaf(s, 480), 5, leaf(s, 480 + entry)); }},
            {kBrewery, "an index forbids Null", kTrends,
             [&](Sample& s) {
                 const TableDef def = s.Def(kTrends);
                 const std::size_t mask = (def.highestColumnCount + 7U) / 8;
                 *(s.RowEnd(s.Rows(kTrends)[5].Id()) - mask) &= std::byte{0xFE};
             }},
        },
        Severity::Error);
}

// Two indexes that have each other's pages, and columns that share their bytes, once were written
// to: the check before the first change looked at usage maps only.
TEST(CheckTest, NothingIsWrittenWhereATreeOrAColumnHasThePlaceOfAnother) {
    const auto swap = [](std::size_t field) {
        return [field](Sample& s) {
            std::swap_ranges(RealBlock(s, kTrends, 0) + field, RealBlock(s, kTrends, 0) + field + 4,
                             RealBlock(s, kTrends, 1) + field);
        };
    };
    struct Case {
        const char* file;
        const char* words;
        std::function<void(Sample&)> damage;
    };
    const Case cases[] = {
        {kBrewery, "not in the map", swap(38)},
        {kBrewery, "not in the map", swap(34)},
        {kNodes, "cannot be reached",
         [](Sample& s) {
             for (const RealIndex& index : s.Def("Table1").realIndexes) {
                 const bool isLeaf = s.Node(index.root, "Table1").IsLeaf();
                 if (!isLeaf) s.Put(s.At(index.root, 20), std::uint32_t{0});
             }
         }},
        {kNodes, "in the tree twice",
         [](Sample& s) {
             for (const RealIndex& index : s.Def("Table1").realIndexes) {
                 const IndexPage node = s.Node(index.root, "Table1");
                 if (!node.IsLeaf()) s.Put(s.At(index.root, 20), Raw(node.Child(0)));
             }
         }},
        {kIndexes, "shares its place",
         [](Sample& s) { s.Put(ColumnBlock(s, "MSysObjects", 0) + 7, std::uint16_t{0}); }},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.words);
        const bool isExample = std::string(example.file) == kBrewery;
        Sample sample(isExample ? Example(example.file) : TestData(example.file));
        example.damage(sample);
        EXPECT_THAT(Check(sample.bytes, Severity::Error),
                    testing::Contains(HasSubstr(example.words)));
        TestDisk disk;
        disk.Put(kProject, sample.bytes);
        auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
        EXPECT_THAT(database->TakeNotices(),
                    testing::ElementsAre(AllOf(HasSubstr(example.words), HasSubstr("repair"))));
        const Status begun = database->Begin();
        EXPECT_EQ(begun.Code(), StatusCode::Corrupt);
        EXPECT_THAT(begun.Text(), HasSubstr(example.words));
    }
}

// Counters and pages that a deletion left behind were called untidy.
TEST(CheckTest, ADeletionLeavesNothingToWarnOf) {
    TestDisk disk;
    disk.Put(kProject, ReadWhole(Example(kBrewery)));
    const auto before = Check(disk.Content(kProject), Severity::Warning);
    std::mt19937 random(7);
    for (int round = 0; round < 4; ++round) {
        {
            auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
            ASSERT_OK(database->Begin());
            for (const char* name : {"TchrArchives", kTrends, "TidxGroups", "TidxTexts"}) {
                auto table = Must(database->OpenTable(name));
                for (const Row& row : AllRows(*table)) {
                    const bool isDeleted = round == 3 || random() % 3 == 0;
                    if (isDeleted) ASSERT_OK(TableWriter(*table).Delete(row.Id()));
                }
            }
            ASSERT_OK(database->Commit());
        }
        EXPECT_EQ(Check(disk.Content(kProject), Severity::Warning), before);
        EXPECT_THAT(Check(disk.Content(kProject), Severity::Error), IsEmpty());
    }
}

TEST(CheckTest, WarnsOfWhatIsOnlyUntidy) {
    ExpectFindings(
        {
            {kBrewery, kTrends, "rows and has 228",
             [](Sample& s) { s.Add(s.InDef(kTrends, 0x10), 1); }},
            {kBrewery, kTrends, "different keys",
             [](Sample& s) { s.Add(s.InDef(kTrends, 0x3F + 4), 1); }},
            {kIndexes, "neither free nor in use", "page",
             [](Sample& s) {
                 s.FlipInMap(s.Def("Table1").ownedMap, Raw(s.Rows("Table1").at(0).Id().page));
             }},
            {kBrewery, "ParentIdName", "sort order is not known",
             [](Sample& s) {
                 for (std::size_t i = 0; i < s.Def("MSysObjects").columns.size(); ++i) {
                     s.Put(ColumnBlock(s, "MSysObjects", i) + 11, std::uint16_t{0x0407});
                 }
             }},
            {kMoved, "that no row leads to", "Table1",
             [](Sample& s) {
                 for (const Row& row : s.Rows("Table1")) {
                     std::byte* slot = s.SlotOf(row.Id()) + 1;
                     if ((*slot & std::byte{0x40}) != std::byte{0}) *slot |= std::byte{0x80};
                 }
             }},
            {"Grenzfaelle.kvs", "that no row uses", "table",
             [](Sample& s) {
                 std::byte* at = s.Descriptor(LongValue::Kind::SingleRow);
                 s.Put(at, std::uint32_t{0x80000000});
             }},
        },
        Severity::Warning);
}

TEST(CheckTest, TellsHowMuchItHasLeftOutAndStopsWhenAsked) {
    Sample sample(Example(kBrewery));
    for (const Row& row : sample.Rows(kTrends)) sample.Add(sample.RowAt(row.Id()), 40);
    CheckOptions few;
    few.mostPerSubject = 5;
    EXPECT_THAT(Check(sample.bytes, Severity::Error, few),
                AllOf(testing::SizeIs(6), testing::Contains("223 more findings about rows")));
    MemoryFile file(sample.bytes);
    int calls = 0;
    ASSERT_OK(jet::Check(file, [&](const Finding&) { return ++calls < 3; }));
    EXPECT_EQ(calls, 3);
}

TEST(CheckTest, RefusesWhatItCannotCheck) {
    const auto sink = [](const Finding&) { return true; };
    MemoryFile old(ReadWhole(TestData("test2V1997.mdb")));
    EXPECT_EQ(jet::Check(old, sink).Code(), StatusCode::Unsupported);
    EXPECT_THAT(Check({}, Severity::Error), testing::ElementsAre(HasSubstr("0 bytes")));
}

// Whatever stands in the file, the check ends and stays inside its memory.
TEST(CheckTest, RandomDamageIsSurvived) {
    const unsigned start = std::random_device{}();
    SCOPED_TRACE("random start " + std::to_string(start));
    std::mt19937 random(start);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    for (const char* name : {"Grenzfaelle.kvs", kIndexes, kNodes, kChains, kMoved}) {
        const std::vector<std::byte> original = ReadWhole(TestData(name));
        for (int round = 0; round < 150; ++round) {
            std::vector<std::byte> bytes = original;
            for (std::size_t i = 0; i < 1 + below(40); ++i) {
                // Mostly in the heads of pages, where the structure is.
                const std::size_t page = below(bytes.size() / kPageSizeJet4);
                const std::size_t at = page * kPageSizeJet4 + below(below(2) != 0 ? 64 : 4096);
                bytes[std::max<std::size_t>(at, 0x98)] = static_cast<std::byte>(below(256));
            }
            std::ignore = Check(std::move(bytes), Severity::Error);
        }
    }
}

}  // namespace
}  // namespace jet
