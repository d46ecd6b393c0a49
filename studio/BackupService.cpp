#include "studio/BackupService.h"

#include <algorithm>
#include <exception>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kMostKey = u"Backups/Most"_s;
const QString kFolderKey = u"Backups/Folder"_s;

backups::Outcome TakeNow(const backups::Backups& backups) {
    try {
        return backups.Take();
    } catch (const std::exception& error) {  // no memory
        backups::Outcome outcome;
        outcome.kind = backups::Outcome::Kind::Failed;
        outcome.text = error.what();
        outcome.reason.cause = reasons::Cause::OutOfMemory;
        return outcome;
    }
}

}  // namespace

BackupService::BackupService(QSettings* state, QObject* parent) : QObject(parent), state_(state) {
    thread_.setMaxThreadCount(1);
}

BackupService::~BackupService() {
    Wait();
}

int BackupService::Most() const {
    if (state_ == nullptr) return 0;
    bool isNumber = false;
    const int most = state_->value(kMostKey, kDefaultMost).toInt(&isNumber);
    return isNumber ? std::clamp(most, 0, kGreatestMost) : kDefaultMost;
}

void BackupService::SetMost(int most) {
    if (state_ != nullptr) state_->setValue(kMostKey, most);
}

QString BackupService::Folder() const {
    return state_ != nullptr ? state_->value(kFolderKey).toString() : QString();
}

void BackupService::SetFolder(const QString& folder) {
    if (state_ == nullptr) return;
    if (folder.isEmpty()) {
        state_->remove(kFolderKey);
    } else {
        state_->setValue(kFolderKey, QDir::cleanPath(QDir::home().absoluteFilePath(folder)));
    }
}

QString BackupService::UsualFolder() const {
    if (state_ == nullptr) return {};
    return QFileInfo(state_->fileName()).absolutePath() + u"/backups"_s;
}

void BackupService::Take(const QString& project) {
    if (Most() == 0) return;
    thread_.start([this, project, backups = Of(project)] {
        const backups::Outcome outcome = TakeNow(backups);
        QMetaObject::invokeMethod(
            this, [this, project, outcome] { emit Taken(project, outcome); }, Qt::QueuedConnection);
    });
}

void BackupService::Wait() {
    thread_.waitForDone();
}

std::vector<backups::Backup> BackupService::List(const QString& project) const {
    return Of(project).List();
}

backups::Outcome BackupService::Restore(const QString& project, const backups::Backup& backup) {
    Wait();
    return Of(project).Restore(backup);
}

backups::Backups BackupService::Of(const QString& project) const {
    const QString folder = Folder();
    return {QFile::encodeName(project).toStdString(),
            {QFile::encodeName(folder.isEmpty() ? UsualFolder() : folder).toStdString(),
             static_cast<std::size_t>(Most())}};
}

}  // namespace studio
