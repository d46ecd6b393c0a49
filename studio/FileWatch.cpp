#include "studio/FileWatch.h"

#include <sys/stat.h>

#include <QFile>
#include <thread>

namespace studio {
namespace {

constexpr int kIntervalMs = 1000;

}  // namespace

FileWatch::FileWatch(QObject* parent) : QObject(parent) {
    timer_.setInterval(kIntervalMs);
    connect(&timer_, &QTimer::timeout, this, &FileWatch::Look);
}

FileWatch::~FileWatch() = default;

FileWatch::Identity FileWatch::IdentityOf(const QByteArray& path) {
    struct stat about {};
    if (::stat(path.constData(), &about) != 0) return std::nullopt;
    return std::pair<quint64, quint64>(about.st_dev, about.st_ino);
}

void FileWatch::SetFile(const QString& nativePath) {
    path_ = QFile::encodeName(nativePath);
    answer_.reset();
    state_ = State::Same;
    opened_ = nativePath.isEmpty() ? std::nullopt : IdentityOf(path_);
    opened_ ? timer_.start() : timer_.stop();
}

/// Takes the answer of before and asks anew.
void FileWatch::Look() {
    if (answer_) {
        if (!answer_->isThere.load(std::memory_order_acquire)) return;
        const Identity& now = answer_->now;
        const State state = !now ? State::Gone : now == opened_ ? State::Same : State::Replaced;
        answer_.reset();
        if (std::exchange(state_, state) != state) {
            emit Changed(state);
            return;  // whoever heard it may have opened another file
        }
    }
    answer_ = std::make_shared<Answer>();
    std::thread([answer = answer_, path = path_] {
        answer->now = IdentityOf(path);
        answer->isThere.store(true, std::memory_order_release);
    }).detach();
}

}  // namespace studio
