// The morning of the day: a new project, ten archives, a hundred trends.

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include "jet/CreateTable.h"
#include "jet/Disk.h"
#include "studio/ArchiveKinds.h"
#include "studio/DayTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

constexpr int kVariables = 24;

}  // namespace

void DayTest::MakeAProject() {
    Start(kGerman);
    user_.InDialog(
        u"frmNewProject"_s,
        [](QWidget& dialog) {
            EXPECT_EQ(dialog.windowTitle(), u"Neues Projekt"_s);
            User::Fill(dialog, u"txtFile"_s, u"Anlage"_s);
            User::Press(Qt::Key_Return);
        },
        [] { User::Press(Qt::Key_N, Qt::ControlModifier); });
    ASSERT_EQ(studio_->Window().windowTitle(), u"Anlage - Korvala Studio"_s);
    EXPECT_EQ(studio_->Editor(), nullptr) << "the project has not been touched yet";
}

/// Groups, variables and alarm classes come from elsewhere.
void DayTest::OtherToolsFillIn() {
    {
        const auto database =
            jet::Database::Open(jet::SystemDisk(), file_.toStdString(), jet::OpenMode::ReadWrite);
        ASSERT_TRUE(database.IsOk()) << database.GetStatus().Text();
        const jet::TableSpec classes{
            .name = "TalmClasses",
            .columns = {{.name = "ID", .isAutoNumber = true},
                        {.name = "Name", .type = jet::ColumnType::Text, .length = 50},
                        {.name = "Description", .type = jet::ColumnType::Memo}},
            .indexes = {{"PrimaryKey", jet::IndexSpec::Kind::PrimaryKey, {{"ID"}}}}};
        const jet::Status status = jet::CreateTable(**database, classes);
        ASSERT_TRUE(status.IsOk()) << status.Text();
    }
    ado::Connection connection;
    Connect(connection);
    for (const auto& [name, type] : {std::pair(u"Archive", -2), std::pair(u"Meldungen", -3)}) {
        AddRow(connection, "TidxGroups",
               {{"ParentID", 0}, {"Name", std::u16string(name)}, {"Type", type}, {"Parameter", 0}});
    }
    for (const char16_t* name : {u"Störung", u"Warnung"}) {
        AddRow(connection, "TalmClasses",
               {{"Name", std::u16string(name)}, {"Description", std::u16string(3000, u'ä')}});
    }
    AddRow(connection, "TpdbStructs", {{"Name", std::u16string(u"Anlage")}});
    for (int i = 1; i <= kVariables; ++i) {
        AddRow(connection, "TpdbVars",
               {{"StructID", 1},
                {"Name", u"Druck%1"_s.arg(i).toStdU16String()},
                {"DataType", std::u16string(u"REAL")}});
    }
    connection.Close();
    others_ = ReadContent(file_.toStdString());
}

void DayTest::MakeTenArchives() {
    studio_->ClickNode();
    ASSERT_NE(studio_->Editor(), nullptr);
    for (std::size_t i = 0; i < TenKinds().size(); ++i) User::Press(Qt::Key_F8);
    QStringList names = {u"Neues Archiv"_s};
    for (int i = 1; i < 10; ++i) names += u"Neues Archiv(%1)"_s.arg(i);
    ASSERT_EQ(studio_->ArchiveNodes(), names);
    for (std::size_t i = 0; i < TenKinds().size(); ++i) {
        const ArchiveKind& kind = TenKinds()[i];
        const QString name = QString::fromUtf16(kind.name);
        SCOPED_TRACE(name.toStdString());
        studio_->ClickNode(names[static_cast<qsizetype>(i)]);
        EditInDialog(u"FArchiv"_s, [&](QWidget& dialog) {
            User::Fill(dialog, u"txtName"_s, name);
            for (const auto& [control, value] : kind.controls) {
                User::Fill(dialog, QString::fromUtf16(control), QString::fromUtf16(value));
            }
        });
        plan_.archives.append({name, {name, {}}, kind.fields, {}});
    }
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(studio_->Editor()->windowTitle(), u"Archiv Editor: Endlos"_s);
    ExpectFileAsPlanned();
}

void DayTest::AddTrendsByKey() {
    OpenArchive(u"Sudhaus"_s);
    DayPlan::Archive& archive = plan_.Of(u"Sudhaus"_s);
    for (int i = 1; i <= 20; ++i) {
        User::Press(i % 2 == 0 ? Qt::Key_F8 : Qt::Key_Insert);
        const QString first = Trends().CurrentName();
        ASSERT_TRUE(first.startsWith(u"Trd"_s)) << first.toStdString();
        const QString name = u"Kessel %1"_s.arg(i);
        User::Type(name);
        User::Press(Qt::Key_Return);
        archive.trends.append({name, {}});
    }
    EXPECT_EQ(Trends().Names(), archive.TrendNames());

    Trends().Overwrite(0, u"Comment"_s, u"oben"_s);
    archive.trends[0].fields["Comment"] = "oben";
    Trends().ClickCell(1, u"TrendVar"_s);
    user_.InDialog(
        u"frmVariables"_s,
        [&](QWidget& dialog) {
            User::Type(u"Druck17"_s);
            auto* chosen = dialog.findChild<QLabel*>(u"lblChosen"_s);
            ASSERT_TRUE(QTest::qWaitFor([&] { return chosen->text().endsWith(u"Druck17"_s); }));
            archive.trends[1].fields["TrendVar"] = chosen->text().toStdString();
            User::Press(Qt::Key_Return);
        },
        [] { User::Press(Qt::Key_Space); });
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectFileAsPlanned();
}

void DayTest::PasteTrendsFromASpreadsheet() {
    OpenArchive(u"Gärung"_s);
    QString table = u"Name\tTrendvariable\tMaximum\tEinheit\tAusgabeart\tL1031\r\n"_s;
    for (int i = 1; i <= 40; ++i) {
        table += u"Tank %1\tAnlage.Druck%2\t%3\tbar\tPunkte\tDruck in Tank %1\r\n"_s.arg(i)
                     .arg(i % kVariables + 1)
                     .arg(i * 10);
        plan_.Of(u"Gärung"_s)
            .trends.append({u"Tank %1"_s.arg(i),
                            {u"Druck in Tank %1"_s.arg(i), {}},
                            {{"TrendVar", "Anlage.Druck" + std::to_string(i % kVariables + 1)},
                             {"Maximum", std::to_string(i * 10)},
                             {"Unit", "bar"},
                             {"VDrawMode", "3"}}});
    }
    Paste(table);
    EXPECT_EQ(Trends().Names(), plan_.Of(u"Gärung"_s).TrendNames());
    EXPECT_EQ(Trends().SelectedCount(), 40);

    OpenArchive(u"Tagesdatei"_s);
    Paste(u"Name\tMaximum\nFalsch\tviel\nUnd\t1\tzu viel"_s);
    EXPECT_THAT(TakeMessages(), testing::SizeIs(1)) << "a column too many; nothing is pasted";
    table = u"Kommentar\tName\tL1033\tL1031\n"_s;
    for (int i = 1; i <= 20; ++i) {
        table += u"Zeile %1\tTag %1\tDay %1\tder Tag %1\n"_s.arg(i);
        plan_.Of(u"Tagesdatei"_s)
            .trends.append({u"Tag %1"_s.arg(i),
                            {u"der Tag %1"_s.arg(i), u"Day %1"_s.arg(i)},
                            {{"Comment", "Zeile " + std::to_string(i)}}});
    }
    Paste(table);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectFileAsPlanned();
}

void DayTest::CopyTrendsAcross() {
    OpenArchive(u"Gärung"_s);
    Trends().ClickRecord(0);
    Trends().ClickRecord(14, Qt::ShiftModifier);
    EXPECT_EQ(Trends().SelectedCount(), 15);
    User::Press(Qt::Key_C, Qt::ControlModifier);
    const QList<DayPlan::Trend> copied = plan_.Of(u"Gärung"_s).trends.first(15);
    OpenArchive(u"Monatsdatei"_s);
    for (const bool again : {false, true}) {
        User::Press(Qt::Key_V, Qt::ControlModifier);
        for (DayPlan::Trend trend : copied) {
            if (again) trend.name = u"Kopie von "_s + trend.name;
            plan_.Of(u"Monatsdatei"_s).trends.append(trend);
        }
    }
    EXPECT_EQ(Trends().Names(), plan_.Of(u"Monatsdatei"_s).TrendNames());

    OpenArchive(u"Tagesdatei"_s);
    User::Press(Qt::Key_A, Qt::ControlModifier);
    User::Press(Qt::Key_D, Qt::ControlModifier);
    DayPlan::Archive& archive = plan_.Of(u"Tagesdatei"_s);
    const QList<DayPlan::Trend> originals = archive.trends;
    for (DayPlan::Trend trend : originals) {
        trend.name = u"Kopie von "_s + trend.name;
        archive.trends.append(trend);
    }
    EXPECT_EQ(Trends().Names(), archive.TrendNames());
    EXPECT_GE(plan_.TrendCount(), 100);
    ExpectFileAsPlanned();
}

void DayTest::SetTrendsUp() {
    OpenArchive(u"Sudhaus"_s);
    DayPlan::Archive& archive = plan_.Of(u"Sudhaus"_s);
    Trends().ClickCell(4, u"Name"_s);
    EditInDialog(u"FTrend"_s, [](QWidget& dialog) {
        User::Fill(dialog, u"txtName"_s, u"Würzepfanne"_s);
        EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtTextID"_s)->text(), QString());
        User::Fill(dialog, u"txtTextID"_s, u"Würze in Pfanne"_s);
        User::Fill(dialog, u"cmbHysteresisMode"_s, u"0"_s);
        User::Fill(dialog, u"txtHysteresis"_s, u"2"_s);
        User::Fill(dialog, u"txtFactor"_s, u"0,25"_s);
        User::Fill(dialog, u"cmbFilter"_s, u"2"_s);
        User::Fill(dialog, u"txtFilterDepth"_s, u"8"_s);
        User::Fill(dialog, u"txtVMax"_s, u"120"_s);
        User::Fill(dialog, u"cmbVLineStyle"_s, u"1"_s);
        User::Fill(dialog, u"txtVUpper"_s, u"90"_s);
    });
    DayPlan::Trend& trend = archive.trends[4];
    trend.name = u"Würzepfanne"_s;
    trend.texts.german = u"Würze in Pfanne"_s;
    trend.fields = {{"Hysteresis", "2"}, {"HysteresisMode", "0"}, {"Factor", "0.25"},
                    {"Filter", "2"},     {"FilterDepth", "8"},    {"VMax", "120"},
                    {"VLineStyle", "1"}, {"VUpper", "90"}};
    EXPECT_EQ(Trends().CurrentName(), u"Würzepfanne"_s) << "the row stays current";

    // Escape leaves everything as it was.
    EditInDialog(u"FTrend"_s, [](QWidget& dialog) {
        User::Fill(dialog, u"txtName"_s, u"Nein"_s);
        User::Press(Qt::Key_Escape);
    });
    Trends().ClickCell(5, u"Comment"_s);
    User::Type(u"nein"_s);
    User::Press(Qt::Key_Escape);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Trends().Names(), archive.TrendNames());
    ExpectFileAsPlanned();
}

void DayTest::SortAndNarrow() {
    OpenArchive(u"Gärung"_s);
    const DayPlan::Archive& archive = plan_.Of(u"Gärung"_s);
    User::Press(Qt::Key_F, Qt::ControlModifier);
    User::Type(u"tank 3"_s);
    EXPECT_EQ(Trends().RowCount(), 11) << "3 and 30 to 39";
    User::Press(Qt::Key_Return);  // back into the grid
    User::Press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(Trends().CurrentName(), u"Tank 39"_s);
    User::Press(Qt::Key_F, Qt::ControlModifier);
    User::Press(Qt::Key_Escape);
    EXPECT_EQ(Trends().RowCount(), 40);
    EXPECT_EQ(Trends().CurrentName(), u"Tank 39"_s);

    Trends().ClickCell(0, u"Name"_s);
    User::Press(Qt::Key_O, Qt::ControlModifier);
    User::Press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Trends().Names().first(), u"Tank 9"_s) << "downwards now";
    EXPECT_EQ(Trends().CurrentName(), u"Tank 1"_s);
    studio_->ClickNode(u"Sudhaus"_s);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(archive.trends.size(), 40);
    ExpectFileAsPlanned();
}

void DayTest::ArrangeTheGrid() {
    const QStringList before = Trends().ShownFields();
    const double width = Trends().Column(u"TrendVar"_s)->property("Width").toDouble();
    Trends().Widen(u"TrendVar"_s, 40);
    EXPECT_GT(Trends().Column(u"TrendVar"_s)->property("Width").toDouble(), width);
    Trends().MoveBefore(u"Unit"_s, u"TrendVar"_s);
    NoteLayout();
    EXPECT_NE(shown_, before);
    EXPECT_LT(shown_.indexOf(u"Unit"_s), shown_.indexOf(u"TrendVar"_s));
}
