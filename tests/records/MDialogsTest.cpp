#include "records/MDialogs.h"

#include <QComboBox>
#include <QLineEdit>
#include <QLocale>

#include "records/RecordTesting.h"

namespace {

using namespace std::string_literals;

// A table with columns of most types.
constexpr char kTable[] = "MSP_PROJECTS";
constexpr char kInteger[] = "PROJ_OPT_MINUTES_PER_DAY";
constexpr char kSmallInt[] = "PROJ_OPT_CURRENCY_DIGITS";
constexpr char kDouble[] = "PROJ_OPT_DEF_OVT_RATE";
constexpr char kText[] = "PROJ_NAME";
constexpr char kMemo[] = "PROJ_PROP_AUTHOR";
constexpr char kBoolean[] = "PROJ_OPT_CALC_ACT_COSTS";

class MDialogsTest : public testing::Test {
protected:
    MDialogsTest() {
        row_.Open(kTable, database_.connection, ado::CommandType::Table);
        // A locale with a decimal comma must make no difference.
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    }
    ~MDialogsTest() override {
        QLocale::setDefault(before_);
        row_.CancelUpdate();
    }

    QLocale before_;
    DatabaseCopy database_{KV_TEST_DATA "/test2V2000.mdb"};
    ado::Recordset row_;
};

TEST_F(MDialogsTest, TextBecomesTheValueOfTheColumnsType) {
    const struct {
        const char* column;
        const char16_t* text;
        ado::Value value;
    } cases[] = {
        {kInteger, u"12 Stück", 12},
        {kInteger, u"  7", 7},
        {kInteger, u"-3", -3},
        {kInteger, u"", 0},
        {kInteger, u"abc", 0},
        {kSmallInt, u"5,9", 5},  // whole numbers have no decimal comma
        {kSmallInt, u"1e2", 100},
        {kDouble, u"1,5", 1.5},
        {kDouble, u"1.5", 1.5},
        {kDouble, u"-0,25 bar", -0.25},
        {kDouble, u"", 0.0},
        {kText, u"Süd", u"Süd"s},
        {kText, u"", std::u16string(1, u'\0')},
        {kText, u" ", u" "s},
        {kMemo, u"Süd", u"Süd"s},  // used to be dropped
    };
    for (const auto& [column, text, value] : cases) {
        SCOPED_TRACE(column + ": "s + QString::fromUtf16(text).toStdString());
        const QLineEdit field(QString::fromUtf16(text));
        const std::size_t index = row_.FieldIndex(column);
        MDialogs::TextToField(row_, index, field);
        EXPECT_EQ(row_.Get(index), value);
    }
}

TEST_F(MDialogsTest, ColumnsOfOtherTypesAreNotWritten) {
    const ado::Value before = row_.Get(kBoolean);
    const QLineEdit field(QStringLiteral("1"));
    MDialogs::TextToField(row_, row_.FieldIndex(kBoolean), field);
    EXPECT_EQ(row_.Get(kBoolean), before);
    EXPECT_EQ(row_.EditMode(), ado::EditMode::None);
}

TEST_F(MDialogsTest, ValueBecomesText) {
    const struct {
        const char* column;
        ado::Value value;
        const char16_t* text;
    } cases[] = {
        {kInteger, ado::Null(), u""},
        {kInteger, 12345, u"12345"},
        {kDouble, 1234.5, u"1234.5"},
        {kDouble, -0.1, u"-0.1"},
        {kText, ado::Null(), u""},
        {kText, u"a\nb"s, u"a\nb"},
        {kText, std::u16string(1, u'\0'), u""},
    };
    for (const auto& [column, value, text] : cases) {
        const std::size_t index = row_.FieldIndex(column);
        row_.Set(index, value);
        QLineEdit field(QStringLiteral("before"));
        MDialogs::FieldToText(row_, index, field);
        EXPECT_EQ(field.text(), QString::fromUtf16(text)) << column;
    }
}

// Every digit of a double survives an edit that does not change it.
TEST_F(MDialogsTest, UnchangedDoubleComesBackBitForBit) {
    const std::size_t index = row_.FieldIndex(kDouble);
    for (const double number : {0.1 + 0.2, 1e300, -1.0 / 3, 5e-324, 123456789012345678.0}) {
        row_.Set(index, number);
        QLineEdit field;
        MDialogs::FieldToText(row_, index, field);
        MDialogs::TextToField(row_, index, field);
        EXPECT_EQ(row_.Get(index), ado::Value(number));
    }
}

TEST_F(MDialogsTest, ComboBoxesStandForCodes) {
    const std::array<MDialogs::ComboEntry, 3> entries = {
        {{QStringLiteral("a"), 6}, {QStringLiteral("b"), 2}, {QStringLiteral("c"), 2}}};
    QComboBox combo;
    combo.addItem(QStringLiteral("old"), 9);
    MDialogs::SelectComboByItemData(combo, 2, entries);
    EXPECT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.currentIndex(), 1);  // the first of two
    const std::size_t index = row_.FieldIndex(kInteger);
    MDialogs::ComboToField(row_, index, combo);
    EXPECT_EQ(row_.Get(index), ado::Value(2));
    for (const ado::Value& nothing : {ado::Value(9), ado::Value(ado::Null())}) {
        combo.setCurrentIndex(0);
        MDialogs::SelectComboByItemData(combo, nothing);
        EXPECT_EQ(combo.currentIndex(), -1);
        MDialogs::ComboToField(row_, index, combo);
        EXPECT_EQ(row_.Get(index), ado::Value(2));
    }
}

}  // namespace
