#pragma once

#include <QStringView>

#include "projectdb/ProjectContext.h"

namespace projectdb {

inline constexpr QStringView kArchiveNames = u"Arc";
inline constexpr QStringView kTrendNames = u"Trd";

/// What the operations on archives and trends need of the editor window.
class IEditorWindow {
public:
    virtual ~IEditorWindow() = default;

    /// The trend recordset is about to be closed: the trend split lets go of its rows.
    virtual void ReleaseTrends() = 0;
    /// The trend recordset holds the trends of another archive now.
    virtual void TrendsReloaded() = 0;
    /// Builds the list of the names in use in a group (kArchiveNames, kTrendNames) anew.
    virtual void NamesInGroup(QStringView group) = 0;
};

/// Fills the trend split for the archive of `currentNodeKey`. The root node has no trends.
void ReloadTrends(ProjectContext& project, IEditorWindow& editor);

}  // namespace projectdb
