#include <fcntl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include "help/ChmHelp.h"
#include "help/detail/ChmChild.h"

namespace help {

namespace {

constexpr int kDeadline = 20000;  // ms
constexpr qsizetype kHeader = sizeof(std::uint32_t) + sizeof(std::uint64_t);

}  // namespace

ChmReader::ChmReader(const QString& path, Finished finished, QObject* parent)
    : QObject(parent), name_(QFileInfo(path).completeBaseName()), finished_(std::move(finished)) {
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this, [this] { End(false); });
    const QByteArray native = QFile::encodeName(path);
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) == 0) {
        child_ = fork();
        if (child_ == 0) RunChmChild(native.constData(), ends[1]);
        close(ends[1]);
        pipe_ = ends[0];
    }
    if (child_ < 0) {
        deadline_.start(0);
        return;
    }
    notifier_ = new QSocketNotifier(pipe_, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] { Receive(); });
    deadline_.start(kDeadline);
}

ChmReader::~ChmReader() {
    delete notifier_;
    if (pipe_ >= 0) close(pipe_);
    if (child_ <= 0) return;
    const auto child = static_cast<pid_t>(child_);
    kill(child, SIGKILL);
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void ChmReader::Receive() {
    char buffer[1 << 16];
    const ssize_t count = read(pipe_, buffer, sizeof buffer);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) {
        // The child has ended without saying so: it has crashed or met a limit.
        End(false);
        return;
    }
    total_ += count;
    received_.append(buffer, count);
    if (total_ > static_cast<qint64>(2 * kMaximumTotal)) {
        End(false);
    } else if (Unpack()) {
        End(true);
    }
}

/// Takes the whole files out of what has been received; true behind the last one.
bool ChmReader::Unpack() {
    for (;;) {
        const qsizetype left = received_.size() - unpacked_;
        std::uint32_t pathLength = 0;
        if (left < static_cast<qsizetype>(sizeof pathLength)) break;
        std::memcpy(&pathLength, received_.constData() + unpacked_, sizeof pathLength);
        if (pathLength == kEndOfFiles) return true;
        if (left < kHeader) break;
        std::uint64_t size = 0;
        std::memcpy(&size, received_.constData() + unpacked_ + sizeof pathLength, sizeof size);
        // The child's memory may hold anything by now.
        if (pathLength > kMaximumPath || size > kMaximumFile) {
            End(false);
            return false;
        }
        const auto dataSize = static_cast<qsizetype>(size);
        const auto pathSize = static_cast<qsizetype>(pathLength);
        if (left < kHeader + pathSize + dataSize) break;
        const char* path = received_.constData() + unpacked_ + kHeader;
        if (files_.size() < static_cast<qsizetype>(kMaximumFiles)) {
            files_.insert(QString::fromUtf8(path, pathSize).toLower(),
                          QByteArray(path + pathSize, dataSize));
        }
        unpacked_ += kHeader + pathSize + dataSize;
    }
    if (unpacked_ > (1 << 20)) {
        received_.remove(0, unpacked_);
        unpacked_ = 0;
    }
    return false;
}

void ChmReader::End(bool readable) {
    if (!finished_) return;
    deadline_.stop();
    if (notifier_ != nullptr) notifier_->setEnabled(false);
    const Finished finished = std::exchange(finished_, nullptr);
    finished(readable ? std::make_unique<ChmHelp>(std::move(files_), name_) : nullptr);
}

}  // namespace help
