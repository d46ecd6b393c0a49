#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "reasons/Reason.h"

/// Copies of projects in a folder of the user's.
namespace backups {

using Moment = std::chrono::sys_time<std::chrono::milliseconds>;

/// One backup of a project: an ordinary project file.
struct Backup {
    std::string path;
    Moment taken;
    std::uint64_t size = 0;  // bytes
    // Empty when the file cannot be read.
    std::optional<std::uint32_t> archives = {};
    std::optional<std::uint32_t> trends = {};
};

/// How taking a backup or putting one back ended.
struct [[nodiscard]] Outcome {
    enum class Kind {
        Done,
        Unchanged,  // the latest backup holds the same already
        NoProject,  // the project itself cannot be read; whoever opens it says why
        InUse,      // other programs have the project open
        NotKept,    // the present state could not be kept, so that nothing has been put back
        Failed,
    };
    Kind kind = Kind::Done;
    std::string backup = {};  // the file that has been made of the state before; may be empty
    std::string text = {};    // why not: UTF-8, English, names the file
    reasons::Reason reason = {};
    std::vector<std::string> users = {};  // computers of the other programs, as far as known
};

/// Where backups are kept and how many.
struct Settings {
    std::string folder;     // native path, made when it is needed
    std::size_t most = 10;  // of a project; 0: none is taken, and those that are there stay
};

/// The backups of one project, in a folder of its own that only the user may look into. Keeps
/// nothing in memory: several programs may work on the same backups. Functions of different
/// objects may run at the same time in different threads.
class Backups {
public:
    /// `project` is the native path of a file; links in it are followed.
    Backups(const std::string& project, Settings settings);

    /// Keeps the state that the project's file has now, all of other programs' changes or nothing
    /// of them, unless the latest backup is the same, and removes the oldest beyond `most`. Shares
    /// the file's blocks where the file system can. Others wait with their changes for half a
    /// second at most. After a failure there is neither a new backup nor one less.
    Outcome Take() const;

    /// The latest first. Empty when there are none, or none can be looked at.
    [[nodiscard]] std::vector<Backup> List() const;

    /// Whether a check of the whole file finds no errors. Takes as long as reading it.
    [[nodiscard]] static bool IsSound(const Backup& backup);

    /// Keeps the present state as another backup, even if it is damaged or `most` is 0, and puts
    /// `backup` in the place of the project's file, with its owner and its permissions: another
    /// file under the same name, so that there is at no moment, not even after a crash or on a full
    /// disk, anything but the old state or the whole new one. Only while no other program has the
    /// project open. After a failure the project is as it was.
    Outcome Restore(const Backup& backup) const;

    /// The folder of the project's backups; need not be there.
    [[nodiscard]] const std::string& Folder() const noexcept { return folder_; }

private:
    std::string project_;
    Settings settings_;
    std::string folder_;
};

}  // namespace backups
