#include "jet/disk/windows/SystemFile.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>
#include <vector>

#include "jet/disk/SystemName.h"
#include "jet/disk/windows/SystemError.h"
#include "unicode/Unicode.h"

namespace jet {
namespace {

constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kAtOnce = std::size_t{64} << 20;  // bytes

// What the headers have for newer systems only.
constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr DWORD kRemoveAtOnce = 3;  // FILE_DISPOSITION_FLAG_DELETE, _POSIX_SEMANTICS
constexpr auto kRenameEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kRenameOver = 3;  // FILE_RENAME_FLAG_REPLACE_IF_EXISTS, _POSIX_SEMANTICS

/// A name in the folder of `path` that nothing has.
std::string NameAside(const std::string& path) {
    static std::atomic<unsigned> count = 0;
    return path + ".gone" + std::to_string(ProcessNumber()) + "-" + std::to_string(++count);
}

}  // namespace

std::wstring WideName(const std::string& path) {
    const std::u16string wide = unicode::ToUtf16(path);
    return {wide.begin(), wide.end()};
}

std::string NarrowName(const std::wstring& path) {
    return unicode::ToUtf8(std::u16string(path.begin(), path.end()));
}

OVERLAPPED PlaceOf(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

FileId IdOf(const BY_HANDLE_FILE_INFORMATION& info) {
    return {info.dwVolumeSerialNumber,
            std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow};
}

Result<SystemFile> SystemFile::Open(const std::string& path, DWORD access, DWORD disposition,
                                    Links links) {
    DWORD flags = FILE_ATTRIBUTE_NORMAL;
    if (links == Links::NotFollowed) flags |= FILE_FLAG_OPEN_REPARSE_POINT;
    if (access == 0) flags |= FILE_FLAG_BACKUP_SEMANTICS;
    const HANDLE handle =
        ::CreateFileW(WideName(path).c_str(), access, kAll, nullptr, disposition, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return LastFailure("it cannot be opened");
    return SystemFile(handle);
}

Result<SystemFile> SystemFile::Reopen(const SystemFile& file, DWORD access) {
    const HANDLE handle = ::ReOpenFile(file.handle_, access, kAll, 0);
    if (handle == INVALID_HANDLE_VALUE) return LastFailure("it cannot be opened");
    return SystemFile(handle);
}

SystemFile::SystemFile(SystemFile&& other) noexcept
    : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}

SystemFile& SystemFile::operator=(SystemFile&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

SystemFile::~SystemFile() {
    if (handle_ != INVALID_HANDLE_VALUE) ::CloseHandle(handle_);
}

Result<BY_HANDLE_FILE_INFORMATION> SystemFile::Info() const {
    BY_HANDLE_FILE_INFORMATION info{};
    if (::GetFileInformationByHandle(handle_, &info) != 0) return info;
    return LastFailure("it cannot be looked at");
}

Result<FileId> SystemFile::Id() const {
    BY_HANDLE_FILE_INFORMATION info{};
    JET_ASSIGN(info, Info());
    return IdOf(info);
}

bool SystemFile::IsRegular() const {
    if (::GetFileType(handle_) != FILE_TYPE_DISK) return false;
    const auto info = Info();
    constexpr DWORD kOther = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    return info.IsOk() && (info->dwFileAttributes & kOther) == 0;
}

bool SystemFile::HasName(const std::string& path) const {
    const auto named = Open(path, 0, OPEN_EXISTING, Links::NotFollowed);
    if (!named.IsOk()) return false;
    const auto own = Id();
    const auto there = named->Id();
    return own.IsOk() && there.IsOk() && *own == *there;
}

Result<std::size_t> SystemFile::Read(std::uint64_t offset, std::span<std::byte> into) const {
    std::size_t done = 0;
    while (done < into.size()) {
        OVERLAPPED place = PlaceOf(offset + done);
        const auto some = static_cast<DWORD>(std::min(into.size() - done, kAtOnce));
        DWORD count = 0;
        if (::ReadFile(handle_, into.data() + done, some, &count, &place) == 0) {
            if (::GetLastError() == ERROR_HANDLE_EOF) break;
            return LastFailure("reading at offset " + std::to_string(offset));
        }
        if (count == 0) break;
        done += count;
    }
    return done;
}

Status SystemFile::Write(std::uint64_t offset, std::span<const std::byte> bytes) const {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceOf(offset);
        const auto some = static_cast<DWORD>(std::min(bytes.size(), kAtOnce));
        DWORD count = 0;
        if (::WriteFile(handle_, bytes.data(), some, &count, &place) == 0) {
            return LastFailure("writing at offset " + std::to_string(offset));
        }
        offset += count;
        bytes = bytes.subspan(count);
    }
    return {};
}

Status SystemFile::Resize(std::uint64_t size) const {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (::SetFileInformationByHandle(handle_, FileEndOfFileInfo, &end, sizeof end) != 0) return {};
    return LastFailure("changing its size");
}

Status SystemFile::Sync() const {
    return ::FlushFileBuffers(handle_) != 0 ? Status() : LastFailure("making it durable");
}

Status SystemFile::Rename(const std::string& to, Over over) const {
    // The system reads it relative to the file's own folder unless it is a whole path.
    std::vector<wchar_t> whole(32768);
    const DWORD size = ::GetFullPathNameW(WideName(to).c_str(), static_cast<DWORD>(whole.size()),
                                          whole.data(), nullptr);
    if (size == 0 || size >= whole.size()) return LastFailure("\"" + to + "\" is no name");
    std::vector<std::byte> buffer(sizeof(FILE_RENAME_INFO) + size * sizeof(wchar_t));
    auto* info = new (buffer.data()) FILE_RENAME_INFO{};
    info->FileNameLength = static_cast<DWORD>(size * sizeof(wchar_t));
    std::memcpy(info->FileName, whole.data(), info->FileNameLength);
    auto kind = FileRenameInfo;
    if (over == Over::WhatIsThere) {
        kind = kRenameEx;
        std::memcpy(info, &kRenameOver, sizeof kRenameOver);  // where the older kind has a flag
    }
    const auto length = static_cast<DWORD>(buffer.size());
    if (::SetFileInformationByHandle(handle_, kind, info, length) != 0) return {};
    return LastFailure("\"" + to + "\" cannot be made");
}

Status SystemFile::GoWhenClosed(bool goes) const {
    FILE_DISPOSITION_INFO info{};
    info.DeleteFile = goes ? TRUE : FALSE;
    if (::SetFileInformationByHandle(handle_, FileDispositionInfo, &info, sizeof info) != 0) {
        return {};
    }
    return LastFailure("it cannot be removed");
}

Status SystemFile::RemoveName(const std::string& path) const {
    DWORD atOnce = kRemoveAtOnce;
    const bool goes =
        ::SetFileInformationByHandle(handle_, kDispositionEx, &atOnce, sizeof atOnce) != 0;
    const std::wstring name = WideName(path);
    if (goes && ::GetFileAttributesW(name.c_str()) == INVALID_FILE_ATTRIBUTES) return {};
    // Where the system, or the file's own, keeps the name until everybody has closed the file.
    const Status isAside = Rename(NameAside(path));
    Status isGone = GoWhenClosed(true);
    return isGone.IsOk() ? isAside : isGone;
}

}  // namespace jet
