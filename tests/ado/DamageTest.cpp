#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "AdoTesting.h"
#include "support/NewFolder.h"

namespace ado {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPage = 4096;
constexpr std::size_t kLeaf = 4;  // page types
constexpr std::size_t kTableDef = 2;
constexpr std::size_t kOwner = 4;  // offsets on a page
constexpr std::size_t kNextLeaf = 16;

/// A copy of the brewery that a test damages, before or after it is opened.
class DamagedProjectTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-ado");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
        std::ifstream in(path_, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(in), {});
    }
    void TearDown() override {
        if (connection_.State() != ObjectState::Closed) connection_.Close();
        fs::remove_all(folder_);
    }

    std::uint32_t U32(std::size_t offset) const {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes_.data() + offset, sizeof value);
        return value;
    }
    void Write(std::size_t offset, const void* data, std::size_t size) {
        std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(offset));
        file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    /// The page of the table definition that has a column of this name.
    std::size_t TableWith(std::string_view column) const {
        std::string wide;
        for (const char c : column) (wide += c) += '\0';
        for (std::size_t page = 0; page < bytes_.size() / kPage; ++page) {
            const bool isTable = bytes_[page * kPage] == static_cast<char>(kTableDef);
            if (isTable && bytes_.substr(page * kPage, kPage).find(wide) != std::string::npos) {
                return page;
            }
        }
        throw std::runtime_error("no such table");
    }
    std::vector<std::size_t> LeavesOf(std::size_t table) const {
        std::vector<std::size_t> leaves;
        for (std::size_t page = 0; page < bytes_.size() / kPage; ++page) {
            if (bytes_[page * kPage] == static_cast<char>(kLeaf) &&
                U32(page * kPage + kOwner) == table) {
                leaves.push_back(page);
            }
        }
        return leaves;
    }
    void Open(const char* table) {
        connection_.Open(ConnectionString(path_));
        rows_.Open(table, connection_, CommandType::Table);
    }

    fs::path folder_;
    std::string path_;
    std::string bytes_;
    Connection connection_;
    Recordset rows_;
};

// An index is a way to the rows; none may be lost, or come twice, because it is broken.
TEST_F(DamagedProjectTest, RowsAreFoundWithoutADamagedIndex) {
    const std::size_t table = TableWith("ParamNames");
    ASSERT_FALSE(LeavesOf(table).empty());
    for (const bool circle : {false, true}) {
        SCOPED_TRACE(circle ? "leaves in a circle" : "no index pages");
        for (const std::size_t leaf : LeavesOf(table)) {
            const auto self = static_cast<std::uint32_t>(leaf);
            if (circle) {
                Write(leaf * kPage, "\x04", 1);
                Write(leaf * kPage + kNextLeaf, &self, sizeof self);
            } else {
                Write(leaf * kPage, "\x77", 1);
            }
        }
        Open("TchrArchives");
        EXPECT_EQ(rows_.RecordCount(), 14U);
        rows_.SetFilter("ID = 3");
        EXPECT_EQ(Column(rows_, "Name"), std::vector<std::u16string>{u"Lagerkeller"});
        rows_.SetFilter("");
        rows_.Find("ID=7");
        EXPECT_EQ(ToText(rows_.Get("Name")), u"CIP");
        connection_.Close();
    }
}

TEST_F(DamagedProjectTest, WhatIsDamagedIsNotCalledMissing) {
    const std::size_t page = TableWith("ParamNames");
    Write(page * kPage, "\x77", 1);
    EXPECT_EQ(ErrorOf([&] { Open("TchrArchives"); }), ErrorNumber::kUnspecified);
}

// The rows of a table without an index are read before the first is given.
TEST_F(DamagedProjectTest, AJoinTellsOfDamageOnceAndGivesTheOthers) {
    const std::size_t groups = TableWith("Parameter");
    std::size_t page = 0;
    while (bytes_[page * kPage] != 1 || U32(page * kPage + kOwner) != groups) ++page;
    constexpr std::size_t kSlots = 14;
    Write(page * kPage + kSlots, "\xF0\x0F\xF0\x1F", 4);  // the second row ends behind the page
    connection_.Open(ConnectionString(path_));
    rows_.Open("SELECT A.ID FROM TchrArchives AS A, TidxGroups AS G WHERE A.Name = G.Name",
               connection_, CommandType::Text, {});
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows_.RecordCount(); }), ErrorNumber::kUnspecified);
    EXPECT_GT(rows_.RecordCount(), 10U);
}

// Positions of columns are those of the definition at opening; with another one they would give
// other columns' values.
TEST_F(DamagedProjectTest, AChangedDefinitionIsAnErrorUntilReopened) {
    Open("TchrArchives");
    EXPECT_EQ(ToText(rows_.Get("Name")), u"Sudhaus");
    const std::size_t table = TableWith("RedundancyFilePath") * kPage;
    const std::size_t indexes = U32(table + 0x33);
    const std::size_t firstColumnLength = table + 0x3F + 12 * indexes + 23;
    const std::uint16_t length = 3;
    Write(firstColumnLength, &length, sizeof length);
    EXPECT_EQ(ErrorOf([&] {
                  rows_.MoveNext();
                  std::ignore = rows_.Get("Name");
              }),
              ErrorNumber::kUnspecified);
    EXPECT_EQ(ErrorOf([&] {
                  rows_.Requery();
                  std::ignore = rows_.Get("Name");
              }),
              ErrorNumber::kUnspecified);
    rows_.Close();
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows_.Get("Name"); }), 0);
}

TEST_F(DamagedProjectTest, SeesWhatAnotherProgramHasWritten) {
    Open("TchrArchives");
    EXPECT_EQ(ToText(rows_.Get("FileName")), u"sudhaus");
    const std::size_t at = bytes_.find("\xFF\xFEsudhaus");
    ASSERT_NE(at, std::string::npos);
    Write(at + 2, "SUDHAUS", 7);
    rows_.Requery();
    EXPECT_EQ(ToText(rows_.Get("FileName")), u"SUDHAUS");
    Write(at + 2, "sudwerk", 7);
    rows_.Resync();
    EXPECT_EQ(ToText(rows_.Get("FileName")), u"sudwerk");
}

TEST_F(DamagedProjectTest, ARowThatCannotBeReadCostsThatRow) {
    Open("TchrTrends");
    const std::size_t all = rows_.RecordCount();
    rows_.Close();
    // The second page of the table loses its type.
    std::vector<std::size_t> pages;
    const std::size_t table = TableWith("HysteresisMode");
    for (std::size_t page = 0; page < bytes_.size() / kPage; ++page) {
        if (bytes_[page * kPage] == 1 && U32(page * kPage + kOwner) == table) pages.push_back(page);
    }
    ASSERT_GT(pages.size(), 2U);
    Write(pages[1] * kPage, "\x77", 1);
    rows_.Open("SELECT ID FROM TchrTrends WHERE VLineWidth >= 0", connection_, CommandType::Text);
    std::set<std::int32_t> good;
    std::size_t failures = 0;
    for (bool atEnd = false; !atEnd && failures < all;) {
        const std::int32_t error = ErrorOf([&] {
            atEnd = rows_.IsEOF();
            if (atEnd) return;
            good.insert(ToLong(rows_.Get("ID")));
            rows_.MoveNext();
        });
        failures += error != 0 ? 1 : 0;
    }
    EXPECT_GT(failures, 0U);
    EXPECT_GT(good.size(), all / 2);
    EXPECT_LT(good.size(), all);
}

}  // namespace
}  // namespace ado
