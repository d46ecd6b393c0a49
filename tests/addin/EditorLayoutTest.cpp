#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QWheelEvent>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class EditorLayoutTest : public EditorTest {
protected:
    [[nodiscard]] QString IniPath() const { return folder_.filePath(u"KVEditors.ini"_s); }
    [[nodiscard]] std::string Ini() const {
        QFile file(IniPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }
    void WriteIni(const QByteArray& body) {
        QFile file(IniPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[FKVARCHIVDBSERVER]\r\n" + body);
    }
    [[nodiscard]] double Width(const QString& field, int split = 1) {
        return Column(split, field)->property("Width").toDouble();
    }
    [[nodiscard]] int Lcid() {
        return Editor()->findChild<QComboBox*>(u"cmbLanguage"_s)->currentData().toInt();
    }
};

TEST_F(EditorLayoutTest, WithoutAFileTheBuiltInLayoutIsShown) {
    Open();
    EXPECT_THAT(ShownFields(0), ElementsAre(u"Name"_s, u"Comment"_s));
    // The options say nothing of the last four; the menu of their headings does.
    EXPECT_THAT(ShownFields(1), ElementsAre(u"Name"_s, u"TrendVar"_s, u"Comment"_s, u"Factor"_s,
                                            u"Offset"_s, u"Unit"_s, u"VLineStyle"_s));
    EXPECT_EQ(Width(u"Name"_s, 0), 3000);
    for (const QString& field : {u"Name"_s, u"TrendVar"_s, u"Maximum"_s, u"Comment"_s}) {
        EXPECT_EQ(Width(field), 3000) << field.toStdString();
    }
    EXPECT_EQ(Split(1)->columnWidth(ColumnNumber(1, u"Name"_s)), 200);
    EXPECT_EQ(Lcid(), 1033) << "the interface's: nobody has stored one";
    EXPECT_EQ(CurrentRow(), 0);
    EXPECT_TRUE(Editor()->findChild<QStatusBar*>(u"sb"_s)->isVisible());
    EXPECT_EQ(Ini(), "");
}

TEST_F(EditorLayoutTest, TheBuiltInLayoutDoesNotDependOnTheNumberOfLanguages) {
    project_ = folder_.filePath(u"Drei.kvs"_s);
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_TEST_DATA "/Stadtwerke.kvs"), project_));
    Open();
    EXPECT_THAT(ShownFields(1), ElementsAre(u"Name"_s, u"TrendVar"_s, u"Comment"_s, u"Factor"_s,
                                            u"Offset"_s, u"Unit"_s, u"VLineStyle"_s));
}

TEST_F(EditorLayoutTest, TheLayoutIsSavedAndRestored) {
    for (const bool english : {true, false}) {
        SCOPED_TRACE(english ? "English" : "German");
        QFile::remove(IniPath());
        Open(u"ARCH1"_s, english);
        Split(1)->setColumnWidth(ColumnNumber(1, u"TrendVar"_s), 111);
        Column(1, u"Maximum"_s)->setProperty("Visible", true);
        Split(1)->horizontalHeader()->moveSection(
            Split(1)->horizontalHeader()->visualIndex(ColumnNumber(1, u"Comment"_s)), 1);
        auto* languages = Editor()->findChild<QComboBox*>(u"cmbLanguage"_s);
        languages->setFocus();
        const int other = languages->findData(english ? 1033 : 1031);
        ASSERT_GE(other, 0);
        languages->setCurrentIndex(other);
        emit languages->activated(other);
        const QStringList shown = ShownFields(1);
        EXPECT_EQ(shown[1], u"Comment"_s);
        EXPECT_TRUE(shown.contains(u"Maximum"_s));
        const int lcid = Lcid();
        CloseProject();
        EXPECT_THAT(Ini(), HasSubstr("tdbA.Splits(1).Columns(\"TrendVar\").Width=1665\r\n"));
        EXPECT_THAT(Ini(), HasSubstr("CurrentLCID=" + std::to_string(lcid) + "\r\n"));
        EXPECT_THAT(Ini(), HasSubstr("TDBAColOrders=,"));

        Open(u"ARCH2"_s, english);
        EXPECT_EQ(ShownFields(1), shown);
        EXPECT_EQ(Width(u"TrendVar"_s), 1665);
        EXPECT_EQ(Lcid(), lcid);
        CloseProject();
    }
}

TEST_F(EditorLayoutTest, AChosenForgetfulnessIsAllThatIsSaved) {
    WriteIni(
        "SaveOnExit=False\r\nCurrentLCID=1033\r\n"
        "tdbA.Splits(1).Columns(\"TrendVar\").Width=1500\r\n");
    const std::string before = Ini();
    Open();
    EXPECT_EQ(Width(u"TrendVar"_s), 1500);
    Split(1)->setColumnWidth(ColumnNumber(1, u"TrendVar"_s), 222);
    CloseProject();
    EXPECT_EQ(Ini(), before);
}

TEST_F(EditorLayoutTest, FilesOfOtherStationsAreRead) {
    struct Case {
        QByteArray body;
        double width;       // of TrendVar, twips
        QStringList shown;  // in split 1
        int lcid;
        bool statusBar;
    };
    const QStringList kAlways = {u"Factor"_s, u"Offset"_s, u"Unit"_s, u"VLineStyle"_s};
    const QStringList kDefault = QStringList{u"Name"_s, u"TrendVar"_s, u"Comment"_s} + kAlways;
    const QStringList kByPosition =
        QStringList{u"Name"_s, u"TrendVar"_s} + kAlways + QStringList{u"Comment"_s};
    const Case cases[] = {
        // With a comma or a point, what stands behind the number, letter case of keys.
        {"tdbA.Splits(1).Columns(\"TrendVar\").Width=1995,024\r\n", 1995, kDefault, 1031, true},
        {"tdbA.Splits(1).Columns(\"TrendVar\").Width=1995.6\r\n", 1996, kDefault, 1031, true},
        {"TDBA.SPLITS(1).COLUMNS(\"TRENDVAR\").WIDTH=900 twips\r\n", 900, kDefault, 1031, true},
        // Of a layout that knew fewer and other columns.
        {"tdbA.Splits(1).Columns(\"Gone\").Width=5\r\nMe.Font.Bold=True\r\nCurrentLCID=1033\r\n"
         "TDBAColOrders=,3,999,-1,x,3\r\n",
         3000, kByPosition, 1033, true},
        // What is out of range, or of another kind.
        {"CurrentLCID=99\r\nSaveOnExit=maybe\r\n", 3000, kDefault, 1031, true},
        {"CurrentLCID=99999999999\r\nsb.Visible=False\r\nMe.WindowState=1\r\n", 3000, kDefault,
         1031, false},
        {"tdbA.Splits(1).Columns(\"VDrawMode\").Visible=True\r\n"
         "tdbA.Splits(1).Columns(\"Name\").Visible=False\r\n",
         3000,
         QStringList{u"Name"_s, u"TrendVar"_s, u"Comment"_s, u"Factor"_s, u"Offset"_s, u"Unit"_s,
                     u"VLineStyle"_s, u"VDrawMode"_s},
         1031, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body.toStdString());
        WriteIni(c.body);
        Open(u"ARCH1"_s, false);
        EXPECT_EQ(Width(u"TrendVar"_s), c.width);
        EXPECT_EQ(ShownFields(1), c.shown);
        EXPECT_EQ(Lcid(), c.lcid);
        EXPECT_EQ(Editor()->findChild<QStatusBar*>(u"sb"_s)->isVisible(), c.statusBar);
        EXPECT_TRUE(Editor()->isVisible());
        CloseProject();
    }
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorLayoutTest, SettingsThatCannotBeWrittenAreToldAndStopNothing) {
    Open();
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"KVEditors.ini"_s));
    CloseProject();
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_TRUE(host_.container.children().isEmpty());
    Elsewhere([](projectdb::ProjectRows& rows) {
        EXPECT_TRUE(rows.SeekArchive(1)) << "the project is closed";
    });
}

TEST_F(EditorLayoutTest, OptionsAreTakenOverAndSaved) {
    for (const bool english : {true, false}) {
        QFile::remove(IniPath());
        Open(u"ARCH1"_s, english);
        const QString maximum = Column(1, u"Maximum"_s)->property("Caption").toString();
        const auto choose = [&](QDialog& dialog) {
            auto* hidden = dialog.findChild<QListWidget*>(u"lstTrendColExist"_s);
            const auto found = hidden->findItems(maximum, Qt::MatchExactly);
            ASSERT_EQ(found.size(), 1);
            hidden->setCurrentItem(found[0]);
            emit hidden->itemDoubleClicked(found[0]);
            dialog.findChild<QCheckBox*>(u"chkShowStatusBar"_s)->setChecked(false);
            dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
        };
        EXPECT_EQ(DialogOf([&] { Action(u"mnuExtra(4)"_s)->trigger(); }, choose),
                  u"FConfigEditor"_s);
        const QStringList shown = ShownFields(1);
        EXPECT_TRUE(shown.contains(u"Maximum"_s));
        EXPECT_FALSE(Editor()->findChild<QStatusBar*>(u"sb"_s)->isVisible());
        CloseProject();
        EXPECT_THAT(Ini(), HasSubstr("sb.Visible=False\r\n"));
        Open(u"ARCH2"_s, english);
        EXPECT_EQ(ShownFields(1), shown);
        EXPECT_FALSE(Editor()->findChild<QStatusBar*>(u"sb"_s)->isVisible());
        CloseProject();
    }
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorLayoutTest, TheWheelTurnsNoLanguageInPassing) {
    Open();
    auto* languages = Editor()->findChild<QComboBox*>(u"cmbLanguage"_s);
    ASSERT_GT(languages->count(), 1);
    const auto turn = [&] {
        const int before = languages->currentIndex();
        for (const int way : {-120, 120, -120}) {
            QWheelEvent wheel({5, 5}, languages->mapToGlobal(QPointF(5, 5)), {}, {0, way},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(languages, &wheel);
            if (languages->currentIndex() != before) return true;
        }
        return false;
    };
    EXPECT_FALSE(turn());
    languages->setFocus();
    EXPECT_TRUE(turn());
}

TEST_F(EditorLayoutTest, AnotherLanguageOfTheTextsIsWhatTheDialogsShow) {
    Open();
    auto* languages = Editor()->findChild<QComboBox*>(u"cmbLanguage"_s);
    for (const int lcid : {1033, 1031}) {
        const int entry = languages->findData(lcid);
        languages->setFocus();
        languages->setCurrentIndex(entry);
        emit languages->activated(entry);
        EXPECT_EQ(RowCount(1), 24);
        QString shown;
        TurnTo();
        EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); },
                           [&](QDialog& dialog) {
                               shown = dialog.findChild<QLineEdit*>(u"txtTextID"_s)->text();
                           }),
                  u"FTrend"_s);
        EXPECT_EQ(shown,
                  lcid == 1033 ? u"Temperature Maischbottich"_s : u"Temperatur Maischbottich"_s);
    }
}

// A 0 in the settings file of the folder used to break the next project there.
TEST_F(EditorLayoutTest, WhereThereIsNoLanguageNoneIsWritten) {
    project_ = Brewery();
    {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project_.toStdString());
        ado::Recordset languages;
        languages.Open("TcfgLanguages", connection, ado::CommandType::Table);
        for (; !languages.IsEOF(); languages.MoveNext()) languages.Delete();
    }
    for (const QByteArray& stored : {QByteArray(), QByteArray("CurrentLCID=1036\r\n")}) {
        WriteIni(stored);
        Open();
        CloseProject();
        EXPECT_THAT(Ini(), HasSubstr("Me.Width="));
        if (stored.isEmpty()) {
            EXPECT_THAT(Ini(), testing::Not(HasSubstr("CurrentLCID")));
        } else {
            EXPECT_THAT(Ini(), HasSubstr(stored.toStdString()));
        }
    }
}

// The places of columns are counted over all of them, also those with the texts of each language.
TEST_F(EditorLayoutTest, ColumnsKeepTheirOrderInAProjectWithOtherLanguages) {
    Open();
    Column(1, u"Maximum"_s)->setProperty("Visible", true);
    QHeaderView* header = Split(1)->horizontalHeader();
    header->moveSection(header->visualIndex(ColumnNumber(1, u"Comment"_s)), 1);
    header->moveSection(header->visualIndex(ColumnNumber(1, u"Maximum"_s)), 2);
    const QStringList shown = ShownFields(1);
    EXPECT_EQ(shown.mid(0, 3), (QStringList{u"Name"_s, u"Comment"_s, u"Maximum"_s}));
    CloseProject();
    // As a project with two languages more has left it.
    QString ini = QString::fromStdString(Ini());
    QString orders = u"TDBAColOrders="_s;
    for (int i = 39; i >= 0; --i) orders += u',' + QString::number(i);
    ini.replace(QRegularExpression(u"TDBAColOrders=[^\r]*"_s), orders);
    QFile file(IniPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(ini.toLatin1());
    file.close();
    Open();
    EXPECT_EQ(ShownFields(1), shown);
}

TEST_F(EditorLayoutTest, WhatTheUserHasSetIsKept) {
    WriteIni(
        "Me.Width=50000\r\nMe.Height=40000.5\r\nMe.Font.Size=13\r\n"
        "tdbA.Splits(1).FrozenColumn=TrendVar\r\ntdbA.SplitWidth=6000\r\n");
    for (int i = 0; i < 2; ++i) {
        Open();
        EXPECT_EQ(Editor()->font().pointSizeF(), 13);
        EXPECT_EQ(Editor()->findChild<QStatusBar*>(u"sb"_s)->font().pointSizeF(), 13);
        EXPECT_EQ(Split(0)->width(), 400);
        EXPECT_FALSE(Action(u"mnuFreeze"_s)->isChecked());
        auto* strip = Split(1)->findChild<QTableView*>();
        EXPECT_TRUE(strip->isVisible());
        EXPECT_FALSE(strip->isColumnHidden(ColumnNumber(1, u"TrendVar"_s)));
        EXPECT_FALSE(strip->isColumnHidden(ColumnNumber(1, u"Name"_s)));
        CloseProject();
        EXPECT_THAT(Ini(), HasSubstr("Me.Width=50000\r\n"));
        EXPECT_THAT(Ini(), HasSubstr("Me.Height=40000.5\r\n"));
    }
    // What has been changed is stored as it is now.
    Open();
    auto* splitter = Grid()->findChild<QSplitter*>();
    const QPoint at = splitter->handle(1)->rect().center();
    QTest::mousePress(splitter->handle(1), Qt::LeftButton, {}, at);
    QTest::mouseMove(splitter->handle(1), at - QPoint(100, 0));
    QTest::mouseRelease(splitter->handle(1), Qt::LeftButton, {}, at);
    const int width = Split(0)->width();
    EXPECT_LT(width, 350);
    Action(u"mnuFreeze"_s)->trigger();
    Action(u"mnuFreeze"_s)->trigger();
    CloseProject();
    EXPECT_THAT(Ini(), HasSubstr("tdbA.Splits(1).FrozenColumn=\r\n"));
    Open();
    EXPECT_EQ(Split(0)->width(), width);
    EXPECT_FALSE(Split(1)->findChild<QTableView*>()->isVisible());
}

TEST_F(EditorLayoutTest, TheMenuOfAHeadingHidesShowsFitsAndFreezes) {
    Open();
    const auto choose = [this](const QString& field, const QString& entry) {
        bool chosen = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr) return;
            auto* action = menu->findChild<QAction*>(entry);
            chosen = action != nullptr && action->isEnabled();
            if (chosen) action->trigger();
            menu->close();
        });
        timer.start(1);
        QHeaderView* header = Split(1)->horizontalHeader();
        const int column = ColumnNumber(1, field);
        const QPoint at(header->sectionViewportPosition(column) + 5, 5);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, header->viewport()->mapToGlobal(at));
        QApplication::sendEvent(header->viewport(), &event);
        return chosen;
    };
    EXPECT_FALSE(choose(u"Name"_s, u"mnuHeadHide"_s)) << "the name stays";
    EXPECT_TRUE(choose(u"Factor"_s, u"mnuHeadHide"_s));
    EXPECT_FALSE(ShownFields(1).contains(u"Factor"_s));
    EXPECT_TRUE(choose(u"TrendVar"_s, u"mnuHeadShow(Maximum)"_s));
    EXPECT_EQ(ShownFields(1).mid(0, 3), (QStringList{u"Name"_s, u"TrendVar"_s, u"Maximum"_s}));
    EXPECT_TRUE(choose(u"Maximum"_s, u"mnuHeadFit"_s));
    EXPECT_LT(Width(u"Maximum"_s), 2900);
    EXPECT_TRUE(choose(u"TrendVar"_s, u"mnuHeadFreeze"_s));
    EXPECT_EQ(SplitObject(1)->property("FrozenColumn").toString(), u"TrendVar"_s);
    EXPECT_TRUE(choose(u"Unit"_s, u"mnuHeadDown"_s));
    EXPECT_EQ(Text(RowCount(1) - 1, u"Unit"_s), u"%"_s);
    CloseProject();
    Open();
    EXPECT_FALSE(ShownFields(1).contains(u"Factor"_s)) << "and stays away";
    EXPECT_TRUE(choose(u"Offset"_s, u"mnuHeadShow(Factor)"_s));
    EXPECT_TRUE(ShownFields(1).contains(u"Factor"_s));
}

TEST_F(EditorLayoutTest, ColumnsChosenInTheOptionsStandWhereTheDialogShowsThem) {
    Open();
    const auto choose = [](QDialog& dialog) {
        auto* hidden = dialog.findChild<QListWidget*>(u"lstTrendColExist"_s);
        auto* shown = dialog.findChild<QListWidget*>(u"lstTrendColChoosed"_s);
        hidden->setCurrentRow(0);
        emit hidden->itemDoubleClicked(hidden->item(0));
        shown->setCurrentRow(shown->count() - 1);
        dialog.findChild<QAction*>(u"btnUp"_s)->trigger();
        dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
    };
    EXPECT_EQ(DialogOf([&] { Action(u"mnuExtra(4)"_s)->trigger(); }, choose), u"FConfigEditor"_s);
    // Not behind the columns that the dialog does not offer.
    EXPECT_EQ(ShownFields(1).mid(0, 4),
              (QStringList{u"Name"_s, u"TrendVar"_s, u"Maximum"_s, u"Comment"_s}));
}

TEST_F(EditorLayoutTest, AKeyInPassingTurnsNoLanguage) {
    Open();
    auto* languages = Editor()->findChild<QComboBox*>(u"cmbLanguage"_s);
    const int before = languages->currentIndex();
    languages->setFocus();
    Key(Qt::Key_Down);
    EXPECT_EQ(languages->currentIndex(), before);
    EXPECT_TRUE(languages->view()->isVisible()) << "they are chosen in the list";
    languages->hidePopup();
    Key(Qt::Key_Escape);
    EXPECT_EQ(Keyboard(), Split(1));
    // One that is chosen gives the keyboard back.
    languages->setFocus();
    languages->setCurrentIndex(1 - before);
    emit languages->activated(1 - before);
    EXPECT_EQ(Keyboard(), Split(1));
    const int row = CurrentRow();
    Key(Qt::Key_Down);
    EXPECT_EQ(CurrentRow(), row + 1);
    EXPECT_EQ(languages->currentIndex(), 1 - before);
}

// A picture of every look when KV_SCREENSHOTS names a folder; always: icons and texts that can be
// seen on their ground.
TEST_F(EditorLayoutTest, LooksInBothLanguagesAndPalettes) {
    const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
    const QPalette light = QApplication::palette();
    QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2a, 0x2a, 0x2a));
    dark.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
    WriteIni(
        "tdbA.Splits(1).Columns(\"Name\").Width=2700\r\n"
        "tdbA.Splits(1).Columns(\"Comment\").Visible=False\r\n"
        "tdbA.Splits(1).Columns(\"Factor\").Width=1500\r\n"
        "tdbA.Splits(1).Columns(\"Offset\").Width=1500\r\n"
        "tdbA.Splits(1).Columns(\"Unit\").Width=900\r\n"
        "tdbA.Splits(1).Columns(\"VLineColor\").Width=1400\r\n"
        "tdbA.Splits(1).Columns(\"VLineColor\").Visible=True\r\n");
    host_.container.resize(1150, 560);
    for (const bool english : {true, false}) {
        for (const bool isDark : {false, true}) {
            SCOPED_TRACE((english ? "English " : "German ") +
                         std::string(isDark ? "dark" : "light"));
            QApplication::setPalette(isDark ? dark : light);
            Open(u"ARCH2"_s, english);
            ClickCell(3, u"TrendVar"_s);
            SelectRow(6);
            SelectRow(8, Qt::ControlModifier);
            Action(u"mnuExtra(0)"_s)->trigger();
            const QImage picture = host_.container.grab().toImage();
            if (!folder.isEmpty()) {
                picture.save(folder + u"/editor-%1-%2.png"_s.arg(english ? u"en"_s : u"de"_s,
                                                                 isDark ? u"dark"_s : u"light"_s));
            }
            const int ground = host_.container.palette().window().color().lightness();
            EXPECT_EQ(ground < 128, isDark);
            const QImage icon = Action(u"mnuCopy"_s)->icon().pixmap(20).toImage();
            int furthest = 0;
            for (int x = 0; x < icon.width(); ++x) {
                const QColor pixel = icon.pixelColor(x, icon.height() / 2);
                if (pixel.alpha() < 200) continue;
                furthest = std::max(furthest, std::abs(pixel.lightness() - ground));
            }
            EXPECT_GT(furthest, 90) << "the icon on its ground";
            CloseProject();
        }
    }
    QApplication::setPalette(light);
    EXPECT_THAT(messages_, IsEmpty());
}

}  // namespace
