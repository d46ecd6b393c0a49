#include "jet/disk/UserFile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <thread>
#include <tuple>

#include "jet/disk/SystemName.h"

namespace jet {
namespace {

constexpr std::uint64_t kUserLock = 0x10000000;
constexpr std::uint64_t kPageLock = 0x20000000;
constexpr std::uint64_t kPageSpan = 0x200;
constexpr int kMostUsers = 255;
constexpr std::size_t kUserSize = 64;
constexpr std::size_t kNameSize = 32;
constexpr std::size_t kMostRuns = 512;  // the system's time for a lock grows with their number

constexpr auto kRetry = std::chrono::milliseconds(2);

std::string PathFor(const std::string& database) {
    const std::size_t slash = database.find_last_of(kSeparators);
    const std::size_t dot = database.rfind('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return database.substr(0, hasExtension ? dot : database.size()) + ".ldb";
}

std::uint64_t SlotOffset(int user) {
    return kUserSize * (static_cast<std::uint64_t>(user) - 1);
}

std::uint64_t SlotLock(int user) {
    return kUserLock + static_cast<std::uint64_t>(user);
}

std::uint64_t PageLock(std::uint32_t page) {
    return kPageLock + kPageSpan * page + 1;
}

/// A text, the NUL at its end, and anything behind it.
bool IsName(std::string_view field) {
    const std::size_t end = field.find('\0');
    if (end == std::string_view::npos) return false;
    return std::all_of(field.begin(), field.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
}

/// Whether the content is that of a lock file: slots and nothing else. A new one is empty.
bool HasSlots(const SharedFile& file) {
    std::string content((kMostUsers + 1) * kUserSize, '\0');
    const auto size = file.Read(0, std::as_writable_bytes(std::span(content)));
    if (!size.IsOk() || *size > kMostUsers * kUserSize || *size % kUserSize != 0) return false;
    const std::string_view slots(content.data(), *size);
    for (std::size_t at = 0; at < slots.size(); at += kNameSize) {
        if (!IsName(slots.substr(at, kNameSize))) return false;
    }
    return true;
}

}  // namespace

Result<std::unique_ptr<UserFile>> UserFile::Join(const std::string& path,
                                                 const SharedFile& database, OpenMode mode,
                                                 std::string& why) {
    constexpr int kTries = 100;
    const std::string own = PathFor(path);
    const auto notOurs = [&]() -> Result<std::unique_ptr<UserFile>> {
        why = "\"" + own + "\" is no lock file and is left alone; other programs will not see " +
              "that this one has the database open";
        return std::unique_ptr<UserFile>();
    };
    for (int i = 0; i < kTries; ++i) {
        auto opened = SharedFile::OpenOrMake(own, database, mode);
        if (!opened.IsOk()) {
            if (opened.GetStatus().Code() == StatusCode::BadArgument) return notOurs();
            if (mode == OpenMode::Read) return std::unique_ptr<UserFile>();
            return opened.GetStatus().In("its lock file \"" + own + "\"");
        }
        // A database may be called *.ldb itself.
        if ((*opened)->Id() == database.Id()) return std::unique_ptr<UserFile>();
        if (!(*opened)->IsRegular() || !HasSlots(**opened)) return notOurs();
        std::unique_ptr<UserFile> file(new UserFile(std::move(*opened), own));
        if (file->file_->Mode() == OpenMode::Read) return file;
        if (file->TakeSlot()) {
            if (file->HasName()) return file;
            continue;
        }
        // The last user holds all slots for a moment while it leaves.
        std::this_thread::sleep_for(kRetry);
    }
    return Status(StatusCode::Busy, "255 programs have the file open already");
}

UserFile::~UserFile() {
    // The last user removes the file. It holds every user's lock while it does, so that nobody can
    // have come in between; who comes now finds that the file has lost its name.
    if (user_ > 0 && HasName() && HasSlots(*file_) && LockAllSlots()) file_->RemoveName(path_);
}

bool UserFile::TakeSlot() {
    for (user_ = 1; user_ <= kMostUsers; ++user_) {
        if (file_->Exclusive(SlotLock(user_), 1).IsOk()) {
            WriteName();
            return true;
        }
    }
    user_ = 0;
    return false;
}

/// The name is for people who look who is there; nothing depends on it.
void UserFile::WriteName() const {
    std::array<char, kUserSize> slot{};
    ComputerName().copy(slot.data(), kNameSize - 1);
    std::strcpy(slot.data() + kNameSize, "Admin");
    std::ignore = file_->Write(SlotOffset(user_), std::as_bytes(std::span(slot)));
}

std::vector<std::string> UserFile::OtherUsers() const {
    std::vector<std::string> users;
    for (int user = 1; user <= kMostUsers; ++user) {
        if (user == user_ || !file_->IsHeldByOthers(SlotLock(user), 1)) continue;
        std::array<char, kNameSize + 1> name{};
        const auto field = std::as_writable_bytes(std::span(name)).first(kNameSize);
        const auto size = file_->Read(SlotOffset(user), field);
        users.emplace_back(size.IsOk() && *size > 0 ? name.data() : "?");
    }
    return users;
}

// Its own lock parts the others.

bool UserFile::LockAllSlots() const {
    if (user_ > 1 && !file_->Exclusive(SlotLock(1), SlotsBefore()).IsOk()) return false;
    if (user_ == kMostUsers || file_->Exclusive(SlotLock(user_ + 1), SlotsBehind()).IsOk()) {
        return true;
    }
    if (user_ > 1) file_->Unlock(SlotLock(1), SlotsBefore());
    return false;
}

void UserFile::UnlockOtherSlots() const {
    if (user_ > 1) file_->Unlock(SlotLock(1), SlotsBefore());
    if (user_ < kMostUsers) file_->Unlock(SlotLock(user_ + 1), SlotsBehind());
}

std::uint64_t UserFile::SlotsBefore() const {
    return static_cast<std::uint64_t>(user_) - 1;
}

std::uint64_t UserFile::SlotsBehind() const {
    return static_cast<std::uint64_t>(kMostUsers - user_);
}

std::uint64_t UserFile::Length(const Run& run) const {
    return kPageSpan * (run.last - run.first) + 0x100 + static_cast<std::uint64_t>(user_);
}

std::vector<UserFile::Run> UserFile::RunsOf(std::span<const PageNo> pages) {
    std::vector<Run> runs;
    for (std::uint32_t gap = 1;; gap *= 2) {
        runs.clear();
        for (const PageNo page : pages) {
            if (runs.empty() || Raw(page) - runs.back().last > gap) {
                runs.push_back({Raw(page), Raw(page)});
            }
            runs.back().last = Raw(page);
        }
        if (runs.size() <= kMostRuns) return runs;
    }
}

Status UserFile::LockPages(std::span<const PageNo> pages, std::chrono::milliseconds wait) {
    for (const Run& run : RunsOf(pages)) {
        std::string what = "another program has locked page " + std::to_string(run.first);
        if (run.last > run.first) what += " or one up to " + std::to_string(run.last);
        const std::uint64_t begin = PageLock(run.first);
        Status status =
            SharedFile::Wait(wait, what, [&] { return file_->Exclusive(begin, Length(run)); });
        if (!status.IsOk()) {
            UnlockPages();
            return status;
        }
        locked_.push_back(run);
    }
    return {};
}

void UserFile::UnlockPages() {
    for (const Run& run : locked_) {
        file_->Unlock(PageLock(run.first), Length(run));
    }
    locked_.clear();
}

}  // namespace jet
