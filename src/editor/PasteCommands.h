#pragma once

#include <cstdint>
#include <optional>
#include <QString>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "editor/ArchiveCommands.h"

/// What is known of one trend that is to be made.
struct PastedTrend {
    using Values = std::vector<std::pair<std::string, ado::Value>>;

    QString name;   // empty: the name of a new trend
    Values values;  // by column of the table of trends
    Values texts;   // by column of the index texts
};

/// Trends that come from outside, such as the clipboard. One transaction: when a row cannot be
/// stored, or the user gives up, none is.
class PasteCommands {
public:
    /// All are borrowed and outlive the object.
    PasteCommands(projectdb::ProjectContext& project, projectdb::IEditorWindow& window,
                  const MResources::TextTable& texts)
        : project_(project), window_(window), texts_(texts) {}

    /// Adds the trends to the open archive, each with its index text, and reloads the trend split.
    /// A name that is taken becomes that of a copy. Returns the new IDs in the order given; empty
    /// when the user gave up or no archive is open. Failures as those of ArchiveCommands.
    std::vector<std::int32_t> PasteTrends(std::span<const PastedTrend> trends,
                                          const projectdb::Progress& progress);

    /// What could not be stored when PasteTrends has thrown: a trend's number, from 0, and the
    /// column. Empty when the cause is no value.
    struct Place {
        std::size_t trend = 0;
        std::string column;
    };
    [[nodiscard]] const std::optional<Place>& Refused() const noexcept { return refused_; }

private:
    /// Gives a row its values, and notes which of them it is meanwhile.
    void Assign(ado::Recordset& row, std::size_t trend, const PastedTrend::Values& values);

    std::optional<Place> refused_;
    projectdb::ProjectContext& project_;
    projectdb::IEditorWindow& window_;
    const MResources::TextTable& texts_;
};
