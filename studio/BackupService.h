#pragma once

#include <QObject>
#include <QString>
#include <QThreadPool>

#include "backups/Backups.h"

class QSettings;

namespace studio {

/// Takes the backups of the projects that are opened, one after another in a thread of its own, and
/// knows how many the user wants and where. For the user-interface thread.
class BackupService final : public QObject {
    Q_OBJECT
public:
    static constexpr int kDefaultMost = 10;
    static constexpr int kGreatestMost = 100;

    /// `state` keeps the settings, and the backups lie beside its file unless the user has named
    /// another folder. Borrowed; null: nothing is kept, and no backups are taken.
    explicit BackupService(QSettings* state, QObject* parent = nullptr);
    ~BackupService() override;  // waits for the one that is being taken

    [[nodiscard]] int Most() const;
    void SetMost(int most);
    /// The folder that the user has named; empty when it is the usual one.
    [[nodiscard]] QString Folder() const;
    void SetFolder(const QString& folder);
    [[nodiscard]] QString UsualFolder() const;

    /// Keeps the state that the project at this native path has now, and returns at once.
    void Take(const QString& project);
    /// Waits until none is being taken.
    void Wait();
    /// The latest first.
    [[nodiscard]] std::vector<backups::Backup> List(const QString& project) const;
    /// See backups::Backups. The studio has closed the project.
    [[nodiscard]] backups::Outcome Restore(const QString& project, const backups::Backup& backup);

signals:
    /// What Take has begun has ended.
    void Taken(const QString& project, const backups::Outcome& outcome);

private:
    [[nodiscard]] backups::Backups Of(const QString& project) const;

    QSettings* state_;
    QThreadPool thread_;
};

}  // namespace studio
