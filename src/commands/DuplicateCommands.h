#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "commands/ArchiveCommands.h"

/// Copies of archives and trends, under names such as "Kopie von Pumpe" and "Kopie(2) von Pumpe".
/// A copy takes over every column but its key, those of other tools and long values included, and
/// the texts in all languages. A copy has a text of its own even when its original has none.
///
/// A command is one transaction: when it fails or is given up there is no copy at all.
class DuplicateCommands {
public:
    /// All are borrowed and outlive the object.
    DuplicateCommands(projectdb::ProjectContext& project, projectdb::IEditorWindow& window,
                      NameLists& names, const MResources::TextTable& texts, IArchiveTree& tree)
        : project_(project), window_(window), names_(names), texts_(texts), tree_(tree) {}

    /// Copies an archive with its trends, which keep their names. Its group is copied, or made
    /// where the original has none; of several the first is taken. Returns the copy's ID; empty
    /// when the user gave up or the archive is not there any more.
    std::optional<std::int32_t> DuplicateArchive(std::int32_t archiveId,
                                                 const projectdb::Progress& progress);
    /// Copies trends, each within its archive, and reloads the trend split. Returns the copies'
    /// IDs in the order of the originals; empty when the user gave up. Trends that are not there
    /// any more are left out.
    std::vector<std::int32_t> DuplicateTrends(std::span<const std::int32_t> trendIds,
                                              const projectdb::Progress& progress);

private:
    projectdb::ProjectContext& project_;
    projectdb::IEditorWindow& window_;
    NameLists& names_;
    const MResources::TextTable& texts_;
    IArchiveTree& tree_;
};
