#include "platform/detail/WholeFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <thread>
#include <tuple>

#include "platform/Error.h"

namespace platform::WholeFile {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

constexpr qsizetype kLargestFile = qsizetype{64} << 20;  // bytes
constexpr auto kLockPatience = 500ms;
constexpr auto kLockPause = 1ms;

enum class Action { Read, Write };

struct Meaning {
    int number;
    reasons::Cause cause;
};

Meaning MeaningOf(int error, Action action) {
    using reasons::Cause;
    switch (error) {
        case EACCES:
        case EPERM:
        case EROFS:
            return {ErrorNumber::kPermissionDenied,
                    action == Action::Read ? Cause::FileUnreadable : Cause::FileReadOnly};
        case EWOULDBLOCK:
            return {ErrorNumber::kPermissionDenied, Cause::FileInUse};
        case EISDIR:
        case ENOTDIR:
        case ENOENT:
        case ENAMETOOLONG:
        case ELOOP:
            return {ErrorNumber::kPathNotUsable, Cause::PathUnusable};
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return {ErrorNumber::kDiskFull, Cause::FileFull};
        default:
            return {ErrorNumber::kDeviceFault, Cause::DeviceFault};
    }
}

[[noreturn]] void Fail(const QString& file, Action action, int error, const QString& words = {}) {
    const Meaning meaning = MeaningOf(error, action);
    throw Error(meaning.number,
                u"The file '%1' cannot be %2: %3."_s.arg(
                    file, action == Action::Read ? u"read"_s : u"written"_s,
                    words.isEmpty() ? QString::fromLocal8Bit(std::strerror(error)) : words),
                {meaning.cause, file.toStdString()});
}

/// A file descriptor that is closed when it is forgotten.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        // Nothing is written through it.
        if (number_ >= 0) std::ignore = close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int Number() const noexcept { return number_; }

private:
    int number_;
};

QByteArray FolderOf(const QString& file) {
    return QFile::encodeName(QFileInfo(file).absolutePath());
}

}  // namespace

std::optional<State> StateOf(const QString& file) {
    struct stat status {};
    if (file.isEmpty()) return std::nullopt;
    if (stat(QFile::encodeName(file).constData(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        Fail(file, Action::Read, errno);
    }
    if (!S_ISREG(status.st_mode)) Fail(file, Action::Read, EISDIR, u"it is not a file"_s);
    return State{status.st_ino, status.st_size, status.st_mtim};
}

std::optional<QByteArray> Read(const QString& file) {
    const std::optional<State> state = StateOf(file);
    if (!state) return std::nullopt;
    if (state->size > kLargestFile) Fail(file, Action::Read, EIO, u"it is too large"_s);
    const Descriptor source(open(QFile::encodeName(file).constData(), O_RDONLY | O_CLOEXEC));
    if (source.Number() < 0) {
        if (errno == ENOENT) return std::nullopt;  // removed a moment ago
        Fail(file, Action::Read, errno);
    }
    QByteArray bytes(state->size + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    while (true) {
        if (filled == bytes.size()) {
            if (filled > kLargestFile) Fail(file, Action::Read, EIO, u"it is too large"_s);
            bytes.resize(2 * filled);
        }
        const ssize_t got = read(source.Number(), bytes.data() + filled,
                                 static_cast<std::size_t>(bytes.size() - filled));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) Fail(file, Action::Read, errno);
        if (got == 0) break;
        filled += got;
    }
    bytes.truncate(filled);
    return bytes;
}

void Replace(const QString& file, const QByteArray& bytes) {
    // QSaveFile would not tell this from a fault of the disk.
    const QByteArray target = QFile::encodeName(file);
    if (access(target.constData(), F_OK) == 0 && access(target.constData(), W_OK) != 0) {
        Fail(file, Action::Write, errno);
    }
    QSaveFile written(file);
    // commit() waits for the disk too, but keeps to itself what the disk says.
    const bool good = written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size() &&
                      written.flush() && fsync(written.handle()) == 0 && written.commit();
    if (!good) Fail(file, Action::Write, errno);
}

Lock::Lock(const QString& file)
    : folder_(open(FolderOf(file).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ < 0) Fail(file, Action::Write, errno);
    const auto end = std::chrono::steady_clock::now() + kLockPatience;
    while (flock(folder_, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return;
        if (std::chrono::steady_clock::now() >= end) {
            std::ignore = close(folder_);
            Fail(file, Action::Write, EWOULDBLOCK, u"another program is writing it"_s);
        }
        std::this_thread::sleep_for(kLockPause);
    }
}

Lock::~Lock() {
    // Closing releases the lock.
    std::ignore = close(folder_);
}

}  // namespace platform::WholeFile
