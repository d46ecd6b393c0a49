#include "jet/Disk.h"

#include <windows.h>

#include <atomic>
#include <tuple>
#include <utility>
#include <vector>

#include "jet/disk/FileLocks.h"
#include "jet/disk/SystemName.h"
#include "jet/disk/windows/SystemError.h"
#include "jet/disk/windows/SystemFile.h"

namespace jet {
namespace {

constexpr auto kFollow = SystemFile::Links::Followed;
constexpr auto kHere = SystemFile::Links::NotFollowed;
constexpr DWORD kChange = GENERIC_READ | GENERIC_WRITE | DELETE;

Status IsThere(const std::string& path) {
    return {StatusCode::Duplicate, "there is something called \"" + path + "\" already"};
}
Status IsNoFile() {
    return {StatusCode::BadArgument, "it is not a regular file"};
}
Status IsFolder() {
    return {StatusCode::BadArgument, "it is a folder, not a database file"};
}

/// 0 when there is nothing, or nothing to be seen.
DWORD AttributesOf(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(WideName(path).c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

class WindowsFile final : public File {
public:
    WindowsFile(SystemFile file, std::string path, FileId id)
        : file_(std::move(file)), path_(std::move(path)), id_(id) {}

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return file_.Read(offset, into);
    }

    Result<FileStamp> Stamp() const override {
        if (isDraft_ || HasItsPath()) return StampOf(file_);
        return Status(StatusCode::Conflict,
                      "another program has replaced or removed the file; open it again");
    }

    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return file_.Write(offset, bytes);
    }
    Status Sync() override { return file_.Sync(); }
    Status Resize(std::uint64_t size) override { return file_.Resize(size); }

    Result<std::uint64_t> Length() const override {
        LARGE_INTEGER size{};
        if (::GetFileSizeEx(file_.Handle(), &size) == 0) return LastFailure("asking its size");
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    // Not every file system here keeps texts with a file, so none is asked to.
    Status SetNote(const std::string& /*text*/) override {
        const auto info = file_.Info();
        if (!info.IsOk()) return info.GetStatus();
        if (info->nNumberOfLinks <= 1) return {};
        return Status::Unsupported(
            "it has several names, and the file system cannot keep what one of them has to know "
            "of the others; leave it one name");
    }

    [[nodiscard]] const SystemFile& System() const { return file_; }
    void SetDraft() { isDraft_ = true; }
    void SetPublished(const std::string& path) {
        path_ = path;
        isDraft_ = false;
    }

private:
    /// A program that replaces the file leaves this one as it was, but nameless or renamed. Asked
    /// before every read, so what stands at the path is opened only when it looks like another
    /// file.
    bool HasItsPath() const {
        WIN32_FILE_ATTRIBUTE_DATA named{};
        if (::GetFileAttributesExW(WideName(path_).c_str(), GetFileExInfoStandard, &named) == 0) {
            return false;
        }
        const auto own = file_.Info();
        if (own.IsOk() && Equal(own->ftCreationTime, named.ftCreationTime) &&
            Equal(own->ftLastWriteTime, named.ftLastWriteTime) &&
            own->nFileSizeHigh == named.nFileSizeHigh && own->nFileSizeLow == named.nFileSizeLow) {
            return true;
        }
        const auto file = SystemFile::Open(path_, 0, OPEN_EXISTING, kFollow);
        if (!file.IsOk()) return false;
        const auto id = file->Id();
        return id.IsOk() && *id == id_;
    }

    static bool Equal(const FILETIME& left, const FILETIME& right) {
        return ::CompareFileTime(&left, &right) == 0;
    }

    static Result<FileStamp> StampOf(const SystemFile& file) {
        FILE_BASIC_INFO times{};
        FILE_STANDARD_INFO sizes{};
        if (::GetFileInformationByHandleEx(file.Handle(), FileBasicInfo, &times, sizeof times) ==
                0 ||
            ::GetFileInformationByHandleEx(file.Handle(), FileStandardInfo, &sizes, sizeof sizes) ==
                0) {
            return LastFailure("looking at it");
        }
        FILETIME now{};
        ::GetSystemTimeAsFileTime(&now);
        const auto today =
            static_cast<std::int64_t>(std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime);
        // Ticks of 100 ns since 1601. The clock by which files are stamped stands still for up to
        // 16 ms.
        constexpr std::int64_t kSettled = 200'000;
        constexpr std::int64_t kFirst = 116'444'736'000'000'000;  // 1970-01-01
        const std::int64_t changed = times.ChangeTime.QuadPart;
        return FileStamp{static_cast<std::uint64_t>(sizes.EndOfFile.QuadPart),
                         (times.LastWriteTime.QuadPart - kFirst) * 100, (changed - kFirst) * 100,
                         today - changed > kSettled};
    }

    SystemFile file_;
    std::string path_;
    FileId id_;
    bool isDraft_ = false;
};

Result<std::unique_ptr<WindowsFile>> Take(SystemFile file, const std::string& path) {
    FileId id;
    JET_ASSIGN(id, file.Id());
    return std::make_unique<WindowsFile>(std::move(file), path, id);
}

/// Who may do what with a file, and its attributes.
Status CopyAttributes(const std::string& from, const SystemFile& to) {
    const std::string what = "its permissions cannot be kept";
    const std::wstring name = WideName(from);
    DWORD size = 0;
    ::GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    // A file system without permissions has none to be kept.
    if (size == 0) return ::GetLastError() == ERROR_NOT_SUPPORTED ? Status() : LastFailure(what);
    std::vector<std::byte> security(size);
    if (::GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, security.data(), size, &size) ==
        0) {
        return LastFailure(what);
    }
    auto target = SystemFile::Reopen(to, WRITE_DAC | FILE_WRITE_ATTRIBUTES);
    if (!target.IsOk()) return target.GetStatus().In(what);
    if (::SetKernelObjectSecurity(target->Handle(), DACL_SECURITY_INFORMATION, security.data()) ==
        0) {
        return LastFailure(what);
    }
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                            FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    FILE_BASIC_INFO info{};  // zeros leave the times as they are
    info.FileAttributes = (AttributesOf(from) & kKept) | FILE_ATTRIBUTE_NORMAL;
    if (info.FileAttributes != FILE_ATTRIBUTE_NORMAL) info.FileAttributes &= kKept;
    if (::SetFileInformationByHandle(target->Handle(), FileBasicInfo, &info, sizeof info) == 0) {
        return LastFailure(what);
    }
    return {};
}

/// Refuses what Replace cannot replace.
Status LookAtModel(const std::string& model) {
    const auto file = SystemFile::Open(model, 0, OPEN_EXISTING, kHere);
    if (!file.IsOk()) return file.GetStatus().In("\"" + model + "\"");
    BY_HANDLE_FILE_INFORMATION info{};
    JET_ASSIGN(info, file->Info());
    if ((info.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return Status::Unsupported("it is a link; name the file itself");
    }
    if ((info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return IsFolder();
    if (info.nNumberOfLinks == 1) return {};
    return Status::Unsupported("it has several names, of which one would be lost");
}

/// A name beside `path` that nothing has.
std::string NameBeside(const std::string& path, const char* what) {
    static std::atomic<unsigned> count = 0;
    return path + what + std::to_string(ProcessNumber()) + "-" + std::to_string(++count);
}

// The system keeps the names of folders by a journal of its own; there is nothing to be synced.
class WindowsDisk final : public Disk {
public:
    Result<std::string> Resolve(const std::string& path) override {
        const auto file = SystemFile::Open(path, 0, OPEN_EXISTING, kFollow);
        if (!file.IsOk()) return file.GetStatus();
        std::wstring whole(32768, L'\0');
        const DWORD size = ::GetFinalPathNameByHandleW(
            file->Handle(), whole.data(), static_cast<DWORD>(whole.size()), VOLUME_NAME_DOS);
        if (size == 0 || size >= whole.size()) return LastFailure("it cannot be opened");
        whole.resize(size);
        constexpr std::wstring_view kWhole = L"\\\\?\\";
        constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
        if (whole.starts_with(kShare)) {
            whole.replace(0, kShare.size(), L"\\\\");
        } else if (whole.starts_with(kWhole) && size < MAX_PATH) {
            whole.erase(0, kWhole.size());
        }
        return NarrowName(whole);
    }

    Result<std::unique_ptr<File>> Open(const std::string& path, OpenMode mode) override {
        if ((AttributesOf(path) & FILE_ATTRIBUTE_DIRECTORY) != 0) return IsFolder();
        const DWORD access = mode == OpenMode::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        auto file = SystemFile::Open(path, access, OPEN_EXISTING, kFollow);
        if (!file.IsOk()) return file.GetStatus();
        if (!file->IsRegular()) return IsNoFile();
        return AsFile(Take(std::move(*file), path));
    }

    Result<std::unique_ptr<File>> Create(const std::string& path) override {
        return AsFile(Make(path));
    }

    Result<std::unique_ptr<File>> CreateLike(const std::string& path,
                                             const std::string& model) override {
        JET_TRY(LookAtModel(model));
        std::unique_ptr<WindowsFile> file;
        JET_ASSIGN(file, Make(path));
        if (Status status = CopyAttributes(model, file->System()); !status.IsOk()) {
            std::ignore = Remove(path);  // the failure to be told is the first one
            return status;
        }
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<File>> CreateReplacement(const std::string& model) override {
        JET_TRY(LookAtModel(model));
        std::unique_ptr<WindowsFile> file;
        JET_ASSIGN(file, Make(NameBeside(model, ".draft")));
        // While it is to go nobody can open it, this program included.
        if (Status status = CopyAttributes(model, file->System()); !status.IsOk()) {
            std::ignore = file->System().GoWhenClosed(true);
            return status;
        }
        JET_TRY(file->System().GoWhenClosed(true));
        file->SetDraft();
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<File>> CreateDraft(const std::string& database) override {
        std::unique_ptr<WindowsFile> file;
        JET_ASSIGN(file, Make(NameBeside(database, ".draft")));
        JET_TRY(file->System().GoWhenClosed(true));
        file->SetDraft();
        return std::unique_ptr<File>(std::move(file));
    }

    Status Publish(File& draft, const std::string& path) override {
        auto& file = static_cast<WindowsFile&>(draft);
        JET_TRY(file.System().GoWhenClosed(false));
        if (Status status = file.System().Rename(path); !status.IsOk()) {
            std::ignore = file.System().GoWhenClosed(true);
            return status.Code() == StatusCode::Duplicate ? IsThere(path) : status;
        }
        file.SetPublished(path);
        return {};
    }

    bool HasName(const File& file, const std::string& path) override {
        return static_cast<const WindowsFile&>(file).System().HasName(path);
    }

    /// Who may write in the folder of a database has been let in by its owner.
    Result<std::unique_ptr<File>> OpenLeftOver(const std::string& path,
                                               const std::string& /*database*/) override {
        const DWORD attributes = AttributesOf(path);
        if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
            return Status(StatusCode::Conflict, "it is a link");
        }
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return IsNoFile();
        auto file = SystemFile::Open(path, GENERIC_READ, OPEN_EXISTING, kHere);
        if (!file.IsOk()) return file.GetStatus();
        if (!file->IsRegular()) return IsNoFile();
        return AsFile(Take(std::move(*file), path));
    }

    Result<std::unique_ptr<Locks>> OpenLocks(const std::string& database, OpenMode mode) override {
        return OpenFileLocks(database, mode);
    }

    Status GiveName(const std::string& from, const std::string& to) override {
        const auto file = SystemFile::Open(from, DELETE, OPEN_EXISTING, kHere);
        if (!file.IsOk()) return file.GetStatus();
        Status status = file->Rename(to);
        return status.Code() == StatusCode::Duplicate ? IsThere(to) : status;
    }

    Status Replace(const std::string& from, const std::string& to) override {
        if (RenameOver(from, to)) return {};
        const std::wstring source = WideName(from);
        const std::wstring target = WideName(to);
        constexpr DWORD kThrough = MOVEFILE_WRITE_THROUGH;
        if (::MoveFileExW(source.c_str(), target.c_str(), kThrough | MOVEFILE_REPLACE_EXISTING) !=
            0) {
            return {};
        }
        // An older system does not do it while this program, which is alone with the file, has it
        // open. There it stands under another name for a moment, and comes back when this fails.
        const std::string aside = NameBeside(to, ".replaced");
        JET_TRY(GiveName(to, aside).In("it cannot be put in the old file's place"));
        if (Status status = GiveName(from, to); !status.IsOk()) {
            if (Status back = GiveName(aside, to); !back.IsOk()) {
                return status.In("the file is \"" + aside + "\" now; give it its name again");
            }
            return status.In("it cannot be put in the old file's place");
        }
        return Remove(aside);
    }

    Status Remove(const std::string& path) override {
        const auto file = SystemFile::Open(path, DELETE, OPEN_EXISTING, kHere);
        Status status = file.IsOk() ? file->RemoveName(path) : file.GetStatus();
        if (status.IsOk() || status.Code() == StatusCode::NotFound) return {};
        return status.In("\"" + path + "\" cannot be removed");
    }

private:
    static Result<std::unique_ptr<WindowsFile>> Make(const std::string& path) {
        auto file = SystemFile::Open(path, kChange, CREATE_NEW, kHere);
        if (file.IsOk()) return Take(std::move(*file), path);
        return file.GetStatus().In("\"" + path + "\" cannot be made");
    }

    static Result<std::unique_ptr<File>> AsFile(Result<std::unique_ptr<WindowsFile>> file) {
        if (!file.IsOk()) return file.GetStatus();
        return std::unique_ptr<File>(std::move(*file));
    }

    /// Takes the name over from a file that may be open. False where the system cannot.
    static bool RenameOver(const std::string& from, const std::string& to) {
        const auto file = SystemFile::Open(from, DELETE | SYNCHRONIZE, OPEN_EXISTING, kHere);
        return file.IsOk() && file->Rename(to, SystemFile::Over::WhatIsThere).IsOk();
    }
};

}  // namespace

Disk& SystemDisk() {
    static WindowsDisk disk;
    return disk;
}

Result<std::unique_ptr<File>> OpenFile(const std::string& path) {
    return SystemDisk().Open(path, OpenMode::Read);
}

}  // namespace jet
