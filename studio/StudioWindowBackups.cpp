// Backups of the project that is open: what tells of them, and the way back to one. The project
// beside another one.

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStatusBar>
#include <QStringList>

#include "messages/MessageBox.h"
#include "studio/BackupsDialog.h"
#include "studio/ProjectPage.h"
#include "studio/StudioWindow.h"
#include "texts/ReasonText.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using Kind = backups::Outcome::Kind;

constexpr int kStatusMs = 8000;

Text FailureText(Kind kind) {
    switch (kind) {
        case Kind::InUse:
            return Text::ErrorRestoreInUse;
        case Kind::NotKept:
            return Text::ErrorRestoreNotKept;
        default:
            return Text::ErrorRestore;
    }
}

}  // namespace

void StudioWindow::BackupTaken(const QString& project, const backups::Outcome& outcome) {
    if (outcome.kind != Kind::Failed) return;
    qWarning("No backup: %s", outcome.text.c_str());
    // Nobody has asked for it: a line, and no message to be answered.
    statusBar()->showMessage(
        texts_(Text::StatusNoBackup, {{u"project", QFileInfo(project).completeBaseName()},
                                      {u"cause", texts::ReasonText(outcome.reason)}}));
}

void StudioWindow::mnuFileBackups_Click() {
    if (!HasProject()) return;
    const ProjectLocation project = *Page().Project();
    BackupsDialog dialog(backups_, project, texts_, this);
    const int answer = dialog.exec();
    if (answer == QDialog::Accepted) RestoreBackup(dialog.Chosen());
    if (answer == BackupsDialog::kCompare) {
        const backups::Backup& backup = dialog.Chosen();
        CompareWith(QFile::decodeName(backup.path.c_str()),
                    texts_(Text::BackupOf,
                           {{u"project", project.shown}, {u"date", DateText(backup, texts_)}}));
    }
}

void StudioWindow::mnuFileCompare_Click() {
    if (!HasProject()) return;
    const QString file = QFileDialog::getOpenFileName(this, texts_(Text::CompareTitle),
                                                      ProjectFolder(), texts_(Text::OpenFilter));
    if (file.isEmpty() || !HasProject()) return;
    QString name = QFileInfo(file).completeBaseName();
    // Two of the same name are told apart by their folders.
    if (name == QFileInfo(Page().Project()->nativePath).completeBaseName()) {
        name = QDir::toNativeSeparators(file);
    }
    CompareWith(file, name);
}

/// What projects hold is the add-ins' business.
void StudioWindow::CompareWith(const QString& file, const QString& name) {
    if (IsBusy()) return;
    if (!Page().Compare(file, name)) Complain(texts_(Text::CompareNobody));
}

void StudioWindow::RestoreBackup(const backups::Backup& backup) {
    const ProjectLocation project = *Page().Project();
    backups::Outcome outcome;
    const bool isDone = WhileClosed({&Page()}, Content::Changed, [&] {
        messages::SetScreenPointer(messages::Pointer::Hourglass);
        outcome = backups_.Restore(project.nativePath, backup);
        messages::SetScreenPointer(messages::Pointer::Default);
    });
    if (!isDone) return;
    if (outcome.kind == Kind::Done) {
        statusBar()->showMessage(
            texts_(Text::StatusRestored,
                   {{u"project", project.shown}, {u"date", DateText(backup, texts_)}}),
            kStatusMs);
        return;
    }
    QStringList users;
    for (const std::string& user : outcome.users) users += QString::fromStdString(user);
    Complain(texts_(FailureText(outcome.kind), {{u"project", project.shown},
                                                {u"users", users.join(u", "_s)},
                                                {u"cause", texts::ReasonText(outcome.reason)}}),
             QString::fromStdString(outcome.text));
}

}  // namespace studio
