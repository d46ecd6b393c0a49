#include "WriterTesting.h"

namespace jet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Rules that other programs have put into their files: properties of columns and relationships.
class RulesTest : public testing::Test {
protected:
    void Open(const std::string& file) {
        disk_.Put(kProject, ReadWhole(TestData(file)));
        database_ = Must(Database::Open(disk_, kProject, OpenMode::ReadWrite));
        ASSERT_OK(database_->Begin());
    }
    Table& In(const std::string& name) {
        auto& table = tables_[name];
        if (!table) table = Must(database_->OpenTable(name));
        return *table;
    }
    static std::size_t ColumnOf(const Table& table, const char* name) {
        return table.Definition().FindColumn(name).value();
    }
    using Values = std::vector<std::pair<const char*, Value>>;
    static std::vector<Assignment> AssignmentsTo(const Table& table, const Values& values) {
        std::vector<Assignment> assignments;
        for (const auto& [name, value] : values) {
            assignments.push_back({ColumnOf(table, name), value});
        }
        return assignments;
    }
    Status Insert(const std::string& table, const Values& values) {
        return StatusOf(TableWriter(In(table)).Insert(AssignmentsTo(In(table), values)));
    }
    /// The row whose column `id` has this number.
    RowId RowOf(const std::string& table, std::int32_t id) {
        for (const Row& row : AllRows(In(table))) {
            if (Must(row.Get(ColumnOf(In(table), "id"))) == Value(id)) return row.Id();
        }
        throw std::runtime_error("no row " + std::to_string(id));
    }
    Status Update(const std::string& table, std::int32_t id, const Values& values) {
        return TableWriter(In(table)).Update(RowOf(table, id), AssignmentsTo(In(table), values));
    }
    Status Delete(const std::string& table, std::int32_t id) {
        return TableWriter(In(table)).Delete(RowOf(table, id));
    }
    /// A column of all rows.
    std::vector<Value> All(const std::string& table, const char* column) {
        std::vector<Value> values;
        for (const Row& row : AllRows(In(table))) {
            values.push_back(Must(row.Get(ColumnOf(In(table), column))));
        }
        return values;
    }
    void Close() {
        ASSERT_OK(database_->Commit());
        EXPECT_THAT(UnexpectedIn(disk_, kOfOtherPrograms), IsEmpty());
    }

    TestDisk disk_;
    std::unique_ptr<Database> database_;
    std::map<std::string, std::unique_ptr<Table>> tables_;
};

TEST_F(RulesTest, ColumnsThatMustHaveAValue) {
    Open("fixedTextTestV2000.mdb");
    const std::size_t before = AllRows(In("users")).size();
    Row row = AllRows(In("users")).at(0);
    std::vector<Assignment> values;
    for (std::size_t i = 0; i < In("users").Definition().columns.size(); ++i) {
        if (!In("users").Definition().columns[i].IsAutoNumber()) {
            values.push_back({i, Must(row.Get(i))});
        }
    }
    TableWriter writer(In("users"));
    const std::size_t name = ColumnOf(In("users"), "c_user_name");
    const auto without = [&](bool assigned) {
        std::vector<Assignment> some;
        for (const Assignment& value : values) {
            if (value.column != name) some.push_back(value);
        }
        if (assigned) some.push_back({name, Null{}});
        return some;
    };
    for (const bool assigned : {true, false}) {
        const Status status = StatusOf(writer.Insert(without(assigned)));
        EXPECT_EQ(status.Code(), StatusCode::Required);
        EXPECT_THAT(status.Text(), HasSubstr("\"c_user_name\""));
    }
    EXPECT_EQ(writer.Update(row.Id(), std::vector<Assignment>{{name, Null{}}}).Code(),
              StatusCode::Required);
    EXPECT_EQ(AllRows(In("users")).size(), before);
    Close();
}

TEST_F(RulesTest, ColumnsThatTakeNoEmptyText) {
    for (const auto& [file, column, expected] :
         {std::tuple{"bigIndexTestV2000.mdb", "col1", StatusCode::Required},
          std::tuple{"delColTestV2000.mdb", "data", StatusCode::Ok}}) {
        tables_.clear();
        Open(file);
        EXPECT_EQ(Insert("Table1", {{column, std::u16string()}}).Code(), expected) << file;
        EXPECT_EQ(Insert("Table1", {{column, std::u16string(u"x")}}).Code(), StatusCode::Ok);
        EXPECT_EQ(Insert("Table1", {{column, Null{}}}).Code(), StatusCode::Ok) << file;
        Close();
    }
}

// Table1 names rows of Table2 (deletes cascade) and of Table3 (changes of its key cascade).
TEST_F(RulesTest, RelationshipsHold) {
    Open("indexTestV2000.mdb");
    const auto add = [&](std::int32_t id, Value second, Value third) {
        return Insert("Table1", {{"id", id}, {"otherfk1", second}, {"otherfk2", third}}).Code();
    };
    for (const char* table : {"Table2", "Table3"}) {
        for (const std::int32_t id : {101, 102}) ASSERT_OK(Insert(table, {{"id", id}}));
    }
    EXPECT_EQ(add(201, 101, 101), StatusCode::Ok);
    EXPECT_EQ(add(202, 101, 102), StatusCode::Ok);
    EXPECT_EQ(add(203, 102, Null{}), StatusCode::Ok) << "Null belongs to nothing";
    EXPECT_EQ(add(204, 999, 101), StatusCode::Related);
    EXPECT_EQ(Update("Table1", 203, {{"otherfk2", 999}}).Code(), StatusCode::Related);
    EXPECT_EQ(Update("Table1", 203, {{"otherfk2", 102}}).Code(), StatusCode::Ok);
    const Status named = Update("Table1", 203, {{"otherfk1", 999}});
    EXPECT_THAT(named.Text(), HasSubstr("\"Table2\""));

    EXPECT_EQ(Update("Table2", 101, {{"id", 111}}).Code(), StatusCode::Related);
    EXPECT_EQ(Delete("Table3", 102).Code(), StatusCode::Related);
    EXPECT_EQ(Update("Table3", 102, {{"id", 112}}).Code(), StatusCode::Ok);
    const auto thirds = All("Table1", "otherfk2");
    EXPECT_EQ(std::count(thirds.begin(), thirds.end(), Value(112)), 2);
    EXPECT_EQ(std::count(thirds.begin(), thirds.end(), Value(102)), 0);

    const std::size_t before = thirds.size();
    EXPECT_EQ(Delete("Table2", 101).Code(), StatusCode::Ok);
    EXPECT_EQ(All("Table1", "id").size(), before - 2);
    EXPECT_EQ(Delete("Table3", 101).Code(), StatusCode::Ok) << "nothing belongs to it any more";
    Close();
}

}  // namespace
}  // namespace jet
