#include "jet/page/DataPage.h"
#include "JetTesting.h"

namespace jet {
namespace {

std::string Text(const Value& value) {
    if (const auto* text = std::get_if<std::u16string>(&value)) return ToUtf8(*text);
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    return value.index() == 0 ? "Null" : "?";
}

std::vector<std::string> ColumnTexts(Table& table, std::string_view name) {
    const std::size_t column = table.Definition().FindColumn(name).value();
    std::vector<std::string> texts;
    for (const Row& row : AllRows(table)) texts.push_back(Text(Must(row.Get(column))));
    return texts;
}

TEST(RowTest, ReadsMovedRowsOnceAndAtTheirOwnAddress) {
    for (const char* file : {"overflowTestV2000.mdb", "overflowTestV1997.mdb"}) {
        SCOPED_TRACE(file);
        auto database = Must(Database::Open(TestData(file)));
        auto table = Must(database->OpenTable("Table1"));
        const std::vector<Row> rows = AllRows(*table);
        EXPECT_EQ(rows.size(), 7U);
        for (const Row& row : rows) {
            EXPECT_EQ(Must(Must(table->Fetch(row.Id())).Get(0)), Must(row.Get(0)));
        }
    }
}

TEST(RowTest, LeavesOutDeletedRowsAndDroppedColumns) {
    auto deleted = Must(Database::Open(TestData("delTestV2000.mdb")));
    auto table = Must(deleted->OpenTable("Table"));
    EXPECT_EQ(AllRows(*table).size(), 2U);

    auto dropped = Must(Database::Open(TestData("delColTestV2000.mdb")));
    auto columns = Must(dropped->OpenTable("Table1"));
    EXPECT_LT(columns->Definition().columns.size(), columns->Definition().highestColumnCount);
    EXPECT_EQ(AllRows(*columns).size(), 2U);
}

TEST(RowTest, ReadsNumericAndFixedTextColumns) {
    auto numbers = Must(Database::Open(TestData("fixedNumericTestV2000.mdb")));
    auto table = Must(numbers->OpenTable("test"));
    const Row row = AllRows(*table).at(0);
    std::vector<Decimal> decimals;
    for (std::size_t i = 0; i < table->Definition().columns.size(); ++i) {
        const Value value = Must(row.Get(i));
        if (const auto* decimal = std::get_if<Decimal>(&value)) decimals.push_back(*decimal);
    }
    ASSERT_FALSE(decimals.empty());
    EXPECT_TRUE(std::any_of(decimals.begin(), decimals.end(),
                            [](const Decimal& d) { return d.magnitude[15] == std::byte{4}; }));

    auto texts = Must(Database::Open(TestData("fixedTextTestV2000.mdb")));
    auto users = Must(texts->OpenTable("users"));
    EXPECT_EQ(AllRows(*users).size(), 2U);
}

TEST(RowTest, NullsAndEmptyTextsAreDifferent) {
    auto database = Must(Database::Open(Example("Brauerei.kvs")));
    auto table = Must(database->OpenTable("TchrArchives"));
    const auto paths = ColumnTexts(*table, "RedundancyFilePath");
    EXPECT_EQ(paths.at(0), "Null");
    EXPECT_EQ(paths.at(1), "D:\\Redundanz");
    EXPECT_EQ(ColumnTexts(*table, "NAME").at(7), "Kälte");
}

TEST(RowTest, FetchTellsARowThatIsNotThere) {
    auto database = Must(Database::Open(Example("Brauerei.kvs")));
    auto table = Must(database->OpenTable("TchrTrends"));
    const RowId first = AllRows(*table).front().Id();
    for (const RowId id : {RowId{first.page, 250}, RowId{PageNo{0}, 0}, RowId{PageNo{1}, 0},
                           RowId{PageNo{0xFFFFFF}, 1}, RowId{kCatalogPage, 0}}) {
        EXPECT_EQ(StatusOf(table->Fetch(id)).Code(), StatusCode::NotFound) << RowText(id);
    }
}

TEST(RowTest, ARowStaysAsItWasRead) {
    Row row;
    {
        auto database = Must(Database::Open(Example("Brauerei.kvs"), 4 * kPageSizeJet4));
        auto table = Must(database->OpenTable("TchrArchives"));
        row = AllRows(*table).front();
        auto other = Must(database->OpenTable("TpdbVars"));
        std::ignore = AllRows(*other);
        EXPECT_EQ(Text(Must(row.Get(1))), "Sudhaus") << "its page has long left the cache";
    }
}

}  // namespace
}  // namespace jet
