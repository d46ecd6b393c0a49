#include "jet/disk/posix/AccessRights.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace jet {
namespace {

bool IsMember(uid_t user, gid_t group) {
    struct passwd entry {};
    struct passwd* found = nullptr;
    std::vector<char> buffer(16384);
    if (::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0) return false;
    if (found == nullptr) return false;
    int count = 256;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    if (::getgrouplist(entry.pw_name, entry.pw_gid, groups.data(), &count) < 0) return false;
    groups.resize(static_cast<std::size_t>(count));
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

}  // namespace

void GiveAccessOf(const struct stat& database, int file) {
    constexpr gid_t kNoGroup = static_cast<gid_t>(-1);
    constexpr uid_t kNoUser = static_cast<uid_t>(-1);
    const bool hasGroup = ::fchown(file, database.st_uid, database.st_gid) == 0 ||
                          ::fchown(file, kNoUser, database.st_gid) == 0;
    mode_t mode = database.st_mode & 0666;
    // A group that is not the database's may do what everybody may.
    if (!hasGroup && database.st_gid != kNoGroup) mode = (mode & ~0070U) | (mode & 0007U) << 3;
    // Where it cannot be done the file stays its maker's alone.
    std::ignore = ::fchmod(file, mode | S_IRUSR | S_IWUSR);
}

bool MayOwnerWrite(const struct stat& file, const struct stat& database) {
    const uid_t owner = file.st_uid;
    if (owner == 0 || owner == ::geteuid()) return true;
    if (owner == database.st_uid) return (database.st_mode & S_IWUSR) != 0;
    if ((database.st_mode & S_IWOTH) != 0) return true;
    return (database.st_mode & S_IWGRP) != 0 && IsMember(owner, database.st_gid);
}

}  // namespace jet
