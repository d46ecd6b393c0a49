#include "editor/PasteCommands.h"

#include <tuple>

#include "editor/DuplicateName.h"
#include "editor/NameLists.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "projectdb/Transaction.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::ToUtf16;

constexpr std::u16string_view kPlaceholder = u"@New@";
constexpr qsizetype kTextPrefix = 3;  // "Idx", in front of the name of the index text

}  // namespace

void PasteCommands::Assign(ado::Recordset& row, std::size_t trend,
                           const PastedTrend::Values& values) {
    for (const auto& [column, value] : values) {
        refused_ = Place{trend, column};
        row.Set(column, value);
    }
    refused_.reset();
}

std::vector<std::int32_t> PasteCommands::PasteTrends(std::span<const PastedTrend> pasted,
                                                     const projectdb::Progress& progress) {
    const QString& key = project_.currentNodeKey;
    if (projectdb::NodeKind(key) != projectdb::kArchiveKind) return {};
    const std::int32_t archive = projectdb::NodeId(key);
    std::vector<std::int32_t> ids;
    {
        ADOArchiv& environment = project_.Environment();
        projectdb::ProjectRows rows(environment);
        const projectdb::EditScope trendScope(rows.Trends());
        const projectdb::EditScope textScope(rows.Texts());
        // Begun before anything is read: nobody can take a name that is found to be free.
        projectdb::Transaction transaction(environment.Connection());
        // One that another program has deleted must not get trends; the look fails then.
        std::ignore = rows.SeekArchive(archive);
        std::ignore = rows.Archives().Get("ID");
        NameLists names;
        std::ignore = rows.SeekTrendsOf(archive);
        names.NamesInGroup(projectdb::kTrendNames, rows.Trends());
        const std::int32_t group =
            rows.SeekGroup(archive) ? ado::ToLong(rows.Groups().Get("ID")) : rows.RootGroup();
        ado::Recordset& trends = rows.Trends();
        trends.SetFilter("");
        const qsizetype limit =
            qMin(trends.Fields()[trends.FieldIndex("Name")].definedSize,
                 rows.Texts().Fields()[rows.Texts().FieldIndex("Name")].definedSize -
                     static_cast<int>(kTextPrefix));
        const auto isInUse = [&](const QString& name) {
            return names.TestNameInGroup(projectdb::kTrendNames, name);
        };
        for (std::size_t i = 0; i < pasted.size(); ++i) {
            if (progress && !progress(static_cast<int>(i), static_cast<int>(pasted.size()))) {
                return {};
            }
            QString name = pasted[i].name;
            if (!name.isEmpty() && isInUse(name))
                name = DuplicateName(name, limit, texts_, isInUse);
            trends.AddNew();
            trends.Set("ArchiveID", archive);
            Assign(trends, i,
                   {{"Name", name.isEmpty() ? std::u16string(kPlaceholder) : ToUtf16(name)}});
            Assign(trends, i, pasted[i].values);
            trends.Update();
            ids.push_back(ado::ToLong(trends.Get("ID")));
            if (name.isEmpty()) {
                name = u"Trd"_s + QString::number(ids.back());
                trends.Set("Name", ToUtf16(name));
            }
            names.AddNameInGroup(projectdb::kTrendNames, name);
            ado::Recordset& texts = rows.Texts();
            texts.AddNew();
            texts.Set("ParentID", group);
            texts.Set("Name", ToUtf16(u"Idx"_s + name));
            Assign(texts, i, pasted[i].texts);
            texts.Update();
            trends.Set("TextID", ado::ToLong(texts.Get("ID")));
            trends.Update();
        }
        transaction.Commit();
    }
    projectdb::ReloadTrends(project_, window_);
    return ids;
}
