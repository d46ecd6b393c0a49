#pragma once

#include <optional>
#include <QString>
#include <QStringList>
#include <vector>

#include "projectdb/ProjectContext.h"
#include "texts/MResources.h"

class QWidget;

/// What the user has done in the editor window, step by step, and the way back and forth. One
/// action of the user is one step: whoever lets the user act ends it.
class EditorHistory {
public:
    /// All are borrowed. `window` is what dialogs stand over.
    EditorHistory(projectdb::ProjectContext& project, const MResources::TextTable& texts,
                  QWidget& window)
        : project_(project), texts_(texts), window_(window) {}

    /// What has been changed since the last call is a step, whose name is returned. Empty, and
    /// nothing done, when nothing has been.
    QString EndStep();

    [[nodiscard]] bool CanUndo() const { return !project_.history.Done().empty(); }
    [[nodiscard]] bool CanRedo() const { return !project_.history.Undone().empty(); }

    enum class Direction { Back, Forward };
    /// Names of the steps in this direction, the next first; `most` of them.
    [[nodiscard]] QStringList Names(Direction direction, int most) const;
    struct Moved {
        QString step;
        project::ChangeSet changes;  // in the file
    };
    /// One step back or forward. Where another program has come between, the user settles it;
    /// nothing when he has given up, and then nothing has been changed. REQUIRES: there is a step
    /// in this direction.
    [[nodiscard]] std::optional<Moved> Move(Direction direction);

    /// Shows what differs, over `owner`: whether the user's values hold, for each; nothing when he
    /// gives up. `about`: what the title names; may be empty.
    [[nodiscard]] std::optional<std::vector<bool>> Ask(
        const std::vector<project::Conflict>& conflicts, const QString& about,
        QWidget* owner) const;

private:
    [[nodiscard]] bool Settle(const std::vector<project::Conflict>& conflicts,
                              std::vector<project::Settlement>& settled, const QString& step);
    void Tell(const QString& text);

    projectdb::ProjectContext& project_;
    const MResources::TextTable& texts_;
    QWidget& window_;
};
