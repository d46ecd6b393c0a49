#include <filesystem>

#include "jet/Compact.h"
#include "jet/compact/Draft.h"
#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "jet/page/GlobalMap.h"
#include "jet/write/DataPageEditor.h"
#include "support/NewFolder.h"
#include "WriterTesting.h"

namespace jet {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

TEST(LimitsTest, LongestRow) {
    TestDisk disk;
    std::vector<ColumnSpec> columns;
    for (int i = 0; i < 9; ++i) {
        columns.push_back({"B" + std::to_string(i), ColumnType::Binary, 510});
    }
    ASSERT_OK(CreateDatabase(disk, kProject, [&](Database& database) {
        return CreateTable(database, {"T", columns, {}});
    }));
    auto database = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("T"));
    TableWriter writer(*table);
    // Count, nine offsets with their end and their number, and two bytes of the mask.
    constexpr std::size_t kOverhead = 2 + 2 * 11 + 2;
    constexpr std::size_t kRest = 4060 - kOverhead - 7 * 510;
    const auto row = [](std::size_t last) {
        std::vector<Assignment> values;
        for (std::size_t i = 0; i < 7; ++i) values.push_back({i, Binary(510, std::byte{7})});
        values.push_back({7, Binary(last)});
        return values;
    };
    static_assert(kRest + 1 <= 510);
    ASSERT_OK(database->Begin());
    for (const std::size_t size : {kRest - 1, kRest, kRest + 1}) {
        const StatusCode expected = size > kRest ? StatusCode::TooLong : StatusCode::Ok;
        EXPECT_EQ(StatusOf(writer.Insert(row(size))).Code(), expected) << size;
        const RowId small = Must(writer.Insert({}));
        EXPECT_EQ(writer.Update(small, row(size)).Code(), expected) << size;
        const Value now = Must(Must(table->Fetch(small)).Get(7));
        EXPECT_EQ(now, size > kRest ? Value(Null{}) : Value(Binary(size)));
    }
    ASSERT_OK(database->Commit());
    EXPECT_THAT(ErrorsIn(disk), IsEmpty());
}

/// Large files, of which the file system stores only what has been written.
class LargeFileTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-large");
        path_ = (folder_ / "large.mdb").string();
        ASSERT_OK(CreateDatabase(SystemDisk(), path_, [](Database& database) {
            return CreateTable(database, {"T", {{"A"}, {"O", ColumnType::Ole}}, {}});
        }));
    }
    void TearDown() override { fs::remove_all(folder_); }

    /// Makes the file so large, of pages that are taken and belong to nothing.
    void GrowTo(std::uint32_t pages) {
        const auto used = static_cast<std::uint32_t>(fs::file_size(path_) / kPageSizeJet4);
        auto file = Must(SystemDisk().Open(path_, OpenMode::ReadWrite));
        compact::Draft draft(file.get());
        for (std::uint32_t page = compact::Draft::kFirst; page < pages; ++page) {
            ASSERT_OK(draft.Take());
        }
        ASSERT_GT(pages, used);
        ASSERT_OK(draft.WriteGlobalMaps());
        ASSERT_OK(file->Resize(std::uint64_t{draft.PageCount()} * kPageSizeJet4));
    }
    /// Inserts a row with a value that takes so many pages, and one page for the row itself when
    /// it is the first.
    Status InsertPages(std::size_t pages) {
        constexpr std::size_t kMostInPiece = 4072;
        auto database = Must(Database::Open(SystemDisk(), path_, OpenMode::ReadWrite));
        auto table = Must(database->OpenTable("T"));
        JET_TRY(database->Begin());
        const Status status = StatusOf(TableWriter(*table).Insert(
            std::vector<Assignment>{{1, Binary(pages * kMostInPiece, std::byte{1})}}));
        if (!status.IsOk()) {
            EXPECT_TRUE(database->Rollback().IsOk());
            return status;
        }
        return database->Commit();
    }
    std::size_t RowCount() {
        auto database = Must(Database::Open(path_));
        return AllRows(*Must(database->OpenTable("T"))).size();
    }
    void ExpectSound() {
        auto file = Must(OpenFile(path_));
        ASSERT_OK(Check(*file, [](const Finding& finding) {
            EXPECT_NE(finding.severity, Finding::Severity::Error) << finding.text;
            return true;
        }));
    }

    fs::path folder_;
    std::string path_;
};

// Beyond 131 MB the map of free pages does not fit its page any more, once an error at that size.
TEST_F(LargeFileTest, TheMapOfFreePagesBecomesAListOfPages) {
    GrowTo(GlobalMap::kMostInline - 20);
    for (int i = 0; i < 3; ++i) {
        ASSERT_OK(InsertPages(15));
        ExpectSound();
    }
    const std::uintmax_t before = fs::file_size(path_);
    ASSERT_OK(InsertPages(GlobalMap::kPagesPerBitmap - GlobalMap::kMostInline));
    EXPECT_GT(fs::file_size(path_) / kPageSizeJet4, GlobalMap::kPagesPerBitmap);
    ExpectSound();
    // Pages that are given back are found again.
    {
        auto database = Must(Database::Open(SystemDisk(), path_, OpenMode::ReadWrite));
        auto table = Must(database->OpenTable("T"));
        ASSERT_OK(database->Begin());
        ASSERT_OK(TableWriter(*table).Delete(AllRows(*table).back().Id()));
        ASSERT_OK(database->Commit());
    }
    const std::uintmax_t largest = fs::file_size(path_);
    ASSERT_OK(InsertPages(GlobalMap::kPagesPerBitmap - GlobalMap::kMostInline));
    EXPECT_EQ(fs::file_size(path_), largest);
    ExpectSound();
    EXPECT_GT(largest, before);
    ASSERT_OK(Compact(SystemDisk(), path_));
    EXPECT_LT(fs::file_size(path_), largest / 20);
    EXPECT_EQ(RowCount(), 4U);
}

// As other libraries leave large files: the map speaks only of the pages at the end, and of those
// in front as the file's pages are given back.
TEST_F(LargeFileTest, AWindowAtTheEndOfALargeFileBecomesAListOfPages) {
    GrowTo(2 * GlobalMap::kPagesPerBitmap - 50);
    ASSERT_OK(InsertPages(20));
    {
        const auto count = static_cast<std::uint32_t>(fs::file_size(path_) / kPageSizeJet4);
        std::array<std::byte, kPageSizeJet4> page{};
        DataPageEditor::Format(page, Raw(GlobalMap::kPage));
        DataPageEditor editor = Must(DataPageEditor::Open(page, GlobalMap::kPage));
        std::array<std::byte, 69> row{};
        row.fill(std::byte{0xFF});
        row[0] = std::byte{0};
        StoreU32(row, 1, count / 8 * 8 + 8);
        editor.Append(row, 0);
        editor.Append(std::array<std::byte, 69>{}, 0);
        auto file = Must(SystemDisk().Open(path_, OpenMode::ReadWrite));
        ASSERT_OK(file->Write(kPageSizeJet4, page));
    }
    ASSERT_OK(InsertPages(600));
    ExpectSound();
    auto database = Must(Database::Open(SystemDisk(), path_, OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("T"));
    ASSERT_OK(database->Begin());
    for (const Row& row : AllRows(*table)) ASSERT_OK(TableWriter(*table).Delete(row.Id()));
    ASSERT_OK(database->Commit());
    ExpectSound();
    const std::uintmax_t largest = fs::file_size(path_);
    ASSERT_OK(InsertPages(610));
    EXPECT_EQ(fs::file_size(path_), largest) << "the pages given back are taken again";
    ExpectSound();
}

TEST_F(LargeFileTest, AFileHasTwoGigabytesAndNoMore) {
    // The row and the value take one page each; the limit is met with the pages left.
    GrowTo(kMostPages - 40);
    const auto left = static_cast<std::size_t>(kMostPages - fs::file_size(path_) / kPageSizeJet4);
    EXPECT_EQ(InsertPages(left).Code(), StatusCode::Full);
    EXPECT_EQ(RowCount(), 0U);
    ASSERT_OK(InsertPages(left - 2));
    EXPECT_EQ(InsertPages(2).Code(), StatusCode::Full);
    ASSERT_OK(InsertPages(0));
    EXPECT_EQ(RowCount(), 2U);
    EXPECT_LE(fs::file_size(path_), std::uintmax_t{2} << 30);
}

}  // namespace
}  // namespace jet
