#include "drafts/DraftKeeper.h"

#include <chrono>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QSaveFile>
#include <utility>

namespace drafts {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr auto kInterval = 2s;
// Programs that edit one project at the same time; beyond them nothing is kept.
constexpr int kMostFiles = 100;
constexpr qsizetype kHashDigits = 16;

/// With what the names of a project's drafts begin.
QString StemOf(const QString& project) {
    const QByteArray hash =
        QCryptographicHash::hash(project.toUtf8(), QCryptographicHash::Sha256).toHex();
    return QString::fromLatin1(hash.left(kHashDigits)) + u'-';
}

QStringList FilesOf(const QString& folder, const QString& stem) {
    return QDir(folder).entryList({stem + u"*.json"_s}, QDir::Files, QDir::Time);
}

QString LockOf(const QString& file) {
    return file + u".lock"_s;
}

}  // namespace

DraftKeeper::DraftKeeper(QString folder, const QString& project, QObject* parent)
    : QObject(parent), folder_(std::move(folder)), stem_(StemOf(project)) {
    timer_.setObjectName(u"tmrDraft"_s);
    timer_.setParent(this);
    timer_.setInterval(kInterval);
    connect(&timer_, &QTimer::timeout, this, &DraftKeeper::Write);
}

bool DraftKeeper::HasFiles(const QString& folder, const QString& project) {
    return !FilesOf(folder, StemOf(project)).isEmpty();
}

DraftKeeper::~DraftKeeper() {
    Forget();
}

void DraftKeeper::Watch(Typed typed) {
    typed_ = std::move(typed);
    failed_ = false;
    timer_.start();
}

void DraftKeeper::Forget() {
    timer_.stop();
    typed_ = {};
    Release();
}

void DraftKeeper::Release() {
    if (!file_.isEmpty()) QFile::remove(file_);
    file_.clear();
    written_.clear();
    lock_.reset();
}

void DraftKeeper::Write() {
    const QList<Field> fields = typed_ ? typed_() : QList<Field>();
    if (fields.isEmpty()) return Release();
    const QByteArray content = ToFile({place_, fields});
    if (content == written_ || (file_.isEmpty() && !TakeFile())) return;
    QSaveFile file(file_);
    const bool opened = file.open(QIODevice::WriteOnly) &&
                        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    if (!opened || file.write(content) != content.size() || !file.flush() || !file.commit()) {
        return Fail(file.errorString());
    }
    written_ = content;
}

bool DraftKeeper::TakeFile() {
    const QDir folder(folder_);
    if (!folder.exists()) {
        if (!folder.mkpath(u"."_s)) {
            Fail(folder_);
            return false;
        }
        QFile::setPermissions(folder_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    for (int i = 0; i < kMostFiles; ++i) {
        const QString file = folder.filePath(stem_ + QString::number(i) + u".json"_s);
        // One that is there has been abandoned and waits to be offered.
        if (!QFile::exists(file) && Lock(file)) return true;
    }
    Fail(folder_);
    return false;
}

/// A lock of a program that has ended without giving it back counts for nothing.
bool DraftKeeper::Lock(const QString& file) {
    auto lock = std::make_unique<QLockFile>(LockOf(file));
    lock->setStaleLockTime(0);
    if (!lock->tryLock()) return false;
    lock_ = std::move(lock);
    file_ = file;
    return true;
}

std::optional<Draft> DraftKeeper::TakeAbandoned() {
    for (const QString& name : FilesOf(folder_, stem_)) {
        Release();
        if (!Lock(QDir(folder_).filePath(name))) continue;
        QFile file(file_);
        if (!file.open(QIODevice::ReadOnly)) {
            file_.clear();  // it is left where it is
            continue;
        }
        if (auto draft = FromFile(file.readAll())) {
            place_ = draft->place;
            return draft;
        }
    }
    Release();
    return std::nullopt;
}

void DraftKeeper::Fail(const QString& cause) {
    if (!std::exchange(failed_, true)) emit Failed(cause);
}

}  // namespace drafts
