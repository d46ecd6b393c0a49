#pragma once

#include <sys/stat.h>

#include <optional>
#include <QByteArray>
#include <QString>

/// Small files that several programs read as a whole and replace as a whole. Paths are native.
/// Everything here throws platform::Error with the file and the cause.
namespace platform::WholeFile {

/// What tells one state of a file from another. A file that was replaced has another number, one
/// that was written in place another time or size.
struct State {
    ino_t number = 0;
    off_t size = 0;
    timespec changed{};

    bool operator==(const State& other) const {
        return number == other.number && size == other.size &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

/// nullopt when there is no such file.
[[nodiscard]] std::optional<State> StateOf(const QString& file);

/// nullopt when there is no such file. What is no plain file, or larger than any such file can
/// sensibly be, is an error.
[[nodiscard]] std::optional<QByteArray> Read(const QString& file);

/// Puts `bytes` in the place of the file: afterwards, also after a crash or on a full disk, it is
/// whole, old or new; which of them after a crash is left to the file system, since waiting for
/// its folder as well would double the time. Access rights stay; a file that is write-protected is
/// not replaced, though the folder would allow it. A link stays a link.
void Replace(const QString& file, const QByteArray& bytes);

/// Keeps other programs of this kind from changing the file between reading and replacing it. The
/// lock is on the folder: it outlives the exchange of the file and leaves nothing behind, not
/// even after a crash. Waits for half a second at most. A file system without such locks is
/// used without.
class Lock {
public:
    explicit Lock(const QString& file);
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    int folder_;
};

}  // namespace platform::WholeFile
