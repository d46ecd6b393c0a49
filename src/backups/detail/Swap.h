#pragma once

#include <string>
#include <vector>

#include "backups/detail/CopyContent.h"
#include "jet/File.h"

namespace backups {

/// Puts another content in the place of a project's file while nobody has it open.
class Swap {
public:
    /// `project` has no links in it.
    explicit Swap(std::string project) : project_(std::move(project)) {}

    /// Busy, with their computers in `users`, while other programs have the file open.
    jet::Status RequireAlone(std::vector<std::string>& users) const;

    /// Writes `content` into a file without a name, beside the project's and with its owner and
    /// permissions, and lets it take its place, which is the only moment at which anything changes.
    /// Conflict when the file is no longer what `expected` is a mark of.
    jet::Status Run(const jet::File& content, const FileMark& expected,
                    std::vector<std::string>& users) const;

private:
    std::string project_;
};

}  // namespace backups
