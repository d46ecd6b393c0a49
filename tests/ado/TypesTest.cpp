#include <cmath>
#include <filesystem>
#include <limits>

#include "AdoTesting.h"
#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "support/NewFolder.h"

namespace ado {
namespace {

namespace fs = std::filesystem;

/// A table with a column of every type, three of them with an index.
jet::TableSpec AllTypes() {
    using enum jet::ColumnType;
    using Kind = jet::IndexSpec::Kind;
    return {"Types",
            {{"ID", Long, 0, true},
             {"Flag", Boolean},
             {"Tiny", Byte},
             {"Small", Integer},
             {"Number", Long},
             {"Money", jet::ColumnType::Currency},
             {"Real", Single},
             {"Fine", Double},
             {"At", DateTime},
             {"Name", jet::ColumnType::Text, 20},
             {"Notes", Memo},
             {"Raw", jet::ColumnType::Binary, 16},
             {"Picture", Ole},
             {"Key", jet::ColumnType::Guid},
             {"Amount", Numeric, 0, false, true, 18, 2},
             {"Not", Long}},
            {{"PrimaryKey", Kind::PrimaryKey, {{"ID"}}},
             {"Fine", Kind::Plain, {{"Fine"}}},
             {"Name", Kind::Plain, {{"Name"}}}}};
}

class TypesTest : public testing::Test {
protected:
    using Fields = std::vector<std::pair<const char*, Value>>;

    void SetUp() override {
        folder_ = NewFolder("kv-ado");
        const std::string path = (folder_ / "types.mdb").string();
        const jet::Status made = jet::CreateDatabase(
            jet::SystemDisk(), path,
            [](jet::Database& database) { return jet::CreateTable(database, AllTypes()); });
        ASSERT_TRUE(made.IsOk()) << made.Text();
        connection_.Open(ConnectionString(path));
        rows_.Open("Types", connection_, CommandType::Table);
    }
    void TearDown() override {
        connection_.Close();
        fs::remove_all(folder_);
    }

    void Add(const Fields& fields) {
        rows_.AddNew();
        for (const auto& [field, value] : fields) rows_.Set(field, value);
        rows_.Update();
    }

    fs::path folder_;
    Connection connection_;
    Recordset rows_;
};

std::u16string operator""_t(const char16_t* text, std::size_t size) {
    return {text, size};
}

TEST_F(TypesTest, AssignedValuesAreStoredExactlyOrRefused) {
    constexpr auto kWrong = ErrorNumber::kWrongType;
    constexpr auto kTooMuch = ErrorNumber::kDoesNotFit;
    const Guid guid{{std::byte{0x12}, std::byte{0x34}}};
    struct Case {
        const char* field;
        Value value;
        std::int32_t error;  // of the assignment or of the update
        Value stored;
    };
    const Case cases[] = {
        {"Flag", Null{}, 0, false},
        {"Flag", std::int32_t{2}, 0, true},
        {"Flag", u"maybe"_t, kWrong, {}},
        {"Tiny", std::int32_t{255}, 0, std::int32_t{255}},
        {"Tiny", std::int32_t{256}, kTooMuch, {}},
        {"Tiny", std::int32_t{-1}, kTooMuch, {}},
        {"Small", -32768.4, 0, std::int32_t{-32768}},
        {"Small", -32768.6, kTooMuch, {}},
        {"Number", u" +12 "_t, 0, std::int32_t{12}},
        {"Number", u"12abc"_t, kWrong, {}},
        {"Number", u"2147483648"_t, kTooMuch, {}},
        {"Number", true, 0, std::int32_t{-1}},
        {"Money", Currency{INT64_MAX}, 0, Currency{INT64_MAX}},
        {"Money", 12.34567, 0, Currency{123457}},
        {"Money", 1e15, kTooMuch, {}},
        {"Real", 0.5, 0, 0.5F},
        {"Real", -1e39, kTooMuch, {}},
        {"Fine", u"1e3"_t, 0, 1000.0},
        {"Fine", u"nan"_t, kWrong, {}},
        {"At", -1.25, 0, Date{-1.25}},
        {"Name", Currency{-123000}, 0, u"-12.3"_t},
        {"Name", true, 0, u"True"_t},
        {"Name", guid, kWrong, {}},
        {"Raw", Binary(16, std::byte{7}), 0, Binary(16, std::byte{7})},
        {"Raw", Binary(17), kTooMuch, {}},
        {"Raw", u"00"_t, kWrong, {}},
        {"Picture", Binary(9000, std::byte{1}), 0, Binary(9000, std::byte{1})},
        {"Key", guid, 0, guid},
        {"Key", Binary(16), kWrong, {}},
        {"Amount", u"x"_t, kWrong, {}},
        {"Amount", u"-"_t, kWrong, {}},
        {"Amount", u"1.2.3"_t, kWrong, {}},
        {"Amount", std::u16string(40, u'9'), kTooMuch, {}},
        {"ID", Null{}, ErrorNumber::kIntegrity, {}},
    };
    Add({});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field + (" " + std::to_string(&c - cases)));
        EXPECT_EQ(ErrorOf([&] {
                      rows_.Set(c.field, c.value);
                      rows_.Update();
                  }),
                  c.error);
        rows_.CancelUpdate();
        if (c.error == 0) {
            EXPECT_EQ(rows_.Get(c.field), c.stored);
        }
    }
    rows_.Set("Amount", u"-0012.34"_t);
    rows_.Update();
    EXPECT_EQ(ToText(rows_.Get("Amount")), u"-12.34");
    const Value amount = rows_.Get("Amount");
    rows_.Set("Amount", amount);
    rows_.Update();
    EXPECT_EQ(rows_.Get("Amount"), amount);
}

// Conditions mean the same whether an index leads to the rows or each row is looked at.
TEST_F(TypesTest, EveryTypeIsComparedAsWhatItIs) {
    const std::u16string longText(300, u'x');
    const auto changedAt = [&](std::size_t at) {
        std::u16string text = longText;
        text[at] = u'y';
        return text;
    };
    Add({});  // 1: Null everywhere
    Add({{"Fine", 3.0},
         {"Number", 5},
         {"At", -1.25},
         {"Name", u"O'Neil"_t},
         {"Notes", longText},
         {"Raw", Binary{std::byte{2}}},
         {"Key", Guid{{std::byte{2}}}},
         {"Money", Currency{-5000}},
         {"Amount", u"-12.34"_t},
         {"Not", 7}});
    Add({{"Fine", std::nan("")},
         {"Number", 6},
         {"At", 36526.5},
         {"Name", u"abc"_t},
         {"Notes", changedAt(280)},
         {"Raw", Binary{std::byte{1}, std::byte{9}}},
         {"Key", Guid{{std::byte{1}}}},
         {"Flag", true}});
    Add({{"Fine", 0.0}, {"Number", 5}, {"Raw", Binary{std::byte{1}}}});
    using Ids = std::vector<std::u16string>;
    const std::string text(300, 'x');
    const struct {
        std::string criteria;
        Ids ids;
    } filters[] = {
        {"Fine = 0", {u"4"}},
        {"Fine < 3", {u"3", u"4"}},
        {"Fine = '3,0'", {}},
        {"Number = 5 AND Fine = 3", {u"2"}},
        {"Number = 5.5", {}},
        {"At = #1899-12-29 06:00:00#", {u"2"}},
        {"At > #1/1/2000 11:59:59#", {u"3"}},
        {"Name = 'o''neil'", {u"2"}},
        {"Name = \"ABC  \"", {u"3"}},
        {"Notes = '" + text + "'", {u"2"}},
        {"Notes > '" + text + "'", {u"3"}},
        {"Money = -0.5", {u"2"}},
        {"Amount < -12.3", {u"2"}},
        {"[Not] = 7", {u"2"}},
        {"Flag = True", {u"3"}},
        {"NOT (Number = 5 OR Fine = 3)", {u"3"}},
        // What is Null is neither equal nor unequal.
        {"NOT Name = 'x'", {u"2", u"3"}},
        {"NOT (Name = 'x' OR Number = 99)", {u"2", u"3"}},
        {"NOT (Name = 'x' AND ID > 0)", {u"2", u"3"}},
        {"NOT (Name = 'x' AND Number = 99)", {u"2", u"3", u"4"}},
        {"Name <> 'x' OR ID = 1", {u"1", u"2", u"3"}},
    };
    for (const auto& each : filters) {
        SCOPED_TRACE(each.criteria.substr(0, 40));
        rows_.SetFilter(each.criteria);
        EXPECT_EQ(Column(rows_, "ID"), each.ids);
    }
    rows_.SetFilter("");
    const struct {
        const char* sort;
        Ids ids;
    } sorts[] = {
        {"Fine", {u"1", u"3", u"4", u"2"}},         {"Fine DESC", {u"2", u"4", u"3", u"1"}},
        {"Raw ASC", {u"1", u"4", u"3", u"2"}},      {"Key, ID DESC", {u"4", u"1", u"3", u"2"}},
        {"Name ASC, ID", {u"1", u"4", u"3", u"2"}}, {"Flag, Notes DESC", {u"3", u"2", u"1", u"4"}},
    };
    for (const auto& each : sorts) {
        SCOPED_TRACE(each.sort);
        rows_.SetSort(each.sort);
        EXPECT_EQ(Column(rows_, "ID"), each.ids);
    }
    Recordset found;
    found.Open("SELECT ID FROM Types WHERE Fine = Given", connection_, CommandType::Text, {u"-0"});
    EXPECT_EQ(found.RecordCount(), 1U) << "there is one zero only";
}

// Each of these amounts is the same double as its neighbour.
TEST_F(TypesTest, GreatAmountsAreComparedByTheirDigits) {
    Add({{"Money", u"90071992547409.9301"_t}, {"Amount", u"9007199254740993.01"_t}});
    Add({{"Money", u"90071992547409.9302"_t}, {"Amount", u"9007199254740993.02"_t}});
    Add({{"Money", u"922337203685477.0000"_t}, {"Amount", u"-9007199254740993.01"_t}});
    Add({{"Money", u"922337203685477.0001"_t}, {"Amount", u"-9007199254740993.02"_t}});
    Add({{"Money", u"0.1"_t}, {"Amount", u"0.1"_t}, {"Fine", 0.1}});
    using Ids = std::vector<std::u16string>;
    const struct {
        const char* criteria;
        Ids ids;
    } filters[] = {
        {"Money = 90071992547409.9301", {u"1"}},
        {"'90071992547409.9302' = Money", {u"2"}},
        {"Money > 90071992547409.9301 AND Money < 1e14", {u"2"}},
        {"Money = 922337203685477", {u"3"}},
        {"922337203685477 < Money", {u"4"}},
        {"Money = 90071992547409.93015", {}},
        {"Amount = 9007199254740993.010", {u"1"}},
        {"Amount <= -9007199254740993.02", {u"4"}},
        {"Amount = Money", {u"5"}},
        {"Money = Fine AND Fine = Amount", {u"5"}},
        {"Fine = 0.1 AND Fine = 0.100000000000000001", {u"5"}},
        {"Money = .1 AND Amount = +1e-1", {u"5"}},
    };
    for (const auto& each : filters) {
        SCOPED_TRACE(each.criteria);
        rows_.SetFilter(each.criteria);
        EXPECT_EQ(Column(rows_, "ID"), each.ids);
    }
    rows_.SetFilter("");
    rows_.SetSort("Amount DESC");
    EXPECT_EQ(Column(rows_, "ID"), (Ids{u"2", u"1", u"5", u"3", u"4"}));
}

TEST(ValueTest, NumbersAndTextsConvertOrAreRefused) {
    EXPECT_EQ(ToLong(2.5), 2);
    EXPECT_EQ(ToLong(u"-7"_t), -7);
    EXPECT_EQ(ToLong(Date{36526.4}), 36526);
    EXPECT_EQ(ToLong(Null{}, -1), -1);
    for (const Value& value : {Value(u"seven"_t), Value(u"7x"_t), Value(2147483648.0),
                               Value(std::nan("")), Value(Binary(1))}) {
        SCOPED_TRACE(value.index());
        EXPECT_EQ(ErrorOf([&] { std::ignore = ToLong(value); }), ErrorNumber::kTypeMismatch);
    }
    EXPECT_EQ(ToText(false), u"False");
    EXPECT_EQ(ToText(Guid{}), u"");
}

}  // namespace
}  // namespace ado
