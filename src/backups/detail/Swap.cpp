#include "backups/detail/Swap.h"

#include <memory>
#include <span>
#include <tuple>
#include <utility>

#include "jet/Disk.h"

namespace backups {
namespace {

using jet::Status;

jet::Result<std::unique_ptr<jet::Locks>> LockAlone(const std::string& project,
                                                   std::vector<std::string>& users) {
    std::unique_ptr<jet::Locks> locks;
    JET_ASSIGN(locks, jet::SystemDisk().OpenLocks(project, jet::OpenMode::ReadWrite));
    if (Status status = locks->LockAlone(); !status.IsOk()) {
        users = locks->OtherUsers();
        return status;
    }
    return locks;
}

Status CopyInto(jet::File& draft, const jet::File& content) {
    std::vector<std::byte> piece(std::size_t{1} << 20);
    for (std::uint64_t at = 0;;) {
        std::size_t count = 0;
        JET_ASSIGN(count, content.Read(at, piece));
        if (count == 0) return draft.Sync();
        JET_TRY(draft.Write(at, std::span(piece).first(count)));
        at += count;
    }
}

/// A file needs a name to take another's place; it has one of its own for that moment.
Status TakePlace(jet::Disk& disk, jet::File& draft, const std::string& project) {
    constexpr int kMostNames = 100;
    std::string name = project + "-restored";
    Status named;
    for (int i = 2; i < kMostNames; ++i) {
        named = disk.Publish(draft, name);
        if (named.Code() != jet::StatusCode::Duplicate) break;
        name = project + "-restored-" + std::to_string(i);
    }
    JET_TRY(named);
    Status status = disk.Replace(name, project);
    // The failure to be told is the first one.
    if (!status.IsOk() && disk.HasName(draft, name)) std::ignore = disk.Remove(name);
    return status;
}

}  // namespace

Status Swap::RequireAlone(std::vector<std::string>& users) const {
    return LockAlone(project_, users).GetStatusOrOk();
}

Status Swap::Run(const jet::File& content, const FileMark& expected,
                 std::vector<std::string>& users) const {
    jet::Disk& disk = jet::SystemDisk();
    std::unique_ptr<jet::File> draft;
    JET_ASSIGN(draft, disk.CreateReplacement(project_));
    JET_TRY(CopyInto(*draft, content));
    // Only now, so that who wants to open the project does not wait for long.
    std::unique_ptr<jet::Locks> locks;
    JET_ASSIGN(locks, LockAlone(project_, users));
    Descriptor file;
    JET_ASSIGN(file, OpenToRead(project_));
    FileMark now;
    JET_ASSIGN(now, FileMark::Of(file));
    if (!(now == expected)) {
        return {jet::StatusCode::Conflict, "another program has changed the file meanwhile"};
    }
    return TakePlace(disk, *draft, project_);
}

}  // namespace backups
