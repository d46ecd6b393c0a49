#include <filesystem>
#include <random>

#include "jet/Compact.h"
#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "jet/disk/SystemName.h"
#include "support/NewFolder.h"
#include "WriterTesting.h"

namespace jet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

/// All rows of all tables, by the names of the tables. Without `numbers` the columns are left out
/// in which the system's own tables name tables by their pages.
std::map<std::string, std::vector<std::vector<Value>>> ContentOf(TestDisk& disk,
                                                                 bool numbers = false) {
    auto database = Must(Database::Open(disk, kProject, OpenMode::Read));
    std::map<std::string, std::vector<std::vector<Value>>> content;
    for (const CatalogEntry& entry : Must(database->Tables())) {
        auto& rows = content[entry.name] = RowsOf(*database, entry.name);
        const TableDef def = Must(database->OpenTable(entry))->Definition();
        for (const char* name : {"Id", "ParentId", "ObjectId"}) {
            const auto column = def.FindColumn(name);
            if (numbers || !def.isSystem || !column) continue;
            for (auto& row : rows) row[*column] = Null{};
        }
    }
    return content;
}

std::unique_ptr<TestDisk> DiskWith(const std::string& path) {
    auto disk = std::make_unique<TestDisk>();
    disk->Put(kProject, ReadWhole(path));
    return disk;
}

std::unique_ptr<TestDisk> EmptyDisk() {
    auto disk = std::make_unique<TestDisk>();
    EXPECT_TRUE(CreateDatabase(*disk, kProject).IsOk());
    return disk;
}

bool IsJet4(const std::string& path) {
    return path.find("V1997") == std::string::npos;
}

TEST(CompactTest, FilesOfOtherProgramsKeepAllTheirRows) {
    for (const std::string& path : SampleFiles()) {
        if (!IsJet4(path)) continue;
        SCOPED_TRACE(path);
        auto disk = DiskWith(path);
        const auto before = ContentOf(*disk, true);
        ASSERT_OK(Compact(*disk, kProject));
        EXPECT_EQ(disk->Count(), 1U);
        EXPECT_THAT(ErrorsIn(*disk), IsEmpty());
        EXPECT_TRUE(ContentOf(*disk, true) == before) << "tables must have kept their numbers";
        const std::vector<std::byte> once = disk->Content(kProject);
        ASSERT_OK(Compact(*disk, kProject));
        EXPECT_EQ(disk->Content(kProject), once) << "there was nothing left to be done";
    }
}

/// A table with a tree of many levels, with overflow rows and with long values of every kind.
class Filled {
public:
    Filled(TestDisk& disk, std::size_t rows)
        : database_(Must(Database::Open(disk, kProject, OpenMode::ReadWrite))) {
        EXPECT_TRUE(database_->Begin().IsOk());
        const TableSpec wanted{"Filled",
                               {{.name = "ID", .isAutoNumber = true},
                                {"Text", ColumnType::Text, 255},
                                {"Memo", ColumnType::Memo}},
                               {{"PrimaryKey", IndexSpec::Kind::PrimaryKey, {{"ID"}}},
                                {"Text", IndexSpec::Kind::Plain, {{"Text", false}}}}};
        EXPECT_TRUE(CreateTable(*database_, wanted).IsOk());
        table_ = Must(database_->OpenTable("Filled"));
        TableWriter writer(*table_);
        std::mt19937 random(3);
        constexpr std::array<std::size_t, 5> kSizes = {0, 20, 500, 4076, 9000};
        for (std::size_t i = 0; i < rows; ++i) {
            std::u16string text = ToUtf16(std::to_string(random()));
            const RowId row = Must(writer.Insert(std::vector<Assignment>{
                {1, text}, {2, std::u16string(kSizes[random() % 5] / 2, u'\u0416')}}));
            while (text.size() < 250) text += static_cast<char16_t>(u'a' + random() % 26);
            EXPECT_TRUE(writer.Update(row, std::vector<Assignment>{{1, text}}).IsOk());
        }
        EXPECT_TRUE(database_->Commit().IsOk());
    }

    void DeleteAllBut(std::size_t rows) {
        EXPECT_TRUE(database_->Begin().IsOk());
        TableWriter writer(*table_);
        std::vector<Row> all = AllRows(*table_);
        for (std::size_t i = rows; i < all.size(); ++i) {
            EXPECT_TRUE(writer.Delete(all[i].Id()).IsOk());
        }
        EXPECT_TRUE(database_->Commit().IsOk());
    }

private:
    std::unique_ptr<Database> database_;
    std::unique_ptr<Table> table_;
};

TEST(CompactTest, WhatWasDeletedLeavesNoRoom) {
    auto disk = DiskWith(Example("Brauerei.kvs"));
    const std::size_t before = disk->Content(kProject).size();
    {
        Filled filled(*disk, 1500);
        const auto content = ContentOf(*disk);
        ASSERT_OK(Compact(*disk, kProject));
        EXPECT_THAT(ErrorsIn(*disk), IsEmpty());
        EXPECT_TRUE(ContentOf(*disk) == content);
    }
    ASSERT_GT(disk->Content(kProject).size(), 10 * before);
    // A table whose definition lies at the end of the large file must come forward too.
    {
        auto database = Must(Database::Open(*disk, kProject, OpenMode::ReadWrite));
        ASSERT_OK(CreateTable(*database, {"Late", {{"A"}}, {}}));
        auto table = Must(database->OpenTable("Filled"));
        ASSERT_OK(database->Begin());
        for (const Row& row : AllRows(*table)) ASSERT_OK(TableWriter(*table).Delete(row.Id()));
        ASSERT_OK(database->Commit());
    }
    const CompactSizes sizes = Must(Compact(*disk, kProject));
    EXPECT_EQ(sizes.after, disk->Content(kProject).size());
    EXPECT_LT(sizes.after, before + 8 * kPageSizeJet4);
    EXPECT_THAT(ErrorsIn(*disk), IsEmpty());

    auto database = Must(Database::Open(*disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("Filled"));
    ASSERT_OK(database->Begin());
    const RowId row = Must(TableWriter(*table).Insert({}));
    EXPECT_EQ(Must(Must(table->Fetch(row)).Get(0)), Value(1501)) << "numbers are not given twice";
    ASSERT_OK(database->Commit());
    ASSERT_OK(CreateTable(*database, {"New", {{"A"}}, {}}));
    EXPECT_THAT(ErrorsIn(*disk), IsEmpty());
}

TEST(CompactTest, AnIndexOfAnUnknownCollationSurvives) {
    auto disk = EmptyDisk();
    { Filled filled(*disk, 100); }
    const auto entries = [&] {
        std::vector<std::pair<std::string, Value>> found;
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        auto table = Must(database->OpenTable("Filled"));
        IndexCursor cursor = Must(table->Seek(1, ""));
        while (Must(cursor.Next())) {
            found.emplace_back(cursor.Key(), Must(Must(table->Fetch(cursor.Row())).Get(0)));
        }
        return found;
    };
    // Offset of the collation in the descriptor of "Text", the second column.
    constexpr std::size_t kCollation = 0x3F + 2 * 12 + 25 + 11;
    const auto setCollation = [&](std::byte language) {
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        const PageNo page = Must(database->OpenTable("Filled"))->Definition().page;
        std::vector<std::byte> content = disk->Content(kProject);
        content[kPageSizeJet4 * Raw(page) + kCollation] = language;
        disk->Put(kProject, content);
    };
    const auto before = entries();
    ASSERT_EQ(before.size(), 100U);
    setCollation(std::byte{0x07});
    ASSERT_OK(Compact(*disk, kProject));
    setCollation(std::byte{0x09});
    EXPECT_EQ(entries(), before);
    EXPECT_THAT(ErrorsIn(*disk), IsEmpty());
}

TEST(CompactTest, AnyFailureLeavesTheOldFileOrTheNewOne) {
    auto start = EmptyDisk();
    { Filled(*start, 60).DeleteAllBut(20); }
    const auto content = ContentOf(*start);
    const std::vector<std::byte> old = start->Content(kProject);
    TestDisk whole;
    whole.Put(kProject, old);
    whole.FailFrom(-1);
    ASSERT_OK(Compact(whole, kProject));
    const int operations = whole.Operations();
    ASSERT_GT(operations, 30);
    std::mt19937 random(5);
    for (int n = 0; n < operations; ++n) {
        SCOPED_TRACE(n);
        TestDisk disk;
        disk.Put(kProject, old);
        disk.FailFrom(n);
        EXPECT_FALSE(Compact(disk, kProject).IsOk());
        disk.CutPower(random);
        EXPECT_EQ(disk.Content(kProject), old);
        if (n % 16 != 0) continue;
        // What is left of the failed one does not stand in the way.
        ASSERT_OK(Compact(disk, kProject));
        EXPECT_EQ(disk.Count(), 1U);
        EXPECT_EQ(disk.Content(kProject), whole.Content(kProject));
        EXPECT_TRUE(ContentOf(disk) == content);
    }
}

TEST(CompactTest, DamagedFilesAreRefusedAndLeftAlone) {
    auto disk = DiskWith(Example("Brauerei.kvs"));
    std::vector<std::byte> content = disk->Content(kProject);
    const auto page = Raw([&] {
        auto database = Must(Database::Open(*disk, kProject, OpenMode::Read));
        return Must(database->OpenTable("TchrTrends"))->Definition().realIndexes[0].root;
    }());
    content[kPageSizeJet4 * page + 500] ^= std::byte{0x40};
    disk->Put(kProject, content);
    const Status status = StatusOf(Compact(*disk, kProject));
    EXPECT_EQ(status.Code(), StatusCode::Corrupt);
    EXPECT_THAT(status.Text(), HasSubstr("TchrTrends"));
    EXPECT_EQ(disk->Content(kProject), content);
    EXPECT_EQ(disk->Count(), 1U);

    auto old = DiskWith(TestData("test2V1997.mdb"));
    EXPECT_EQ(StatusOf(Compact(*old, kProject)).Code(), StatusCode::Unsupported);
}

class CompactFileTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-compact");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    [[nodiscard]] std::size_t FileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    fs::path folder_;
    std::string path_;
};

TEST_F(CompactFileTest, OtherProgramsAndNamesAreInTheWay) {
    const std::vector<std::byte> before = ReadWhole(path_);
    {
        auto other = Must(Database::Open(SystemDisk(), path_, OpenMode::Read));
        const Status status = StatusOf(Compact(SystemDisk(), path_));
        EXPECT_EQ(status.Code(), StatusCode::Busy);
        EXPECT_THAT(status.Text(), HasSubstr(ComputerName().substr(0, 31)));
    }
    const std::string second = (folder_ / "second.kvs").string();
    fs::create_hard_link(path_, second);
    EXPECT_EQ(StatusOf(Compact(SystemDisk(), path_)).Code(), StatusCode::Unsupported);
    EXPECT_EQ(ReadWhole(path_), before);
    EXPECT_EQ(FileCount(), 2U);
    fs::remove(second);
    // What has the name of the new file may be anybody's.
    const std::string left = path_ + "-compact";
    std::ofstream(left) << "mine";
    const CompactSizes sizes = Must(Compact(SystemDisk(), path_));
    EXPECT_THAT(sizes.notices, testing::ElementsAre(HasSubstr(left)));
    EXPECT_EQ(ReadWhole(left).size(), 4U);
    EXPECT_EQ(FileCount(), 2U);
}

}  // namespace
}  // namespace jet
