// The archives in the editor window's list and in the host's tree, and how both follow the file.

#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSet>
#include <tuple>
#include <utility>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/GridColumns.h"
#include "editor/RecordsetModel.h"
#include "projectdb/NodeKey.h"
#include "projectdb/ProjectRows.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using Command = ADOArchiv::Command;

namespace {

constexpr int kAllArchives = 0;

}  // namespace

void frmtabGrid::ReadArchives() {
    ado::Recordset& archives = project_.Environment().Recordset(Command::Archives);
    archives_->Detach();
    if (archives.State() == ado::ObjectState::Open) {
        archives.Requery();
    } else {
        project_.Environment().Open(Command::Archives);
    }
    // All archives are the same content, however many there are now: the list stays where it was.
    archives_->Attach(archives, GridColumns::OfArchives(), kAllArchives);
}

void frmtabGrid::RefreshArchives(const QString& instead) {
    const QScopedValueRollback marking(marking_, true);
    ReadArchives();
    const QString& key = project_.currentNodeKey;
    MarkArchive(key);
    const int row = archives_->Locate(projectdb::NodeId(key));
    if (row >= 0) {
        MakeMyCaption(key, archives_->index(row, archives_->ColumnOf("Name")).data().toString());
    } else if (projectdb::NodeKind(key) == projectdb::kArchiveKind) {
        addIn_.SelectArchive(instead.isEmpty() ? projectdb::kRootKind.toString() : instead);
    }
}

QString frmtabGrid::ArchiveName(std::int32_t id) {
    std::ignore = archives_->Locate(id);  // reads on as far as it stands
    const GridSplit& archives = tdbA->SplitAt(0);
    return archives.CellText(id, archives.ColumnIndex(u"Name"));
}

QString frmtabGrid::ArchiveBeside(const QString& nodeKey) {
    QStringList keys;
    if (active_ || addIn_.SelectedNodeKey().isEmpty()) {
        while (archives_->canFetchMore({})) archives_->fetchMore({});
        for (const GridRowId row : tdbA->SplitAt(0).ShownRows()) {
            keys += projectdb::ArchiveNodeKey(static_cast<std::int32_t>(row));
        }
    }
    // One that is narrowed out has its neighbours in the tree.
    if (!keys.contains(nodeKey)) keys = addIn_.ArchiveKeys();
    const qsizetype at = keys.indexOf(nodeKey);
    if (at >= 0 && at + 1 < keys.size()) return keys[at + 1];
    return at > 0 ? keys[at - 1] : projectdb::kRootKind.toString();
}

/// Opens a new archive with its name as the current cell and the keyboard there, so that the next
/// key edits it or makes another one. What narrows the list would hide it.
void frmtabGrid::ShowNewArchive(std::int32_t id) {
    GridSplit& archives = tdbA->SplitAt(0);
    if (!archives.FilterText().isEmpty()) txtFind->clear();
    addIn_.SelectArchive(projectdb::ArchiveNodeKey(id));
    const QScopedValueRollback marking(marking_, true);
    archives.SetCurrentCell(id, archives.ColumnIndex(u"Name"));
    tdbA->SetSplit(0);
}

void frmtabGrid::FollowArchives(const QString& instead) {
    const QScopedValueRollback marking(marking_, true);
    ReadArchives();
    if (!archives_->ReadAll()) return;  // what is not known has not gone
    const int nameColumn = archives_->ColumnOf("Name");
    const QStringList nodes = addIn_.ArchiveKeys();
    QSet<QString> gone(nodes.begin(), nodes.end());
    for (int row = 0; row < archives_->rowCount(); ++row) {
        const auto id = static_cast<std::int32_t>(archives_->IdAt(row));
        const QString key = projectdb::ArchiveNodeKey(id);
        const QString name = archives_->index(row, nameColumn).data().toString();
        if (!gone.remove(key)) {
            addIn_.AddArchiveNode(id, name);
        } else if (addIn_.ArchiveNodeText(key) != name) {
            addIn_.SetArchiveNodeText(id, name);
        }
    }
    // An archive that cannot be read is still there.
    if (archives_->Missing().Count() > 0) gone.clear();
    const QString open = project_.currentNodeKey;
    const QString name = addIn_.ArchiveNodeText(open);
    for (const QString& key : std::as_const(gone)) {
        addIn_.RemoveArchiveNode(projectdb::NodeId(key));
    }
    MarkArchive(open);
    if (!gone.contains(open)) return MakeMyCaption(open, name);
    addIn_.SelectArchive(instead.isEmpty() ? projectdb::kRootKind.toString() : instead);
    if (instead.isEmpty()) TellOfDeletedArchive(name);
}

bool frmtabGrid::IsThere(const QString& nodeKey) {
    if (projectdb::NodeKind(nodeKey) != projectdb::kArchiveKind) return true;
    if (projectdb::ProjectRows(project_.Environment()).SeekArchive(projectdb::NodeId(nodeKey))) {
        return true;
    }
    const bool wasOpen = nodeKey == project_.currentNodeKey;
    const QString name = addIn_.ArchiveNodeText(nodeKey);
    FollowArchives();
    if (wasOpen) return false;  // which has been told
    addIn_.SelectArchive(project_.currentNodeKey);
    TellOfDeletedArchive(name);
    return false;
}

void frmtabGrid::TellOfDeletedArchive(const QString& name) {
    Tell(texts_.GetText(MResourceTable::kTextArchiveDeletedElsewhere, {{u"name", name}}));
}
