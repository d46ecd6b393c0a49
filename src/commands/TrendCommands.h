#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "commands/ArchiveCommands.h"

/// New, Edit and Delete of the trends of the open archive, which is the one of the context's
/// currentNodeKey. A pending edit of the grid is stored before any of them is called.
///
/// Failures as those of ArchiveCommands.
class TrendCommands {
public:
    /// All are borrowed and outlive the object.
    TrendCommands(projectdb::ProjectContext& project, projectdb::Hierarchy& hierarchy,
                  projectdb::IEditorWindow& window, NameLists& names,
                  const MResources::TextTable& texts)
        : project_(project), hierarchy_(hierarchy), window_(window), names_(names), texts_(texts) {}

    /// Adds a trend to the open archive, reloads the trend split and returns the trend's ID. Does
    /// nothing and returns 0 when no archive is open.
    /// `from`: the trend gets these settings; what it does not take is told there.
    std::int32_t New(project::Template* from = nullptr);

    /// Edits and stores the current row of `trends`; false when the user gave up or it failed.
    using EditTrend = std::function<bool(ado::Recordset& trends)>;
    /// Edits a trend of the open archive in the recordset of the trend split, whose current row it
    /// becomes. False when nothing has been edited, as when the split has no such trend.
    bool Edit(std::int32_t trendId, const EditTrend& edit);
    /// True while a trend is being edited in its dialog.
    [[nodiscard]] bool IsEditing() const noexcept { return isEditing_; }

    /// Deletes trends in the order given. Asks first unless `ask` is empty; false when the user
    /// declined. Does nothing without trends.
    bool Delete(std::span<const std::int32_t> trendIds, const AskUser& ask,
                const projectdb::Progress& progress);

private:
    projectdb::ProjectContext& project_;
    projectdb::Hierarchy& hierarchy_;
    projectdb::IEditorWindow& window_;
    NameLists& names_;
    const MResources::TextTable& texts_;
    bool isEditing_ = false;
};
