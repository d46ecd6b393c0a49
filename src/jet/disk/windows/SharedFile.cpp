#include "jet/disk/SharedFile.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <tuple>
#include <vector>

#include "jet/disk/windows/SystemError.h"
#include "jet/disk/windows/SystemFile.h"

namespace jet {
namespace {

// Without DELETE: a program that does not share that, as most do not, could not open the file.
constexpr DWORD kReadWrite = GENERIC_READ | GENERIC_WRITE;

struct Range {
    std::uint64_t begin = 0;
    std::uint64_t length = 0;
    bool isExclusive = false;
};

/// The system's locks belong to the handle. They do not know that a program has a range already: an
/// exclusive lock is refused beside its own shared one, and two locks need two unlocks. So what is
/// held is written down here.
class WindowsSharedFile final : public SharedFile {
public:
    WindowsSharedFile(SystemFile file, OpenMode mode, FileId id)
        : file_(std::move(file)), mode_(mode), id_(id) {}
    /// The system gives locks up only some time after the file is closed.
    ~WindowsSharedFile() override {
        while (!held_.empty()) Unlock(held_.back().begin, held_.back().length);
    }
    WindowsSharedFile(const WindowsSharedFile&) = delete;
    WindowsSharedFile& operator=(const WindowsSharedFile&) = delete;

    OpenMode Mode() const override { return mode_; }
    FileId Id() const override { return id_; }
    bool IsRegular() const override { return file_.IsRegular(); }
    bool HasName(const std::string& path) const override { return file_.HasName(path); }
    void RemoveName(const std::string& path) override {
        const auto removable = SystemFile::Reopen(file_, DELETE);
        if (removable.IsOk()) std::ignore = removable->RemoveName(path);
    }

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return file_.Read(offset, into);
    }
    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return file_.Write(offset, bytes);
    }

    Status Shared(std::uint64_t begin, std::uint64_t length) override {
        return Take({begin, length, false});
    }
    Status Exclusive(std::uint64_t begin, std::uint64_t length) override {
        return Take({begin, length, true});
    }

    void Unlock(std::uint64_t begin, std::uint64_t length) override {
        const auto held = Find(begin, length);
        if (held == held_.end()) return;
        Release(*held);
        held_.erase(held);
    }

    /// Asked with a shared lock for a moment, so that two who ask do not see each other.
    bool IsHeldByOthers(std::uint64_t begin, std::uint64_t length) override {
        if (Find(begin, length) != held_.end()) return false;
        const Range range{begin, length, false};
        const Status status = Lock(range, LOCKFILE_FAIL_IMMEDIATELY);
        if (status.IsOk()) Release(range);
        return status.Code() == StatusCode::Busy;
    }

private:
    std::vector<Range>::iterator Find(std::uint64_t begin, std::uint64_t length) {
        return std::find_if(held_.begin(), held_.end(), [&](const Range& range) {
            return range.begin == begin && range.length == length;
        });
    }

    Status Take(const Range& wanted) {
        const auto held = Find(wanted.begin, wanted.length);
        if (held == held_.end()) {
            JET_TRY(Lock(wanted, LOCKFILE_FAIL_IMMEDIATELY));
            held_.push_back(wanted);
            return {};
        }
        if (held->isExclusive == wanted.isExclusive) return {};
        if (held->isExclusive) {
            // A shared one is given beside it, and the first unlock is that of the exclusive one.
            JET_TRY(Lock(wanted, LOCKFILE_FAIL_IMMEDIATELY));
            Release(*held);
        } else {
            Release(*held);
            if (Status status = Lock(wanted, LOCKFILE_FAIL_IMMEDIATELY); !status.IsOk()) {
                // Who has come in between is let through: this waits until it is had again.
                if (!Lock(*held, 0).IsOk()) held_.erase(held);
                return status;
            }
        }
        held->isExclusive = wanted.isExclusive;
        return {};
    }

    Status Lock(const Range& range, DWORD flags) const {
        OVERLAPPED place = PlaceOf(range.begin);
        const DWORD kind = range.isExclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0;
        if (::LockFileEx(file_.Handle(), flags | kind, 0, static_cast<DWORD>(range.length),
                         static_cast<DWORD>(range.length >> 32), &place) != 0) {
            return {};
        }
        return LastFailure("locking the file");
    }

    void Release(const Range& range) const {
        OVERLAPPED place = PlaceOf(range.begin);
        ::UnlockFileEx(file_.Handle(), 0, static_cast<DWORD>(range.length),
                       static_cast<DWORD>(range.length >> 32), &place);
    }

    SystemFile file_;
    OpenMode mode_;
    FileId id_;
    std::vector<Range> held_;
};

Result<std::unique_ptr<SharedFile>> Take(SystemFile file, OpenMode mode) {
    FileId id;
    JET_ASSIGN(id, file.Id());
    return std::unique_ptr<SharedFile>(
        std::make_unique<WindowsSharedFile>(std::move(file), mode, id));
}

}  // namespace

Result<std::unique_ptr<SharedFile>> SharedFile::Open(const std::string& path, OpenMode mode) {
    const DWORD access = mode == OpenMode::ReadWrite ? kReadWrite : GENERIC_READ;
    auto file = SystemFile::Open(path, access, OPEN_EXISTING, SystemFile::Links::NotFollowed);
    if (!file.IsOk()) return file.GetStatus();
    return Take(std::move(*file), mode);
}

/// A new file has the rights that its folder hands on, as the database has.
Result<std::unique_ptr<SharedFile>> SharedFile::OpenOrMake(const std::string& path,
                                                           const SharedFile& /*database*/,
                                                           OpenMode mode) {
    constexpr auto kHere = SystemFile::Links::NotFollowed;
    const DWORD attributes = ::GetFileAttributesW(WideName(path).c_str());
    constexpr DWORD kOther = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kOther) != 0) {
        return Status::BadArgument("it is no regular file");
    }
    auto file = SystemFile::Open(path, kReadWrite, OPEN_ALWAYS, kHere);
    if (file.IsOk()) return Take(std::move(*file), OpenMode::ReadWrite);
    const bool mayNot = file.GetStatus().Code() == StatusCode::Permission;
    if (!mayNot || mode == OpenMode::ReadWrite) return file.GetStatus();
    auto readable = SystemFile::Open(path, GENERIC_READ, OPEN_EXISTING, kHere);
    if (!readable.IsOk()) return file.GetStatus();
    return Take(std::move(*readable), OpenMode::Read);
}

}  // namespace jet
