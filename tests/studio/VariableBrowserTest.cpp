#include "studio/VariableBrowser.h"

#include <gtest/gtest.h>
#include <algorithm>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "studio/VariableCatalog.h"
#include "studio/VariableDialog.h"
#include "studio/VariableModel.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

QString Data(const QString& name) {
    return QStringLiteral(KV_TEST_DATA "/") + name;
}

/// A project with `perStructure` variables in each of `structures` structures.
class MadeProject {
public:
    MadeProject(int structures, int perStructure) {
        QFile::copy(Data(u"Leer.kvs"_s), path_);
        QFile::setPermissions(path_, QFile::ReadOwner | QFile::WriteOwner);
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path_.toStdString());
        connection.BeginTrans();
        std::vector<std::int32_t> ids;
        ado::Recordset rows;
        rows.Open("TpdbStructs", connection, ado::CommandType::Table);
        for (int i = 1; i <= structures; ++i) {
            rows.AddNew();
            rows.Set("Name", Text(u"Area%1"_s.arg(i)));
            rows.Set("Comment", Text(u"Hall %1"_s.arg(i * 100)));
            rows.Update();
            ids.push_back(ado::ToLong(rows.Get("ID")));
        }
        rows.Close();
        rows.Open("TpdbVars", connection, ado::CommandType::Table);
        const QStringList kinds = {u"Temperature"_s, u"Pressure"_s, u"Level"_s, u"Flow"_s};
        for (int i = 1; i <= structures * perStructure; ++i) {
            const int structure = (i - 1) / perStructure + 1;
            rows.AddNew();
            rows.Set("StructID", ids[static_cast<std::size_t>(structure) - 1]);
            rows.Set("Name", Text(u"Area%1.Tank %2.%3"_s.arg(structure).arg(i).arg(kinds[i % 4])));
            rows.Set("DataType", Text(i % 2 == 0 ? u"REAL"_s : u"INT"_s));
            rows.Set("Unit", Text(i % 4 == 1 ? u"bar"_s : u"%"_s));
            rows.Update();
        }
        rows.Close();
        connection.CommitTrans();
        connection.Close();
    }
    [[nodiscard]] const QString& Path() const { return path_; }

private:
    static std::u16string Text(const QString& text) { return text.toStdU16String(); }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"Made.kvs"_s);
};

const MadeProject& Small() {
    static const MadeProject project(3, 40);
    return project;
}

VariableCatalog& ReadAll(VariableCatalog& catalog, const QString& path) {
    catalog.Open(path);
    while (catalog.ReadSome(1s)) {
    }
    return catalog;
}

class VariableDialogTest : public testing::TestWithParam<int> {
protected:
    template <typename Control>
    static Control* Find(const VariableDialog& dialog, const QString& name) {
        return dialog.findChild<Control*>(name);
    }
    /// Waits until everything has been read and what is typed in the search has been applied.
    static void AwaitState(const VariableDialog& dialog, const QString& german,
                           const QString& english) {
        const auto* state = Find<QLabel>(dialog, u"lblState"_s);
        const QString& expected = GetParam() == kGerman ? german : english;
        EXPECT_TRUE(QTest::qWaitFor([&] { return state->text() == expected; }, 30000))
            << state->text().toStdString();
    }

    StudioTexts texts_{GetParam()};
};

// The whole way by keyboard, in both languages: search, go on with the arrow keys, take.
TEST_P(VariableDialogTest, IsWorkedFromTheSearchField) {
    VariableCatalog catalog;
    catalog.Open(Small().Path());
    VariableDialog dialog(catalog, texts_, u"120"_s, nullptr);
    dialog.show();
    AwaitState(dialog, u"120 Variablen"_s, u"120 variables"_s);
    auto* search = Find<QLineEdit>(dialog, u"txtSearch"_s);
    auto* ok = Find<QPushButton>(dialog, u"cmdOk"_s);
    EXPECT_EQ(dialog.focusWidget(), search);
    EXPECT_EQ(dialog.Chosen(), u"") << "a number is no variable to begin at";
    EXPECT_FALSE(ok->isEnabled());

    QTest::keyClicks(search, u"LEVEL area2"_s);
    AwaitState(dialog, u"10 von 120 Variablen"_s, u"10 of 120 variables"_s);
    EXPECT_EQ(dialog.Chosen(), u"Area2.Tank 42.Level");
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Up);
    EXPECT_EQ(dialog.Chosen(), u"Area2.Tank 46.Level");
    EXPECT_EQ(dialog.focusWidget(), search);
    QTest::keyClick(search, Qt::Key_Up);
    QTest::keyClick(search, Qt::Key_Up);
    EXPECT_EQ(dialog.Chosen(), u"") << "a structure";
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());

    // The filter that was typed last counts even when Enter follows at once.
    QTest::keyClicks(search, u" 50"_s);
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.Chosen(), u"Area2.Tank 50.Level");
}

TEST_P(VariableDialogTest, BeginsAtTheCurrentName) {
    const struct {
        QString current;
        QString marked;
    } cases[] = {
        {u"Area3.Tank 120.Temperature"_s, u"Area3.Tank 120.Temperature"_s},
        {u"area1.tank 7.flow"_s, u"Area1.Tank 7.Flow"_s},
        {u"Area1.Tank 7"_s, u""_s},
        {u""_s, u""_s},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.current.toStdString());
        VariableCatalog catalog;
        catalog.Open(Small().Path());
        VariableDialog dialog(catalog, texts_, each.current, nullptr);
        dialog.show();
        AwaitState(dialog, u"120 Variablen"_s, u"120 variables"_s);
        EXPECT_EQ(dialog.Chosen(), each.marked);
        EXPECT_EQ(Find<QPushButton>(dialog, u"cmdOk"_s)->isEnabled(), !each.marked.isEmpty());
        // Letters that are typed in the tree go into the search, and keep what is marked.
        auto* tree = Find<QTreeView>(dialog, u"trvVariables"_s);
        tree->setFocus();
        QTest::keyClick(tree, Qt::Key_T);
        AwaitState(dialog, u"120 von 120 Variablen"_s, u"120 of 120 variables"_s);
        EXPECT_EQ(Find<QLineEdit>(dialog, u"txtSearch"_s)->text(), u"t");
        if (!each.marked.isEmpty()) {
            EXPECT_EQ(dialog.Chosen(), each.marked);
        }
    }
}

TEST_P(VariableDialogTest, TellsWhyThereIsNothingToChoose) {
    const struct {
        QString file;
        QString german;
        QString english;
    } cases[] = {
        {Data(u"Leer.kvs"_s), u"Dieses Projekt enthält keine Variablen."_s,
         u"This project contains no variables."_s},
        {u"/nowhere.kvs"_s, u"Die Variablen können nicht gelesen werden: "_s,
         u"The variables cannot be read: "_s},
        {Data(u"test2V2000.mdb"_s), u"Die Variablen können nicht gelesen werden: "_s,
         u"The variables cannot be read: "_s},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.file.toStdString());
        VariableCatalog catalog;
        catalog.Open(each.file);
        VariableDialog dialog(catalog, texts_, {}, nullptr);
        dialog.show();
        const QString state = Find<QLabel>(dialog, u"lblState"_s)->text();
        EXPECT_TRUE(state.startsWith(GetParam() == kGerman ? each.german : each.english))
            << state.toStdString();
        EXPECT_FALSE(Find<QPushButton>(dialog, u"cmdOk"_s)->isEnabled());
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, VariableDialogTest, testing::Values(kGerman, kEnglish));

TEST(VariableModelTest, FiltersByEveryColumnWhileItIsFilled) {
    const struct {
        QString filter;
        std::size_t shown;
        int structures;
    } cases[] = {
        {u""_s, 120, 3},        {u"tank"_s, 120, 3},
        {u"Area1."_s, 40, 1},   {u" REAL level "_s, 30, 3},
        {u"int LEVEL"_s, 0, 0}, {u"bar"_s, 30, 3},
        {u"300"_s, 40, 1},  // in what the structure is called
        {u"(*"_s, 0, 0},
    };
    const StudioTexts texts;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.filter.toStdString());
        VariableCatalog catalog;
        catalog.Open(Small().Path());
        VariableModel model(catalog, texts);
        const QAbstractItemModelTester tester(&model);
        model.SetFilter(each.filter);
        while (catalog.ReadSome(0ms)) model.TakeNew();
        model.TakeNew();
        EXPECT_EQ(model.ShownCount(), each.shown);
        EXPECT_EQ(model.rowCount(), each.structures);
        model.SetFilter(u"nothing has this"_s);
        model.SetFilter(each.filter);
        EXPECT_EQ(model.ShownCount(), each.shown) << "filtered at once";
        EXPECT_EQ(model.rowCount(), each.structures);
    }
}

// What a trend stores is the full name; below its structure the tree leaves the structure out.
TEST(VariableModelTest, ShowsNamesBelowTheirStructure) {
    const StudioTexts texts;
    VariableCatalog catalog;
    const VariableModel model(ReadAll(catalog, QStringLiteral(KV_EXAMPLES "/Brauerei.kvs")), texts);
    const QModelIndex index = model.Find(u"Gärkeller.Gärtank 1.Druck"_s, Qt::CaseSensitive);
    ASSERT_TRUE(index.isValid());
    EXPECT_EQ(index.data().toString(), u"Gärtank 1.Druck");
    EXPECT_EQ(index.data(Qt::ToolTipRole).toString(), u"Gärkeller.Gärtank 1.Druck");
    EXPECT_TRUE(index.parent().data().toString().startsWith(u"Gärkeller ("));
    EXPECT_EQ(catalog.VariableCount(), 398U);
}

// The dialog finds a name that lies far behind what it has read when it is shown.
TEST(VariableModelTest, FindsANameAmongManyVariables) {
    const MadeProject project(3, 2000);
    const StudioTexts texts;
    VariableCatalog catalog;
    catalog.Open(project.Path());
    VariableDialog dialog(catalog, texts, u"Area3.Tank 6000.Temperature"_s, nullptr);
    dialog.show();
    QElapsedTimer all;
    all.start();
    while (dialog.Chosen().isEmpty() && all.elapsed() < 60000) {
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(catalog.VariableCount(), 6000U);
}

// For whoever makes something of each: the keyboard stays in the search all the same.
TEST_P(VariableDialogTest, SeveralAreChosenAndUsesAreShown) {
    VariableCatalog catalog;
    ReadAll(catalog, Small().Path());
    VariableDialog dialog(catalog, texts_, u"Area1.Tank 7.Flow"_s, nullptr);
    EXPECT_EQ(dialog.AllChosen(), QStringList{u"Area1.Tank 7.Flow"_s});
    dialog.OfferSeveral();
    QStringList shown;
    dialog.OfferUses([&](QWidget*, const QString& variable) { shown += variable; });
    dialog.show();
    auto* search = Find<QLineEdit>(dialog, u"txtSearch"_s);
    QTest::keyClick(search, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(search, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(dialog.AllChosen(),
              QStringList({u"Area1.Tank 7.Flow"_s, u"Area1.Tank 8.Temperature"_s,
                           u"Area1.Tank 9.Pressure"_s}));
    Find<QPushButton>(dialog, u"cmdUses"_s)->click();
    EXPECT_EQ(shown, QStringList{u"Area1.Tank 9.Pressure"_s});
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST(VariableBrowserTest, ReturnsTheChosenNameAndNothingWhenCancelled) {
    StudioTexts texts(kEnglish);
    VariableBrowser browser(texts);
    EXPECT_EQ(browser.Choose(nullptr, {}), std::nullopt) << "no project";
    browser.SetProject(Small().Path());
    const auto choose = [&](Qt::Key key) {
        QTimer waiting;
        QObject::connect(&waiting, &QTimer::timeout, [&] {
            auto* dialog = qobject_cast<VariableDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr || dialog->Chosen().isEmpty()) return;
            waiting.stop();
            QTest::keyClick(dialog, key);
        });
        waiting.start(1);
        return browser.Choose(nullptr, {u"Area1.Tank 7.Flow"_s});
    };
    EXPECT_EQ(choose(Qt::Key_Return), QStringList{u"Area1.Tank 7.Flow"_s});
    EXPECT_EQ(choose(Qt::Key_Escape), std::nullopt);
}

}  // namespace
}  // namespace studio
