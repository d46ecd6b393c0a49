#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "studio/AddInSet.h"
#include "studio/ProjectTree.h"
#include "studio/ProjectTreeModel.h"
#include "studio/RecordingAddIn.h"
#include "studio/StudioHost.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"
#include "studio/TreeEvents.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

/// The real window with the recording add-in and a project open; PROJ is selected, the add-in
/// not used yet.
class TreeEventsTest : public testing::Test {
protected:
    TreeEventsTest() {
        addIns_.Add(u"Sample"_s, addIn_);
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), nullptr);
        window_->show();
        EXPECT_TRUE(window_->OpenProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs")));
        tree_ = &window_->Tree();
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        tree_->setFocus();
        QCoreApplication::processEvents();
        addIn_.Take();
    }
    /// The add-in in use, with its root selected.
    void Use() {
        Click(u"SMP0"_s);
        QCoreApplication::processEvents();
        addIn_.Take();
    }
    QPoint Place(const QString& key) const {
        return tree_->visualRect(Model().IndexOf(key)).center();
    }
    QPoint ExpanderOf(const QString& key) const {
        const QRect rect = tree_->visualRect(Model().IndexOf(key));
        return {rect.left() - tree_->indentation() / 2, rect.center().y()};
    }
    const ProjectTreeModel& Model() const {
        return *qobject_cast<ProjectTreeModel*>(tree_->model());
    }
    void Click(const QString& key, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(tree_->viewport(), button, modifiers, Place(key));
    }
    QString Selected() const {
        const auto node = window_->Host().SelectedNode();
        return node ? node->key : QString();
    }

    StudioRegistry registry_;
    RecordingAddIn addIn_;
    RecordingAddIn second_;  // for the tests that add it
    AddInSet addIns_;
    std::unique_ptr<StudioWindow> window_;
    ProjectTree* tree_ = nullptr;
};

TEST(VirtualKeyTest, Numbers) {
    struct Row {
        int qtKey;
        bool keypad;
        int expected;
    };
    const Row rows[] = {
        {Qt::Key_F1, false, 112},   {Qt::Key_F6, false, 117},      {Qt::Key_F9, false, 120},
        {Qt::Key_F12, false, 123},  {Qt::Key_Delete, false, 46},   {Qt::Key_Insert, false, 45},
        {Qt::Key_A, false, 65},     {Qt::Key_Z, false, 90},        {Qt::Key_0, false, 48},
        {Qt::Key_9, false, 57},     {Qt::Key_9, true, 105},        {Qt::Key_Minus, false, 189},
        {Qt::Key_Minus, true, 109}, {Qt::Key_Enter, true, 13},     {Qt::Key_Left, false, 37},
        {Qt::Key_Delete, true, 46}, {Qt::Key_Dead_Acute, false, 0}};
    for (const Row& row : rows) {
        EXPECT_EQ(VirtualKey(row.qtKey, row.keypad), row.expected) << row.qtKey << row.keypad;
    }
}

TEST_F(TreeEventsTest, OneClickRaisesOneNodeClick) {
    Click(u"SMP0"_s);
    EXPECT_THAT(addIn_.Take(), ElementsAre(u"NodeMouseDown SMP0 1 0"_s, u"NodeClick /SMP0"_s,
                                           u"NodeMouseUp SMP0 1 0"_s));
    // The first click has filled and expanded the branch, which is no event.
    EXPECT_TRUE(tree_->isExpanded(Model().IndexOf(u"SMP0"_s)));

    QCoreApplication::processEvents();
    Click(u"SMPL2"_s, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_THAT(addIn_.Take(), ElementsAre(u"NodeMouseDown SMPL2 1 2"_s, u"NodeClick SMP0/SMPL2"_s,
                                           u"NodeMouseUp SMPL2 1 2"_s));
    // On the node that is selected already: once more, and Ctrl does not take the selection away.
    Click(u"SMPL2"_s, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_TRUE(addIn_.Take().contains(u"NodeClick SMP0/SMPL2"_s));
    EXPECT_EQ(Selected(), u"SMPL2"_s);
    // The studio's own node raises the same events.
    Click(u"PROJ"_s);
    EXPECT_TRUE(addIn_.Take().contains(u"NodeClick /PROJ"_s));
    // Beside the nodes there is nothing to tell.
    QTest::mouseClick(tree_->viewport(), Qt::LeftButton, {},
                      QPoint(5, tree_->viewport()->height() - 5));
    EXPECT_THAT(addIn_.Take(), IsEmpty());
    EXPECT_EQ(Selected(), u"PROJ"_s);
}

TEST_F(TreeEventsTest, RightClickSelectsBeforeTheMenuIsAskedFor) {
    Use();
    Click(u"SMPL1"_s, Qt::RightButton);
    EXPECT_THAT(addIn_.Take(), ElementsAre(u"NodeMouseDown SMPL1 2 0"_s, u"NodeClick SMP0/SMPL1"_s,
                                           u"NodeMouseUp SMPL1 2 0"_s));
    Click(u"SMPL1"_s, Qt::RightButton);
    EXPECT_THAT(addIn_.Take(),
                ElementsAre(u"NodeMouseDown SMPL1 2 0"_s, u"NodeMouseUp SMPL1 2 0"_s));
    // The menu key does the same for the keyboard.
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(tree_, &menuKey);
    EXPECT_THAT(addIn_.Take(),
                ElementsAre(u"NodeMouseDown SMPL1 2 0"_s, u"NodeMouseUp SMPL1 2 0"_s));
}

TEST_F(TreeEventsTest, DoubleClickRaisesOneClickAndOneDoubleClick) {
    Use();
    const QPoint place = Place(u"SMPL3"_s);
    QTest::mouseClick(tree_->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(tree_->viewport(), Qt::LeftButton, {}, place);
    const QStringList events = addIn_.Take();
    EXPECT_EQ(events.count(u"NodeDblClick SMPL3"_s), 1);
    EXPECT_EQ(events.filter(u"NodeClick"_s).size(), 1) << qPrintable(events.join(u'\n'));
}

TEST_F(TreeEventsTest, MovesCarryTheButtonsHeld) {
    Use();
    addIn_.recordMoves = true;
    QTest::mouseMove(tree_->viewport(), Place(u"SMPL1"_s));
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return addIn_.events.contains(u"NodeMouseMove SMPL1 0 0"_s); }));
}

TEST_F(TreeEventsTest, KeyboardSelectionRaisesOneNodeClick) {
    Use();
    struct Row {
        Qt::Key key;
        QStringList events;
    };
    const Row rows[] = {
        {Qt::Key_Down,
         {u"NodeKeyDown SMP0 40 0"_s, u"NodeClick SMP0/SMPL1"_s, u"NodeKeyUp SMPL1 40 0"_s}},
        {Qt::Key_End,
         {u"NodeKeyDown SMPL1 35 0"_s, u"NodeClick SMP0/SMPL3"_s, u"NodeKeyUp SMPL3 35 0"_s}},
        {Qt::Key_Down, {u"NodeKeyDown SMPL3 40 0"_s, u"NodeKeyUp SMPL3 40 0"_s}},
        {Qt::Key_Home,
         {u"NodeKeyDown SMPL3 36 0"_s, u"NodeClick /PROJ"_s, u"NodeKeyUp PROJ 36 0"_s}},
        {Qt::Key_S,
         {u"NodeKeyDown PROJ 83 0"_s, u"NodeKeyPress PROJ 115"_s, u"NodeClick /SMP0"_s,
          u"NodeKeyUp SMP0 83 0"_s}},
    };
    for (const Row& row : rows) {
        QTest::keyClick(tree_, row.key);
        EXPECT_EQ(addIn_.Take(), row.events) << row.key;
    }
}

TEST_F(TreeEventsTest, UsedKeysGoNoFurther) {
    addIns_.Add(u"Second"_s, second_);
    ASSERT_TRUE(window_->CloseProject());
    ASSERT_TRUE(window_->OpenProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs")));
    Use();
    second_.Take();
    addIn_.usedKeys = {40};
    addIn_.usedChars = {'p'};
    QTest::keyClick(tree_, Qt::Key_Down);
    QTest::keyClick(tree_, Qt::Key_P);
    EXPECT_EQ(Selected(), u"SMP0"_s);
    EXPECT_THAT(second_.Take(), ElementsAre(u"NodeKeyUp SMP0 40 0"_s, u"NodeKeyDown SMP0 80 0"_s,
                                            u"NodeKeyUp SMP0 80 0"_s));
}

// An embedded editor may use the same keys as shortcuts of the window.
TEST_F(TreeEventsTest, TheTreesKeysComeBeforeShortcutsOfAnEditor) {
    Use();
    struct Row {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QString event;
    };
    const Row rows[] = {{Qt::Key_F6, Qt::AltModifier, u"NodeKeyDown SMP0 117 4"_s},
                        {Qt::Key_F8, {}, u"NodeKeyDown SMP0 119 0"_s},
                        {Qt::Key_F9, {}, u"NodeKeyDown SMP0 120 0"_s},
                        {Qt::Key_Delete, Qt::ControlModifier, u"NodeKeyDown SMP0 46 2"_s},
                        {Qt::Key_F1, Qt::ShiftModifier, u"NodeKeyDown SMP0 112 1"_s},
                        {Qt::Key_C, Qt::ControlModifier, u"NodeKeyDown SMP0 67 2"_s}};
    for (const Row& row : rows) {
        const QShortcut shortcut(QKeySequence(row.modifiers | row.key), addIn_.editor.data());
        const QSignalSpy activated(&shortcut, &QShortcut::activated);
        QTest::keyClick(tree_, row.key, row.modifiers);
        EXPECT_TRUE(addIn_.Take().contains(row.event)) << qPrintable(row.event);
        EXPECT_EQ(activated.count(), 0);
    }
    // The window's own shortcuts stay the window's.
    QTest::keyClick(tree_, Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window_->HasProject());
}

TEST_F(TreeEventsTest, ExpandingAsksUntilTheBranchIsFilled) {
    addIn_.failUse = true;
    const QModelIndex root = Model().IndexOf(u"SMP0"_s);
    const auto pressExpander = [this] {
        QTest::mouseClick(tree_->viewport(), Qt::LeftButton, {}, ExpanderOf(u"SMP0"_s));
    };
    for (int attempt = 0; attempt < 2; ++attempt) {
        pressExpander();
        EXPECT_EQ(addIn_.Take().filter(u"NodeExpand"_s), QStringList{u"NodeExpand SMP0"_s});
        EXPECT_FALSE(tree_->isExpanded(root)) << "closed again, so that it can be tried once more";
    }
    addIn_.failUse = false;
    pressExpander();
    EXPECT_TRUE(tree_->isExpanded(root));
    EXPECT_EQ(Model().rowCount(root), 3);
    EXPECT_EQ(Selected(), u"PROJ"_s) << "an expander does not select";
    addIn_.Take();
    Click(u"SMP0"_s);
    QTest::keyClick(tree_, Qt::Key_Left);
    QTest::keyClick(tree_, Qt::Key_Right);
    EXPECT_EQ(addIn_.Take().count(u"NodeExpand SMP0"_s), 1);
}

TEST_F(TreeEventsTest, HostOperationsRaiseNoEvent) {
    Use();
    KV4AddIn::IHost& host = window_->Host();
    host.AddNode(u"SMPL1"_s, u"Deep"_s, u"DEEP"_s, {}, {}, {});
    EXPECT_TRUE(host.SelectNode(u"DEEP"_s));
    EXPECT_EQ(host.SelectedNode(), (KV4AddIn::Node{u"SMPL1"_s, u"DEEP"_s, u"Deep"_s}));
    EXPECT_TRUE(host.ExpandNode(u"SMP0"_s));
    EXPECT_FALSE(host.ExpandNode(u"none"_s));
    EXPECT_FALSE(host.SelectNode(u"none"_s));
    EXPECT_TRUE(host.RemoveNode(u"DEEP"_s));
    EXPECT_THAT(addIn_.Take(), IsEmpty());
    QTimer::singleShot(0, window_.get(), [] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(host.ChooseVariable(nullptr, u"x"_s), std::nullopt);
}

TEST_F(TreeEventsTest, OneCallAtATimeAndNoExceptionGetsOut) {
    addIn_.onClick = [this] {
        QTest::keyClick(tree_, Qt::Key_Down);  // as a dialog's event loop could let through
        EXPECT_FALSE(window_->CloseProject()) << "not under the feet of an add-in";
        throw std::runtime_error("broken");
    };
    Click(u"SMP0"_s);
    EXPECT_THAT(addIn_.Take(), ElementsAre(u"NodeMouseDown SMP0 1 0"_s, u"NodeClick /SMP0"_s,
                                           u"NodeMouseUp SMP0 1 0"_s));
    addIn_.onClick = nullptr;
    EXPECT_TRUE(window_->CloseProject());
}

}  // namespace
}  // namespace studio
