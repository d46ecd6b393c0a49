#include "jet/page/Bytes.h"

#include "JetTesting.h"

namespace jet {
namespace {

/// All memo and OLE values of the user tables of a file.
template <typename Visit>
void ForEachLongValue(Database& database, Visit visit) {
    for (const CatalogEntry& entry : Must(database.Tables())) {
        if (!entry.isUserTable) continue;
        auto table = Must(database.OpenTable(entry));
        for (const Row& row : AllRows(*table)) {
            for (std::size_t i = 0; i < table->Definition().columns.size(); ++i) {
                const Value value = Must(row.Get(i));
                if (const auto* longValue = std::get_if<LongValue>(&value))
                    visit(*table, *longValue);
            }
        }
    }
}

TEST(LongValueTest, ReadsAllThreeKindsToTheStatedLength) {
    std::array<int, 3> kinds{};
    for (const std::string& file : SampleFiles()) {
        SCOPED_TRACE(file);
        auto database = Must(Database::Open(file));
        ForEachLongValue(*database, [&](Table& table, const LongValue& value) {
            ++kinds.at(static_cast<std::size_t>(value.kind));
            EXPECT_EQ(Must(table.ReadBinary(value)).size(), value.length);
            if (!value.isText) return;
            MemoReader pieces = table.OpenMemo(value);
            std::u16string joined;
            for (auto piece = Must(pieces.Next()); !piece.empty(); piece = Must(pieces.Next())) {
                joined += piece;
            }
            EXPECT_EQ(joined, Must(table.ReadMemo(value)));
        });
    }
    EXPECT_THAT(kinds, testing::Each(testing::Gt(0))) << "inline, single row and chain must occur";
}

TEST(LongValueTest, RefusesWhatLeadsElsewhere) {
    auto database = Must(Database::Open(Example("Brauerei.kvs")));
    auto table = Must(database->OpenTable("TalmClasses"));
    LongValue chain;
    ForEachLongValue(*database, [&](Table&, const LongValue& value) {
        if (value.kind == LongValue::Kind::Chain) chain = value;
    });
    ASSERT_EQ(chain.kind, LongValue::Kind::Chain);
    const auto fails = [&](auto change) {
        LongValue value = chain;
        change(value);
        return StatusOf(table->ReadBinary(value)).Code();
    };
    EXPECT_EQ(fails([](LongValue& v) { v.length += 1; }), StatusCode::Corrupt);
    EXPECT_EQ(fails([](LongValue& v) { v.stamp += 1; }), StatusCode::Corrupt);
    EXPECT_EQ(fails([](LongValue& v) { v.first.page = kCatalogPage; }), StatusCode::Corrupt);
    EXPECT_EQ(fails([](LongValue& v) { v.first.row = 200; }), StatusCode::Corrupt);
    EXPECT_EQ(fails([](LongValue& v) { v.first.page = PageNo{1 << 23}; }), StatusCode::Corrupt);
    EXPECT_EQ(fails([](LongValue& v) {
                  v.kind = LongValue::Kind::SingleRow;
                  v.length = 0x3FFFFFFF;
              }),
              StatusCode::Corrupt);
}

// A chain whose last piece points to its first never ends by itself.
TEST(LongValueTest, EndsAChainThatRunsInACircle) {
    std::vector<std::byte> bytes = ReadWhole(Example("Brauerei.kvs"));
    LongValue chain;
    {
        auto database = OpenBytes(bytes);
        ForEachLongValue(*database, [&](Table&, const LongValue& value) {
            if (value.kind == LongValue::Kind::Chain) chain = value;
        });
    }
    const std::size_t page = std::size_t{Raw(chain.first.page)} * kPageSizeJet4;
    const std::size_t slot = page + 14 + 2 * std::size_t{chain.first.row};
    const std::size_t row = page + (LoadU16(bytes, slot) & 0x1FFF);
    const std::uint32_t self = chain.first.Pointer();
    std::memcpy(bytes.data() + row, &self, sizeof self);
    chain.length = 300'000;
    auto database = OpenBytes(bytes);
    auto table = Must(database->OpenTable("TalmClasses"));
    const Status status = StatusOf(table->ReadBinary(chain));
    EXPECT_EQ(status.Code(), StatusCode::Corrupt);
    EXPECT_THAT(status.Text(), testing::HasSubstr("circle"));
}

}  // namespace
}  // namespace jet
