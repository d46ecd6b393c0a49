// What windows over the whole project ask of the editor window.

#include <QLineEdit>
#include <QScopedValueRollback>
#include <QScopeGuard>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "project/Schema.h"
#include "projectdb/NodeKey.h"
#include "projectdb/ProjectRows.h"
#include "projectdb/Text.h"
#include "projecttable/frmProjectTable.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The archive and the trend that a row belongs to; 0: none.
struct Owner {
    std::int32_t archive = 0;
    std::int32_t trend = 0;
};

Owner OwnerIn(ado::Recordset& trends, const std::string& criteria) {
    trends.SetFilter(criteria);
    if (trends.IsEOF()) return {};
    return {project::NumberOf(trends, "ArchiveID").value_or(0),
            ado::ToLong(trends.Get(project::kKeyColumn))};
}

Owner OwnerOf(const projectdb::Place& place, projectdb::ProjectRows& rows) {
    const std::string id = std::to_string(place.id);
    if (place.table == project::kTrendTable) return OwnerIn(rows.Trends(), "ID = " + id);
    if (place.table == project::kTextTable) {
        const Owner owner = OwnerIn(rows.Trends(), "TextID = " + id);
        if (owner.trend != 0) return owner;
        rows.Archives().SetFilter("TextID = " + id);
        if (rows.Archives().IsEOF()) return {};
        return {ado::ToLong(rows.Archives().Get(project::kKeyColumn)), 0};
    }
    if (place.table == project::kGroupTable) {
        rows.Groups().SetFilter("ID = " + id);
        if (rows.Groups().IsEOF()) return {};
        return {project::NumberOf(rows.Groups(), "Parameter").value_or(0), 0};
    }
    return {place.id, 0};
}

}  // namespace

ado::Connection& frmtabGrid::Connection() {
    return project_.Environment().Connection();
}

bool frmtabGrid::RunStep(const std::function<void()>& change) {
    if (busy_) {
        Hint(MResourceTable::kTextHintBusy);
        return false;
    }
    if (!MayStore()) return false;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return false;
    EndStep();
    const QString beside = ArchiveBeside(project_.currentNodeKey);
    const std::uint64_t before = Connection().ContentNumber();
    const auto show = qScopeGuard([&] {
        guard::Guard(u"frmtabGrid"_s, [&] {
            EndStep();
            if (Connection().ContentNumber() == before) return;
            FollowArchives(beside);
            NamesInGroup(projectdb::kArchiveNames);
            projectdb::ReloadTrends(project_, *this);
        });
    });
    change();
    return true;
}

void frmtabGrid::GoStep(bool back) {
    GoSteps(back ? commandset::Id::Undo : commandset::Id::Redo, 1);
}

bool frmtabGrid::ShowPlace(const projectdb::Place& place) {
    if (busy_ || !CommitPendingEdit()) return false;
    Owner owner;
    {
        projectdb::ProjectRows rows(project_.Environment());
        owner = OwnerOf(place, rows);
        if (owner.archive == 0 || !rows.SeekArchive(owner.archive)) return false;
    }
    const QString key = projectdb::ArchiveNodeKey(owner.archive);
    // The node brings the host to this project where it shows another one.
    if (key != project_.currentNodeKey || !isVisible()) addIn_.SelectArchive(key);
    window()->raise();
    window()->activateWindow();
    const int split = owner.trend != 0 ? 1 : 0;
    tdbA->SetSplit(split);
    GridSplit& grid = tdbA->SplitAt(split);
    const int row = owner.trend != 0 ? owner.trend : owner.archive;
    int column = grid.ColumnIndex(projectdb::ToQString(place.column));
    if (column < 0 || !grid.ColumnAt(column)->Visible()) column = grid.ColumnIndex(u"Name");
    if (grid.SetCurrentCell(row, column)) return true;
    txtFind->clear();  // what narrows the split may hide it
    return grid.SetCurrentCell(row, column);
}

void frmtabGrid::ShowProjectTable() {
    if (!CommitPendingEdit()) return;
    if (!projectTable_) projectTable_ = new frmProjectTable(texts_, *this, this);
    projectTable_->Open();
}

std::optional<QString> frmtabGrid::ChooseVariable(QWidget* owner, const QString& current) {
    return addIn_.ChooseVariable(owner, current);
}

std::optional<QStringList> frmtabGrid::ChooseVariables(QWidget* owner, const QString& current) {
    return addIn_.ChooseVariables(owner, current);
}

void frmtabGrid::ShowHelpTopic(int topic, QWidget* owner) {
    addIn_.ShowHelpTopic(topic, owner);
}
