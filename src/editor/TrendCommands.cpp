#include "editor/TrendCommands.h"

#include <QScopedValueRollback>
#include <string>
#include <tuple>

#include "languages/MResourceTable.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "projectdb/Transaction.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::EditScope;
using projectdb::NameOf;
using projectdb::ProjectRows;
using projectdb::ToUtf16;

constexpr std::u16string_view kPlaceholder = u"@New@";

std::int32_t AddTrend(ado::Recordset& trends, std::int32_t archiveId) {
    trends.SetFilter("");
    const EditScope scope(trends);
    trends.AddNew();
    trends.Set("ArchiveID", archiveId);
    trends.Set("Name", std::u16string(kPlaceholder));
    trends.Update();
    const std::int32_t id = ado::ToLong(trends.Get("ID"));
    trends.Set("Name", ToUtf16(u"Trd"_s + QString::number(id)));
    trends.Update();
    return id;
}

std::int32_t AddText(ProjectRows& rows, std::int32_t archiveId, const QString& trendName) {
    const bool hasGroup = rows.SeekGroup(archiveId);
    const std::int32_t group = hasGroup ? ado::ToLong(rows.Groups().Get("ID")) : rows.RootGroup();
    ado::Recordset& texts = rows.Texts();
    const EditScope scope(texts);
    texts.AddNew();
    texts.Set("ParentID", group);
    texts.Set("Name", std::u16string(kPlaceholder));
    texts.Update();
    texts.Set("Name", std::u16string(u" "));
    texts.Set("Name", ToUtf16(u"Idx"_s + trendName));
    texts.Update();
    texts.Resync();
    return ado::ToLong(texts.Get("ID"));
}

}  // namespace

std::int32_t TrendCommands::New() {
    const QString& key = project_.currentNodeKey;
    const std::int32_t archiveId = projectdb::NodeId(key);
    if (projectdb::NodeKind(key) != projectdb::kArchiveKind || archiveId == 0) return 0;
    ADOArchiv& environment = project_.Environment();
    std::int32_t id = 0;
    {
        ProjectRows rows(environment);
        projectdb::CommitWhatIsDone(environment.Connection(), [&] {
            // One that another program has deleted must not get a trend; the look fails then.
            std::ignore = rows.SeekArchive(archiveId);
            std::ignore = rows.Archives().Get("ID");
            id = AddTrend(rows.Trends(), archiveId);
            const std::int32_t text = AddText(rows, archiveId, NameOf(rows.Trends()));
            const EditScope scope(rows.Trends());
            rows.Trends().Set("TextID", text);
            rows.Trends().Update();
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
            return ask(texts_.GetText(text).replace(u"<td>"_s, QString::number(trends)));
        };
    }
    return hierarchy_.DeleteTrends(trendIds, confirm, progress);
}
