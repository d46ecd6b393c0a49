#pragma once

#include <functional>
#include <QStringView>
#include <span>
#include <vector>

#include "projectdb/CHNds.h"
#include "projectdb/FunctionCounters.h"
#include "projectdb/ProjectContext.h"
#include "projectdb/ProjectRows.h"

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

/// Called before each row of a long operation with the number of rows done and of all; false
/// gives the operation up. It may let the window handle events, but start no other operation.
using Progress = std::function<bool(int done, int total)>;

/// What a deletion has taken out of the file.
struct Deletion {
    std::vector<std::int32_t> archives;  // IDs
    std::vector<std::int32_t> trends;    // IDs
};

/// The operations on an archive with all that hangs from it: trends, index texts, text groups. The
/// file declares none of these relations, so they are kept here. One object per editor window.
///
/// A cascade is one transaction. It is committed as far as it came when it fails: what was deleted
/// stays deleted. When it is cancelled all of it is taken back. An archive's own rows go before its
/// trends; a text that another row names as well stays.
class Hierarchy {
public:
    /// All three are borrowed and outlive the object.
    Hierarchy(ProjectContext& project, IEditorWindow& window, IStatusPanels& status)
        : project_(project), window_(window), counters_(status) {}

    /// Asks whether that many trends, or an archive with that many, shall be deleted. An empty
    /// function agrees.
    using Confirm = std::function<bool(int trends)>;

    /// Takes the archive of a tree node and its trends into the hierarchy and counts them. Nothing
    /// when the archive is not there.
    void CollectArchive(const QString& nodeKey);

    /// False when the user declined or gave up: then nothing has changed. Throws what the database
    /// throws; the window shows what is in the file all the same, and LastDeletion() tells what has
    /// gone.
    bool DeleteArchive(const QString& nodeKey, const Confirm& confirm, const Progress& progress);
    /// The same for trends, which go in the order given.
    bool DeleteTrends(std::span<const std::int32_t> trendIds, const Confirm& confirm,
                      const Progress& progress);

    /// What the last deletion has taken out of the file, also when it failed.
    [[nodiscard]] const Deletion& LastDeletion() const noexcept { return deletion_; }
    /// How many archives and trends it was to take out.
    [[nodiscard]] int LastTotal() const noexcept { return total_; }
    [[nodiscard]] const CHNds& Nodes() const noexcept { return nodes_; }
    [[nodiscard]] FunctionCounters& Counters() noexcept { return counters_; }

private:
    bool Delete(const Confirm& confirm, const Progress& progress);
    bool Cascade(const Progress& progress);
    bool DeleteNodes(const CHNds& nodes, ProjectRows& rows, const Progress& progress);
    void BringUpToDate();

    ProjectContext& project_;
    IEditorWindow& window_;
    FunctionCounters counters_;
    CHNds nodes_;  // of the operation that ran last
    Deletion deletion_;
    int done_ = 0;   // nodes of the deletion so far
    int total_ = 0;  // all nodes of the deletion
};

}  // namespace projectdb
