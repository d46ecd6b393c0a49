#include <QAccessible>

#include "controls/CurvePreview.h"
#include "controls/GridTest.h"

// What assistive tools find in the controls. What they are told meanwhile is the matter of a task
// that is done through them (accessible_task).
namespace {

class GridSpokenTest : public GridTest {};

TEST_F(GridSpokenTest, ARowIsSelectedByTheActionOfItsCell) {
    QAccessibleInterface* grid = QAccessible::queryAccessibleInterface(View());
    ASSERT_NE(grid, nullptr);
    QAccessibleInterface* cell = grid->tableInterface()->cellAt(2, kVar);
    ASSERT_NE(cell, nullptr);
    QAccessibleActionInterface* actions = cell->actionInterface();
    ASSERT_NE(actions, nullptr);
    const QString toggle = QAccessibleActionInterface::toggleAction();
    ASSERT_TRUE(actions->actionNames().contains(toggle));
    actions->doAction(toggle);
    EXPECT_EQ(split_->SelectedRows(), QList<GridRowId>{103});
    actions->doAction(toggle);
    EXPECT_TRUE(split_->SelectedRows().isEmpty());
}

TEST_F(GridSpokenTest, ThePreviewIsAnImage) {
    CurvePreview preview;
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&preview);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Graphic);
}

}  // namespace
