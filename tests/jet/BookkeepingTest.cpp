// What a change must leave behind, or take away, beside the row itself.

#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using testing::IsEmpty;

class BookkeepingTest : public testing::Test {
protected:
    void Open(const std::string& file) {
        disk_.Put(kProject, ReadWhole(file));
        Reopen();
    }
    void Make(const TableSpec& table) {
        ASSERT_OK(CreateDatabase(disk_, kProject,
                                 [&](Database& database) { return CreateTable(database, table); }));
        Reopen();
    }
    void Reopen() {
        database_.reset();
        database_ = Must(Database::Open(disk_, kProject, OpenMode::ReadWrite));
    }
    void ExpectSound(const std::vector<std::string_view>& expected = {}) {
        EXPECT_THAT(UnexpectedIn(disk_, expected), IsEmpty());
    }

    TestDisk disk_;
    std::unique_ptr<Database> database_;
};

TEST_F(BookkeepingTest, TablesOfTheSystemAreNotForUsers) {
    Open(Example("Brauerei.kvs"));
    for (const CatalogEntry& entry : Must(database_->Tables())) {
        if (entry.isUserTable) continue;
        SCOPED_TRACE(entry.name);
        const auto before = RowsOf(*database_, entry.name);
        auto table = Must(database_->OpenTable(entry.name));
        TableWriter writer(*table);
        ASSERT_OK(database_->Begin());
        EXPECT_EQ(StatusOf(writer.Insert({})).Code(), StatusCode::Unsupported);
        for (const Row& row : AllRows(*table)) {
            EXPECT_EQ(writer.Update(row.Id(), {}).Code(), StatusCode::Unsupported);
            EXPECT_EQ(writer.Delete(row.Id()).Code(), StatusCode::Unsupported);
        }
        ASSERT_OK(database_->Commit());
        EXPECT_EQ(RowsOf(*database_, entry.name), before);
    }
    EXPECT_TRUE(database_->OpenTable("TchrTrends").IsOk());
}

// A row that grows moves to another page and leaves a pointer behind. Whatever happens to it then,
// neither its old body nor an old long value stays behind in the file.
TEST_F(BookkeepingTest, NothingStaysBehindOfWhatHasBeenReplaced) {
    Make({"T",
          {{"ID", ColumnType::Long, 0, true},
           {"Text", ColumnType::Text, 255},
           {"Memo", ColumnType::Memo}},
          {{"PrimaryKey", IndexSpec::Kind::PrimaryKey, {{"ID"}}}}});
    auto table = Must(database_->OpenTable("T"));
    TableWriter writer(*table);
    ASSERT_OK(database_->Begin());
    std::vector<RowId> rows;
    for (int i = 0; i < 150; ++i) rows.push_back(Must(writer.Insert({})));
    const auto set = [&](RowId row, std::size_t column, std::size_t size) {
        const std::array<Assignment, 1> value = {
            Assignment{column, Value(std::u16string(size, u'\u4E2D'))}};
        ASSERT_OK(writer.Update(row, value));
    };
    // From one place to the next, with a value in the row, in a row of its own and in several.
    for (const std::size_t size : {100U, 200U, 255U, 10U, 255U}) {
        for (std::size_t i = 0; i < rows.size(); i += 3) set(rows[i], 1, size);
    }
    for (const std::size_t size : {20U, 1000U, 9000U, 2100U, 0U}) {
        for (std::size_t i = 0; i < rows.size(); i += 10) set(rows[i], 2, size);
        ASSERT_OK(database_->Commit());
        ExpectSound();
        ASSERT_OK(database_->Begin());
    }
    set(rows[0], 2, 9000);
    set(rows[3], 2, 1000);
    for (const RowId row : rows) ASSERT_OK(writer.Delete(row));
    ASSERT_OK(database_->Commit());
    const std::size_t size = disk_.Content(kProject).size();
    ExpectSound({kKeysThatWere});
    // The pages are free again: as many rows need no more of them.
    ASSERT_OK(database_->Begin());
    for (int i = 0; i < 150; ++i) ASSERT_OK(writer.Insert({}));
    ASSERT_OK(database_->Commit());
    EXPECT_EQ(disk_.Content(kProject).size(), size);
}

TEST_F(BookkeepingTest, NumbersThatAreGivenMoveTheCounterUpwardsOnly) {
    Open(Example("Brauerei.kvs"));
    auto table = Must(database_->OpenTable("TchrArchives"));
    TableWriter writer(*table);
    ASSERT_OK(database_->Begin());
    const auto insert = [&](std::optional<std::int32_t> id) -> Result<std::int32_t> {
        std::vector<Assignment> values;
        if (id) values.push_back({0, Value(*id)});
        RowId row;
        JET_ASSIGN(row, writer.Insert(values));
        return std::get<std::int32_t>(Must(Must(table->Fetch(row)).Get(0)));
    };
    for (const std::int32_t given : {200, 50, -3}) EXPECT_EQ(Must(insert(given)), given);
    EXPECT_EQ(Must(insert({})), 201);
    EXPECT_EQ(Must(insert(INT32_MAX)), INT32_MAX);
    EXPECT_EQ(StatusOf(insert({})).Code(), StatusCode::UsedUp);
    ASSERT_OK(database_->Commit());
    ExpectSound({"its last automatic number is 2147483647; few are left"});
}

// Null is no value that could be there twice; a key that is Null in part is.
TEST_F(BookkeepingTest, AUniqueIndexTakesAnyNumberOfEmptyKeys) {
    Make({"T",
          {{"A", ColumnType::Long}, {"B", ColumnType::Text, 10}, {"Yes", ColumnType::Boolean}},
          {{"AB", IndexSpec::Kind::Unique, {{"A"}, {"B"}}},
           {"Yes", IndexSpec::Kind::Plain, {{"Yes"}}}}});
    auto table = Must(database_->OpenTable("T"));
    TableWriter writer(*table);
    const std::array<Assignment, 1> half = {Assignment{0, Value(7)}};
    const std::array<Assignment, 1> yes = {Assignment{2, Value(true)}};
    ASSERT_OK(database_->Begin());
    for (int i = 0; i < 3; ++i) ASSERT_OK(writer.Insert({}));
    ASSERT_OK(writer.Insert(yes));
    const RowId first = Must(writer.Insert(half));
    EXPECT_EQ(StatusOf(writer.Insert(half)).Code(), StatusCode::Duplicate);
    ASSERT_OK(writer.Update(first, half));  // its own key is none of another row
    ASSERT_OK(database_->Commit());
    ExpectSound();
    EXPECT_EQ(RowsOf(*database_, "T").size(), 5U);
}

// A program's word of commits starts again behind its greatest number; Nothing would look like a
// change that was not ended.
TEST_F(BookkeepingTest, TheWordOfCommitsIsNeverNothing) {
    constexpr std::size_t kWords = 0xE00;
    std::vector<std::byte> content = ReadWhole(Example("Brauerei.kvs"));
    std::fill(content.begin() + kWords, content.begin() + kPageSizeJet4, std::byte{0xFF});
    disk_.Put(kProject, content);
    Reopen();
    auto table = Must(database_->OpenTable("TchrArchives"));
    for (int round = 0; round < 2; ++round) {
        ASSERT_OK(database_->Begin());
        ASSERT_OK(TableWriter(*table).Insert({}));
        ASSERT_OK(database_->Commit());
        const std::vector<std::byte>& now = disk_.Content(kProject);
        int changed = 0;
        for (std::size_t at = kWords; at < kPageSizeJet4; at += 2) {
            const auto word = std::to_integer<int>(now[at]) | std::to_integer<int>(now[at + 1])
                                                                  << 8;
            if (word != 0xFFFF) {
                EXPECT_EQ(word, round + 1);
                ++changed;
            }
        }
        EXPECT_EQ(changed, 1);
    }
}

// A change that is refused half-way takes back what it has done; those around it stay.
TEST_F(BookkeepingTest, ARefusedChangeLeavesNothingOfItself) {
    Open(Example("Brauerei.kvs"));
    auto table = Must(database_->OpenTable("TalmClasses"));
    TableWriter writer(*table);
    const std::size_t memo = table->Definition().FindColumn("Description").value();
    const std::size_t icon = table->Definition().FindColumn("Icon").value();
    const RowId row = AllRows(*table).at(1).Id();
    const auto before = RowsOf(*database_, "TalmClasses");
    const std::vector<Assignment> values = {{memo, Value(std::u16string(20'000, u'n'))},
                                            {icon, Value(17)}};
    ASSERT_OK(database_->Begin());
    EXPECT_EQ(writer.Update(row, values).Code(), StatusCode::BadArgument);
    EXPECT_EQ(StatusOf(writer.Insert(values)).Code(), StatusCode::BadArgument);
    ASSERT_OK(database_->Commit());
    EXPECT_EQ(RowsOf(*database_, "TalmClasses"), before);
    ExpectSound();
}

}  // namespace
}  // namespace jet
