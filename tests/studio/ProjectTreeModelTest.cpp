#include "studio/ProjectTreeModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr KV4AddIn::NodeFlags kPlain{};
constexpr KV4AddIn::NodeFlags kOrdered{.ordered = true};

class ProjectTreeModelTest : public testing::Test {
protected:
    QStringList Children(const QString& key) {
        return model_.ChildKeys(key).value_or(QStringList());
    }
    QString Text(const QString& key) { return model_.IndexOf(key).data().toString(); }

    ProjectTreeModel model_;
    // Aborts the test as soon as the model breaks a rule of Qt's models.
    QAbstractItemModelTester tester_{&model_,
                                     QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ProjectTreeModelTest, RefusesWhatCannotBeAdded) {
    ASSERT_TRUE(model_.Add({}, u"Root"_s, u"R"_s, {}, {}, kPlain));
    EXPECT_FALSE(model_.Add({}, u"Again"_s, u"R"_s, {}, {}, kPlain)) << "key taken";
    EXPECT_FALSE(model_.Add({}, u"No key"_s, {}, {}, {}, kPlain));
    EXPECT_FALSE(model_.Add(u"X"_s, u"Orphan"_s, u"O"_s, {}, {}, kPlain));
    EXPECT_FALSE(model_.Add(u"r"_s, u"Orphan"_s, u"O"_s, {}, {}, kPlain)) << "keys have case";
    EXPECT_FALSE(model_.Remove(u"X"_s));
    EXPECT_FALSE(model_.Refresh(u"X"_s, u"text"_s, {}));
    EXPECT_EQ(model_.ChildKeys(u"X"_s), std::nullopt);
    EXPECT_EQ(model_.ChildKeys(u"R"_s), std::nullopt) << "no children";
}

TEST_F(ProjectTreeModelTest, SortsNaturallyUnlessOrdered) {
    model_.Add({}, u"Sorted"_s, u"S"_s, {}, {}, kPlain);
    model_.Add({}, u"Ordered"_s, u"O"_s, {}, {}, kOrdered);
    for (const auto& text : {u"Tank 10"_s, u"tank 2"_s, u"Äpfel"_s, u"Tank 1"_s, u"Zeit"_s}) {
        model_.Add(u"S"_s, text, u"s"_s + text, {}, {}, kPlain);
        model_.Add(u"O"_s, text, u"o"_s + text, {}, {}, kPlain);
    }
    EXPECT_EQ(Children(u"S"_s),
              (QStringList{u"sÄpfel"_s, u"sTank 1"_s, u"stank 2"_s, u"sTank 10"_s, u"sZeit"_s}));
    EXPECT_EQ(Children(u"O"_s),
              (QStringList{u"oTank 10"_s, u"otank 2"_s, u"oÄpfel"_s, u"oTank 1"_s, u"oZeit"_s}));

    const QPersistentModelIndex renamed(model_.IndexOf(u"sTank 1"_s));
    model_.Refresh(u"sTank 1"_s, u"Zz"_s, {});
    EXPECT_EQ(Children(u"S"_s).last(), u"sTank 1"_s);
    EXPECT_EQ(renamed.data().toString(), u"Zz"_s);
    EXPECT_EQ(renamed.row(), 4);
}

TEST_F(ProjectTreeModelTest, PositionsCountBehindTheStudiosOwnNodes) {
    model_.AddOwn(u"Project"_s, u"PROJ"_s, {});
    struct Row {
        QString key;
        QString position;
        QStringList order;
    };
    const Row rows[] = {
        {u"A"_s, u"0"_s, {u"PROJ"_s, u"A"_s}},
        {u"B"_s, {}, {u"PROJ"_s, u"A"_s, u"B"_s}},
        {u"C"_s, u"0"_s, {u"PROJ"_s, u"C"_s, u"A"_s, u"B"_s}},
        {u"D"_s, u"2"_s, {u"PROJ"_s, u"C"_s, u"A"_s, u"D"_s, u"B"_s}},
        {u"E"_s, u"99"_s, {u"PROJ"_s, u"C"_s, u"A"_s, u"D"_s, u"B"_s, u"E"_s}},
        {u"F"_s, u"x"_s, {u"PROJ"_s, u"C"_s, u"A"_s, u"D"_s, u"B"_s, u"E"_s, u"F"_s}},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(model_.Add({}, row.key, row.key, row.position, {}, kPlain));
        EXPECT_EQ(Children({}), row.order);
    }
    EXPECT_FALSE(model_.Remove(u"PROJ"_s)) << "the studio's";
}

TEST_F(ProjectTreeModelTest, RemovesWholeBranches) {
    model_.Add({}, u"Root"_s, u"R"_s, {}, {}, {.expandable = true});
    model_.Add(u"R"_s, u"Child"_s, u"C"_s, {}, {}, kPlain);
    model_.Add(u"C"_s, u"Grandchild"_s, u"G"_s, {}, {}, kPlain);
    ASSERT_TRUE(model_.Remove(u"C"_s));
    EXPECT_FALSE(model_.IndexOf(u"G"_s).isValid());
    EXPECT_TRUE(model_.Add(u"R"_s, u"New"_s, u"G"_s, {}, {}, kPlain)) << "the key is free again";
    ASSERT_TRUE(model_.Remove(u"G"_s));
    EXPECT_TRUE(model_.hasChildren(model_.IndexOf(u"R"_s))) << "expandable keeps its expander";
}

TEST_F(ProjectTreeModelTest, OnlyEditableNodesTakeTheUsersText) {
    model_.Add({}, u"Fixed"_s, u"F"_s, {}, {}, kPlain);
    model_.Add({}, u"Free"_s, u"E"_s, {}, {}, {.editable = true});
    EXPECT_FALSE(model_.IndexOf(u"F"_s).flags().testFlag(Qt::ItemIsEditable));
    EXPECT_TRUE(model_.IndexOf(u"E"_s).flags().testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(model_.setData(model_.IndexOf(u"E"_s), u"  "_s, Qt::EditRole));
    EXPECT_TRUE(model_.setData(model_.IndexOf(u"E"_s), u" New "_s, Qt::EditRole));
    EXPECT_EQ(Text(u"E"_s), u"New"_s);
}

TEST_F(ProjectTreeModelTest, ReplacedIconIsShown) {
    QPixmap red(16, 16), blue(16, 16);
    red.fill(Qt::red);
    blue.fill(Qt::blue);
    model_.RegisterIcon(u"ico"_s, red);
    model_.Add({}, u"Root"_s, u"R"_s, {}, u"ico"_s, kPlain);
    const QSignalSpy changes(&model_, &QAbstractItemModel::dataChanged);
    model_.RegisterIcon(u"ico"_s, blue);
    EXPECT_EQ(changes.count(), 1);
    const auto icon = model_.IndexOf(u"R"_s).data(Qt::DecorationRole).value<QIcon>();
    EXPECT_EQ(icon.pixmap(16).toImage().pixelColor(8, 8), QColor(Qt::blue));
}

// Without the tester, which looks through the whole model at each change.
TEST(ProjectTreeModelSize, TenThousandNodesComeAndGo) {
    ProjectTreeModel model;
    model.Add({}, u"Root"_s, u"R"_s, {}, {}, kPlain);
    for (int i = 0; i < 10000; ++i) {
        const QString text = u"Archive %1"_s.arg((i * 7919) % 10000);
        ASSERT_TRUE(model.Add(u"R"_s, text, text, {}, {}, kPlain));
    }
    const QStringList keys = model.ChildKeys(u"R"_s).value_or(QStringList());
    EXPECT_EQ(keys.value(1234), u"Archive 1234"_s);
    for (const QString& key : keys) ASSERT_TRUE(model.Remove(key));
    EXPECT_FALSE(model.ChildKeys(u"R"_s));
}

}  // namespace
}  // namespace studio
