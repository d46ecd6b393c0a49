#pragma once

#include <QString>

/// What the editor window asks of the add-in that made it. The add-in outlives the window.
class IAddIn {
public:
    virtual ~IAddIn() = default;

    /// Shows the editor window, with the archive that is selected in the host's tree.
    virtual void ShowEditor() = 0;

    /// Selects an archive's node in the host's tree and opens that archive.
    virtual void SelectArchive(const QString& nodeKey) = 0;
};
