#include "project/Merge.h"

#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ado/AdoError.h"
#include "ado/CreateFile.h"
#include "ado/FileCheck.h"
#include "project/Changes.h"
#include "project/CreateProject.h"
#include "project/Differences.h"
#include "ProjectFiles.h"
#include "RandomDay.h"

namespace {

using project::MergeConflict;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using Kind = MergeConflict::Kind;
using Key = std::pair<std::string, std::int32_t>;

const std::string kBrewery = std::string(KV_EXAMPLES "/Brauerei.kvs");

class MergeTest : public testing::Test {
protected:
    using Work = std::function<void(ado::Connection&)>;

    /// A copy of the base with what somebody does to it.
    std::string After(const std::string& name, const Work& work) {
        const std::string path = folder_.Copy(base_, name);
        ado::Connection connection;
        OpenProject(connection, path);
        if (work) work(connection);
        return path;
    }
    /// Merges into a copy of mine.
    project::Merged Merge(const std::string& mine, const std::string& theirs, bool hasBase = true) {
        result_ = folder_.Path("result.kvs");
        std::filesystem::remove(result_);
        std::filesystem::copy_file(mine, result_);
        ado::Connection base;
        if (hasBase) OpenProject(base, base_);
        ado::Connection own;
        OpenProject(own, result_);
        ado::Connection other;
        OpenProject(other, theirs);
        return project::Merge(hasBase ? &base : nullptr, own, other);
    }
    project::Differences Compare(const std::string& before, const std::string& after) {
        ado::Connection earlier;
        OpenProject(earlier, before);
        ado::Connection later;
        OpenProject(later, after);
        return project::Compare(earlier, later);
    }
    static Work Set(std::string table, int id, std::vector<std::pair<std::string, ado::Value>> to) {
        return [=](ado::Connection& connection) {
            ado::Recordset rows;
            rows.Open(table, connection, ado::CommandType::Table);
            rows.SetFilter("ID = " + std::to_string(id));
            for (const auto& [column, value] : to) rows.Set(column, value);
            rows.Update();
        };
    }
    ado::Value ResultOf(const std::string& table, int id, const std::string& column) {
        ado::Connection connection;
        OpenProject(connection, result_);
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        rows.SetFilter("ID = " + std::to_string(id));
        return rows.IsEOF() ? ado::Value(u"(none)") : rows.Get(column);
    }

    TestFolder folder_;
    std::string base_ = kBrewery;
    std::string result_;
};

/// The rows of a project.
using Content = std::map<Key, ado::RowChange>;
Content Read(const std::string& path) {
    ado::Connection connection;
    OpenProject(connection, path);
    Content content;
    for (const project::Table& table : project::Tables()) {
        ado::Recordset rows;
        rows.Open(table.name, connection, ado::CommandType::Table);
        std::vector<std::string> names;
        for (const ado::Field& field : rows.Fields()) names.push_back(field.name);
        const auto columns = std::make_shared<const std::vector<std::string>>(names);
        for (; !rows.IsEOF(); rows.MoveNext()) {
            ado::RowChange row;
            row.table = table.name;
            row.columns = columns;
            for (std::size_t i = 0; i < names.size(); ++i) row.after.push_back(rows.Get(i));
            const std::int32_t id = project::NumberOf(row).value();
            content.emplace(Key(row.table, id), std::move(row));
        }
    }
    return content;
}

/// Values that name no row.
std::set<std::string> Dangling(const Content& content) {
    std::set<std::string> found;
    for (const auto& [key, row] : content) {
        for (std::size_t i = 0; i < row.after.size(); ++i) {
            const std::string& column = (*row.columns)[i];
            const std::string target(project::TargetOf(row, column));
            const auto* id = std::get_if<std::int32_t>(&row.after[i]);
            if (target.empty() || id == nullptr || *id == 0) continue;
            if (content.contains({target, *id})) continue;
            found.insert(key.first + " " + std::to_string(key.second) + " " + column + " " +
                         std::to_string(*id));
        }
    }
    return found;
}

/// Holds a merge against what both sides have done.
class Account {
public:
    Account(Content result, const project::Merged& merged)
        : result_(std::move(result)), merged_(merged) {
        for (const auto& row : merged.renumbered) numbers_[{row.table, row.was}] = row.is;
    }

    void ExpectAll(const project::Differences& side, bool isMine) {
        for (const ado::RowChange& row : side.rows) {
            SCOPED_TRACE((isMine ? "mine: " : "theirs: ") + row.table + " " +
                         std::to_string(project::NumberOf(row).value_or(0)));
            isMine_ = isMine;
            Expect(row);
        }
    }

private:
    [[nodiscard]] ado::Value Renumbered(const ado::RowChange& row, std::size_t column) const {
        const ado::Value& value = row.after[column];
        const auto* id = std::get_if<std::int32_t>(&value);
        if (isMine_ || id == nullptr) return value;
        const std::string& name = (*row.columns)[column];
        if (name == "ID" && !row.before.empty()) return value;
        const auto found = numbers_.find({std::string(project::TargetOf(row, name)), *id});
        return found == numbers_.end() ? value : ado::Value(found->second);
    }
    [[nodiscard]] bool HasConflict(const Key& key, std::set<Kind> kinds,
                                   const std::string& column = {}) const {
        return std::ranges::any_of(merged_.conflicts, [&](const MergeConflict& conflict) {
            return kinds.contains(conflict.kind) && conflict.table == key.first &&
                   conflict.id == key.second && conflict.column == column;
        });
    }
    void Expect(const ado::RowChange& row) {
        Key key(row.table, project::NumberOf(row).value());
        if (row.after.empty()) {
            const bool isKept =
                HasConflict(key, {isMine_ ? Kind::DeletedMine : Kind::DeletedTheirs});
            EXPECT_EQ(result_.contains(key), isKept);
            return;
        }
        const bool isRenumbered = !isMine_ && row.before.empty() && numbers_.contains(key);
        if (isRenumbered) key.second = numbers_.at(key);
        const auto found = result_.find(key);
        ASSERT_NE(found, result_.end());
        for (std::size_t i = 0; i < row.after.size(); ++i) {
            if (!row.before.empty() && row.before[i] == row.after[i]) continue;
            const std::string& column = (*row.columns)[i];
            if (!isMine_ && HasConflict(key, {Kind::Field, Kind::Limits}, column)) continue;
            EXPECT_EQ(found->second.after[i], Renumbered(row, i)) << column;
        }
    }

    Content result_;
    const project::Merged& merged_;
    std::map<Key, std::int32_t> numbers_;
    bool isMine_ = false;
};

TEST_F(MergeTest, OfTwoDaysLosesNothing) {
    std::size_t renumbered = 0;
    std::map<Kind, int> conflicts;
    for (DayNumbers days(4); days.Next();) {
        SCOPED_TRACE(days.Number());
        const auto day = [&](unsigned number, const char* person) {
            return [=](ado::Connection& connection) {
                RandomDay(connection, number, person).WorkBySteps(60);
            };
        };
        const std::string mine = After("mine.kvs", day(days.Number(), "A"));
        const std::string theirs = After("theirs.kvs", day(1000 + days.Number(), "B"));
        const project::Merged merged = Merge(mine, theirs);
        EXPECT_THAT(ado::CheckFile(result_).errors, IsEmpty());
        const Content result = Read(result_);
        Account account(result, merged);
        const project::Differences myDay = Compare(base_, mine);
        const project::Differences theirDay = Compare(base_, theirs);
        account.ExpectAll(myDay, true);
        account.ExpectAll(theirDay, false);

        // Nobody else's row has changed, and what leads nowhere has done so before.
        std::set<Key> known;
        for (const auto* day_ : {&myDay, &theirDay}) {
            for (const auto& row : day_->rows) known.emplace(row.table, *project::NumberOf(row));
        }
        for (const auto& row : merged.renumbered) known.emplace(row.table, row.is);
        for (const auto& row : Compare(base_, result_).rows) {
            EXPECT_TRUE(known.contains({row.table, *project::NumberOf(row)})) << row.table;
        }
        std::set<std::string> dangling = Dangling(Read(mine));
        dangling.merge(Dangling(Read(theirs)));
        for (const std::string& each : Dangling(result)) {
            EXPECT_TRUE(dangling.contains(each)) << each;
        }
        renumbered += merged.renumbered.size();
        for (const MergeConflict& conflict : merged.conflicts) ++conflicts[conflict.kind];
        for (const char* name : {"mine.kvs", "theirs.kvs"}) {
            std::filesystem::remove(folder_.Path(name));
        }
    }
    EXPECT_GT(renumbered, 20U);
    EXPECT_GT(conflicts[Kind::Field], 0);
    EXPECT_GT(conflicts[Kind::DeletedMine], 0);
    EXPECT_GT(conflicts[Kind::DeletedTheirs], 0);
}

TEST_F(MergeTest, OfOneDayIsThatDay) {
    const std::string day = After(
        "day.kvs", [](ado::Connection& connection) { RandomDay(connection, 7, "A").Work(100); });
    const std::string same = folder_.Copy(day, "same.kvs");
    const std::string nothing = After("nothing.kvs", {});
    for (const auto& [mine, theirs] : {std::pair(day, nothing), {nothing, day}, {day, same}}) {
        const project::Merged merged = Merge(mine, theirs);
        EXPECT_THAT(merged.conflicts, IsEmpty());
        EXPECT_THAT(merged.renumbered, IsEmpty());
        EXPECT_TRUE(Compare(day, result_).IsEmpty());
    }
}

TEST_F(MergeTest, GoesFieldByField) {
    using V = ado::Value;
    const std::string mine = After(
        "mine.kvs", Set("TchrTrends", 5, {{"Maximum", u"12"}, {"Unit", u"a"}, {"Factor", 2.5}}));
    const std::string theirs = After(
        "theirs.kvs", Set("TchrTrends", 5, {{"Comment", u"x"}, {"Unit", u"b"}, {"Factor", 2.5}}));
    const project::Merged merged = Merge(mine, theirs);
    ASSERT_THAT(merged.conflicts, SizeIs(1));
    const MergeConflict& conflict = merged.conflicts[0];
    EXPECT_EQ(conflict.kind, Kind::Field);
    EXPECT_EQ(conflict.id, 5);
    EXPECT_EQ(conflict.name, u"Maischbottich pH");
    EXPECT_EQ(conflict.column, "Unit");
    EXPECT_EQ(conflict.base, V(u"pH"));
    EXPECT_EQ(conflict.mine, V(u"a"));
    EXPECT_EQ(conflict.theirs, V(u"b"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Maximum"), V(u"12"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Comment"), V(u"x"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Unit"), V(u"a"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Factor"), V(2.5));
}

TEST_F(MergeTest, KeepsLimitsThatFitEachOther) {
    // 0 to 14 before.
    const std::string mine = After("mine.kvs", Set("TchrTrends", 5, {{"Maximum", u"6"}}));
    const std::string theirs =
        After("theirs.kvs", Set("TchrTrends", 5, {{"Minimum", u"8"}, {"Comment", u"x"}}));
    const project::Merged merged = Merge(mine, theirs);
    ASSERT_THAT(merged.conflicts, SizeIs(1));
    EXPECT_EQ(merged.conflicts[0].kind, Kind::Limits);
    EXPECT_EQ(merged.conflicts[0].column, "Minimum");
    EXPECT_EQ(merged.conflicts[0].theirs, ado::Value(u"8"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Maximum"), ado::Value(u"6"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Minimum"), ado::Value(u"0"));
    EXPECT_EQ(ResultOf("TchrTrends", 5, "Comment"), ado::Value(u"x"));
}

TEST_F(MergeTest, TellsOfNamesThatMeet) {
    const std::string mine = After("mine.kvs", [](ado::Connection& connection) {
        Set("TchrTrends", 5, {{"Name", u"Zulauf"}})(connection);
        Set("TchrArchives", 3, {{"Name", u"Neu"}})(connection);
        Set("TchrTrends", 9, {{"Name", u"Maischbottich Leitwert"}})(connection);
        Set("TchrTrends", 10, {{"Name", u"Gärtank 1 Temperatur"}})(connection);
    });
    const std::string theirs = After("theirs.kvs", [](ado::Connection& connection) {
        Set("TchrTrends", 6, {{"Name", u"ZULAUF"}})(connection);
        Set("TchrArchives", 4, {{"Name", u"neu"}})(connection);
        Set("TchrTrends", 10, {{"ArchiveID", 2}})(connection);
    });
    std::vector<std::tuple<std::string, int, int>> doubled;
    for (const MergeConflict& conflict : Merge(mine, theirs).conflicts) {
        EXPECT_EQ(conflict.kind, Kind::NameDoubled);
        doubled.push_back({conflict.table, conflict.id, conflict.other});
    }
    EXPECT_THAT(doubled, UnorderedElementsAre(std::tuple("TchrTrends", 6, 5),
                                              std::tuple("TchrArchives", 4, 3),
                                              std::tuple("TchrTrends", 10, 25)));
}

// A trend of mine under the ID of one of theirs must not get their text, nor an archive their
// trends.
TEST_F(MergeTest, KeepsTwoNewRowsUnderOneNumber) {
    const auto add = [](const char* person, bool alsoText) {
        return [=](ado::Connection& connection) {
            RandomDay day(connection, 3, person);
            project::Rows rows(connection);
            project::NewTrend trend;
            trend.name = person[0] == 'A' ? u"Trend A" : u"Trend B";
            trend.texts = {{"L1031", alsoText ? trend.name : std::u16string(u"Same")}};
            rows.AddTrend(2, trend);
            rows.AddTrendText(rows.GroupOfTrends(2), trend);
            rows.Texts().Set("Name", u"IdxSame");
            rows.Texts().Update();
        };
    };
    for (const bool alsoText : {false, true}) {
        const std::string mine = After("mine" + std::to_string(alsoText), add("A", alsoText));
        const std::string theirs = After("theirs" + std::to_string(alsoText), add("B", alsoText));
        const project::Merged merged = Merge(mine, theirs);
        EXPECT_THAT(merged.conflicts, IsEmpty());
        std::vector<std::tuple<std::string, int, int>> renumbered;
        for (const auto& row : merged.renumbered) {
            renumbered.push_back({row.table, row.was, row.is});
        }
        EXPECT_THAT(renumbered, ElementsAre(std::tuple("TchrTrends", 229, 230),
                                            std::tuple("TidxTexts", 243, 244)));
        EXPECT_EQ(ResultOf("TchrTrends", 229, "TextID"), ado::Value(243));
        EXPECT_EQ(ResultOf("TchrTrends", 230, "TextID"), ado::Value(244));
        EXPECT_EQ(ResultOf("TchrTrends", 230, "Name"), ado::Value(u"Trend B"));
    }
}

/// Gives a project a text under an ID.
void AddText(ado::Connection& connection, std::int32_t id, const char16_t* name) {
    ado::Recordset texts;
    texts.Open("TidxTexts", connection, ado::CommandType::Table);
    texts.AddNew();
    texts.Set("ID", id);
    texts.Set("ParentID", 1);
    texts.Set("Name", std::u16string(name));
    texts.Update();
}

// A new number is one that neither side has given away.
TEST_F(MergeTest, GivesNoNumberASecondTime) {
    const std::string mine =
        After("mine.kvs", [](ado::Connection& connection) { AddText(connection, 300, u"mine"); });
    const std::string theirs = After("theirs.kvs", [](ado::Connection& connection) {
        AddText(connection, 300, u"theirs");
        AddText(connection, 301, u"also theirs");
    });
    ASSERT_THAT(Merge(mine, theirs).renumbered, SizeIs(1));
    EXPECT_EQ(ResultOf("TidxTexts", 300, "Name"), ado::Value(u"mine"));
    EXPECT_EQ(ResultOf("TidxTexts", 301, "Name"), ado::Value(u"also theirs"));
    EXPECT_EQ(ResultOf("TidxTexts", 302, "Name"), ado::Value(u"theirs"));

    const std::string full = After("full.kvs", [](ado::Connection& connection) {
        AddText(connection, 300, u"mine");
        AddText(connection, std::numeric_limits<std::int32_t>::max(), u"the last");
    });
    EXPECT_THROW(std::ignore = Merge(full, theirs), ado::AdoError);
    EXPECT_TRUE(Compare(full, result_).IsEmpty());
}

TEST_F(MergeTest, WithoutABaseTakesRowsOfOneNameForOne) {
    base_ = folder_.Path("empty.kvs");
    const std::uint32_t languages[] = {1031, 1033};
    project::CreateProject(base_, languages);
    const auto work = [](const char* person, int value) {
        return [=](ado::Connection& connection) {
            project::Rows rows(connection);
            rows.AddArchive(u"Common");
            rows.Archives().Set("ScanTime", value);
            rows.Archives().Update();
            rows.AddArchive(person[0] == 'A' ? u"A" : u"B");
        };
    };
    const project::Merged merged =
        Merge(After("mine.kvs", work("A", 5)), After("theirs.kvs", work("B", 6)), false);
    ASSERT_THAT(merged.conflicts, SizeIs(1));
    EXPECT_EQ(merged.conflicts[0].column, "ScanTime");
    ASSERT_THAT(merged.renumbered, SizeIs(1));
    EXPECT_EQ(ResultOf("TchrArchives", 3, "Name"), ado::Value(u"B"));
    EXPECT_EQ(Read(result_).size(), 3U + 1U + 2U);
}

/// A table whose rows have no IDs, with these words.
std::string MakeWords(const std::string& path, const std::vector<std::u16string>& words,
                      const std::string& column = "Word") {
    std::vector<ado::NewTable> tables(1);
    tables[0].name = "Words";
    tables[0].columns = {{column, ado::DataType::VarWChar, 20}};
    ado::CreateFile(path, tables, [&](ado::Connection& connection) {
        ado::Recordset rows;
        rows.Open("Words", connection, ado::CommandType::Table);
        for (const std::u16string& word : words) {
            rows.AddNew();
            rows.Set(0, word);
            rows.Update();
        }
    });
    return path;
}

TEST_F(MergeTest, TakesTablesWithoutNumbersAsAWhole) {
    struct Case {
        std::vector<std::u16string> mine;
        std::vector<std::u16string> theirs;
        std::vector<std::u16string> expected;
        std::size_t conflicts;
    };
    const Case cases[] = {
        {{u"a", u"b", u"b"}, {u"b", u"c", u"a"}, {u"a", u"b", u"c"}, 0},
        {{u"a", u"x"}, {u"a", u"b", u"b"}, {u"a", u"x"}, 0},
        {{u"a", u"x"}, {u"x", u"a"}, {u"a", u"x"}, 0},
        {{u"a", u"x"}, {u"a", u"y"}, {u"a", u"x"}, 1},
    };
    base_ = MakeWords(folder_.Path("base"), {u"a", u"b", u"b"});
    int number = 0;
    for (const Case& each : cases) {
        SCOPED_TRACE(++number);
        const auto path = [&](const char* name) {
            return folder_.Path(name + std::to_string(number));
        };
        const auto merged =
            Merge(MakeWords(path("mine"), each.mine), MakeWords(path("theirs"), each.theirs));
        EXPECT_THAT(merged.conflicts, SizeIs(each.conflicts));
        EXPECT_TRUE(Compare(MakeWords(path("expected"), each.expected), result_).IsEmpty());
    }
    EXPECT_THROW(std::ignore = Merge(MakeWords(folder_.Path("mine"), {}),
                                     MakeWords(folder_.Path("theirs"), {}, "Wort")),
                 ado::AdoError);
}

}  // namespace
