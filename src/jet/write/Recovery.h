#pragma once

#include <functional>
#include <string>
#include <vector>

#include "jet/Disk.h"

namespace jet {

/// Looks after the journals that programs which died have left of one database. One that belongs to
/// it is put back, one that changes nothing is removed, and a doubtful one is set aside under
/// another name: the file can be read all the same, and no byte of it is lost.
class Recovery {
public:
    /// `disk` and `file`, the database at `database`, are borrowed. `notify` takes what the user
    /// should know.
    Recovery(Disk& disk, std::string database, const File& file,
             std::function<void(std::string)> notify);

    /// Whether there may be a journal that somebody has left. REQUIRES: the pages are locked, also
    /// shared; before, it may be that of a living program.
    [[nodiscard]] bool IsNeeded() const;

    /// BadArgument when a folder, say, has the name that the journal of a change needs.
    [[nodiscard]] Status CheckPlace() const;

    enum class Outcome {
        Nothing,      // there is no journal
        Done,         // the database or what lies beside it has changed: look again
        Ignored,      // what is there does not concern the file, and stays
        Interrupted,  // half a change is in the file, and nothing was done about it
    };
    /// `writable` is the database, open for writing, or null when this program may do nothing.
    /// REQUIRES: the pages are locked, and when `writable` is given, exclusively.
    [[nodiscard]] Result<Outcome> Run(File* writable);

private:
    [[nodiscard]] std::vector<std::string> Paths() const;
    [[nodiscard]] Result<Outcome> Settle(const std::string& path, File* writable);
    [[nodiscard]] Outcome SetAside(const std::string& path, const std::string& reason);

    Disk& disk_;
    std::string database_;
    const File& file_;
    std::function<void(std::string)> notify_;
};

}  // namespace jet
