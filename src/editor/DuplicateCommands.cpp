#include "editor/DuplicateCommands.h"

#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>

#include "editor/DuplicateName.h"
#include "project/Names.h"
#include "projectdb/Text.h"
#include "projectdb/Transaction.h"

namespace {

using projectdb::NameOf;
using projectdb::ProjectRows;
using projectdb::ToQString;
using projectdb::ToUtf16;

using Assignments = std::initializer_list<std::pair<std::string_view, ado::Value>>;

/// Begins a row, gives it the values of `original`'s current row but for the key, then those of
/// `others`, and stores it. Without an original `others` are all. Returns its ID.
std::int32_t AddCopy(const ado::Recordset* original, ado::Recordset& copies,
                     const Assignments& others) {
    copies.AddNew();
    const std::size_t count = original != nullptr ? original->Fields().size() : 0;
    const std::size_t key = copies.FieldIndex("ID");
    for (std::size_t i = 0; i < count; ++i) {
        if (i == key || original->Fields()[i].autoNumber) continue;
        const ado::Value value = original->Get(i);
        if (!ado::IsNull(value)) copies.Set(i, value);
    }
    for (const auto& [field, value] : others) copies.Set(field, value);
    copies.Update();
    return ado::ToLong(copies.Get("ID"));
}

qsizetype LengthOfName(const ado::Recordset& rows) {
    return rows.Fields()[rows.FieldIndex("Name")].definedSize;
}

/// Where rows are read, and where their copies are added: a new row is the current one.
struct CopyRows {
    explicit CopyRows(ADOArchiv& environment) : from(environment), to(environment) {}

    ProjectRows from;
    ProjectRows to;
};

/// Copies the index text that the current row of `owner` names. Without one the copy gets a text
/// of its own that says nothing yet. Its group is `group`, or the original's when that is empty.
std::int32_t CopyText(CopyRows& rows, const ado::Recordset& owner, const QString& name,
                      std::optional<std::int32_t> group, std::int32_t archiveId) {
    const bool hasText = rows.from.SeekTextOf(owner);
    if (!group && hasText) group = projectdb::NumberOf(rows.from.Texts(), "ParentID");
    if (!group) {
        group = rows.from.GroupOfTrends(archiveId);
    }
    return AddCopy(hasText ? &rows.from.Texts() : nullptr, rows.to.Texts(),
                   {{"Name", ToUtf16(name)}, {"ParentID", group.value_or(0)}});
}

/// Copies the current trend of `rows.from`.
std::int32_t CopyTrend(CopyRows& rows, const QString& name, std::int32_t archiveId,
                       std::optional<std::int32_t> group) {
    const ado::Recordset& trends = rows.from.Trends();
    const std::int32_t text =
        CopyText(rows, trends, ToQString(project::TrendTextName(ToUtf16(name))), group, archiveId);
    return AddCopy(&trends, rows.to.Trends(),
                   {{"Name", ToUtf16(name)}, {"ArchiveID", archiveId}, {"TextID", text}});
}

std::int32_t CopyGroup(CopyRows& rows, std::int32_t archiveId, std::int32_t copyId,
                       const QString& name) {
    std::ignore = rows.from.SeekGroup(archiveId);  // of several, the first is current
    if (rows.from.Groups().IsEOF()) return rows.to.AddGroup(copyId, ToUtf16(name));
    return AddCopy(&rows.from.Groups(), rows.to.Groups(),
                   {{"Name", ToUtf16(name)}, {"Parameter", copyId}});
}

bool GoesOn(const projectdb::Progress& progress, std::size_t done, std::size_t total) {
    return !progress || progress(static_cast<int>(done), static_cast<int>(total));
}

}  // namespace

std::optional<std::int32_t> DuplicateCommands::DuplicateArchive(
    std::int32_t archiveId, const projectdb::Progress& progress) {
    ADOArchiv& environment = project_.Environment();
    CopyRows rows(environment);
    // Begun before anything is read: nobody can take the name that is found to be free.
    projectdb::Transaction transaction(environment.Connection());
    names_.NamesInGroup(projectdb::kArchiveNames, rows.from.Archives());
    if (!rows.from.SeekArchive(archiveId)) return std::nullopt;
    const ado::Recordset& archives = rows.from.Archives();
    const QString original = NameOf(archives);
    const QString name = DuplicateName(
        original,
        qMin(LengthOfName(archives), LengthOfName(rows.to.Texts()) - project::kArchiveTextPrefix),
        texts_,
        [&](const QString& n) { return names_.TestNameInGroup(projectdb::kArchiveNames, n); });

    std::ignore = rows.from.SeekTrendsOf(archiveId);
    const std::size_t total = 1 + rows.from.Trends().RecordCount();
    if (!GoesOn(progress, 0, total)) return std::nullopt;
    const std::int32_t id = AddCopy(&archives, rows.to.Archives(), {{"Name", ToUtf16(name)}});
    const std::int32_t group = CopyGroup(rows, archiveId, id, name);
    const std::int32_t text =
        CopyText(rows, archives, ToQString(project::ArchiveTextName(ToUtf16(name))), group, id);
    rows.to.Archives().Set("TextID", text);
    rows.to.Archives().Update();
    ado::Recordset& trends = rows.from.Trends();
    for (std::size_t done = 1; !trends.IsEOF(); trends.MoveNext(), ++done) {
        if (!GoesOn(progress, done, total)) return std::nullopt;
        std::ignore = CopyTrend(rows, NameOf(trends), id, group);
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
        CopyRows rows(environment);
        projectdb::Transaction transaction(environment.Connection());
        NameLists names;  // of the archive that is being copied into
        std::optional<std::int32_t> archive;
        for (std::size_t i = 0; i < trendIds.size(); ++i) {
            if (!GoesOn(progress, i, trendIds.size())) return {};
            if (!rows.from.SeekTrend(trendIds[i])) continue;
            ado::Recordset& trends = rows.from.Trends();
            const auto owner = projectdb::NumberOf(trends, "ArchiveID");
            if (owner != archive || i == 0) {
                archive = owner;
                std::ignore = rows.to.SeekTrendsOf(owner.value_or(0));
                names.NamesInGroup(projectdb::kTrendNames, rows.to.Trends());
            }
            const QString name = DuplicateName(
                NameOf(trends),
                qMin(LengthOfName(trends),
                     LengthOfName(rows.to.Texts()) - project::kTrendTextPrefix),
                texts_,
                [&](const QString& n) { return names.TestNameInGroup(projectdb::kTrendNames, n); });
            names.AddNameInGroup(projectdb::kTrendNames, name);
            copies.push_back(CopyTrend(rows, name, owner.value_or(0), std::nullopt));
        }
        transaction.Commit();
    }
    projectdb::ReloadTrends(project_, window_);
    return copies;
}
