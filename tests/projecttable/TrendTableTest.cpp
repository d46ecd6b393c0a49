#include "projecttable/TrendTable.h"

#include <gtest/gtest.h>

#include <QCollator>
#include <random>
#include <set>

#include "project/Number.h"
#include "projectdb/Text.h"
#include "projecttable/RowOrder.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class TrendTableTest : public testing::Test {
protected:
    TrendTableTest() {
        connection_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" KV_TEST_DATA
                         "/Stadtwerke.kvs;Mode=Read|Share Deny None;");
        table_ = TrendTable::Read(connection_);
        texts_.SetLanguage(1033);
    }
    [[nodiscard]] std::size_t Column(std::string_view field) const {
        for (std::size_t column = 0; column < table_.Columns().size(); ++column) {
            if (table_.Columns()[column].field.name == field) return column;
        }
        ADD_FAILURE() << field;
        return 0;
    }

    ado::Connection connection_;
    TrendTable table_;
    MResources::TextTable texts_;
};

/// Every cell against the row that it comes from, read one by one.
TEST_F(TrendTableTest, EachCellIsWhatTheFileHas) {
    ado::Recordset trends;
    trends.Open(project::kTrendTable, connection_, ado::CommandType::Table);
    ado::Recordset archives;
    archives.Open(project::kArchiveTable, connection_, ado::CommandType::Table);
    ado::Recordset texts;
    texts.Open(project::kTextTable, connection_, ado::CommandType::Table);
    std::size_t rows = 0;
    std::size_t withoutText = 0;
    for (; !trends.IsEOF(); trends.MoveNext(), ++rows) {
        const std::int64_t row = table_.RowOf(ado::ToLong(trends.Get("ID")));
        ASSERT_GE(row, 0);
        const auto at = static_cast<std::size_t>(row);
        archives.SetFilter("ID = " + std::to_string(table_.ArchiveOf(at)));
        const std::int32_t textId = ado::ToLong(trends.Get("TextID"));
        texts.SetFilter("ID = " + std::to_string(textId));
        if (texts.IsEOF()) ++withoutText;
        for (std::size_t column = 0; column < table_.Columns().size(); ++column) {
            const TrendTable::Column& of = table_.Columns()[column];
            const bool isText = of.field.baseTable == project::kTextTable;
            const ado::Recordset& source = of.isArchive ? archives : isText ? texts : trends;
            const ado::Value stored =
                source.IsEOF() ? ado::Value() : source.Get(of.field.baseColumn);
            EXPECT_EQ(table_.ValueAt(at, column), stored) << of.field.name;
            if (!isText) continue;
            EXPECT_EQ(table_.StoredIn(at, column), texts.IsEOF() ? 0 : textId);
        }
    }
    EXPECT_EQ(table_.RowCount(), rows);
    EXPECT_GT(withoutText, 0U) << "the project has some";
}

TEST_F(TrendTableTest, TheFirstRowsAreAsAmongAll) {
    const TrendTable first = TrendTable::Read(connection_, 50);
    ASSERT_EQ(first.RowCount(), 50U);
    ASSERT_EQ(first.Columns().size(), table_.Columns().size());
    for (std::size_t row = 0; row < first.RowCount(); ++row) {
        const auto same = static_cast<std::size_t>(table_.RowOf(first.IdOf(row)));
        for (std::size_t column = 0; column < first.Columns().size(); ++column) {
            EXPECT_EQ(first.ValueAt(row, column), table_.ValueAt(same, column)) << row;
        }
    }
}

TEST_F(TrendTableTest, ASharedTextIsChangedForAllWhoShowIt) {
    const std::size_t column = Column("L1031");
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; rows.size() < 2 && row < table_.RowCount(); ++row) {
        const std::int32_t text = table_.StoredIn(row, column);
        if (text != 0) rows = table_.RowsStoredIn(project::kTextTable, text);
    }
    ASSERT_EQ(rows.size(), 2U) << "the project has one";
    table_.Set(rows[0], column, std::u16string(u"new"));
    EXPECT_EQ(table_.ValueAt(rows[0], column), ado::Value(std::u16string(u"new")));
}

/// Random filters and orders against rows looked at one by one.
TEST_F(TrendTableTest, RowsAreThoseThatTheFiltersLeaveInTheOrderOfTheKeys) {
    const std::vector<std::pair<std::string, QString>> filters = {
        {"Unit", u"=bar | ="_s}, {"VMax", u">50"_s},   {"Name", u"1"_s},
        {"L1033", u"="_s},       {"Filter", u"No"_s},  {"VLineColor", u"FF"_s},
        {"Maximum", u"..0"_s},   {"TrendVar", u"<>"_s}};
    const std::vector<std::string> columns = {"Archive", "Unit",   "VMax",
                                              "Name",    "Filter", "Maximum"};
    std::mt19937 random(3);
    const auto pick = [&](std::size_t count) { return random() % count; };
    std::size_t seen = 0;
    for (int round = 0; round < 60; ++round) {
        std::map<std::size_t, RowFilter> chosen;
        for (std::size_t i = pick(3); i > 0; --i) {
            const auto& [field, text] = filters[pick(filters.size())];
            chosen.emplace(Column(field), RowFilter(text));
        }
        QList<RowOrder::Key> keys;
        for (std::size_t i = pick(3); i > 0; --i) {
            keys.append({Column(columns[pick(columns.size())]),
                         pick(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder});
        }
        std::set<std::int32_t> archives;
        if (pick(2) == 0) archives.insert(table_.ArchiveOf(pick(table_.RowCount())));
        RowOrder order(table_, texts_);
        order.SetFilters(chosen, {}, {});
        order.SetKeys(keys);
        const RowOrder::Rows rows = order.Compute(archives);
        seen += rows.shown.size();

        const auto subject = [&](std::size_t row, std::size_t column) {
            const ado::Value& value = table_.ValueAt(row, column);
            RowFilter::Subject of{order.TextOf(column, table_.NumberAt(row, column))};
            const project::Column* known = table_.Columns()[column].known;
            if (known == nullptr || !known->codes.empty()) return of;
            if (const auto* text = std::get_if<std::u16string>(&value)) {
                const auto read = project::ReadNumber(*text);
                if (known->kind == project::Kind::Limit && read.whole) of.number = read.number;
            } else if (!ado::IsNull(value)) {
                of.number = ado::ToNumber(ado::ToText(value));
            }
            return of;
        };
        std::set<std::uint32_t> expected;
        for (std::uint32_t row = 0; row < table_.RowCount(); ++row) {
            const bool passes = std::all_of(chosen.begin(), chosen.end(), [&](const auto& filter) {
                return filter.second.Matches(subject(row, filter.first));
            });
            const bool isIn = archives.empty() || archives.contains(table_.ArchiveOf(row));
            if (passes && isIn) expected.insert(row);
        }
        EXPECT_EQ(std::set<std::uint32_t>(rows.shown.begin(), rows.shown.end()), expected);
        ASSERT_EQ(rows.shown.size(), expected.size());
        // Each row is behind the one above it by the first key in which the two differ.
        for (std::size_t i = 1; i < rows.shown.size(); ++i) {
            for (const RowOrder::Key& key : keys) {
                const auto a = subject(rows.shown[i - 1], key.column);
                const auto b = subject(rows.shown[i], key.column);
                const int kindA = a.text.isEmpty() ? 0 : a.number ? 1 : 2;
                const int kindB = b.text.isEmpty() ? 0 : b.number ? 1 : 2;
                int compared = kindA - kindB;
                if (compared == 0 && kindA == 1) {
                    compared = *a.number < *b.number ? -1 : *a.number > *b.number ? 1 : 0;
                }
                if (compared == 0 && kindA == 2) {
                    QCollator collator{QLocale()};
                    collator.setCaseSensitivity(Qt::CaseInsensitive);
                    compared = collator.compare(a.text, b.text);
                }
                if (compared == 0) continue;
                EXPECT_EQ(compared < 0, key.order == Qt::AscendingOrder)
                    << a.text.toStdString() << " / " << b.text.toStdString();
                break;
            }
        }
    }
    EXPECT_GT(seen, 0U);
}

TEST_F(TrendTableTest, AVariableThatIsNotThereIsFoundWhereverOneMayStand) {
    RowOrder order(table_, texts_);
    order.SetFilters({}, RowFilter(u"?"_s), {});
    const RowOrder::Rows rows = order.Compute({});
    EXPECT_GT(rows.shown.size(), 0U);
    for (const std::uint32_t row : rows.shown) {
        bool isUnknown = false;
        for (std::size_t column = 0; column < table_.Columns().size(); ++column) {
            const project::Column* known = table_.Columns()[column].known;
            const auto* text = std::get_if<std::u16string>(&table_.ValueAt(row, column));
            if (known == nullptr || text == nullptr) continue;
            const bool mayName =
                known->kind == project::Kind::Variable ||
                (known->kind == project::Kind::Limit && !project::ReadNumber(*text).whole);
            isUnknown |= mayName && !text->empty() && !table_.IsVariable(*text);
        }
        EXPECT_TRUE(isUnknown) << table_.IdOf(row);
    }
}

}  // namespace
