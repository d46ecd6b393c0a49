#pragma once

#include <cstdint>
#include <functional>
#include <QString>

#include "commands/NameLists.h"
#include "project/Template.h"
#include "projectdb/Hierarchy.h"
#include "texts/MResources.h"

/// The archives' nodes in the host's tree, as the commands need them.
class IArchiveTree {
public:
    virtual ~IArchiveTree() = default;

    virtual void AddArchiveNode(std::int32_t archiveId, const QString& name) = 0;
    virtual void SetArchiveNodeText(std::int32_t archiveId, const QString& name) = 0;
    virtual void RemoveArchiveNode(std::int32_t archiveId) = 0;
};

/// Shows a question with OK and Cancel, the latter the default; true for OK.
using AskUser = std::function<bool(const QString& question)>;

/// Throws the failure that ended a deletion on, with what has been deleted before it and what is
/// left. REQUIRES: called inside a catch block.
[[noreturn]] void RethrowWithRest(const projectdb::Hierarchy& hierarchy,
                                  const MResources::TextTable& texts);

/// New, Edit and Delete of archives. Each keeps four things in step: the archive's row, its text
/// group and index text, its node in the host's tree, and the list of names in use.
///
/// Nothing is caught here. A failing step ends a command and is thrown on; the steps before it stay
/// done, and no row is left in the middle of being edited. Since the archive comes first and its
/// node last, no group or text is ever without its archive. The steps of New reach the file in one
/// commit, as far as they came: other programs never see a part of it.
///
/// The commands work on recordsets of their own. Those of the data environment know of a change
/// when they are requeried.
class ArchiveCommands {
public:
    /// All are borrowed and outlive the object.
    ArchiveCommands(projectdb::ProjectContext& project, projectdb::Hierarchy& hierarchy,
                    NameLists& names, const MResources::TextTable& texts, IArchiveTree& tree)
        : project_(project), hierarchy_(hierarchy), names_(names), texts_(texts), tree_(tree) {}

    /// Makes an archive under the first free name and returns its ID. `languageColumn` is the text
    /// column of the project's current language ("L1031"); a language without one gets no text.
    /// `from`: the archive gets these settings; what it does not take is told there.
    std::int32_t New(const QString& languageColumn, project::Template* from = nullptr);

    /// Edits the current row of `archives`, and its text in `texts`, and stores both by `save`,
    /// which throws when it cannot; both rows then wait to be cancelled. False when the user gave
    /// up or nothing could be edited.
    using EditArchive = std::function<bool(ado::Recordset& archives, ado::Recordset& texts,
                                           const std::function<void()>& save)>;
    /// Edits an archive and takes a new name over into node, group and index text. What reaches the
    /// file is one change. False when nothing has been edited.
    bool Edit(std::int32_t archiveId, const EditArchive& edit);

    /// Deletes the archive of a tree node with all that hangs from it. Asks first unless `ask` is
    /// empty; false when the user declined or gave up: then nothing has changed.
    bool Delete(const QString& nodeKey, const AskUser& ask, const projectdb::Progress& progress);

private:
    projectdb::ProjectContext& project_;
    projectdb::Hierarchy& hierarchy_;
    NameLists& names_;
    const MResources::TextTable& texts_;
    IArchiveTree& tree_;
};
