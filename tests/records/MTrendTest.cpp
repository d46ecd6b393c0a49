#include "records/MTrend.h"

#include <functional>
#include <limits>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "dialogs/DialogTesting.h"
#include "dialogs/FTrend.h"
#include "projectdb/ADOArchiv.h"
#include "projectdb/Text.h"
#include "records/RecordTesting.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::string_literals;
using testing::IsEmpty;

const std::u16string kEmptyText(1, u'\0');
const ado::Value kNull = ado::Null();

ado::Value Text(std::u16string_view text) {
    return std::u16string(text);
}

class MTrendTest : public testing::Test {
protected:
    explicit MTrendTest(const char* project = KV_TEST_DATA "/Grenzfaelle.kvs",
                        std::uint32_t interface = MResources::kGerman)
        : around_(interface), database_(project) {}

    void OpenTrends(std::int32_t archive) {
        if (trends_.State() == ado::ObjectState::Open) trends_.Close();
        const auto& query = ADOArchiv::DefinitionOf(ADOArchiv::Command::tabTrends);
        trends_.Open(query.source, database_.connection, query.type,
                     {projectdb::ToUtf16(QString::number(archive))});
    }
    /// Goes to a trend of the archive that has the awkward ones.
    void GoTo(const std::string& trend) {
        OpenTrends(10);
        trends_.Find("Name = '" + trend + "'");
        ASSERT_FALSE(trends_.IsEOF()) << trend;
    }

    /// Edits the current trend as the user does: `act` runs in the dialog, then OK or Cancel.
    bool Edit(const std::function<void(FTrend&)>& act = {}, bool ok = true,
              platform::Lcid language = 1031) {
        shown_ = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<FTrend*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            shown_ = true;
            if (act) act(*dialog);
            if (ok) QTest::mouseClick(dialog->cmdOk, Qt::LeftButton);
            stayedOpen_ = ok && dialog->isVisible();
            if (dialog->isVisible()) QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
        });
        const bool changed = MTrend::EditTrend(trends_, language, around_.services, nullptr);
        if (!shown_) QCoreApplication::processEvents();
        return changed;
    }

    [[nodiscard]] Row TrendRow(const std::string& name) {
        for (Row& row : database_.Rows("TchrTrends")) {
            if (ado::ToText(row.at("Name")) == projectdb::ToUtf16(QString::fromStdString(name))) {
                return row;
            }
        }
        ADD_FAILURE() << name;
        return {};
    }
    /// Assigns columns of a trend as another program does.
    void Assign(const std::string& trend, const Row& values) {
        ado::Recordset rows;
        rows.Open("TchrTrends", database_.connection, ado::CommandType::Table);
        rows.Find("Name = '" + trend + "'");
        for (const auto& [column, value] : values) rows.Set(column, value);
        rows.Update();
    }

    DialogSurroundings around_;
    DatabaseCopy database_;
    ado::Recordset trends_;
    bool shown_ = false;
    bool stayedOpen_ = false;  // OK could not store
};

// Null used to become 0, and the character U+0000; a mode without an amount another one.
TEST(MTrendRoundTripTest, OkWithoutAChangeLeavesEveryTrendAsItWas) {
    const struct {
        const char* project;
        int trends;  // those that have an index text
    } cases[] = {{KV_EXAMPLES "/Brauerei.kvs", 228}, {KV_TEST_DATA "/Grenzfaelle.kvs", 6}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.project);
        DialogSurroundings around;
        DatabaseCopy database(each.project);
        const std::vector<Row> trendsBefore = database.Rows("TchrTrends");
        const std::vector<Row> textsBefore = database.Rows("TidxTexts");
        const std::vector<Row> archives = database.Rows("TchrArchives");
        int edited = 0;
        database.connection.BeginTrans();  // one for all is quicker
        for (const Row& archive : archives) {
            ado::Recordset trends;
            const auto& query = ADOArchiv::DefinitionOf(ADOArchiv::Command::tabTrends);
            trends.Open(query.source, database.connection, query.type,
                        {ado::ToText(archive.at("ID"))});
            for (; !trends.IsEOF(); trends.MoveNext()) {
                FTrend dialog(around.services, u"Trd");
                ASSERT_TRUE(MTrend::TrendToDialog(trends, dialog, 1031));
                ASSERT_TRUE(MTrend::DialogToTrend(trends, dialog, 1031));
                ++edited;
            }
        }
        database.connection.CommitTrans();
        EXPECT_EQ(edited, each.trends);
        EXPECT_EQ(database.Rows("TchrTrends"), trendsBefore);
        EXPECT_EQ(database.Rows("TidxTexts"), textsBefore);
        EXPECT_EQ(database.Rows("TchrArchives"), archives);
        EXPECT_THAT(around.messages, IsEmpty());
    }
}

TEST_F(MTrendTest, HysteresisGoesTogetherWithItsMode) {
    const struct {
        ado::Value hysteresis;
        ado::Value mode;
        int shownMode;
        QString shownHysteresis;
        int chosenMode;  // -1: left alone
        ado::Value storedHysteresis;
        ado::Value storedMode;
    } cases[] = {
        {kNull, 0, 3, u""_s, -1, kNull, 0},
        {kNull, kNull, 3, u""_s, -1, kNull, kNull},
        {kEmptyText, 1, 3, u""_s, -1, kEmptyText, 1},
        {Text(u"5"), 7, 3, u"5"_s, -1, Text(u"5"), 7},
        {Text(u"5"), 7, 3, u"5"_s, 2, Text(u"5"), 2},
        {Text(u"5"), -1, 0, u"5"_s, -1, Text(u"5"), -1},
        {Text(u"5"), kNull, 0, u"5"_s, -1, Text(u"5"), kNull},
        {Text(u"0.5"), 2, 2, u"0.5"_s, -1, Text(u"0.5"), 2},
        {Text(u"Sud.Grenze"), 1, 1, u"Sud.Grenze"_s, 3, Text(u""), 3},
        {Text(u"5"), 3, 3, u"5"_s, 1, Text(u"5"), 1},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(&each - cases);
        Assign("Hyst7", {{"Hysteresis", each.hysteresis}, {"HysteresisMode", each.mode}});
        GoTo("Hyst7");
        EXPECT_TRUE(Edit([&](FTrend& dialog) {
            EXPECT_EQ(dialog.cmbHysteresisMode->currentIndex(), each.shownMode);
            EXPECT_EQ(dialog.txtHysteresis->text(), each.shownHysteresis);
            if (each.chosenMode >= 0) dialog.cmbHysteresisMode->setCurrentIndex(each.chosenMode);
        }));
        const Row stored = TrendRow("Hyst7");
        EXPECT_EQ(stored.at("Hysteresis"), each.storedHysteresis);
        EXPECT_EQ(stored.at("HysteresisMode"), each.storedMode);
    }
}

TEST_F(MTrendTest, NumbersAreShownAndReadAsTheUserWritesThem) {
    const struct {
        const char* locale;
        const char* column;
        QLineEdit* Ui_FTrend::*field;
        ado::Value stored;
        QString shown;
        QString typed;
        ado::Value after;
    } cases[] = {
        {"de", "Factor", &Ui_FTrend::txtFactor, 0.25, u"0,25"_s, u"0,5"_s, 0.5},
        {"de", "Factor", &Ui_FTrend::txtFactor, 0.25, u"0,25"_s, u"1.5"_s, 1.5},
        {"en", "Factor", &Ui_FTrend::txtFactor, 1234567.5, u"1234567.5"_s, u"0,5 m"_s, 0.5},
        {"de", "Offset", &Ui_FTrend::txtOffset, -1.25e-07, u"-1,25E-07"_s, u"-1,25E-07"_s,
         -1.25e-07},
        {"de", "Offset", &Ui_FTrend::txtOffset, 1.0, u"1"_s, u""_s, 0.0},
        // More digits than are shown: kept unless the user types something else.
        {"de", "VLower", &Ui_FTrend::txtVLower, 1.4000000000000001, u"1,4"_s, u"1,4"_s,
         1.4000000000000001},
        {"de", "VLower", &Ui_FTrend::txtVLower, 1.4000000000000004, u"1,4"_s, u"1,4"_s,
         1.4000000000000004},
        {"de", "VMin", &Ui_FTrend::txtVMin, -5.5, u"-5,5"_s, u"12"_s, 12.0},
        {"en", "FilterDepth", &Ui_FTrend::txtFilterDepth, 8, u"8"_s, u" 12 Werte"_s, 12},
        {"en", "FilterDepth", &Ui_FTrend::txtFilterDepth, 8, u"8"_s, u""_s, 0},
        {"en", "VLineWidth", &Ui_FTrend::txtVLineWidth, 2, u"2"_s, u"3"_s, 3},
        {"de", "Maximum", &Ui_FTrend::txtMaximum, Text(u"0.5"), u"0.5"_s, u"Sud.Max"_s,
         Text(u"Sud.Max")},
        {"de", "Comment", &Ui_FTrend::txtComment, Text(u"alt"), u"alt"_s, u""_s, kEmptyText},
        {"de", "Comment", &Ui_FTrend::txtComment, kEmptyText, u""_s, u"neu"_s, Text(u"neu")},
    };
    const QLocale before;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.column + " "s + each.shown.toStdString() + " " +
                     each.typed.toStdString());
        QLocale::setDefault(QLocale(QLatin1StringView(each.locale)));
        Assign("Dezimal", {{each.column, each.stored}});
        GoTo("Dezimal");
        EXPECT_TRUE(Edit([&](FTrend& dialog) {
            EXPECT_EQ((dialog.*each.field)->text(), each.shown);
            (dialog.*each.field)->setText(each.typed);
        }));
        EXPECT_EQ(TrendRow("Dezimal").at(each.column), each.after);
    }
    QLocale::setDefault(before);
}

TEST_F(MTrendTest, CodesAndColorsOutsideTheDialogStayUntilTheUserChooses) {
    const struct {
        const char* column;
        QComboBox* Ui_FTrend::*list;
        ado::Value stored;
        int shown;
    } codes[] = {
        {"VDrawMode", &Ui_FTrend::cmbVDrawMode, 4, -1},
        {"VDrawMode", &Ui_FTrend::cmbVDrawMode, 1, 1},
        {"Filter", &Ui_FTrend::cmbFilter, 5, -1},
        {"Filter", &Ui_FTrend::cmbFilter, kNull, -1},
        {"VLineStyle", &Ui_FTrend::cmbVLineStyle, -1, -1},
        {"VConfig", &Ui_FTrend::cmbVConfig, 32767, -1},
    };
    for (const auto& each : codes) {
        SCOPED_TRACE(each.column);
        Assign("Balken", {{each.column, each.stored}});
        GoTo("Balken");
        EXPECT_TRUE(Edit(
            [&](FTrend& dialog) { EXPECT_EQ((dialog.*each.list)->currentIndex(), each.shown); }));
        EXPECT_EQ(TrendRow("Balken").at(each.column), each.stored);
        GoTo("Balken");
        EXPECT_TRUE(Edit([&](FTrend& dialog) { (dialog.*each.list)->setCurrentIndex(0); }));
        EXPECT_EQ(TrendRow("Balken").at(each.column), ado::Value(0));
    }
    for (const ado::Value& stored :
         {kNull, ado::Value(static_cast<std::int32_t>(0x80000005)), ado::Value(0x02FFFFFF),
          ado::Value(std::numeric_limits<std::int32_t>::min())}) {
        Assign("Balken", {{"VLineColor", stored}});
        GoTo("Balken");
        EXPECT_TRUE(Edit());
        EXPECT_EQ(TrendRow("Balken").at("VLineColor"), stored);
        GoTo("Balken");
        EXPECT_TRUE(Edit([](FTrend& dialog) { dialog.clrVLineColor->SetColor(0x0000FF); }));
        EXPECT_EQ(TrendRow("Balken").at("VLineColor"), ado::Value(255));
    }
}

TEST_F(MTrendTest, DisplayTextIsThatOfTheLanguage) {
    GoTo("Balken");
    const ado::Value english = trends_.Get("L1033");
    EXPECT_TRUE(Edit([](FTrend& dialog) {
        EXPECT_TRUE(dialog.txtTextID->isEnabled());
        dialog.txtTextID->setText(u"Säulen"_s);
    }));
    GoTo("Balken");
    EXPECT_EQ(trends_.Get("L1031"), Text(u"Säulen"));
    EXPECT_EQ(trends_.Get("L1033"), english);

    // A language that has been added since has no column yet.
    EXPECT_TRUE(Edit(
        [](FTrend& dialog) {
            EXPECT_EQ(dialog.txtTextID->text(), u"");
            EXPECT_FALSE(dialog.txtTextID->isEnabled());
            EXPECT_FALSE(dialog.cmdEditText->isEnabled());
            dialog.txtName->setText(u"Balken2"_s);
            EXPECT_EQ(dialog.txtTextID->text(), u"");
        },
        true, 1036));
    GoTo("Balken2");
    EXPECT_EQ(trends_.Get("L1031"), Text(u"Säulen"));
    EXPECT_EQ(around_.names.changed.last(), u"Trd Balken>Balken2");
}

TEST_F(MTrendTest, TheTextInOtherLanguagesIsWrittenWhereItWasTyped) {
    GoTo("Balken");
    const QString english = projectdb::ToQString(ado::ToText(trends_.Get("L1033")));
    const auto type = [&](const QString& text, const char* button) {
        return Edit([&](FTrend& dialog) {
            QTimer::singleShot(0, &dialog, [&] {
                auto* editor = dialog.findChild<QDialog*>(u"TextDialog"_s);
                auto* field = editor->findChild<QLineEdit*>(u"txtL1033"_s);
                EXPECT_TRUE(field->accessibleName().contains(u"Engl"_s));
                field->setText(text);
                editor->findChild<QPushButton*>(QString::fromLatin1(button))->click();
            });
            dialog.cmdEditText->click();
            EXPECT_FALSE(dialog.Touched(*dialog.txtTextID));
        });
    };
    EXPECT_TRUE(type(u"given up"_s, "cmdCancel"));
    GoTo("Balken");
    EXPECT_EQ(projectdb::ToQString(ado::ToText(trends_.Get("L1033"))), english);
    const ado::Value german = trends_.Get("L1031");
    EXPECT_TRUE(type(u"Bars"_s, "cmdOk"));
    GoTo("Balken");
    EXPECT_EQ(trends_.Get("L1033"), Text(u"Bars"));
    EXPECT_EQ(trends_.Get("L1031"), german);
}

TEST_F(MTrendTest, TheNameOfTheIndexTextFollowsWhereItIsMadeOfTheTrends) {
    const struct {
        const char16_t* textName;
        const char16_t* after;
    } cases[] = {{u"IdxDezimal", u"IdxNeu"}, {u"Eigener", u"Eigener"}};
    for (const auto& each : cases) {
        Assign("Dezimal", {{"Name", Text(u"Dezimal")}});
        GoTo("Dezimal");
        ado::Recordset texts;
        texts.Open("TidxTexts", database_.connection, ado::CommandType::Table);
        texts.Find("ID = " + std::to_string(ado::ToLong(trends_.Get("TextID"))));
        texts.Set("Name", Text(each.textName));
        texts.Update();
        GoTo("Dezimal");
        EXPECT_TRUE(Edit([](FTrend& dialog) { dialog.txtName->setText(u"Neu"_s); }));
        texts.Resync();
        EXPECT_EQ(texts.Get("Name"), Text(each.after));
        Assign("Neu", {{"Name", Text(u"Dezimal")}});
    }
}

TEST_F(MTrendTest, CancelChangesNothing) {
    GoTo("Dezimal");
    const std::vector<Row> before = database_.Rows("TchrTrends");
    EXPECT_FALSE(Edit([](FTrend& dialog) { dialog.txtUnit->setText(u"bar"_s); }, false));
    EXPECT_TRUE(shown_);
    EXPECT_EQ(trends_.EditMode(), ado::EditMode::None);
    EXPECT_EQ(database_.Rows("TchrTrends"), before);
}

class MTrendFailureTest : public MTrendTest, public testing::WithParamInterface<std::uint32_t> {
protected:
    MTrendFailureTest() : MTrendTest(KV_TEST_DATA "/Grenzfaelle.kvs", GetParam()) {}
    [[nodiscard]] QString In(const char16_t* german, const char16_t* english) const {
        return QString::fromUtf16(GetParam() == MResources::kGerman ? german : english);
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, MTrendFailureTest,
                         testing::Values(MResources::kGerman, MResources::kEnglish));

TEST_P(MTrendFailureTest, ATrendThatCannotBeReadIsNotShown) {
    EXPECT_FALSE(Edit());  // nothing is open
    EXPECT_FALSE(shown_);
    OpenTrends(0);  // no row
    EXPECT_FALSE(Edit());
    EXPECT_FALSE(shown_);
    const QString text =
        In(u"Initialisierung Trend-Dialog fehlgegangen", u"Error: Initializing Trend Dialog");
    EXPECT_EQ(around_.messages,
              QStringList({text + u"\n\n"_s + texts::ReasonText({}),
                           text + u"\n\n"_s + texts::ReasonText({reasons::Cause::RowGone})}));
}

TEST_P(MTrendFailureTest, ARowThatAnotherProgramChangedTakesWhatWasTypedWithTheNextOk) {
    for (const bool again : {false, true}) {
        around_.messages.clear();
        GoTo("Dezimal");
        EXPECT_EQ(again, Edit([&](FTrend& dialog) {
                      dialog.txtUnit->setText(again ? u"Pa"_s : u"bar"_s);
                      dialog.txtName->setText(u"Neu"_s);
                      ado::Connection other;
                      database_.Connect(other);
                      ado::Recordset rows;
                      rows.Open("TchrTrends", other, ado::CommandType::Table);
                      rows.Find("Name = 'Dezimal'");
                      rows.Set("Unit", Text(again ? u"hPa" : u"mbar"));
                      rows.Set("VMax", again ? 7.0 : 6.0);
                      rows.Update();
                      if (again) QTest::mouseClick(dialog.cmdOk, Qt::LeftButton);
                      EXPECT_TRUE(dialog.isVisible());
                  }));
        EXPECT_EQ(stayedOpen_, !again);
        const QString text =
            In(u"Zurückschreiben von Trend-Dialog fehlgegangen", u"Error: Write Back Trend Dialog");
        EXPECT_EQ(around_.messages,
                  QStringList(text + u"\n\n"_s +
                              around_.texts.GetText(MResourceTable::kTextRecordChanged)));
        EXPECT_EQ(trends_.EditMode(), ado::EditMode::None);
        const Row stored = TrendRow(again ? "Neu" : "Dezimal");
        EXPECT_EQ(stored.at("Unit"), Text(again ? u"Pa" : u"mbar"));
        EXPECT_EQ(stored.at("VMax"), ado::Value(again ? 7.0 : 6.0)) << "is the other program's";
    }
    EXPECT_EQ(around_.names.changed, QStringList(u"Trd Dezimal>Neu"_s));
}

}  // namespace
