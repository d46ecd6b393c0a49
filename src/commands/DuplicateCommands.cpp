#include "commands/DuplicateCommands.h"

#include <tuple>

#include "commands/DuplicateName.h"
#include "project/CopyRows.h"
#include "project/Transaction.h"
#include "projectdb/Text.h"

namespace {

using projectdb::NameOf;
using projectdb::ToQString;
using projectdb::ToUtf16;

bool GoesOn(const projectdb::Progress& progress, std::size_t done, std::size_t total) {
    return !progress || progress(static_cast<int>(done), static_cast<int>(total));
}

}  // namespace

std::optional<std::int32_t> DuplicateCommands::DuplicateArchive(
    std::int32_t archiveId, const projectdb::Progress& progress) {
    ADOArchiv& environment = project_.Environment();
    project::CopyRows rows(environment.Connection());
    // Begun before anything is read: nobody can take the name that is found to be free.
    project::Transaction transaction(environment.Connection());
    names_.NamesInGroup(projectdb::kArchiveNames, rows.From().Archives());
    if (!rows.From().SeekArchive(archiveId)) return std::nullopt;
    const ado::Recordset& archives = rows.From().Archives();
    const QString original = NameOf(archives);
    const QString name = DuplicateName(
        original, rows.From().LongestArchiveName(), texts_,
        [&](const QString& n) { return names_.TestNameInGroup(projectdb::kArchiveNames, n); });

    std::ignore = rows.From().SeekTrendsOf(archiveId);
    const std::size_t total = 1 + rows.From().Trends().RecordCount();
    if (!GoesOn(progress, 0, total)) return std::nullopt;
    const auto [id, group] = rows.CopyArchive(ToUtf16(name));
    ado::Recordset& trends = rows.From().Trends();
    for (std::size_t done = 1; !trends.IsEOF(); trends.MoveNext(), ++done) {
        if (!GoesOn(progress, done, total)) return std::nullopt;
        rows.CopyTrend(project::NameOf(trends), id, group);
    }
    transaction.Commit();
    names_.AddNameInGroup(projectdb::kArchiveNames, name);
    tree_.AddArchiveNode(id, name);
    return id;
}

std::vector<std::int32_t> DuplicateCommands::DuplicateTrends(std::span<const std::int32_t> trendIds,
                                                             const projectdb::Progress& progress) {
    ADOArchiv& environment = project_.Environment();
    std::vector<std::int32_t> copies;
    {
        project::CopyRows rows(environment.Connection());
        project::Transaction transaction(environment.Connection());
        NameLists names;  // of the archive that is being copied into
        std::optional<std::int32_t> archive;
        for (std::size_t i = 0; i < trendIds.size(); ++i) {
            if (!GoesOn(progress, i, trendIds.size())) return {};
            if (!rows.From().SeekTrend(trendIds[i])) continue;
            ado::Recordset& trends = rows.From().Trends();
            const auto owner = projectdb::NumberOf(trends, "ArchiveID");
            if (owner != archive || i == 0) {
                archive = owner;
                std::ignore = rows.To().SeekTrendsOf(owner.value_or(0));
                names.NamesInGroup(projectdb::kTrendNames, rows.To().Trends());
            }
            const QString name = DuplicateName(
                NameOf(trends), rows.From().LongestTrendName(), texts_,
                [&](const QString& n) { return names.TestNameInGroup(projectdb::kTrendNames, n); });
            names.AddNameInGroup(projectdb::kTrendNames, name);
            copies.push_back(rows.CopyTrend(ToUtf16(name), owner.value_or(0), std::nullopt));
        }
        transaction.Commit();
    }
    projectdb::ReloadTrends(project_, window_);
    return copies;
}
