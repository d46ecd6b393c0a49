// A day of changing much at once, by keys and mouse, in both languages; what is in the file is
// looked at by another reader after each step.

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "studio/StudioDesk.h"
#include "support/ProjectInOrder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kTrends = "TchrTrends";
const std::string kArchives = "TchrArchives";
const std::string kTexts = "TidxTexts";
constexpr int kNewTrends = 20;
constexpr int kTanks = 12;

class ManyDayTest : public StudioDesk, public testing::WithParamInterface<int> {
public:
    [[nodiscard]] bool IsGerman() const { return GetParam() == kGerman; }
    [[nodiscard]] QString Say(const QString& german, const QString& english) const {
        return IsGerman() ? german : english;
    }

    /// What is in the file, which another reader finds in it too.
    [[nodiscard]] Content File() const {
        const Content content = ReadContent(file_.toStdString());
        ExpectSameForMdbTools(file_.toStdString(), content);
        return content;
    }
    /// Rows of trends whose name begins so.
    [[nodiscard]] static std::vector<FieldsOfRow> TrendsNamed(const Content& content,
                                                              const std::string& begin) {
        std::vector<FieldsOfRow> trends;
        for (const auto& [id, row] : RowsOf(content, kTrends)) {
            if (FieldOf(row, "Name").starts_with(begin)) trends.push_back(row);
        }
        return trends;
    }
    [[nodiscard]] static int Count(const std::vector<FieldsOfRow>& rows, const std::string& field,
                                   const std::string& value) {
        return static_cast<int>(
            std::count_if(rows.begin(), rows.end(),
                          [&](const FieldsOfRow& row) { return FieldOf(row, field) == value; }));
    }

    void OpenTank() {
        studio_->ClickNode(u"Tank T100"_s);
        QWidget* trends = Trends().View().viewport();
        User::ClickAt(*trends, trends->rect().bottomRight() - QPoint(3, 3));
        ASSERT_TRUE(Trends().View().hasFocus());
    }
    template <typename Control>
    [[nodiscard]] static Control& The(QWidget& window, const QString& name) {
        auto* control = window.findChild<Control*>(name);
        if (control == nullptr) qFatal("no %s", qPrintable(name));
        return *control;
    }
    static void WaitForButton(QWidget& window, const QString& name, const QString& text) {
        const auto& button = The<QPushButton>(window, name);
        EXPECT_TRUE(QTest::qWaitFor([&] { return button.text() == text && button.isEnabled(); }))
            << button.text().toStdString();
    }

    void MakeATank();
    void PasteTrends();
    void SetAllOfThem();
    void FillInEnglishTexts();
    void RenameAVariable();
    void MakeTwelveTanks();
    void TakeTwoMistakesBack();
};

void ManyDayTest::MakeATank() {
    studio_->ClickNode();
    User::Press(Qt::Key_F8);
    const QString made = Say(u"Neues Archiv"_s, u"New Archive"_s);
    ASSERT_THAT(studio_->ArchiveNodes(), testing::Contains(made));
    studio_->ClickNode(made);
    EditInDialog(u"FArchiv"_s,
                 [](QWidget& dialog) { User::Fill(dialog, u"txtName"_s, u"Tank T100"_s); });
    ASSERT_THAT(studio_->ArchiveNodes(), testing::Contains(u"Tank T100"_s));
    std::ignore = File();
}

/// From the list of a spreadsheet.
void ManyDayTest::PasteTrends() {
    OpenTank();
    QString list = u"Name\tTrendVar\tL1031\r\n"_s;
    for (int i = 1; i <= kNewTrends; ++i) {
        list += u"T100 M%1\tPLC.T100.V%1\tMesswert %1\r\n"_s.arg(i, 2, 10, QLatin1Char('0'));
    }
    Paste(list);
    EXPECT_EQ(Trends().RowCount(), kNewTrends);
    const auto trends = TrendsNamed(File(), "T100 ");
    ASSERT_EQ(trends.size(), kNewTrends);
    EXPECT_EQ(FieldOf(trends[4], "TrendVar"), "PLC.T100.V05");
}

/// Colour, unit and factor, in one dialog.
void ManyDayTest::SetAllOfThem() {
    Trends().ClickCell(0, u"Name"_s);
    User::Press(Qt::Key_A, Qt::ControlModifier);
    user_.InDialog(
        u"FTrend"_s,
        [this](QWidget& dialog) {
            User::Fill(dialog, u"txtUnit"_s, u"mbar"_s);
            User::Fill(dialog, u"txtFactor"_s, Say(u"0,5"_s, u"0.5"_s));
            User::Fill(dialog, u"clrVLineColor"_s, {});
            auto* palette = QApplication::activePopupWidget();
            ASSERT_NE(palette, nullptr);
            User::Click(The<QWidget>(*palette, u"cmdColor(3)"_s));
            EXPECT_EQ(The<QPushButton>(dialog, u"cmdOk"_s).text(),
                      Say(u"3 Felder in 20 Trends ändern"_s, u"Change 3 fields in 20 trends"_s));
            User::Click(The<QPushButton>(dialog, u"cmdOk"_s));
        },
        [] { User::Press(Qt::Key_F9, Qt::ControlModifier); });
    const auto trends = TrendsNamed(File(), "T100 ");
    EXPECT_EQ(Count(trends, "Unit", "mbar"), kNewTrends);
    EXPECT_EQ(Count(trends, "Factor", "0.5"), kNewTrends);
    EXPECT_EQ(Count(trends, "VLineColor", FieldOf(trends[0], "VLineColor")), kNewTrends);
}

/// Forty of them: each trend has a copy by now.
void ManyDayTest::FillInEnglishTexts() {
    User::Press(Qt::Key_A, Qt::ControlModifier);
    User::Press(Qt::Key_D, Qt::ControlModifier);
    ASSERT_EQ(Trends().RowCount(), 2 * kNewTrends);
    User::Press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    auto* table = studio_->Editor()->findChild<QWidget*>(u"frmProjectTable"_s);
    ASSERT_NE(table, nullptr);
    const auto& count = The<QLabel>(*table, u"lblCount"_s);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return !count.text().isEmpty() && count.text()[0].isDigit(); }));
    auto& rows = The<QTableView>(*table, u"tdbTable.Splits(1)"_s);
    const auto type = [&](const QString& field, const QString& text) {
        for (QLineEdit* filter : table->findChildren<QLineEdit*>(u"txtFilter_"_s + field)) {
            if (filter->isHidden()) continue;
            filter->setFocus(Qt::TabFocusReason);
            User::Type(text);
            return;
        }
        ADD_FAILURE() << field.toStdString();
    };
    type(u"TrendVar"_s, u"T100"_s);
    type(u"L1033"_s, u"="_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return rows.model()->rowCount() == 2 * kNewTrends; }));
    QObject* split = nullptr;
    QMetaObject::invokeMethod(&The<QWidget>(*table, u"tdbTable"_s), "Splits",
                              Q_RETURN_ARG(QObject*, split), Q_ARG(int, 1));
    int english = -1;
    for (int i = 0; i < rows.model()->columnCount(); ++i) {
        QObject* column = nullptr;
        QMetaObject::invokeMethod(split, "Columns", Q_RETURN_ARG(QObject*, column),
                                  Q_ARG(QVariant, i));
        if (column->property("DataField").toString() == u"L1033"_s) english = i;
    }
    ASSERT_GE(english, 0);
    const QModelIndex first = rows.model()->index(0, english);
    rows.scrollTo(first);
    User::ClickAt(*rows.viewport(), rows.visualRect(first).center());
    QString texts;
    for (int i = 1; i <= 2 * kNewTrends; ++i) texts += u"Value %1\r\n"_s.arg(i);
    Paste(texts);
    User::Press(Qt::Key_W, Qt::ControlModifier);
    int written = 0;
    for (const auto& [id, row] : RowsOf(File(), kTexts)) {
        if (FieldOf(row, "L1033").starts_with("Value ")) ++written;
    }
    EXPECT_EQ(written, 2 * kNewTrends);
}

/// In the trend, in its copy, and in nothing that only begins alike.
void ManyDayTest::RenameAVariable() {
    OpenTank();
    User::Press(Qt::Key_H, Qt::ControlModifier);
    auto* window = studio_->Editor()->findChild<QDialog*>(u"FReplace"_s);
    ASSERT_NE(window, nullptr);
    User::Fill(*window, u"txtTerm"_s, u"PLC.T100.V05"_s);
    User::Fill(*window, u"txtReplacement"_s, u"PLC.T100.Level"_s);
    WaitForButton(*window, u"cmdReplace"_s, Say(u"2 Stellen e&rsetzen"_s, u"Re&place 2 hits"_s));
    User::Click(The<QPushButton>(*window, u"cmdReplace"_s));
    window->close();
    int renamed = 0;
    for (const auto& [id, row] : RowsOf(File(), kTrends)) {
        if (FieldOf(row, "TrendVar") == "PLC.T100.Level") ++renamed;
        EXPECT_NE(FieldOf(row, "TrendVar"), "PLC.T100.V05");
    }
    EXPECT_EQ(renamed, 2);
}

void ManyDayTest::MakeTwelveTanks() {
    const std::size_t archives = RowsOf(File(), kArchives).size();
    studio_->ClickNode(u"Tank T100"_s);
    user_.InDialog(
        u"FArchivePatterns"_s,
        [this](QWidget& dialog) {
            User::Fill(dialog, u"txtName"_s, u"Tank T{101..112}"_s);
            User::Fill(dialog, u"txtFindInCopies"_s, u"T100"_s);
            User::Fill(dialog, u"txtBy"_s, u"T{101..112}"_s);
            WaitForButton(dialog, u"cmdMake"_s,
                          Say(u"12 Archive &anlegen"_s, u"&Make 12 archives"_s));
            User::Click(The<QPushButton>(dialog, u"cmdMake"_s));
        },
        [] { User::Press(Qt::Key_F8, Qt::ControlModifier); });
    const Content content = File();
    EXPECT_EQ(RowsOf(content, kArchives).size(), archives + kTanks);
    for (int tank = 101; tank <= 112; ++tank) {
        const std::string name = "T" + std::to_string(tank) + " ";
        EXPECT_EQ(TrendsNamed(content, name).size(), kNewTrends) << name;
    }
    EXPECT_THAT(TrendsNamed(content, "T105 M05"), SizeIs(1));
    EXPECT_EQ(FieldOf(TrendsNamed(content, "T105 M05")[0], "TrendVar"), "PLC.T105.Level");
}

/// An archive deleted, and a unit typed over.
void ManyDayTest::TakeTwoMistakesBack() {
    const Content before = File();
    studio_->ClickNode(u"Tank T105"_s);
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), SizeIs(1)) << "it is asked for";
    EXPECT_THAT(TrendsNamed(File(), "T105 "), IsEmpty());
    User::Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(File(), before);

    OpenTank();
    Trends().Overwrite(3, u"Unit"_s, u"bar"_s);
    EXPECT_NE(File(), before);
    Trends().ClickCell(3, u"Unit"_s);
    User::Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(File(), before);
}

TEST_P(ManyDayTest, FromAListToTwelveTanks) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), file_));
    QFile::setPermissions(file_, QFile::ReadOwner | QFile::WriteOwner);
    StartWithProject(GetParam());
    struct Chapter {
        const char* name;
        void (ManyDayTest::*run)();
    };
    const Chapter chapters[] = {{"MakeATank", &ManyDayTest::MakeATank},
                                {"PasteTrends", &ManyDayTest::PasteTrends},
                                {"SetAllOfThem", &ManyDayTest::SetAllOfThem},
                                {"FillInEnglishTexts", &ManyDayTest::FillInEnglishTexts},
                                {"RenameAVariable", &ManyDayTest::RenameAVariable},
                                {"MakeTwelveTanks", &ManyDayTest::MakeTwelveTanks},
                                {"TakeTwoMistakesBack", &ManyDayTest::TakeTwoMistakesBack}};
    for (const Chapter& chapter : chapters) {
        SCOPED_TRACE(chapter.name);
        (this->*chapter.run)();
        if (HasFailure()) return;
        EXPECT_THAT(TakeMessages(), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, ManyDayTest, testing::Values(1031, 1033));

}  // namespace
