#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "support/NewFolder.h"
#include "ToolTesting.h"

namespace tools {
namespace {

using testing::HasSubstr;

/// A database with one table that has a column of every kind.
class ValueTripTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kvs");
        using jet::ColumnType;
        const jet::TableSpec table = {"Alle",
                                      {{"ID", ColumnType::Long},
                                       {"By", ColumnType::Byte},
                                       {"In", ColumnType::Integer},
                                       {"Cu", ColumnType::Currency},
                                       {"Si", ColumnType::Single},
                                       {"Do", ColumnType::Double},
                                       {"Da", ColumnType::DateTime},
                                       {"Tx", ColumnType::Text, 20},
                                       {"Me", ColumnType::Memo},
                                       {"Bi", ColumnType::Binary, 20},
                                       {"Ol", ColumnType::Ole},
                                       {.name = "Nu", .type = ColumnType::Numeric, .scale = 2}},
                                      {}};
        const jet::Status made = jet::CreateDatabase(
            jet::SystemDisk(), File(),
            [&](jet::Database& database) { return jet::CreateTable(database, table); });
        ASSERT_TRUE(made.IsOk()) << made.Text();
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string File() const { return (folder_ / "alle.kvs").string(); }

    /// Loads one row with a value in one column.
    Outcome LoadOne(const std::string& column, const std::string& csv) {
        const std::string path = (folder_ / "one.csv").string();
        std::ofstream(path, std::ios::binary) << "ID," << column << "\r\n1," << csv << "\r\n";
        return RunTool({"load", File(), "Alle", path});
    }
    /// The column's value of the only row as CSV.
    std::string Dumped(const std::string& column) {
        const std::string dump = RunTool({"dump", File(), "Alle"}).out;
        const std::size_t heading = dump.find("\r\n");
        const std::size_t place = static_cast<std::size_t>(std::count(
            dump.begin(), dump.begin() + static_cast<std::ptrdiff_t>(dump.find(column)), ','));
        std::size_t at = heading + 2;
        for (std::size_t i = 0; i < place; ++i) at = dump.find(',', at) + 1;
        return dump.substr(at, dump.find_first_of(",\r", at) - at);
    }
    void Clear() { std::ignore = RunTool({"delete", File(), "Alle", ""}); }

    std::filesystem::path folder_;
};

// What is loaded, or set, comes back as it was.
TEST_F(ValueTripTest, ValuesStayWhatTheyAre) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"By", {"0", "255"}},
        {"In", {"-32768", "32767"}},
        {"Cu",
         {"90071992547409.9301", "922337203685477.5807", "-922337203685477.5808", "0.0001", "-0.05",
          "0", "12"}},
        {"Si", {"0.1", "-3.4028235e+38"}},
        {"Do", {"0.1", "1e+300", "9007199254740991"}},
        {"Da",
         {"2026-11-21T10:20:30", "0001-01-01T00:00:00", "9999-12-31T23:59:59", "2958466.5",
          "1899-12-29T06:00:00"}},
        {"Tx",
         {"\"\"", "\xEF\xBB\xBF",
          "\xEF\xBB\xBF"
          "abc",
          "\xEF\xBB\xBF€"}},
        {"Me", {"\"\"", "\"\xEF\xBB\xBF\xEF\xBB\xBF\"", "\"\xEF\xBB\xBFMemo äöü\""}},
        {"Bi", {"\"\"", "00ff"}},
        {"Ol", {"\"\"", "00ff"}},
        {"Nu", {"0.01", "9999999999999999.99", "-1.5"}},
    };
    for (const auto& [column, texts] : cases) {
        for (const std::string& text : texts) {
            SCOPED_TRACE(std::string(column) + " " + text);
            const Outcome loaded = LoadOne(column, text);
            EXPECT_EQ(loaded.status, kSuccess) << loaded.err;
            EXPECT_EQ(Dumped(column), text);
            // Null and back again, by the other command.
            EXPECT_EQ(RunTool({"set", File(), "Alle", "", column + std::string("=")}).out,
                      "1 row\n");
            EXPECT_EQ(Dumped(column), "");
            const bool isQuoted = text.size() > 2 && text.front() == '"';
            const std::string bare = isQuoted ? text.substr(1, text.size() - 2) : text;
            const Outcome set =
                RunTool({"set", File(), "Alle", "", column + std::string("=") + bare});
            EXPECT_EQ(set.status, kSuccess) << set.err;
            EXPECT_EQ(Dumped(column), text);
            Clear();
        }
    }
    EXPECT_EQ(RunTool({"check", File()}).out, "");
}

TEST_F(ValueTripTest, WhatAColumnCannotHoldIsRefusedAndNotRounded) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"ID", {"1.5", "2147483648", "x"}},
        {"By", {"256", "-1", "0.5"}},
        {"In", {"32768", "\"\""}},
        {"Cu", {"922337203685477.5808", "1.00001", "1,5", "\"\"", "x"}},
        {"Si", {"1e39", "nan"}},
        {"Do", {"inf", "1,5"}},
        {"Da", {"40000", "2026-02-30", "2026-11-21T24:00:00", "\"\""}},
        {"Tx", {"123456789012345678901", "\xEF\xBB\xBF\xC4\x80"}},
        {"Bi", {"0", "0g"}},
        {"Nu", {"0.001", "99999999999999999999999999999999999999999"}},
    };
    for (const auto& [column, texts] : cases) {
        for (const std::string& text : texts) {
            SCOPED_TRACE(std::string(column) + " " + text);
            const std::string path = (folder_ / "one.csv").string();
            const std::string quoted = text.front() == '"' ? text : "\"" + text + "\"";
            std::ofstream(path, std::ios::binary) << column << "\r\n" << quoted << "\r\n";
            const Outcome loaded = RunTool({"load", File(), "Alle", path});
            EXPECT_EQ(loaded.status, kFailure);
            EXPECT_THAT(loaded.err, HasSubstr("Line 2: "));
            EXPECT_THAT(loaded.err, HasSubstr(std::string("olumn \"") + column + "\""));
        }
    }
    EXPECT_EQ(RunTool({"tables", File()}).out, "Alle\t0\n");
}

TEST_F(ValueTripTest, ReadsTheSpreadsheetsCodePage) {
    const std::string path = (folder_ / "one.csv").string();
    std::ofstream(path, std::ios::binary) << "ID,Tx,Me\r\n1,5 \x80,\"M\xFCller \x96 \xDF\"\r\n";
    const Outcome loaded = RunTool({"load", "--encoding=Windows-1252", File(), "Alle", path});
    EXPECT_EQ(loaded.out, "1 row\n") << loaded.err;
    EXPECT_EQ(Dumped("Tx"), "5 €");
    EXPECT_EQ(Dumped("Me"), "\"Müller – ß\"");
}

}  // namespace
}  // namespace tools
