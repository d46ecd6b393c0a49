#pragma once

#include <QList>
#include <QStringList>

class QSettings;

namespace studio {

/// What was open when the studio was closed, so that it comes back.
struct LastSession {
    struct Project {
        QString remembered;  // as ProjectLocation has it
        QStringList place;   // keys from the top of the tree to the node that was selected
    };
    QList<Project> projects;  // as their tabs from left to right
    int current = 0;          // of the project in front
};

[[nodiscard]] LastSession ReadLastSession(QSettings& state);
/// In place of the one before.
void WriteLastSession(QSettings& state, const LastSession& session);

}  // namespace studio
