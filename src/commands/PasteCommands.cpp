#include "commands/PasteCommands.h"

#include <tuple>

#include "commands/DuplicateName.h"
#include "commands/NameLists.h"
#include "project/CurveColours.h"
#include "project/Transaction.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"

namespace {

using projectdb::ToQString;
using projectdb::ToUtf16;

}  // namespace

std::vector<std::int32_t> PasteCommands::PasteTrends(std::span<const project::NewTrend> pasted,
                                                     const projectdb::Progress& progress) {
    const QString& key = project_.currentNodeKey;
    if (projectdb::NodeKind(key) != projectdb::kArchiveKind) return {};
    const std::int32_t archive = projectdb::NodeId(key);
    std::vector<std::int32_t> ids;
    {
        ADOArchiv& environment = project_.Environment();
        projectdb::ProjectRows rows(environment);
        // Begun before anything is read: nobody can take a name that is found to be free.
        project::Transaction transaction(environment.Connection());
        // One that another program has deleted must not get trends; the look fails then.
        std::ignore = rows.SeekArchive(archive);
        std::ignore = rows.Archives().Get("ID");
        NameLists names;
        std::ignore = rows.SeekTrendsOf(archive);
        names.NamesInGroup(projectdb::kTrendNames, rows.Trends());
        const std::int32_t group = rows.GroupOfTrends(archive);
        project::CurveColours colours(rows, archive);
        const ado::Recordset& trends = rows.Trends();
        const int limit = rows.LongestTrendName();
        const auto isInUse = [&](const QString& name) {
            return names.TestNameInGroup(projectdb::kTrendNames, name);
        };
        for (std::size_t i = 0; i < pasted.size(); ++i) {
            if (progress && !progress(static_cast<int>(i), static_cast<int>(pasted.size()))) {
                return {};
            }
            project::NewTrend trend = pasted[i];
            const QString name = ToQString(trend.name);
            if (!name.isEmpty() && isInUse(name)) {
                trend.name = ToUtf16(DuplicateName(name, limit, texts_, isInUse));
            }
            trend.colour = colours.Next();
            trend.isInUse = names.UseIn(projectdb::kTrendNames);
            trend.assigning = [&](const std::string& column) {
                refused_ = column.empty() ? std::nullopt : std::optional(Place{i, column});
            };
            ids.push_back(rows.AddTrend(archive, trend));
            names.AddNameInGroup(projectdb::kTrendNames, projectdb::NameOf(trends));
            colours.Add(trends);
            rows.AddTrendText(group, trend);
        }
        transaction.Commit();
    }
    projectdb::ReloadTrends(project_, window_);
    return ids;
}
