#include "jet/disk/FileLocks.h"

#include "jet/disk/SharedFile.h"
#include "jet/disk/UserFile.h"

namespace jet {
namespace {

// Bytes of the database file itself that are locked and never written. A file has at most 2 GB.
constexpr std::uint64_t kWriterLock = 0x100000000;
constexpr std::uint64_t kPagesLock = 0x100000001;
constexpr std::uint64_t kPresenceLock = 0x100000002;
constexpr std::uint64_t kTurnLock = 0x100000003;  // held by a writer that waits for the pages

constexpr std::chrono::milliseconds kPresenceWait{5'000};

class DatabaseLocks final : public Locks {
public:
    /// `locks` is the database, open for reading or for writing.
    DatabaseLocks(std::unique_ptr<SharedFile> locks, std::string path)
        : locks_(std::move(locks)), path_(std::move(path)) {}

    Status Join(OpenMode mode) {
        Status status = SharedFile::Wait(kPresenceWait, "another program has the file for itself",
                                         [&] { return locks_->Shared(kPresenceLock, 1); });
        // Where the file system knows no locks there is nobody to be kept apart from.
        isLockable_ = status.IsOk() || status.Code() == StatusCode::Busy;
        if (isLockable_ || mode == OpenMode::ReadWrite) JET_TRY(status);
        JET_ASSIGN(users_, UserFile::Join(path_, *locks_, mode, notice_));
        return {};
    }

    Status LockWriter(std::chrono::milliseconds wait) override {
        JET_TRY(OpenForWriting());
        return SharedFile::Wait(wait, "another program is changing the file",
                                [&] { return locks_->Exclusive(kWriterLock, 1); });
    }
    void UnlockWriter() override { locks_->Unlock(kWriterLock, 1); }

    Status LockPagesShared(std::chrono::milliseconds wait) override {
        if (!isLockable_) return {};
        return SharedFile::Wait(wait, "another program is writing its changes",
                                [&] { return locks_->Shared(kPagesLock, 1); });
    }

    Status LetWriterFirst(std::chrono::milliseconds wait) override {
        if (!isLockable_) return {};
        JET_TRY(SharedFile::Wait(wait, "another program waits to write its changes",
                                 [&] { return locks_->Shared(kTurnLock, 1); }));
        locks_->Unlock(kTurnLock, 1);
        return {};
    }

    bool IsWriterWaiting() const override {
        return isLockable_ && locks_->IsHeldByOthers(kTurnLock, 1);
    }

    Status LockPages(std::span<const PageNo> changed, std::chrono::milliseconds wait) override {
        JET_TRY(OpenForWriting());
        // The other programs first: while they let this one wait, everybody can go on reading.
        if (users_ != nullptr) JET_TRY(users_->LockPages(changed, wait));
        const std::string what = "another program goes on reading";
        Status status =
            SharedFile::Wait(wait, what, [&] { return locks_->Exclusive(kTurnLock, 1); });
        if (status.IsOk()) {
            status = SharedFile::Wait(wait, what, [&] { return locks_->Exclusive(kPagesLock, 1); });
        }
        locks_->Unlock(kTurnLock, 1);
        if (!status.IsOk() && users_ != nullptr) users_->UnlockPages();
        return status;
    }

    void UnlockPages() override {
        locks_->Unlock(kPagesLock, 1);
        if (users_ != nullptr) users_->UnlockPages();
    }

    int User() const override {
        return users_ != nullptr && users_->User() > 0 ? users_->User() : 1;
    }
    std::vector<std::string> OtherUsers() override {
        return users_ != nullptr ? users_->OtherUsers() : std::vector<std::string>();
    }

    Status LockAlone() override {
        JET_TRY(OpenForWriting());
        if (users_ == nullptr || users_->LockAllSlots()) {
            if (locks_->Exclusive(kPresenceLock, 1).IsOk()) return {};
            if (users_ != nullptr) users_->UnlockOtherSlots();
        }
        return OthersAreThere(OtherUsers());
    }

    std::string Notice() const override { return notice_; }

private:
    /// A program that only reads has to write when it puts back what another has left.
    /// REQUIRES: nothing but the presence is locked.
    Status OpenForWriting() {
        if (locks_->Mode() == OpenMode::ReadWrite) return {};
        std::unique_ptr<SharedFile> locks;
        JET_ASSIGN(locks, SharedFile::Open(path_, OpenMode::ReadWrite));
        if (!(locks->Id() == locks_->Id())) {
            return {StatusCode::Conflict,
                    "another program has replaced or removed the file; open it again"};
        }
        JET_TRY(SharedFile::Wait(kPresenceWait, "another program has the file for itself",
                                 [&] { return locks->Shared(kPresenceLock, 1); }));
        locks_ = std::move(locks);
        return {};
    }

    std::unique_ptr<SharedFile> locks_;
    std::string path_;
    bool isLockable_ = true;
    std::unique_ptr<UserFile> users_;  // null: no lock file can be used
    std::string notice_;
};

}  // namespace

Status OthersAreThere(const std::vector<std::string>& computers) {
    std::string names;
    for (const std::string& name : computers) names += (names.empty() ? "" : ", ") + name;
    return {StatusCode::Busy,
            "other programs have the file open" + (names.empty() ? "" : " (on " + names + ")")};
}

Result<std::unique_ptr<Locks>> OpenFileLocks(const std::string& database, OpenMode mode) {
    std::unique_ptr<SharedFile> file;
    JET_ASSIGN(file, SharedFile::Open(database, mode));
    auto locks = std::make_unique<DatabaseLocks>(std::move(file), database);
    JET_TRY(locks->Join(mode));
    return std::unique_ptr<Locks>(std::move(locks));
}

}  // namespace jet
