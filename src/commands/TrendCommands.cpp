#include "commands/TrendCommands.h"

#include <QScopedValueRollback>
#include <string>
#include <tuple>

#include "project/CurveColours.h"
#include "project/Transaction.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::EditScope;
using projectdb::NameOf;
using projectdb::ProjectRows;

}  // namespace

std::int32_t TrendCommands::New(project::Template* from) {
    const QString& key = project_.currentNodeKey;
    const std::int32_t archiveId = projectdb::NodeId(key);
    if (projectdb::NodeKind(key) != projectdb::kArchiveKind || archiveId == 0) return 0;
    ADOArchiv& environment = project_.Environment();
    std::int32_t id = 0;
    {
        ProjectRows rows(environment);
        project::CommitWhatIsDone(environment.Connection(), [&] {
            // One that another program has deleted must not get a trend; the look fails then.
            std::ignore = rows.SeekArchive(archiveId);
            std::ignore = rows.Archives().Get("ID");
            // As the file has them now: another program may have taken a name.
            NameLists names;
            std::ignore = rows.SeekTrendsOf(archiveId);
            names.NamesInGroup(projectdb::kTrendNames, rows.Trends());
            project::NewTrend trend;
            trend.colour = project::CurveColours(rows, archiveId).Next();
            trend.isInUse = names.UseIn(projectdb::kTrendNames);
            id = rows.AddTrend(archiveId, trend);
            rows.AddTrendText(rows.GroupOfTrends(archiveId), trend);
            if (from != nullptr) {
                const EditScope scope(rows.Trends());
                from->leftOut =
                    project::AssignSettings(rows.Trends(), project::kTrendTable, from->settings);
                rows.Trends().Update();
            }
            return true;
        });
    }
    projectdb::ReloadTrends(project_, window_);
    return id;
}

bool TrendCommands::Edit(std::int32_t trendId, const EditTrend& edit) {
    ado::Recordset& trends = project_.Environment().Recordset(ADOArchiv::Command::tabTrends);
    if (trends.State() == ado::ObjectState::Closed || (trends.IsBOF() && trends.IsEOF())) {
        return false;
    }
    trends.MoveFirst();
    trends.Find("ID=" + std::to_string(trendId));
    if (trends.IsEOF()) return false;
    const QString oldName = NameOf(trends);
    const EditScope scope(trends);
    const QScopedValueRollback editing(isEditing_, true);
    if (!edit(trends)) return false;
    const QString newName = NameOf(trends);
    // The dialog may have changed the list already.
    if (!names_.TestNameInGroup(projectdb::kTrendNames, newName)) {
        names_.ChangeNameInGroup(projectdb::kTrendNames, oldName, newName);
    }
    return true;
}

bool TrendCommands::Delete(std::span<const std::int32_t> trendIds, const AskUser& ask,
                           const projectdb::Progress& progress) {
    if (trendIds.empty()) return false;
    projectdb::Hierarchy::Confirm confirm;
    if (ask) {
        confirm = [&](int trends) {
            const int text = trends < 2 ? MResourceTable::kTextDeleteOneTrend
                                        : MResourceTable::kTextDeleteTrends;
            return ask(texts_.GetText(text, {{u"td", QString::number(trends)}}));
        };
    }
    try {
        return hierarchy_.DeleteTrends(trendIds, confirm, progress);
    } catch (...) {
        RethrowWithRest(hierarchy_, texts_);
    }
}
