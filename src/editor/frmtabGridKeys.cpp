// The keys of the editor window, and what it says when a command cannot run.

#include <QStatusBar>
#include <QToolTip>

#include "controls/TDBGrid.h"
#include "editor/EditorHistory.h"
#include "editor/EditorMenus.h"
#include "editor/frmtabGrid.h"
#include "messages/PlainTexts.h"
#include "platform/HelpTopics.h"
#include "projectdb/NodeKey.h"
#include "texts/MResourceTable.h"

namespace {

constexpr int kHintMs = 10000;

}  // namespace

void frmtabGrid::Hint(const QString& text) {
    sb->showMessage(text, kHintMs);
    if (!sb->isHidden()) return;
    // Without a status bar it is shown where the user looks.
    QWidget* place = focusWidget() != nullptr ? focusWidget() : this;
    QToolTip::showText(place->mapToGlobal(place->rect().bottomLeft()), messages::TipLines(text),
                       place);
}

void frmtabGrid::Hint(int text) {
    Hint(commandset::HintText(text, texts_));
}

void frmtabGrid::HintAt(commandset::Id id) {
    const int obstacle = commandset::Obstacle(commandset::CommandOf(id), Situation());
    if (obstacle != 0) Hint(obstacle);
}

commandset::Situation frmtabGrid::Situation() {
    const QStringView kind = projectdb::NodeKind(nodeKey_);
    const GridSplit& trends = tdbA->SplitAt(1);
    commandset::Situation situation;
    situation.canWrite = CanWrite();
    situation.isRoot = kind == projectdb::kRootKind;
    situation.isArchive = kind == projectdb::kArchiveKind;
    // The list of the archives is as good a place for a new one as the node above them.
    situation.isInArchives = active_ && tdbA->Split() == 0;
    situation.hasTrend = trends.CurrentRow() != kNoGridRow;
    situation.hasSelection = !trends.SelectedRows().isEmpty();
    situation.hasCells = trends.SelectedCells().rows.size() > 1;
    situation.hasArchives = tdbA->SplitAt(0).SelectedRows().size() > 1;
    situation.hasDone = history_->CanUndo();
    situation.hasUndone = history_->CanRedo();
    return situation;
}

bool frmtabGrid::MayStore() {
    if (CanWrite()) return true;
    Hint(MResourceTable::kTextHintReadOnly);
    return false;
}

/// What the menu of the trends says when it opens holds for the toolbar at any time.
void frmtabGrid::UpdateCommands() {
    menus_->ShowSteps();
    menus_->Update(Situation());
}

commandset::Place frmtabGrid::Place(int split) const {
    if (split == 0) return commandset::Place::Archives;
    return tdbA->SplitAt(1).AreCellsSelected() ? commandset::Place::Cells
                                               : commandset::Place::Trends;
}

void frmtabGrid::ShowHelp() {
    addIn_.ShowHelpTopic(
        tdbA->Split() == 0 ? platform::kHelpEditorWindow : platform::kHelpTrendGrid, this);
}
