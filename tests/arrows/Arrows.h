#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Which target may include what of which other: its arrows are those of the link lists.
namespace arrows {

struct Target {
    std::vector<std::filesystem::path> files;
    std::set<std::string> joined;    // targets that it is joined to
    std::set<std::string> handedOn;  // targets to which it joins those that join it
};

using Targets = std::map<std::string, Target>;

/// What cmake/KvArrows.cmake has written. Throws std::runtime_error when there is no such file.
[[nodiscard]] Targets Read(const std::filesystem::path& file);

/// The wrong includes and arrows of the targets whose files lie in these folders of the project,
/// one a line: an include of a target that its own is not joined to, of what lies in a
/// folder inside another library, of a header that belongs to no target; an include of what lies in
/// a folder inside its own library by a header that others may include; and a target joined to
/// another of which it includes nothing.
[[nodiscard]] std::vector<std::string> Wrong(const Targets& targets,
                                             const std::filesystem::path& root,
                                             const std::vector<std::string>& folders);

}  // namespace arrows
