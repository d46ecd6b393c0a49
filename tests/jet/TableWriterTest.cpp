#include <map>
#include <random>

#include "jet/page/UsageMap.h"
#include "WriterTesting.h"

namespace jet {
namespace {

using RowValues = std::vector<Value>;

/// Makes values for any column; all sizes that matter occur.
class ValueMaker {
public:
    explicit ValueMaker(std::mt19937& random) : random_(random) {}

    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    Value For(const Column& column) {
        if (column.type == ColumnType::Boolean) return Below(2) == 0;
        if (Below(6) == 0) return Null{};
        switch (column.type) {
            case ColumnType::Byte:
                return static_cast<std::int32_t>(Below(256));
            case ColumnType::Integer:
                return static_cast<std::int32_t>(Below(65536)) - 32768;
            case ColumnType::Long:
                return static_cast<std::int32_t>(Below(100'000)) - 50'000;
            case ColumnType::Currency:
                return Currency{static_cast<std::int64_t>(Below(1'000'000'000)) - 500'000'000};
            case ColumnType::Single:
                return static_cast<float>(Below(1000)) / 8 - 60;
            case ColumnType::Double:
                return static_cast<double>(Below(1000)) / 8 - 60;
            case ColumnType::DateTime:
                return Date{static_cast<double>(Below(4'000'000)) / 64};
            case ColumnType::Text:
                return Text(column.length / 2);
            case ColumnType::Binary:
                return Bytes(column.length);
            case ColumnType::Memo:
                return Text(LongSize());
            case ColumnType::Ole:
                return Bytes(LongSize());
            default:
                return Null{};
        }
    }

private:
    std::size_t LongSize() {
        constexpr std::array<std::size_t, 9> kSizes = {0,    64,   65,   3000,  4076,
                                                       4077, 8144, 8145, 30'000};
        return kSizes.at(Below(kSizes.size()));
    }
    std::u16string Text(std::size_t most) {
        // Mostly short; a shared beginning, so that index pages have prefixes.
        const std::size_t shortest = std::min(most, std::size_t{12});
        const std::size_t size = Below(Below(3) == 0 ? most + 1 : shortest + 1);
        std::u16string text = Below(2) == 0 ? u"Anlage Nord " : u"";
        constexpr std::u16string_view kUnits = u"aAbBzäöüß -'0159\u20AC\u65E5";
        while (text.size() < size) text += kUnits[Below(kUnits.size())];
        text.resize(std::min(size, most));
        return text;
    }
    Binary Bytes(std::size_t most) {
        Binary bytes(Below(most + 1));
        for (std::byte& b : bytes) b = static_cast<std::byte>(Below(256));
        return bytes;
    }

    std::mt19937& random_;
};

/// One table with a model of it in memory.
class Modelled {
public:
    Modelled(Database& database, std::string name, std::mt19937& random)
        : table_(Must(database.OpenTable(name))),
          writer_(*table_),
          make_(random),
          name_(std::move(name)) {
        for (const Row& row : AllRows(*table_)) model_[row.Id()] = ReadRow(row);
    }

    /// One random change; refused ones must leave everything as it was.
    void Change() {
        const std::size_t kind = model_.size() < 3 ? 0 : make_.Below(growing_ ? 10 : 20);
        if (kind < 5) {
            Insert();
        } else if (kind < 8) {
            Update();
        } else {
            Delete();
        }
    }
    void SetGrowing(bool growing) { growing_ = growing; }
    void DeleteAll() {
        while (!model_.empty()) Delete();
    }

    void ExpectSameRows() {
        std::map<RowId, RowValues> stored;
        for (const Row& row : AllRows(*table_)) stored[row.Id()] = ReadRow(row);
        EXPECT_EQ(stored.size(), model_.size()) << name_;
        EXPECT_TRUE(stored == model_) << name_;
    }
    [[nodiscard]] std::size_t Size() const { return model_.size(); }

private:
    RowValues ReadRow(const Row& row) {
        RowValues values;
        for (std::size_t i = 0; i < table_->Definition().columns.size(); ++i) {
            Value value = Must(row.Get(i));
            if (const auto* longValue = std::get_if<LongValue>(&value)) {
                value = longValue->isText ? Value(Must(table_->ReadMemo(*longValue)))
                                          : Value(Must(table_->ReadBinary(*longValue)));
            }
            values.push_back(std::move(value));
        }
        return values;
    }
    std::vector<Assignment> RandomValues(bool all) {
        std::vector<Assignment> values;
        const auto& columns = table_->Definition().columns;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (columns[i].IsAutoNumber() || (!all && make_.Below(3) != 0)) continue;
            values.push_back({i, make_.For(columns[i])});
            auto* text = std::get_if<std::u16string>(&values.back().value);
            // A text of fixed length is filled up with blanks.
            if (text != nullptr && columns[i].IsFixed()) text->resize(columns[i].length / 2, u' ');
        }
        return values;
    }
    RowId RandomRow() {
        auto row = model_.begin();
        std::advance(row, static_cast<std::ptrdiff_t>(make_.Below(model_.size())));
        return row->first;
    }
    static bool IsRefusal(const Status& status) {
        return status.Code() == StatusCode::Duplicate || status.Code() == StatusCode::Required ||
               status.Code() == StatusCode::Related || status.Code() == StatusCode::TooLong;
    }

    void Insert() {
        const auto values = RandomValues(true);
        const auto row = writer_.Insert(values);
        if (!row.IsOk()) {
            EXPECT_TRUE(IsRefusal(row.GetStatus())) << row.GetStatus().Text();
            return;
        }
        EXPECT_FALSE(model_.contains(*row)) << "a row that is there has been written over";
        model_[*row] = ReadRow(Must(table_->Fetch(*row)));
        for (const Assignment& value : values) {
            EXPECT_EQ(model_[*row][value.column], value.value) << value.column;
        }
    }
    void Update() {
        const RowId row = RandomRow();
        const auto values = RandomValues(false);
        const Status status = writer_.Update(row, values);
        if (!status.IsOk()) {
            EXPECT_TRUE(IsRefusal(status)) << status.Text();
            return;
        }
        for (const Assignment& value : values) model_[row][value.column] = value.value;
    }
    void Delete() {
        const RowId row = RandomRow();
        const Status status = writer_.Delete(row);
        if (status.IsOk()) model_.erase(row);
        EXPECT_TRUE(status.IsOk() || status.Code() == StatusCode::Related) << status.Text();
    }

    std::unique_ptr<Table> table_;
    TableWriter writer_;
    ValueMaker make_;
    std::string name_;
    std::map<RowId, RowValues> model_;
    bool growing_ = true;
};

class TableWriterTest : public testing::Test {
protected:
    void Open(const std::string& file) {
        disk_.Put(kProject, ReadWhole(file));
        Reopen();
    }
    void Reopen() {
        database_.reset();
        database_ = Must(Database::Open(disk_, kProject, OpenMode::ReadWrite));
    }

    TestDisk disk_;
    std::unique_ptr<Database> database_;
};

// Random changes to every user table of every file that other programs have made, beside a model
// of it. The check goes over every page, map, row and index entry.
TEST_F(TableWriterTest, RandomChangesKeepRowsAndIndexes) {
    const unsigned start = std::random_device{}();
    SCOPED_TRACE("random start " + std::to_string(start));
    std::mt19937 random(start);
    std::size_t tables = 0;
    for (const std::string& file : SampleFiles()) {
        SCOPED_TRACE(file);
        Open(file);
        if (database_->FileFormat() == Format::Jet3) continue;
        for (const CatalogEntry& entry : Must(database_->Tables())) {
            if (!entry.isUserTable) continue;
            SCOPED_TRACE(entry.name);
            Modelled table(*database_, entry.name, random);
            for (const bool growing : {true, false}) {
                table.SetGrowing(growing);
                ASSERT_OK(database_->Begin());
                for (int i = 0; i < 150 && !HasFailure(); ++i) table.Change();
                ASSERT_OK(database_->Commit());
                table.ExpectSameRows();
                EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
                if (HasFailure()) return;
            }
            ++tables;
        }
    }
    EXPECT_GT(tables, 20U);
}

// Trees of several levels grow and are taken down again; the file's other tables stay as they are.
TEST_F(TableWriterTest, ThousandsOfRowsComeAndGo) {
    std::mt19937 random(7);
    Open(Example("Brauerei.kvs"));
    const auto others = RowsOf(*database_, "TalmClasses");
    Modelled texts(*database_, "TidxTexts", random);
    for (int round = 0; round < 4; ++round) {
        ASSERT_OK(database_->Begin());
        for (int i = 0; i < 2500 && !HasFailure(); ++i) texts.Change();
        ASSERT_OK(database_->Commit());
        EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
    }
    EXPECT_GT(texts.Size(), 2000U);
    texts.ExpectSameRows();
    ASSERT_OK(database_->Begin());
    texts.DeleteAll();
    ASSERT_OK(database_->Commit());
    EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
    Reopen();
    EXPECT_TRUE(RowsOf(*database_, "TidxTexts").empty());
    EXPECT_EQ(RowsOf(*database_, "TalmClasses"), others);
}

/// The pages of a table: its definition, rows, long values, index pages and usage maps.
std::map<std::uint32_t, std::vector<std::byte>> PagesOf(const std::vector<std::byte>& content,
                                                        const TableDef& def) {
    MemoryFile file(content);
    PageCache cache(file, 64 * kPageSizeJet4);
    EXPECT_TRUE(cache.Revalidate().IsOk());
    std::vector<std::uint32_t> maps = {def.ownedMap, def.freeMap};
    for (const RealIndex& index : def.realIndexes) maps.push_back(index.ownedMap);
    for (const Column& column : def.columns) {
        if (column.IsLongValue()) maps.insert(maps.end(), {column.ownedMap, column.freeMap});
    }
    std::map<std::uint32_t, std::vector<std::byte>> pages;
    const auto add = [&](PageNo page) {
        const auto begin = content.begin() + static_cast<std::ptrdiff_t>(kPageSizeJet4 * Raw(page));
        pages[Raw(page)] = {begin, begin + kPageSizeJet4};
    };
    add(def.page);
    for (const std::uint32_t pointer : maps) {
        if (pointer == 0) continue;
        add(RowId::FromPointer(pointer).page);
        UsageMap map = Must(UsageMap::Open(cache, Format::Jet4, pointer));
        PageNo from{0};
        while (const auto page = Must(map.Next(from))) {
            add(*page);
            from = PageNo{Raw(*page) + 1};
        }
    }
    return pages;
}

// What belongs to another program is not touched, however much is changed beside it.
TEST_F(TableWriterTest, AForeignTableStaysByteForByteAsItIs) {
    std::mt19937 random(13);
    Open(Example("Brauerei.kvs"));
    const TableDef def = Must(database_->OpenTable("TalmClasses"))->Definition();
    const auto before = PagesOf(disk_.Content(kProject), def);
    EXPECT_GT(before.size(), 5U);
    for (const char* name : {"TchrArchives", "TchrTrends", "TidxTexts", "TidxGroups"}) {
        Modelled table(*database_, name, random);
        ASSERT_OK(database_->Begin());
        for (int i = 0; i < 250 && !HasFailure(); ++i) table.Change();
        ASSERT_OK(database_->Commit());
    }
    EXPECT_EQ(PagesOf(disk_.Content(kProject), def), before);
}

TEST_F(TableWriterTest, TransactionsNestAndRollBack) {
    Open(Example("Brauerei.kvs"));
    const auto before = RowsOf(*database_, "TchrArchives");
    const std::vector<std::byte> bytes = disk_.Content(kProject);
    auto table = Must(database_->OpenTable("TchrArchives"));
    TableWriter writer(*table);
    const std::array<Assignment, 1> name = {Assignment{1, Value(std::u16string(u"Neu"))}};
    EXPECT_EQ(StatusOf(writer.Insert(name)).Code(), StatusCode::BadArgument) << "no transaction";
    ASSERT_OK(database_->Begin());
    ASSERT_OK(writer.Insert(name));
    ASSERT_OK(database_->Begin());
    ASSERT_OK(database_->Commit());
    EXPECT_EQ(RowsOf(*database_, "TchrArchives").size(), before.size() + 1);
    EXPECT_EQ(disk_.Content(kProject), bytes) << "nothing is written before the outer commit";
    ASSERT_OK(database_->Rollback());
    EXPECT_EQ(RowsOf(*database_, "TchrArchives"), before);
    ASSERT_OK(database_->Begin());
    ASSERT_OK(database_->Begin());
    ASSERT_OK(writer.Insert(name));
    ASSERT_OK(database_->Rollback());
    EXPECT_FALSE(database_->Commit().IsOk()) << "an inner rollback takes the whole back";
    EXPECT_EQ(RowsOf(*database_, "TchrArchives"), before);
    EXPECT_EQ(disk_.Content(kProject), bytes);
    EXPECT_FALSE(disk_.Has(std::string(kProject) + "-journal"));
}

// The definition that a change works with must not be replaced under it when another program has
// committed just before.
TEST_F(TableWriterTest, ChangesFollowACommitOfAnotherProgram) {
    Open(Example("Brauerei.kvs"));
    auto other = Must(Database::Open(disk_, kProject, OpenMode::ReadWrite));
    auto table = Must(database_->OpenTable("TchrArchives"));
    auto theirs = Must(other->OpenTable("TchrArchives"));
    const std::array<Assignment, 1> name = {Assignment{1, Value(std::u16string(u"Neu"))}};
    for (int round = 0; round < 5; ++round) {
        for (Table* each : {table.get(), theirs.get()}) {
            Database& database = each == table.get() ? *database_ : *other;
            ASSERT_OK(database.Begin());
            ASSERT_OK(TableWriter(*each).Insert(name));
            ASSERT_OK(database.Commit());
        }
    }
    EXPECT_EQ(RowsOf(*database_, "TchrArchives").size(), 24U);
    EXPECT_EQ(RowsOf(*other, "TchrArchives").size(), 24U);
    EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
}

TEST_F(TableWriterTest, RefusesWhatDoesNotFit) {
    Open(Example("Brauerei.kvs"));
    auto table = Must(database_->OpenTable("TchrArchives"));
    TableWriter writer(*table);
    const auto insert = [&](std::size_t column, Value value) {
        const std::array<Assignment, 1> values = {Assignment{column, std::move(value)}};
        return StatusOf(writer.Insert(values)).Code();
    };
    ASSERT_OK(database_->Begin());
    const auto column = [&](const char* name) {
        return table->Definition().FindColumn(name).value();
    };
    EXPECT_EQ(insert(column("Comment"), std::u16string(255, u'x')), StatusCode::Ok);
    EXPECT_EQ(insert(column("Comment"), std::u16string(256, u'x')), StatusCode::TooLong);
    EXPECT_EQ(insert(column("Type"), 32767), StatusCode::Ok);
    EXPECT_EQ(insert(column("Type"), 32768), StatusCode::TooLong);
    EXPECT_EQ(insert(column("Type"), 1.5), StatusCode::BadArgument);
    EXPECT_EQ(insert(column("ID"), 3), StatusCode::Duplicate);
    EXPECT_EQ(insert(column("ID"), Null{}), StatusCode::Required);
    EXPECT_EQ(insert(999, 3), StatusCode::BadArgument);
    EXPECT_EQ(writer.Delete(RowId{PageNo{5}, 77}).Code(), StatusCode::NotFound);
    ASSERT_OK(database_->Commit());
    EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
}

// Every file of numbers handed out by AutoNumber goes on behind the greatest one.
TEST_F(TableWriterTest, AutoNumberGoesOnBehindTheGreatest) {
    Open(Example("Brauerei.kvs"));
    auto table = Must(database_->OpenTable("TchrArchives"));
    TableWriter writer(*table);
    ASSERT_OK(database_->Begin());
    const auto idOf = [&](RowId row) {
        return std::get<std::int32_t>(Must(Must(table->Fetch(row)).Get(0)));
    };
    EXPECT_EQ(idOf(Must(writer.Insert({}))), 15);
    const std::array<Assignment, 1> given = {Assignment{0, Value(100)}};
    EXPECT_EQ(idOf(Must(writer.Insert(given))), 100);
    const RowId last = Must(writer.Insert({}));
    EXPECT_EQ(idOf(last), 101);
    ASSERT_OK(writer.Delete(last));
    EXPECT_EQ(idOf(Must(writer.Insert({}))), 102) << "a number is never handed out twice";
    ASSERT_OK(database_->Commit());
}

// The power is cut at every single operation of a commit, and what was not synced is lost or not
// as chance has it: the rows are those of before or those of after, and the file is sound.
TEST_F(TableWriterTest, APowerCutLeavesTheOldRowsOrTheNew) {
    std::mt19937 random(11);
    const std::vector<std::byte> start = ReadWhole(Example("Brauerei.kvs"));
    const auto change = [&](Database& database) -> Status {
        auto table = Must(database.OpenTable("TidxTexts"));
        TableWriter writer(*table);
        JET_TRY(database.Begin());
        for (int i = 0; i < 60; ++i) {
            const std::array<Assignment, 2> values = {
                Assignment{2, Value(u"Idx" + std::u16string(static_cast<std::size_t>(i), u'n'))},
                Assignment{4, Value(std::u16string(200, u'ä'))}};
            JET_TRY(writer.Insert(values).GetStatusOrOk());
        }
        return database.Commit();
    };
    TestDisk complete;
    complete.Put(kProject, start);
    auto database = Must(Database::Open(complete, kProject, OpenMode::ReadWrite));
    const auto before = RowsOf(*database, "TidxTexts");
    complete.FailFrom(-1);
    ASSERT_OK(change(*database));
    const int operations = complete.Operations();
    const auto after = RowsOf(*database, "TidxTexts");
    ASSERT_GT(operations, 10) << "too small a change to prove anything";

    int old = 0;
    for (int cut = 0; cut <= operations; ++cut) {
        for (int chance = 0; chance < 4; ++chance) {
            SCOPED_TRACE("power cut at operation " + std::to_string(cut));
            TestDisk disk;
            disk.Put(kProject, start);
            {
                auto running = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
                disk.FailFrom(cut);
                const Status status = change(*running);
                // The last one only makes durable what is done.
                EXPECT_EQ(status.IsOk(), cut >= operations - 1);
                disk.CutPower(random);
            }
            auto recovered = Must(Database::Open(disk, kProject, OpenMode::ReadWrite));
            const auto rows = RowsOf(*recovered, "TidxTexts");
            EXPECT_TRUE(rows == before || rows == after);
            EXPECT_THAT(ErrorsIn(disk), testing::IsEmpty());
            EXPECT_FALSE(disk.Has(std::string(kProject) + "-journal"));
            old += rows == before ? 1 : 0;
        }
    }
    EXPECT_GT(old, operations) << "most cuts come before the commit";
}

// A disk that fails for a while, and not the whole machine: the program goes on with the old rows.
TEST_F(TableWriterTest, AFailedWriteIsTakenBack) {
    for (int fail = 0; fail < 8; ++fail) {
        SCOPED_TRACE("failure at operation " + std::to_string(fail));
        Open(Example("Brauerei.kvs"));
        const auto before = RowsOf(*database_, "TchrArchives");
        auto table = Must(database_->OpenTable("TchrArchives"));
        TableWriter writer(*table);
        ASSERT_OK(database_->Begin());
        ASSERT_OK(writer.Insert({}));
        disk_.FailFrom(fail);
        const Status status = database_->Commit();
        disk_.FailFrom(-1);
        if (status.IsOk()) continue;
        const Status again = database_->Begin();
        if (again.IsOk()) {
            EXPECT_EQ(RowsOf(*database_, "TchrArchives"), before);
            ASSERT_OK(database_->Rollback());
        }
        Reopen();
        EXPECT_EQ(RowsOf(*database_, "TchrArchives"), before);
        EXPECT_THAT(ErrorsIn(disk_), testing::IsEmpty());
    }
}

}  // namespace
}  // namespace jet
