#include <algorithm>
#include <random>
#include <string>

#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using Kind = IndexSpec::Kind;

struct Stored {
    const std::vector<std::byte>& file;
    std::size_t page;

    [[nodiscard]] std::size_t Byte(std::size_t at) const {
        return static_cast<std::size_t>(file[page * kPageSizeJet4 + at]);
    }
    [[nodiscard]] std::size_t Word(std::size_t at) const { return Byte(at) | Byte(at + 1) << 8; }
};

TEST(CreateTest, AnEmptyDatabaseIsThatOfOtherPrograms) {
    // The beginning of page 0 as such a program has written it on the same day.
    const std::vector<unsigned> kBegin = {
        0x00, 0x01, 0x00, 0x00, 0x53, 0x74, 0x61, 0x6E, 0x64, 0x61, 0x72, 0x64, 0x20, 0x4A, 0x65,
        0x74, 0x20, 0x44, 0x42, 0x00, 0x01, 0x00, 0x00, 0x00, 0xB5, 0x6E, 0x03, 0x62, 0x60, 0x09,
        0xC2, 0x55, 0xE9, 0xA9, 0x67, 0x72, 0x40, 0x3F, 0x00, 0x9C, 0x7E, 0x9F, 0x90, 0xFF, 0x85,
        0x9A, 0x31, 0xC5, 0x79, 0xBA, 0xED, 0x30, 0xBC, 0xDF, 0xCC, 0x9D, 0x63, 0xD9, 0xE4, 0xC3,
        0x9F, 0x46, 0xFB, 0x8A, 0xBC, 0x4E, 0xDF, 0x5E, 0xEC, 0x37, 0x04, 0xE1, 0x9C, 0xFA, 0x9F,
        0xFB, 0x28, 0xE6, 0x4A, 0x13, 0x8A, 0x60, 0x0D, 0x31, 0x7B, 0x36, 0xAC, 0xD7, 0xDF, 0xB1,
        0x2E, 0x51, 0x13, 0x43, 0x96, 0x0A, 0xB1, 0x33, 0x6D, 0xC4, 0x79, 0x5B, 0xCB, 0x10, 0x7C,
        0x2A, 0x19, 0xD7, 0x7C, 0x99, 0x08, 0x1F, 0x98, 0xFD, 0x2C, 0xCA, 0x99, 0xAF, 0x52, 0x95,
        0x84, 0x66, 0x5F, 0x95, 0xF8, 0xD0, 0x89, 0x24, 0x85, 0x67, 0xC6, 0x1F, 0x27, 0x44, 0xD2,
        0xEE, 0xCF, 0x65, 0xED, 0xFF, 0x07, 0xC7, 0x46, 0xA1, 0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D,
        0x62, 0xD4, 0x54, 0x06, 0x00, 0x00, 0x34, 0x2E, 0x30, 0x00};
    TestDisk disk;
    ASSERT_OK(CreateDatabase(disk, kProject));
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    const std::vector<std::byte>& file = disk.Content(kProject);
    ASSERT_EQ(file.size(), 16 * kPageSizeJet4);
    for (std::size_t i = 0; i < kBegin.size(); ++i) {
        EXPECT_EQ((Stored{file, 0}.Byte(i)), kBegin[i]) << "byte " << i;
    }
    EXPECT_EQ((Stored{file, 0}.Word(0xE00)), 0x101U);
    EXPECT_EQ((Stored{file, 0}.Word(0xFFE)), 0x100U);

    // Types and free bytes of the other pages, rows of those with rows.
    constexpr std::size_t kNone = 0;
    struct Expected {
        std::size_t page, type, free, rows;
    };
    for (const auto& [page, type, free, rows] : {Expected{1, 1, 3940, 2},
                                                 {2, 2, 4096 - 1050 - 8, kNone},
                                                 {3, 2, 4096 - 335 - 8, kNone},
                                                 {4, 2, 4096 - 525 - 8, kNone},
                                                 {5, 2, 4096 - 813 - 8, kNone},
                                                 {6, 1, 1881, 31},
                                                 {10, 4, 3616, kNone},
                                                 {13, 4, 3616, kNone}}) {
        const Stored stored{file, page};
        EXPECT_EQ(stored.Byte(0), type) << "page " << page;
        EXPECT_EQ(stored.Word(2), free) << "page " << page;
        EXPECT_EQ(rows == kNone ? kNone : stored.Word(12), rows) << "page " << page;
    }
    EXPECT_EQ((Stored{file, 14}.Word(12)), 8U);
    EXPECT_EQ((Stored{file, 15}.Word(12)), 16U);
    for (const auto& [page, rows, keys] : {std::tuple{2, 8, 8}, {3, 16, 8}, {4, 0, 0}, {5, 0, 0}}) {
        const Stored definition{file, static_cast<std::size_t>(page)};
        EXPECT_EQ(definition.Word(0x10), static_cast<std::size_t>(rows)) << "page " << page;
        EXPECT_EQ(definition.Word(0x3F + 4), static_cast<std::size_t>(keys)) << "page " << page;
    }
}

ColumnSpec Counter() {
    return {.name = "ID", .isAutoNumber = true};
}

/// Every type, and so many memos that their maps need a second page and the definition a third.
TableSpec WideTable() {
    TableSpec wanted{"Wide \u00C4", {Counter()}, {}};
    constexpr ColumnType kTypes[] = {ColumnType::Boolean, ColumnType::Byte,     ColumnType::Integer,
                                     ColumnType::Long,    ColumnType::Currency, ColumnType::Single,
                                     ColumnType::Double,  ColumnType::DateTime, ColumnType::Guid,
                                     ColumnType::Numeric, ColumnType::Ole,      ColumnType::Memo};
    for (const ColumnType type : kTypes) {
        wanted.columns.push_back({"T" + std::to_string(static_cast<int>(type)), type});
    }
    wanted.columns.push_back({"Text", ColumnType::Text, 255});
    wanted.columns.push_back({"Bytes", ColumnType::Binary, 510});
    for (int i = 0; i < 100; ++i) {
        const std::string number = std::to_string(i);
        wanted.columns.push_back({std::string(40, 'M') + number, ColumnType::Memo});
    }
    wanted.indexes = {{"Two", Kind::Unique, {{"Text"}, {"T4", false}}},
                      {"PrimaryKey", Kind::PrimaryKey, {{"ID"}}},
                      {"Bytes", Kind::Plain, {{"Bytes"}}}};
    return wanted;
}

Status AddWideTable(Database& database) {
    return CreateTable(database, WideTable());
}

TEST(CreateTest, ATableHasWhatWasAskedFor) {
    TestDisk disk;
    ASSERT_OK(CreateDatabase(disk, kProject, AddWideTable));
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("WIDE \u00E4"));
    const TableSpec wanted = WideTable();
    const TableDef& def = table->Definition();
    ASSERT_EQ(def.columns.size(), wanted.columns.size());
    for (std::size_t i = 0; i < wanted.columns.size(); ++i) {
        EXPECT_EQ(def.columns[i].name, wanted.columns[i].name);
        EXPECT_EQ(def.columns[i].type, wanted.columns[i].type);
    }
    ASSERT_EQ(def.logicalIndexes.size(), 3U);
    EXPECT_EQ(def.logicalIndexes[0].name, "Bytes");  // by name, as other programs have them
    EXPECT_EQ(def.logicalIndexes[0].number, 2U);
    EXPECT_EQ(def.PrimaryKey(), std::optional<std::size_t>(1));
    EXPECT_EQ(def.realIndexes[0].flags, 0x81);
    EXPECT_EQ(def.realIndexes[1].flags, 0x89);
    EXPECT_EQ(def.realIndexes[2].flags, 0x80);
    EXPECT_FALSE(def.realIndexes[0].columns[1].ascending);

    std::mt19937 random(7);
    TableWriter writer(*table);
    for (int batch = 0; batch < 4; ++batch) {
        ASSERT_OK(database->Begin());
        for (int i = 0; i < 100; ++i) {
            const std::u16string text = ToUtf16(std::to_string(random()));
            const std::u16string memo(random() % 6000, u'\u00E9');
            const std::size_t memoColumn = 15 + random() % 100;
            ASSERT_OK(writer.Insert(std::vector<Assignment>{{1, i % 2 == 0},
                                                            {4, i},
                                                            {13, text},
                                                            {14, Binary(random() % 9)},
                                                            {memoColumn, memo}}));
        }
        ASSERT_OK(database->Commit());
        EXPECT_THAT(UnexpectedIn(disk, {kKeysThatWere}), IsEmpty());
    }
    EXPECT_EQ(RowsOf(*database, wanted.name).size(), 400U);
}

TEST(CreateTest, RowsOfBooleansAndRandomNumbers) {
    TestDisk disk;
    ASSERT_OK(CreateDatabase(disk, kProject, [](Database& database) {
        // A row of it would be shorter than the pointer of a row that has moved.
        JET_TRY(CreateTable(database, {"Flags", {{"A", ColumnType::Boolean}}, {}}));
        const ColumnSpec number{.name = "A", .type = ColumnType::Guid, .isAutoNumber = true};
        return CreateTable(database, {"Guids", {number}, {}});
    }));
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    ASSERT_OK(database->Begin());
    auto flags = Must(database->OpenTable("Flags"));
    for (const bool flag : {true, false, true}) {
        ASSERT_OK(TableWriter(*flags).Insert(std::vector<Assignment>{{0, flag}}));
    }
    auto guids = Must(database->OpenTable("Guids"));
    for (int i = 0; i < 3; ++i) ASSERT_OK(TableWriter(*guids).Insert({}));
    ASSERT_OK(database->Commit());
    using Rows = std::vector<std::vector<Value>>;
    EXPECT_EQ(RowsOf(*database, "Flags"), (Rows{{true}, {false}, {true}}));
    const Rows made = RowsOf(*database, "Guids");
    EXPECT_NE(made.at(0), made.at(1));
    EXPECT_NE(made.at(1), made.at(2));
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
}

TEST(CreateTest, ATableIsAddedToAFileOfAnotherProgram) {
    TestDisk disk;
    disk.Put(kProject, ReadWhole(Example("Brauerei.kvs")));
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    const auto usersOf = [&](std::string_view name) {
        std::vector<Binary> users;
        const auto page =
            static_cast<std::int32_t>(Raw(Must(database->OpenTable(name))->Definition().page));
        for (const auto& row : RowsOf(*database, "MSysACEs")) {
            if (row[0] == Value(page)) users.push_back(std::get<Binary>(row[1]));
        }
        std::sort(users.begin(), users.end());
        return users;
    };
    ASSERT_OK(CreateTable(*database, {"Added", {Counter()}, {}}));
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
    std::vector<Binary> users = usersOf("TchrTrends");
    // The creator has rights of its own there.
    std::erase_if(
        users, [](const Binary& user) { return user.size() == 2 && user[1] == std::byte{0x36}; });
    EXPECT_EQ(usersOf("Added"), users);

    ASSERT_OK(database->Begin());
    ASSERT_OK(CreateTable(*database, {"Dropped", {Counter()}, {}}));
    ASSERT_OK(database->Rollback());
    // Once the pages that were taken back still counted as there.
    EXPECT_EQ(database->OpenTable("Dropped").GetStatus().Code(), StatusCode::NotFound);
    ASSERT_OK(CreateTable(*database, {"Dropped", {Counter()}, {}}));
}

TEST(CreateTest, WhatTheFormatCannotHoldIsRefused) {
    const auto columns = [](std::size_t count, ColumnType type, std::size_t length = 0) {
        TableSpec wanted{"T", {}, {}};
        for (std::size_t i = 0; i < count; ++i) {
            wanted.columns.push_back({"C" + std::to_string(i), type, length});
        }
        return wanted;
    };
    const auto indexed = [](std::vector<IndexSpec> indexes) {
        return TableSpec{"T", {{"A"}, {"M", ColumnType::Memo}}, std::move(indexes)};
    };
    const std::vector<std::pair<TableSpec, const char*>> cases = {
        {{"", {{"A"}}, {}}, "name"},
        {{"a.b", {{"A"}}, {}}, "name"},
        {{std::string(65, 'x'), {{"A"}}, {}}, "name"},
        {{"T", {}, {}}, "columns"},
        {columns(256, ColumnType::Byte), "columns"},
        {columns(255, ColumnType::Guid), "too long"},
        {columns(1, ColumnType::Text, 0), "length"},
        {columns(1, ColumnType::Text, 256), "length"},
        {columns(1, ColumnType::Binary, 511), "length"},
        {columns(1, ColumnType::LongBinary), "type"},
        {{"T", {{"A"}, {"a"}}, {}}, "twice"},
        {{"T", {{.name = "A", .isAutoNumber = true}, Counter()}, {}}, "AutoNumber"},
        {indexed({{"I", Kind::Plain, {}}}), "columns"},
        {indexed({{"I", Kind::Plain, {{"Z"}}}}), "no column"},
        {indexed({{"I", Kind::Plain, {{"A"}, {"a"}}}}), "twice"},
        {indexed({{"I", Kind::Plain, {{"M"}}}}), "no order"},
        {indexed({{"I", Kind::Plain, {{"A"}}}, {"i", Kind::Plain, {{"A"}}}}), "twice"},
        {indexed({{"I", Kind::PrimaryKey, {{"A"}}}, {"J", Kind::PrimaryKey, {{"A"}}}}), "primary"},
    };
    TestDisk disk;
    ASSERT_OK(CreateDatabase(disk, kProject));
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    ASSERT_OK(CreateTable(*database, {std::string(64, 'x'), {{"A"}}, {}}));
    ASSERT_OK(CreateTable(*database, columns(255, ColumnType::Text, 255)));
    const std::vector<std::byte> before = disk.Content(kProject);
    for (const auto& [wanted, words] : cases) {
        const Status status = CreateTable(*database, wanted);
        EXPECT_EQ(status.Code(), StatusCode::BadArgument) << words;
        EXPECT_THAT(status.Text(), HasSubstr(words));
    }
    EXPECT_EQ(CreateTable(*database, {"msysobjects", {{"A"}}, {}}).Code(), StatusCode::Duplicate);
    EXPECT_EQ(CreateTable(*database, {"t", {{"A"}}, {}}).Code(), StatusCode::Duplicate);
    EXPECT_EQ(disk.Content(kProject), before);
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
}

TEST(CreateTest, ThereIsAWholeDatabaseOrNone) {
    TestDisk whole;
    whole.FailFrom(-1);
    ASSERT_OK(CreateDatabase(whole, kProject, AddWideTable));
    const int operations = whole.Operations();
    ASSERT_GT(operations, 5);
    std::mt19937 random(11);
    for (int n = 0; n < operations; ++n) {
        SCOPED_TRACE(n);
        TestDisk disk;
        disk.FailFrom(n);
        EXPECT_FALSE(CreateDatabase(disk, kProject, AddWideTable).IsOk());
        disk.CutPower(random);
        EXPECT_FALSE(disk.Has(kProject));
    }
}

TEST(CreateTest, NothingIsOverwrittenAndNothingIsLeftBehind) {
    TestDisk disk;
    const auto refuse = [](Database& database) {
        JET_TRY(AddWideTable(database));
        return Status::BadArgument("no");
    };
    EXPECT_EQ(CreateDatabase(disk, kProject, refuse).Text(), "no");
    EXPECT_EQ(disk.Count(), 0U);

    disk.Put(kProject, {std::byte{1}});
    EXPECT_EQ(CreateDatabase(disk, kProject).Code(), StatusCode::Duplicate);
    EXPECT_EQ(disk.Content(kProject).size(), 1U);
    EXPECT_EQ(disk.Count(), 1U);

    // Left by a database that somebody has removed by hand: it is none of the new one's business.
    ASSERT_OK(disk.Remove(kProject));
    disk.Put(std::string(kProject) + "-journal", {std::byte{1}});
    ASSERT_OK(CreateDatabase(disk, kProject));
    const std::vector<std::byte> created = disk.Content(kProject);
    EXPECT_EQ(Must(Database::Open(disk, kProject, OpenMode::Read))->TakeNotices().size(), 1U);
    EXPECT_TRUE(disk.Content(kProject) == created);
}

}  // namespace
}  // namespace jet
