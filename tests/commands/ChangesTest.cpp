#include "project/Changes.h"

#include <filesystem>
#include <tuple>

#include "commands/PasteCommands.h"
#include "CommandTesting.h"

namespace {

/// Gives the rows of a step back as they were before it, in another file.
void TakeBack(const project::ChangeSet& step, const std::string& path) {
    ADOArchiv other;
    other.OpenConnection(projectdb::ToQString(path));
    const std::vector<ado::RowChange> rows(step.Rows().begin(), step.Rows().end());
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        ado::Recordset table;
        table.Open(row->table, other.Connection(), ado::CommandType::Table);
        const std::size_t key = table.FieldIndex("ID");
        if (row->before.empty()) {
            table.SetFilter("ID = " + std::to_string(ado::ToLong(row->after[key])));
            table.Delete();
            continue;
        }
        if (row->after.empty()) {
            table.AddNew();
        } else {
            table.SetFilter("ID = " + std::to_string(ado::ToLong(row->before[key])));
        }
        for (std::size_t i = 0; i < row->columns->size(); ++i) {
            const bool isOther = row->after.empty() || row->before[i] != row->after[i];
            if (isOther) table.Set((*row->columns)[i], row->before[i]);
        }
        table.Update();
    }
}

class ChangesTest : public CommandTest {
protected:
    /// What `command` has changed, applied backwards, gives the old rows.
    void ExpectWhole(const char* name, const std::function<void()>& command) {
        SCOPED_TRACE(name);
        const Content before = Read();
        project::ChangeRecorder recorder(Environment().Connection());
        command();
        const project::ChangeSet step = recorder.Take();
        EXPECT_FALSE(step.IsEmpty());
        EXPECT_TRUE(step.IsWhole());
        const std::string copy = path_ + ".copy.kvs";
        std::filesystem::copy_file(path_, copy, std::filesystem::copy_options::overwrite_existing);
        EXPECT_NE(ReadContent(copy), before);
        TakeBack(step, copy);
        EXPECT_EQ(ReadContent(copy), before);
    }
    /// The first archive that has trends.
    [[nodiscard]] std::pair<std::int32_t, std::vector<std::int32_t>> ArchiveWithTrends() {
        projectdb::ProjectRows rows(Environment());
        const std::int32_t archive = ado::ToLong(rows.Trends().Get("ArchiveID"));
        std::vector<std::int32_t> trends;
        std::ignore = rows.SeekTrendsOf(archive);
        for (; !rows.Trends().IsEOF(); rows.Trends().MoveNext()) {
            trends.push_back(ado::ToLong(rows.Trends().Get("ID")));
        }
        return {archive, trends};
    }
    void CheckEachCommand() {
        const auto [archive, trends] = ArchiveWithTrends();
        OpenArchive(archive);
        ExpectWhole("new archive", [&] { archives_.New(QStringLiteral("L1031")); });
        ExpectWhole("edit archive", [&] {
            archives_.Edit(archive, [](auto& rows, auto&, const auto& save) {
                rows.Set("Name", std::u16string(u"Umbenannt"));
                rows.Set("Comment", std::u16string(u"geändert"));
                save();
                return true;
            });
        });
        ExpectWhole("duplicate archive",
                    [&] { std::ignore = copies_.DuplicateArchive(archive, {}); });
        ExpectWhole("new trend", [&] { trends_.New(); });
        ExpectWhole("edit trend", [&] {
            trends_.Edit(trends.front(), [](ado::Recordset& row) {
                row.Set("Name", std::u16string(u"Neu"));
                row.Set("L1031", std::u16string(u"Neuer Text"));
                row.Update();
                return true;
            });
        });
        ExpectWhole("duplicate trends", [&] { std::ignore = copies_.DuplicateTrends(trends, {}); });
        ExpectWhole("paste", [&] {
            project::NewTrend trend;
            trend.values = {{"Comment", std::u16string(u"aus der Tabelle")}};
            const std::vector<project::NewTrend> pasted{trend, trend};
            std::ignore = PasteCommands(project_, window_, texts_).PasteTrends(pasted, {});
        });
        ExpectWhole("delete a trend", [&] { trends_.Delete(std::span(trends).first(1), {}, {}); });
        ExpectWhole("delete archive",
                    [&] { archives_.Delete(QStringLiteral("ARCH%1").arg(archive), {}, {}); });
    }
};

TEST_F(ChangesTest, EachCommandCanBeTakenBack) {
    OpenBrewery();
    CheckEachCommand();
}

TEST_F(ChangesTest, LongValuesAndColumnsOfOthersComeBackToo) {
    OpenAltered([](ado::NewTable& table) {
        table.columns.push_back({.name = "Remark", .type = ado::DataType::LongVarWChar});
        table.columns.push_back({.name = "Picture", .type = ado::DataType::LongVarBinary});
        table.columns.push_back({.name = "Seen", .type = ado::DataType::Boolean});
    });
    const std::int32_t text = Insert("TidxTexts", {{"Name", std::u16string(u"IdxDruck")},
                                                   {"Remark", std::u16string(5000, u'x')},
                                                   {"Seen", true}});
    const std::int32_t archive = Insert("TchrArchives", {{"Name", std::u16string(u"Kessel")}});
    Insert("TchrTrends", {{"Name", std::u16string(u"Druck")},
                          {"ArchiveID", archive},
                          {"TextID", text},
                          {"Remark", std::u16string(9000, u'y')},
                          {"Picture", ado::Binary(70000, std::byte{7})},
                          {"Seen", true}});
    CheckEachCommand();
}

TEST_F(ChangesTest, ARowStandsInAStepOnceAndOnlyWhenItIsAnother) {
    OpenBrewery();
    const std::int32_t trend = ArchiveWithTrends().second.front();
    project::ChangeRecorder recorder(Environment().Connection());
    projectdb::ProjectRows rows(Environment());
    const auto comment = [&](const ado::Value& value) {
        ASSERT_TRUE(rows.SeekTrend(trend));
        rows.Trends().Set("Comment", value);
        rows.Trends().Update();
    };
    ASSERT_TRUE(rows.SeekTrend(trend));
    const ado::Value old = rows.Trends().Get("Comment");
    comment(std::u16string(u"eins"));
    comment(std::u16string(u"zwei"));
    const project::ChangeSet once = recorder.Take();
    ASSERT_EQ(once.Rows().size(), 1U);
    const std::size_t column = rows.Trends().FieldIndex("Comment");
    EXPECT_EQ(once.Rows()[0].before[column], old);
    EXPECT_EQ(once.Rows()[0].after[column], ado::Value(std::u16string(u"zwei")));

    comment(old);
    comment(std::u16string(u"zwei"));
    EXPECT_TRUE(recorder.Take().IsEmpty()) << "it is what it was";

    const std::int32_t made = rows.AddArchive(u"Kurz");
    ASSERT_TRUE(rows.SeekArchive(made));
    rows.Archives().Delete();
    EXPECT_TRUE(recorder.Take().IsEmpty()) << "it has come and gone";
}

TEST_F(ChangesTest, WhatIsNotInTheFileIsNoChange) {
    OpenBrewery();
    projectdb::ProjectRows rows(Environment());
    ado::Connection& connection = Environment().Connection();
    project::ChangeRecorder recorder(connection);
    connection.BeginTrans();
    rows.AddArchive(u"Eins");
    EXPECT_TRUE(recorder.Take().IsEmpty()) << "not committed yet";
    connection.RollbackTrans();
    EXPECT_TRUE(recorder.Take().IsEmpty());

    // A step that fails inside a transaction leaves the others.
    connection.BeginTrans();
    const std::int32_t archive = rows.AddArchive(u"Zwei");
    rows.Archives().AddNew();
    rows.Archives().Set("ID", archive);
    EXPECT_NE(ErrorOf([&] { rows.Archives().Update(); }), 0);
    rows.Archives().CancelUpdate();
    connection.CommitTrans();
    const project::ChangeSet step = recorder.Take();
    ASSERT_EQ(step.Rows().size(), 1U);
    EXPECT_TRUE(step.Rows()[0].before.empty());
    EXPECT_EQ(step.Rows()[0].after[rows.Archives().FieldIndex("ID")], ado::Value(archive));
}

}  // namespace
