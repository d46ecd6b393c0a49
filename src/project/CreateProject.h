#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ado/CreateFile.h"

/// New project files.
namespace project {

/// Why these cannot be the languages of a project, in English; empty when they can. They are
/// Windows locale ids, 1 to 0xFFFFF, 1 to 251 different ones.
[[nodiscard]] std::string WrongLanguages(std::span<const std::uint32_t> lcids);

/// The tables of a new project with texts in these languages.
[[nodiscard]] std::vector<ado::NewTable> ProjectTables(std::span<const std::uint32_t> lcids);

/// Makes a new project file, empty but for the group above all archives' groups, with texts in the
/// languages `lcids`, in the order in which the project shall list them. REQUIRES: WrongLanguages
/// has nothing to say. `path` is UTF-8, with slashes or as projects write paths.
///
/// A file that is there already is never touched, and after a failure there is none. The new file
/// is durable. Throws AdoError, see ado::CreateFile.
void CreateProject(const std::string& path, std::span<const std::uint32_t> lcids);

}  // namespace project
