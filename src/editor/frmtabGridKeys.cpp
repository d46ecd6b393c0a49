// The keys of the editor window, and what it says when a command cannot run.

#include <QKeyEvent>
#include <QStatusBar>
#include <QToolTip>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
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
    QToolTip::showText(place->mapToGlobal(place->rect().bottomLeft()), text.toHtmlEscaped(), place);
}

void frmtabGrid::Hint(int text) {
    Hint(texts_.GetText(text));
}

QString frmtabGrid::Obstacle(const QAction& command) {
    if (busy_) return texts_.GetText(MResourceTable::kTextHintBusy);
    if (command.isEnabled()) return {};
    const bool stores = &command != mnuArchiv[1] && &command != mnuTrend[1];
    if (stores && !CanWrite()) return texts_.GetText(MResourceTable::kTextHintReadOnly);
    if (&command == mnuArchiv[0]) return texts_.GetText(MResourceTable::kTextHintNewArchive);
    if (projectdb::NodeKind(nodeKey_) != projectdb::kArchiveKind) {
        return texts_.GetText(MResourceTable::kTextHintNoArchive);
    }
    const GridSplit& trends = tdbA->SplitAt(1);
    if (trends.CurrentRow() == kNoGridRow) return texts_.GetText(MResourceTable::kTextHintNoTrend);
    return texts_.GetText(MResourceTable::kTextHintNoSelection);
}

bool frmtabGrid::MayStore() {
    if (CanWrite()) return true;
    Hint(MResourceTable::kTextHintReadOnly);
    return false;
}

void frmtabGrid::HintAtArchiveCommand(int index) {
    const QString obstacle = Obstacle(*mnuArchiv.at(static_cast<std::size_t>(index)));
    if (!obstacle.isEmpty()) Hint(obstacle);
}

bool frmtabGrid::RunKey(const QKeyEvent& event) {
    const bool archives = tdbA->Split() == 0;
    const auto run = [this](QAction* action) {
        const QString obstacle = Obstacle(*action);
        if (obstacle.isEmpty()) {
            action->trigger();
        } else {
            Hint(obstacle);
        }
        return true;
    };
    const int key = event.key();
    if (event.modifiers() == Qt::NoModifier) {
        switch (key) {
            case Qt::Key_F1:
                addIn_.ShowHelpTopic(
                    archives ? platform::kHelpEditorWindow : platform::kHelpTrendGrid, this);
                return true;
            case Qt::Key_F8:
                return run(archives ? mnuArchiv[0] : mnuTrend[0]);
            case Qt::Key_F9:
                return run(archives ? mnuArchiv[1] : mnuTrend[1]);
            case Qt::Key_Insert:
                return run(mnuTrend[0]);
            default:
                return false;
        }
    }
    if (event.modifiers() != Qt::ControlModifier) return false;
    switch (key) {
        case Qt::Key_Delete:
            return run(archives ? mnuArchiv[2] : mnuTrend[2]);
        case Qt::Key_C:
            return run(mnuCopy);
        case Qt::Key_V:
            return run(mnuPaste);
        case Qt::Key_D:
            return run(mnuDuplicate);
        case Qt::Key_F:
            Find(tdbA->Split());
            return true;
        default:
            return false;
    }
}
