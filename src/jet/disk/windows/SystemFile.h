#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "jet/disk/SharedFile.h"
#include "jet/Status.h"

namespace jet {

/// A UTF-8 path as the system takes it.
[[nodiscard]] std::wstring WideName(const std::string& path);
[[nodiscard]] std::string NarrowName(const std::wstring& path);

/// An open file, which it closes at the end. All programs may open it, rename it and remove it
/// meanwhile, as on other systems.
class SystemFile {
public:
    /// Whose path is being opened.
    enum class Links { Followed, NotFollowed };

    /// An access of 0 looks at the file only, whatever its permissions, and opens folders too.
    [[nodiscard]] static Result<SystemFile> Open(const std::string& path, DWORD access,
                                                 DWORD disposition, Links links);
    /// The same file, whatever it is called now, for another access.
    [[nodiscard]] static Result<SystemFile> Reopen(const SystemFile& file, DWORD access);
    SystemFile(SystemFile&& other) noexcept;
    SystemFile& operator=(SystemFile&& other) noexcept;
    ~SystemFile();

    [[nodiscard]] HANDLE Handle() const { return handle_; }
    [[nodiscard]] Result<BY_HANDLE_FILE_INFORMATION> Info() const;
    [[nodiscard]] Result<FileId> Id() const;
    /// No folder, link or device.
    [[nodiscard]] bool IsRegular() const;
    /// Whether `path` is a name of the file itself.
    [[nodiscard]] bool HasName(const std::string& path) const;

    /// How many bytes were there: fewer than asked only at the end.
    [[nodiscard]] Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const;
    [[nodiscard]] Status Write(std::uint64_t offset, std::span<const std::byte> bytes) const;
    [[nodiscard]] Status Resize(std::uint64_t size) const;
    [[nodiscard]] Status Sync() const;

    // These need an access with DELETE.
    enum class Over { Nothing, WhatIsThere };
    /// Over::Nothing: Duplicate when there is something at `to`. Otherwise the file takes its name
    /// over, though it may be open; newer systems can.
    [[nodiscard]] Status Rename(const std::string& to, Over over = Over::Nothing) const;
    /// The file goes when it is closed, however this program ends; until then nobody can open it.
    [[nodiscard]] Status GoWhenClosed(bool goes) const;
    /// Takes the name away at once, though other programs may have the file open.
    [[nodiscard]] Status RemoveName(const std::string& path) const;

private:
    explicit SystemFile(HANDLE handle) : handle_(handle) {}

    HANDLE handle_;
};

[[nodiscard]] FileId IdOf(const BY_HANDLE_FILE_INFORMATION& info);

/// The two halves of an offset, as calls at a place take them.
[[nodiscard]] OVERLAPPED PlaceOf(std::uint64_t offset);

}  // namespace jet
