#include <functional>

#include "jet/check/PageState.h"
#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "jet/page/GlobalMap.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/PageAllocator.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using testing::IsEmpty;

constexpr std::size_t kInPage = 4072;  // bytes of a long value that take a page of their own

/// All that a check has to say, warnings too.
std::vector<std::string> FindingsIn(TestDisk& disk) {
    std::vector<std::string> findings;
    auto file = Must(disk.Open(kProject, OpenMode::Read));
    EXPECT_TRUE(Check(*file, [&](const Finding& finding) {
                    findings.push_back(finding.text);
                    return true;
                }).IsOk());
    return findings;
}

std::size_t PageCount(const TestDisk& disk) {
    return disk.Content(kProject).size() / kPageSizeJet4;
}

/// A database with one table of long values, in which every page is in use.
std::unique_ptr<TestDisk> SmallDisk() {
    auto disk = std::make_unique<TestDisk>();
    EXPECT_TRUE(CreateDatabase(*disk, kProject, [](Database& database) {
                    return CreateTable(database, {"T", {{"A"}, {"O", ColumnType::Ole}}, {}});
                }).IsOk());
    return disk;
}

void InsertPages(TestDisk& disk, std::size_t pages) {
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("T"));
    ASSERT_OK(database->Begin());
    ASSERT_OK(TableWriter(*table).Insert(
        std::vector<Assignment>{{1, Binary(pages * kInPage, std::byte{1})}}));
    ASSERT_OK(database->Commit());
}

void DeleteAll(TestDisk& disk, const char* name) {
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable(name));
    ASSERT_OK(database->Begin());
    for (const Row& row : AllRows(*table)) ASSERT_OK(TableWriter(*table).Delete(row.Id()));
    ASSERT_OK(database->Commit());
}

/// Gives the row of a map another form. `change` gets the row's bytes; the page is written anew.
void ChangeRow(TestDisk& disk, RowId id,
               const std::function<void(std::vector<std::byte>& row)>& change) {
    std::vector<std::byte> content = disk.Content(kProject);
    const MutableBytes page =
        MutableBytes(content).subspan(kPageSizeJet4 * Raw(id.page), kPageSizeJet4);
    std::vector<std::byte> old(page.begin(), page.end());
    const DataPageEditor rows = Must(DataPageEditor::Open(old, id.page));
    DataPageEditor::Format(page, LoadU32(old, 4));
    DataPageEditor editor = Must(DataPageEditor::Open(page, id.page));
    for (std::size_t i = 0; i < rows.SlotCount(); ++i) {
        const MutableBytes bytes = rows.Row(i);
        std::vector<std::byte> row(bytes.begin(), bytes.end());
        if (i == id.row) change(row);
        editor.Append(row, rows.Flags(i));
    }
    disk.Put(kProject, content);
}

/// An inline row of which all bits from `firstFree` on are set.
std::vector<std::byte> InlineRow(std::uint32_t start, std::size_t bytes, std::uint32_t firstFree) {
    std::vector<std::byte> row(GlobalMap::kHead + bytes);
    StoreU32(row, 1, start);
    for (std::size_t bit = 0; bit < 8 * bytes; ++bit) {
        if (start + bit >= firstFree) row[GlobalMap::kHead + bit / 8] |= std::byte(1U << bit % 8);
    }
    return row;
}

// A file of another library, whose map of free pages begins at page 512: no page behind could be
// taken and none in front given back, and a change failed in the middle.
TEST(UsageMapTest, AFileWhoseMapBeginsBehindItsPagesIsWritten) {
    TestDisk disk;
    disk.Put(kProject, ReadWhole(TestData("Stadtwerke.kvs")));
    const auto aboutPages = [&] {
        std::vector<std::string> found;
        for (const std::string& text : FindingsIn(disk)) {
            if (text.find("neither free") != std::string::npos) found.push_back(text);
        }
        return found;
    };
    {
        auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
        auto table = Must(database->OpenTable("TchrTrends"));
        const auto comment = table->Definition().FindColumn("Comment");
        const std::size_t before = PageCount(disk);
        ASSERT_OK(database->Begin());
        for (const Row& row : AllRows(*table)) {
            ASSERT_OK(TableWriter(*table).Update(
                row.Id(),
                std::vector<Assignment>{{comment.value(), Value(std::u16string(200, u'x'))}}));
        }
        ASSERT_OK(database->Commit());
        EXPECT_GT(PageCount(disk), before + 100);
    }
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    EXPECT_THAT(aboutPages(), IsEmpty());
    DeleteAll(disk, "TchrTrends");
    const std::size_t largest = PageCount(disk);
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    EXPECT_THAT(aboutPages(), IsEmpty());
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    ASSERT_OK(CreateTable(*database, {"T", {{"A"}, {"O", ColumnType::Ole}}, {}}));
    InsertPages(disk, 150);
    EXPECT_EQ(PageCount(disk), largest) << "the pages given back are taken again";
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
}

TEST(UsageMapTest, EveryFormOfTheMapOfFreePagesGrowsAndTakesPagesBack) {
    const auto count = static_cast<std::uint32_t>(PageCount(*SmallDisk()));
    struct Form {
        const char* name;
        std::vector<std::byte> row;
        std::size_t secondSize = 69;  // bytes of the other map, which leaves less room
    };
    std::vector<std::byte> list(GlobalMap::kListSize);
    list[0] = std::byte{1};
    const Form forms[] = {
        {"as it is made", InlineRow(0, 64, count)},
        {"a window in the file's middle", InlineRow(16, 64, count)},
        {"a window that begins at the end", InlineRow(count / 8 * 8 + 8, 64, count)},
        {"a window far behind the end", InlineRow(4096, 64, count)},
        {"a window at the end of all pages", InlineRow(0xFFFFFFF8, 64, count)},
        {"a short row", InlineRow(0, 2, count)},
        {"a row without bits", InlineRow(0, 0, count)},
        {"bits behind the end that are clear", InlineRow(0, 64, 10'000)},
        {"a list without pages", list},
        {"a short list", {std::byte{1}, {}, {}, {}, {}}},
        {"no room to grow", InlineRow(0, 4, count), 3900},
        {"a late window and no room to grow", InlineRow(64, 4, count), 3900},
    };
    for (const Form& form : forms) {
        SCOPED_TRACE(form.name);
        auto disk = SmallDisk();
        ChangeRow(*disk, {GlobalMap::kPage, 1}, [](auto& row) { row.resize(5); });
        ChangeRow(*disk, {GlobalMap::kPage, 0}, [&](auto& row) { row = form.row; });
        ChangeRow(*disk, {GlobalMap::kPage, 1}, [&](auto& row) { row.resize(form.secondSize); });
        ASSERT_THAT(FindingsIn(*disk), IsEmpty());
        InsertPages(*disk, 600);
        EXPECT_THAT(FindingsIn(*disk), IsEmpty());
        const std::size_t largest = PageCount(*disk);
        EXPECT_LE(largest, count + 604U);
        DeleteAll(*disk, "T");
        EXPECT_THAT(FindingsIn(*disk), IsEmpty());
        InsertPages(*disk, 598);
        EXPECT_EQ(PageCount(*disk), largest) << "the pages given back are taken again";
        EXPECT_THAT(FindingsIn(*disk), IsEmpty());
    }
}

// Files whose map offers the head are refused before a change; should one get so far, there is no
// second chance for page 0.
TEST(UsageMapTest, TheHeadOfTheFileIsNeitherGivenAwayNorTakenBack) {
    constexpr std::uint32_t kHead = 6;  // pages
    for (const bool isList : {false, true}) {
        auto disk = SmallDisk();
        const auto bitmap = static_cast<std::uint32_t>(PageCount(*disk));
        ChangeRow(*disk, {GlobalMap::kPage, 0}, [&](auto& row) {
            row = InlineRow(0, 64, 0);  // all pages are free
            if (!isList) return;
            row.assign(GlobalMap::kListSize, std::byte{0});
            row[0] = std::byte{1};
            StoreU32(row, 1, bitmap);
        });
        std::vector<std::byte> content = disk->Content(kProject);
        content.resize(content.size() + kPageSizeJet4, std::byte{0xFF});
        GlobalMap::FormatBitmap(MutableBytes(content).last(kPageSizeJet4));
        MemoryFile file(content);
        PageCache cache(file, 1 << 20);
        ASSERT_OK(cache.Revalidate());
        EXPECT_EQ(StatusOf(CheckPages(cache)).Code(), StatusCode::Corrupt);
        cache.Begin();
        cache.BeginStep();
        EXPECT_EQ(Raw(Must(PageAllocator(cache).Allocate())), kHead);
        for (std::uint32_t page = 0; page < kHead; ++page) {
            EXPECT_EQ(PageAllocator(cache).Free(PageNo{page}).Code(), StatusCode::Corrupt) << page;
            EXPECT_EQ(Must(cache.Read(PageNo{page})).Bytes()[0], content[page * kPageSizeJet4]);
        }
    }
}

// Pages in use that the map has never spoken of are given back one by one, in every share.
TEST(UsageMapTest, PagesOfWhichTheMapDoesNotSpeakAreGivenBack) {
    for (const bool isList : {false, true}) {
        for (const std::size_t secondSize : {69U, 3900U}) {
            auto disk = SmallDisk();
            InsertPages(*disk, 700);
            const auto count = static_cast<std::uint32_t>(PageCount(*disk));
            ChangeRow(*disk, {GlobalMap::kPage, 0}, [&](auto& row) {
                row = InlineRow(count / 8 * 8, isList ? 12 : 8, count);
                if (isList) std::fill(row.begin(), row.end(), std::byte{0});
                if (isList) row[0] = std::byte{1};
            });
            ChangeRow(*disk, {GlobalMap::kPage, 1}, [&](auto& row) { row.resize(secondSize); });
            ASSERT_THAT(FindingsIn(*disk), IsEmpty());
            DeleteAll(*disk, "T");
            EXPECT_THAT(FindingsIn(*disk), IsEmpty());
            InsertPages(*disk, 698);
            EXPECT_EQ(PageCount(*disk), count);
            EXPECT_THAT(FindingsIn(*disk), IsEmpty());
        }
    }
}

TEST(UsageMapTest, MapsOfTablesReachEveryPageWhateverTheirForm) {
    const auto maps = [](TestDisk& disk) {
        auto database = Must(Database::Open(disk, kProject, OpenMode::Read));
        const TableDef def = Must(database->OpenTable("T"))->Definition();
        return std::vector<std::uint32_t>{def.columns[1].ownedMap, def.ownedMap};
    };
    struct Form {
        const char* name;
        std::vector<std::byte> row;
    };
    std::vector<std::byte> list(GlobalMap::kListSize);
    list[0] = std::byte{1};
    const Form forms[] = {
        {"a window behind", InlineRow(4096, 64, 100'000)}, {"a row without bits", {5, {}}},
        {"a short row", InlineRow(8, 2, 100'000)},         {"a list", list},
        {"a short list", {std::byte{1}, {}, {}, {}, {}}},
    };
    for (const Form& form : forms) {
        SCOPED_TRACE(form.name);
        auto disk = SmallDisk();
        for (const std::uint32_t map : maps(*disk)) {
            ChangeRow(*disk, RowId::FromPointer(map), [&](auto& row) { row = form.row; });
        }
        for (int round = 0; round < 2; ++round) {
            InsertPages(*disk, 600);
            EXPECT_THAT(FindingsIn(*disk), IsEmpty());
            DeleteAll(*disk, "T");
            EXPECT_THAT(FindingsIn(*disk), IsEmpty());
        }
    }
}

// What would be refused in the middle of a change is told before it.
TEST(UsageMapTest, WhatTheMapsDoNotAllowIsSaidWhenTheFileIsOpened) {
    const TableDef def = [] {
        auto disk = SmallDisk();
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        return Must(database->OpenTable("T"))->Definition();
    }();
    const Column& column = def.columns[1];
    const auto withoutMap = [&](TestDisk& disk) {
        std::vector<std::byte> content = disk.Content(kProject);
        const MutableBytes page =
            MutableBytes(content).subspan(kPageSizeJet4 * Raw(def.page), kPageSizeJet4);
        for (std::size_t i = 0; i + 4 <= page.size(); ++i) {
            const std::uint32_t value = LoadU32(page, i);
            if (value == column.ownedMap || value == column.freeMap) StoreU32(page, i, 0);
        }
        disk.Put(kProject, content);
    };
    const auto shortMap = [&](TestDisk& disk) {
        ChangeRow(disk, RowId::FromPointer(column.ownedMap),
                  [](auto& row) { row.assign(5, std::byte{0}); });
        ChangeRow(disk, RowId::FromPointer(def.freeMap), [&](auto& row) {
            const auto& content = disk.Content(kProject);
            const RowId id = RowId::FromPointer(def.freeMap);
            row.resize(row.size() + LoadU16(content, kPageSizeJet4 * Raw(id.page) + 2));
        });
    };
    const struct {
        std::function<void(TestDisk&)> damage;
        const char* text;
        bool mayStore;  // long values, while the file is small
    } cases[] = {
        {withoutMap, "column \"O\": it has no map of its pages", false},
        {shortMap, "reaches no further than 127 MB and has no room to be lengthened", true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        auto disk = SmallDisk();
        each.damage(*disk);
        EXPECT_THAT(FindingsIn(*disk), testing::ElementsAre(testing::HasSubstr(each.text)));
        EXPECT_THAT(ErrorsIn(*disk), IsEmpty());
        EXPECT_THAT(Must(Database::Open(*disk, kProject, OpenMode::Read))->TakeNotices(),
                    IsEmpty());
        auto database = Must(Database::Open(*disk, kProject, OpenMode::ReadWrite));
        EXPECT_THAT(database->TakeNotices(),
                    testing::ElementsAre(testing::AllOf(testing::HasSubstr(each.text),
                                                        testing::HasSubstr("kvs repair"))));
        auto table = Must(database->OpenTable("T"));
        ASSERT_OK(database->Begin());
        const auto insert = [&](std::size_t size) {
            const Assignment value{1, Binary(size, std::byte{1})};
            return StatusOf(TableWriter(*table).Insert(std::vector<Assignment>{value}));
        };
        ASSERT_OK(insert(64));
        EXPECT_EQ(insert(65).Code(), each.mayStore ? StatusCode::Ok : StatusCode::Unsupported);
        ASSERT_OK(database->Commit());
        EXPECT_THAT(FindingsIn(*disk), testing::SizeIs(1));
    }
}

// Some programs leave bits in a table's map that lie far behind the end of the file. They mean
// nothing, and must not come to mean something when the file grows.
TEST(UsageMapTest, BitsLeftOverFarBehindTheEndAreNoDamage) {
    auto disk = SmallDisk();
    InsertPages(*disk, 3);
    const auto count = static_cast<std::uint32_t>(PageCount(*disk));
    const TableDef def = [&] {
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        return Must(database->OpenTable("T"))->Definition();
    }();
    for (const std::uint32_t map : {def.ownedMap, def.freeMap, def.columns[1].ownedMap}) {
        ChangeRow(*disk, RowId::FromPointer(map), [&](auto& row) {
            row.resize(5 + 250);  // 2000 pages
            row[5 + 20] |= std::byte{0x10};
            row[5 + 240] |= std::byte{0xFF};
        });
    }
    EXPECT_THAT(FindingsIn(*disk), IsEmpty());
    ASSERT_LT(count + 32, 8 * 20U);
    {
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        EXPECT_EQ(RowsOf(*database, "T").size(), 1U);
    }
    {
        // What has been taken back has removed nothing.
        auto database = Must(Database::Open(*disk, kProject, OpenMode::ReadWrite));
        ASSERT_OK(database->Begin());
        ASSERT_OK(database->Rollback());
        ASSERT_OK(database->Begin());
        ASSERT_OK(database->Commit());
    }
    InsertPages(*disk, 2200);
    EXPECT_THAT(FindingsIn(*disk), IsEmpty());

    // The same bit in a file that has been cut short is damage: rows are lost.
    auto cut = SmallDisk();
    InsertPages(*cut, 100);
    std::vector<std::byte> content = cut->Content(kProject);
    content.resize(content.size() - 50 * kPageSizeJet4);
    cut->Put(kProject, content);
    EXPECT_THAT(ErrorsIn(*cut), testing::Contains(testing::HasSubstr("behind the end")));
}

}  // namespace
}  // namespace jet
