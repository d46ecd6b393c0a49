#pragma once

#include <cstdint>
#include <optional>
#include <QString>
#include <span>
#include <string>
#include <vector>

#include "commands/ArchiveCommands.h"
#include "project/Rows.h"

/// Trends that come from outside, such as the clipboard. One transaction: when a row cannot be
/// stored, or the user gives up, none is.
class PasteCommands {
public:
    /// All are borrowed and outlive the object.
    PasteCommands(projectdb::ProjectContext& project, projectdb::IEditorWindow& window,
                  const MResources::TextTable& texts)
        : project_(project), window_(window), texts_(texts) {}

    /// Adds the trends to the open archive, each with its index text, and reloads the trend split.
    /// A name that is taken becomes that of a copy; what a trend does not say has the default of a
    /// new one. The trends need no `colour`, `isInUse` and `assigning`. Returns the new IDs in the
    /// order given; empty when the user gave up or no archive is open. Failures as those of
    /// ArchiveCommands.
    std::vector<std::int32_t> PasteTrends(std::span<const project::NewTrend> trends,
                                          const projectdb::Progress& progress);

    /// What could not be stored when PasteTrends has thrown: a trend's number, from 0, and the
    /// column. Empty when the cause is no value.
    struct Place {
        std::size_t trend = 0;
        std::string column;
    };
    [[nodiscard]] const std::optional<Place>& Refused() const noexcept { return refused_; }

private:
    std::optional<Place> refused_;
    projectdb::ProjectContext& project_;
    projectdb::IEditorWindow& window_;
    const MResources::TextTable& texts_;
};
