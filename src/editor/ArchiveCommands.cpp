#include "editor/ArchiveCommands.h"

#include <optional>
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
using projectdb::ToUtf8;

constexpr std::u16string_view kPlaceholder = u"@New@";
std::int32_t AddArchive(ado::Recordset& archives, const QString& name) {
    const EditScope scope(archives);
    archives.AddNew();
    archives.Set("Name", std::u16string(kPlaceholder));
    archives.Update();
    archives.Set("Name", ToUtf16(name));
    archives.Update();
    return ado::ToLong(archives.Get("ID"));
}

std::int32_t AddText(ado::Recordset& texts, std::int32_t group, const QString& name,
                     const QString& languageColumn) {
    const EditScope scope(texts);
    texts.AddNew();
    texts.Set("ParentID", group);
    texts.Set("Name", ToUtf16(u"arch"_s + name));
    const std::string column = ToUtf8(languageColumn);
    if (projectdb::HasField(texts, column)) texts.Set(column, ToUtf16(name));
    texts.Update();
    return ado::ToLong(texts.Get("ID"));
}

}  // namespace

QString ArchiveCommands::FreeName() {
    const QString first = texts_.GetText(MResourceTable::kTextNewArchiveName);
    QString name = first;
    for (int n = 1; names_.TestNameInGroup(projectdb::kArchiveNames, name); ++n) {
        name = first + u'(' + QString::number(n) + u')';
    }
    return name;
}

std::int32_t ArchiveCommands::New(const QString& languageColumn) {
    ADOArchiv& environment = project_.Environment();
    ProjectRows rows(environment);
    ado::Recordset& archives = rows.Archives();
    std::int32_t id = 0;
    QString name;
    projectdb::CommitWhatIsDone(environment.Connection(), [&] {
        names_.NamesInGroup(projectdb::kArchiveNames, archives);
        name = FreeName();
        id = AddArchive(archives, name);
        const std::int32_t group = rows.AddGroup(id, name);
        const std::int32_t text = AddText(rows.Texts(), group, name, languageColumn);
        const EditScope scope(archives);
        archives.Set("TextID", text);
        archives.Update();
    });
    names_.AddNameInGroup(projectdb::kArchiveNames, name);
    tree_.AddArchiveNode(id, name);
    return id;
}

bool ArchiveCommands::Edit(std::int32_t archiveId, const EditArchive& edit) {
    ProjectRows rows(project_.Environment());
    ado::Recordset& archives = rows.Archives();
    ado::Recordset& texts = rows.Texts();
    names_.NamesInGroup(projectdb::kArchiveNames, archives);
    std::ignore = rows.SeekArchive(archiveId);  // without one, reading its name fails
    const QString oldName = NameOf(archives);

    const EditScope archiveScope(archives);
    const EditScope textScope(texts);
    if (!edit(archives, texts)) return false;
    archives.Update();
    const QString newName = NameOf(archives);
    if (newName != oldName) Rename(archiveId, oldName, newName, rows);
    return true;
}

void ArchiveCommands::Rename(std::int32_t archiveId, const QString& oldName, const QString& newName,
                             ProjectRows& rows) {
    // The dialog may have changed the list already.
    const bool isListed = names_.TestNameInGroup(projectdb::kArchiveNames, newName);
    if (!isListed) names_.ChangeNameInGroup(projectdb::kArchiveNames, oldName, newName);
    tree_.SetArchiveNodeText(archiveId, newName);
    if (rows.SeekGroup(archiveId)) {
        const EditScope scope(rows.Groups());
        rows.Groups().Set("Name", ToUtf16(newName));
        rows.Groups().Update();
    }
    if (rows.SeekTextOf(rows.Archives())) {
        rows.Texts().Set("Name", ToUtf16(u"arch"_s + newName));
        rows.Texts().Update();
    }
}

bool ArchiveCommands::Delete(const QString& nodeKey, const AskUser& ask,
                             const projectdb::Progress& progress) {
    const std::int32_t id = projectdb::NodeId(nodeKey);
    std::optional<QString> name;  // of an archive that is there
    {
        ProjectRows rows(project_.Environment());
        if (rows.SeekArchive(id)) name = NameOf(rows.Archives());
    }
    projectdb::Hierarchy::Confirm confirm;
    if (ask) {
        confirm = [&](int trends) {
            const int text = trends == 1 ? MResourceTable::kTextDeleteArchiveWithTrend
                                         : MResourceTable::kTextDeleteArchiveWithTrends;
            return ask(texts_.GetText(text).replace(u"<td>"_s, QString::number(trends)));
        };
    }
    // One that another program has deleted has left its node behind.
    const auto follow = [&] {
        if (name && hierarchy_.LastDeletion().archives.empty()) return;
        if (name) names_.DeleteNameInGroup(projectdb::kArchiveNames, *name);
        tree_.RemoveArchiveNode(id);
    };
    try {
        if (!hierarchy_.DeleteArchive(nodeKey, confirm, progress)) return false;
    } catch (...) {
        follow();
        throw;
    }
    follow();
    return true;
}
