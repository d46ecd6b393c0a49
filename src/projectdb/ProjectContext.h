#pragma once

#include <memory>
#include <QString>

#include "project/History.h"
#include "projectdb/ADOArchiv.h"

namespace projectdb {

/// What the add-in's parts share about the open project; one object per add-in, borrowed by all.
struct ProjectContext {
    /// Full path of the project file in the form with backslashes.
    QString projectPath;
    /// Key of the tree node last opened in the editor; empty before the first one.
    QString currentNodeKey;
    /// What the user can take back; it outlives the connection.
    project::History history;
    /// Null while the project is not opened.
    std::unique_ptr<ADOArchiv> environment;

    /// Makes the data environment when there is none.
    [[nodiscard]] ADOArchiv& Environment();
    /// Closes recordsets and connection and gives the data environment back. When closing fails it
    /// is given back all the same and the failure thrown on.
    void CloseDatabase();
};

}  // namespace projectdb
