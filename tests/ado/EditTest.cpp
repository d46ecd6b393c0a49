#include <filesystem>

#include "AdoTesting.h"
#include "jet/Check.h"
#include "jet/File.h"
#include "support/NewFolder.h"
#include "TrendQuery.h"

namespace ado {
namespace {

namespace fs = std::filesystem;

/// Two connections to a copy of the brewery, as two programs would have them.
class EditTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-ado");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
        connection_.Open(ConnectionString(path_));
        other_.Open(ConnectionString(path_));
    }
    void TearDown() override {
        connection_.Close();
        other_.Close();
        auto file = jet::OpenFile(path_);
        const auto status = jet::Check(**file, [](const jet::Finding& finding) {
            EXPECT_NE(finding.severity, jet::Finding::Severity::Error) << finding.text;
            return true;
        });
        EXPECT_TRUE(status.IsOk());
        file->reset();
        fs::remove_all(folder_);
    }

    static std::u16string Text(Recordset& rows, std::string_view field) {
        return ToText(rows.Get(field));
    }
    /// The names of the archives as the other program sees them.
    std::vector<std::u16string> StoredNames() {
        Recordset rows;
        rows.Open("TchrArchives", other_, CommandType::Table);
        return Column(rows, "Name");
    }

    fs::path folder_;
    std::string path_;
    Connection connection_;
    Connection other_;
    Recordset rows_;
};

TEST_F(EditTest, RulesOfOtherProgramsAreRefusedByTheirNumber) {
    const std::string path = (folder_ / "rules.mdb").string();
    fs::copy_file(TestData("indexTestV2000.mdb"), path);
    Connection connection;
    connection.Open(ConnectionString(path));
    Recordset rows;
    rows.Open("Table1", connection, CommandType::Table);
    rows.Set("otherfk1", 999);
    EXPECT_EQ(ErrorOf([&] { rows.Update(); }), ErrorNumber::kIntegrity);
    rows.CancelUpdate();
    rows.Close();
    rows.Open("Table3", connection, CommandType::Table);
    EXPECT_EQ(ErrorOf([&] { rows.Delete(); }), ErrorNumber::kIntegrity);
}

TEST_F(EditTest, ANewRowGetsItsNumberAndBecomesTheCurrentOne) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    EXPECT_EQ(rows_.EditMode(), EditMode::None);
    rows_.AddNew();
    EXPECT_EQ(rows_.EditMode(), EditMode::Add);
    EXPECT_TRUE(IsNull(rows_.Get("Name")));
    rows_.Set("Name", std::u16string(u"@New@"));
    EXPECT_EQ(Text(rows_, "Name"), u"@New@");
    EXPECT_EQ(StoredNames().size(), 14U) << "nothing is stored before Update";
    rows_.Update();
    EXPECT_EQ(rows_.EditMode(), EditMode::None);
    EXPECT_EQ(ToLong(rows_.Get("ID")), 15);
    rows_.Set("Name", std::u16string(u"Neues Archiv"));
    rows_.Update();
    EXPECT_EQ(StoredNames().back(), u"Neues Archiv");
    EXPECT_EQ(rows_.RecordCount(), 15U);
    rows_.MovePrevious();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 14);
    rows_.MoveNext();
    rows_.MoveNext();
    EXPECT_TRUE(rows_.IsEOF());
    rows_.SetFilter("ID = 15");
    EXPECT_EQ(rows_.RecordCount(), 1U);
}

TEST_F(EditTest, LeavingARowStoresItsEditAndClosingRefuses) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    rows_.Set("Comment", std::u16string(u"neu"));
    EXPECT_EQ(rows_.EditMode(), EditMode::InProgress);
    EXPECT_EQ(ErrorOf([&] { rows_.Close(); }), ErrorNumber::kIllegalOperation);
    rows_.MoveNext();
    rows_.Set("Comment", std::u16string(u"verworfen"));
    rows_.CancelUpdate();
    EXPECT_TRUE(IsNull(rows_.Get("Comment")));
    rows_.MovePrevious();
    EXPECT_EQ(Text(rows_, "Comment"), u"neu");
    rows_.AddNew();
    rows_.CancelUpdate();
    EXPECT_EQ(Text(rows_, "Comment"), u"neu") << "back on the row of before";
    rows_.AddNew();
    rows_.Delete();
    EXPECT_EQ(rows_.EditMode(), EditMode::None);
    EXPECT_EQ(rows_.RecordCount(), 14U) << "only the new row is dropped";
    for (const bool requery : {true, false}) {
        rows_.Set("Comment", std::u16string(u"verworfen"));
        requery ? rows_.Requery() : rows_.Resync();
        EXPECT_EQ(rows_.EditMode(), EditMode::None);
        EXPECT_EQ(Text(rows_, "Comment"), u"neu");
    }
    rows_.Close();
    rows_.Open("TidxGroups", connection_, CommandType::Table);
    rows_.AddNew();
    EXPECT_EQ(rows_.Get("Delete"), Value(false)) << "a Boolean is never Null";
    rows_.CancelUpdate();
}

TEST_F(EditTest, AssignedValuesAreConvertedOrRefused) {
    struct Case {
        const char* field;
        Value value;
        std::int32_t error;
        std::u16string stored;
    };
    const Case cases[] = {
        {"ScanTime", std::u16string(u" 250 "), 0, u"250"},
        {"ScanTime", 2.5, 0, u"2"},
        {"ScanTime", true, 0, u"-1"},
        {"ScanTime", Null{}, 0, u""},
        {"ScanTime", std::u16string(u"fast"), ErrorNumber::kWrongType, u""},
        {"ScanTime", 3e9, ErrorNumber::kDoesNotFit, u""},
        {"Type", std::int32_t{32768}, ErrorNumber::kDoesNotFit, u""},
        {"Name", std::int32_t{17}, 0, u"17"},
        {"Name", std::u16string(80, u'n'), 0, std::u16string(80, u'n')},
        {"Name", std::u16string(81, u'n'), ErrorNumber::kDoesNotFit, u""},
        {"Name", Binary{std::byte{1}}, ErrorNumber::kWrongType, u""},
        {"Comment", std::u16string(), 0, u""},
    };
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field + std::string(" ") + std::to_string(c.value.index()));
        EXPECT_EQ(ErrorOf([&] { rows_.Set(c.field, c.value); }), c.error);
        if (c.error != 0) continue;
        rows_.Update();
        rows_.Resync();
        EXPECT_EQ(Text(rows_, c.field), c.stored);
    }
    rows_.Set("ID", std::int32_t{2});
    EXPECT_EQ(ErrorOf([&] { rows_.Update(); }), ErrorNumber::kIntegrity);
    EXPECT_EQ(rows_.EditMode(), EditMode::InProgress) << "the edit can be mended";
    rows_.CancelUpdate();
    EXPECT_FALSE(IsNull(rows_.Get("Comment"))) << "an empty text is not Null";
}

// What a message for the user is made of.
TEST_F(EditTest, ARefusalNamesTheFieldAndItsLimit) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    const auto reason = [&](const char* field, const Value& value) {
        try {
            rows_.Set(field, value);
        } catch (const AdoError& error) {
            return error.Reason();
        }
        return reasons::Reason();
    };
    using reasons::Cause;
    const reasons::Reason tooLong = reason("Name", std::u16string(81, u'n'));
    EXPECT_EQ(tooLong.cause, Cause::TextTooLong);
    EXPECT_EQ(tooLong.name, "Name");
    EXPECT_EQ(tooLong.limit, 80);
    EXPECT_EQ(reason("ScanTime", 3e9).cause, Cause::NumberTooLarge);
    EXPECT_EQ(reason("ScanTime", std::u16string(u"fast")).name, "ScanTime");
    EXPECT_EQ(reason("Nothing", Null{}).cause, Cause::ColumnMissing);
}

TEST_F(EditTest, DeletedRowsLeaveTheirPlaceToTheNext) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    rows_.Find("ID=3");
    rows_.Delete();
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows_.Get("Name"); }), ErrorNumber::kNoCurrentRecord);
    rows_.MoveNext();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 4);
    rows_.Delete();
    rows_.MovePrevious();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 2);
    rows_.AddNew();
    rows_.Update();
    rows_.Delete();
    rows_.MovePrevious();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 14);
    EXPECT_EQ(rows_.RecordCount(), 12U);
    EXPECT_EQ(StoredNames().size(), 12U);
    const Bookmark last = (rows_.MoveLast(), rows_.GetBookmark());
    rows_.SetBookmark(last);
    rows_.Find("ID=6", 0, SearchDirection::Backward);
    rows_.Delete();
    rows_.Find("ID > 0");
    EXPECT_EQ(ToLong(rows_.Get("ID")), 7) << "a search goes on from where the row was";
    rows_.SetBookmark(last);
    rows_.Delete();
    EXPECT_EQ(ErrorOf([&] { rows_.SetBookmark(last); }), ErrorNumber::kInvalidArgument);
    rows_.AddNew();
    rows_.Update();
    rows_.Find("ID=1");
    EXPECT_TRUE(rows_.IsEOF()) << "a new row stands behind all others";
    rows_.SetFilter("ID = 13");
    rows_.Delete();
    rows_.MoveNext();
    EXPECT_TRUE(rows_.IsEOF());
    EXPECT_TRUE(rows_.IsBOF());
}

TEST_F(EditTest, FieldsOfTheTrendQueryGoToTheirOwnTables) {
    rows_.Open(kTrendQuery, connection_, CommandType::Text, {u"1"});
    rows_.Set("VMax", 140.5);
    rows_.Set("L1033", std::u16string(u"Mash temperature"));
    rows_.Update();
    EXPECT_EQ(Text(rows_, "VMax"), u"140.5");
    EXPECT_EQ(Text(rows_, "L1033"), u"Mash temperature");
    const std::int32_t text = ToLong(rows_.Get("TextID"));
    Recordset texts;
    texts.Open("TidxTexts", other_, CommandType::Table);
    texts.Find("ID=" + std::to_string(text));
    EXPECT_EQ(Text(texts, "L1033"), u"Mash temperature");
    // Both or neither, whichever another program has changed.
    rows_.Set("VMax", 7.5);
    rows_.Set("L1033", std::u16string(u"ours"));
    texts.Set("L1033", std::u16string(u"theirs"));
    texts.Update();
    EXPECT_EQ(ErrorOf([&] { rows_.Update(); }), ErrorNumber::kRowNotLocated);
    rows_.Resync();
    EXPECT_EQ(Text(rows_, "VMax"), u"140.5");
    EXPECT_EQ(Text(rows_, "L1033"), u"theirs");
    EXPECT_EQ(ErrorOf([&] { rows_.AddNew(); }), ErrorNumber::kFeatureNotAvailable);
    EXPECT_EQ(ErrorOf([&] { rows_.Delete(); }), ErrorNumber::kFeatureNotAvailable);
}

TEST_F(EditTest, WhatAnotherProgramHasChangedIsNotOverwritten) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    Recordset theirs;
    theirs.Open("TchrArchives", other_, CommandType::Table);
    rows_.Set("Comment", std::u16string(u"ours"));
    theirs.Set("CacheSize", std::int32_t{777});
    theirs.Update();
    EXPECT_EQ(ErrorOf([&] { rows_.Update(); }), ErrorNumber::kRowNotLocated);
    rows_.Resync();
    EXPECT_EQ(ToLong(rows_.Get("CacheSize")), 777);
    EXPECT_NE(Text(rows_, "Comment"), u"ours");
    rows_.Set("Comment", std::u16string(u"ours"));
    rows_.Update();
    theirs.Resync();
    EXPECT_EQ(Text(theirs, "Comment"), u"ours");

    EXPECT_EQ(ToLong(rows_.Get("CacheSize")), 777);
    theirs.Set("CacheSize", std::int32_t{778});
    theirs.Update();
    EXPECT_EQ(ErrorOf([&] { rows_.Delete(); }), ErrorNumber::kRowNotLocated);
    EXPECT_EQ(StoredNames().size(), 14U);

    rows_.MoveNext();
    theirs.MoveNext();
    rows_.Set("Comment", std::u16string(u"late"));
    theirs.Delete();
    EXPECT_EQ(ErrorOf([&] { rows_.Update(); }), ErrorNumber::kRowNotLocated);
    rows_.CancelUpdate();
    EXPECT_EQ(ErrorOf([&] { rows_.Resync(); }), ErrorNumber::kRowNotLocated);
    EXPECT_EQ(ErrorOf([&] { rows_.Delete(); }), ErrorNumber::kRowNotLocated);
    rows_.Requery();
    EXPECT_EQ(rows_.RecordCount(), 13U);
}

TEST_F(EditTest, RowsThatAreReadFollowWhatAnotherProgramDoes) {
    Recordset theirs;
    theirs.Open("TchrTrends", other_, CommandType::Table);
    rows_.Open("TchrTrends", connection_, CommandType::Table);
    rows_.SetFilter("ArchiveID = 3");
    Recordset joined;
    joined.Open(kTrendQuery, connection_, CommandType::Text, {u"3"});
    const std::int32_t first = ToLong(rows_.Get("ID"));
    EXPECT_EQ(ToLong(joined.Get("ID")), first);
    theirs.Find("ID=" + std::to_string(first + 1));
    theirs.Delete();
    for (Recordset* each : {&rows_, &joined}) {
        each->MoveNext();
        EXPECT_EQ(ToLong(each->Get("ID")), first + 2);
        EXPECT_EQ(each->RecordCount(), 17U);
    }
    rows_.Close();
    theirs.Close();
    rows_.Open("TalmClasses", connection_, CommandType::Table);
    rows_.MoveLast();
    EXPECT_EQ(Text(rows_, "Name"), u"Warnung");
    theirs.Open("TalmClasses", other_, CommandType::Table);
    theirs.MoveLast();
    theirs.Set("Description", std::u16string(20'000, u'n'));
    theirs.Update();
    EXPECT_EQ(Text(rows_, "Description"), std::u16string(20'000, u'n'))
        << "a long value is read from where it is now";
}

TEST_F(EditTest, ATransactionIsStoredWholeOrNotAtAll) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    connection_.BeginTrans();
    rows_.Find("ID=5");
    rows_.Delete();
    connection_.BeginTrans();
    rows_.AddNew();
    rows_.Set("Name", std::u16string(u"Neu"));
    rows_.Update();
    connection_.CommitTrans();
    EXPECT_EQ(StoredNames().size(), 14U) << "not seen by others before the outer commit";
    connection_.RollbackTrans();
    rows_.Requery();
    EXPECT_EQ(Column(rows_, "Name"), StoredNames());
    EXPECT_EQ(rows_.RecordCount(), 14U);
    connection_.BeginTrans();
    rows_.MoveFirst();
    rows_.Delete();
    connection_.CommitTrans();
    EXPECT_EQ(StoredNames().size(), 13U);
    EXPECT_NE(ErrorOf([&] { connection_.CommitTrans(); }), 0);
}

TEST_F(EditTest, AListenerHearsOfWhatIsInTheFileAndOfNothingElse) {
    std::vector<std::vector<RowChange>> told;
    connection_.SetChangeListener(
        [&](std::vector<RowChange> changes) { told.push_back(std::move(changes)); });
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    const auto comment = [&](const char16_t* text) {
        rows_.Set("Comment", std::u16string(text));
        rows_.Update();
    };
    comment(u"alone");
    ASSERT_EQ(told.size(), 1U) << "without a transaction at once";
    ASSERT_EQ(told[0].size(), 1U);
    const RowChange& alone = told[0][0];
    EXPECT_EQ(alone.table, "TchrArchives");
    EXPECT_TRUE(alone.isWhole);
    EXPECT_NE(*alone.ValueIn(alone.before, "Comment"), Value(u"alone"));
    EXPECT_EQ(*alone.ValueIn(alone.after, "Comment"), Value(u"alone"));

    connection_.BeginTrans();
    comment(u"taken back");
    connection_.RollbackTrans();
    EXPECT_EQ(told.size(), 1U);

    rows_.Requery();
    connection_.BeginTrans();
    comment(u"stays");
    rows_.Set("ID", std::int32_t{2});
    EXPECT_EQ(ErrorOf([&] { rows_.Update(); }), ErrorNumber::kIntegrity);
    rows_.CancelUpdate();
    rows_.MoveLast();
    rows_.Delete();
    EXPECT_EQ(told.size(), 1U) << "nothing before it is stored";
    connection_.CommitTrans();
    ASSERT_EQ(told.size(), 2U);
    ASSERT_EQ(told[1].size(), 2U) << "a step that has failed is none";
    EXPECT_EQ(*told[1][0].ValueIn(told[1][0].after, "Comment"), Value(u"stays"));
    EXPECT_TRUE(told[1][1].after.empty());
}

TEST_F(EditTest, ASnapshotStaysAsItWasWhenItWasOpened) {
    Connection snapshot;
    snapshot.OpenSnapshot(ConnectionString(path_));
    EXPECT_EQ(ErrorOf([&] { snapshot.OpenSnapshot(ConnectionString(path_)); }),
              ErrorNumber::kObjectOpen);
    Recordset kept;
    kept.Open("TchrArchives", snapshot, CommandType::Table);
    const auto before = StoredNames();
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    rows_.Delete();
    rows_.MoveNext();
    rows_.Set("Name", std::u16string(u"Neu"));
    rows_.Update();
    EXPECT_NE(StoredNames(), before);
    EXPECT_EQ(Column(kept, "Name"), before);
    kept.MoveFirst();
    kept.Set("Name", std::u16string(u"Neu"));
    EXPECT_NE(ErrorOf([&] { kept.Update(); }), 0) << "it is nobody's file";
    kept.CancelUpdate();
}

TEST_F(EditTest, OneStateIsReadAndNothingChangedMeanwhile) {
    rows_.Open("TchrArchives", connection_, CommandType::Table);
    const std::u16string before = Text(rows_, "Name");
    rows_.Set("Name", std::u16string(u"Neu"));
    {
        const OneState state(rows_);
        EXPECT_EQ(rows_.RecordCount(), 14U);
        EXPECT_NE(ErrorOf([&] { rows_.Update(); }), 0);
        EXPECT_EQ(StoredNames().front(), before) << "others read beside it";
    }
    rows_.Update();
    EXPECT_EQ(StoredNames().front(), u"Neu");
    Connection closed;
    EXPECT_EQ(ErrorOf([&] { const OneState state(closed); }), ErrorNumber::kObjectClosed);
}

TEST(AmountTest, AmountsAreReadAndWrittenToTheLastPlace) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"90071992547409.9301", u"90071992547409.9301"},
        {u"-922337203685477.5808", u"-922337203685477.5808"},
        {u" +1.50 ", u"1.5"},
        {u".00005", u"0"},
        {u"0.00015", u"0.0002"},
        {u"0.000151", u"0.0002"},
        {u"-0.0002499", u"-0.0002"},
        {u"-0.00025", u"-0.0002"},
        {u"7.", u"7"},
    };
    for (const auto& [text, expected] : cases) {
        const auto amount = ToCurrency(text);
        ASSERT_TRUE(amount.has_value());
        EXPECT_EQ(ToText(*amount), expected);
    }
    for (const char16_t* text : {u"", u".", u"-", u"1e3", u"1,5", u"922337203685477.5808",
                                 u"99999999999999999999999", u"0x1"}) {
        EXPECT_FALSE(ToCurrency(text).has_value());
    }
}

}  // namespace
}  // namespace ado
