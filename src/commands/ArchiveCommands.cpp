#include "commands/ArchiveCommands.h"

#include <optional>
#include <tuple>

#include "project/Names.h"
#include "project/Transaction.h"
#include "projectdb/Failure.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::EditScope;
using projectdb::NameOf;
using projectdb::ProjectRows;
using projectdb::ToQString;
using projectdb::ToUtf16;
using projectdb::ToUtf8;

}  // namespace

std::int32_t ArchiveCommands::New(const QString& languageColumn, project::Template* from) {
    ADOArchiv& environment = project_.Environment();
    ProjectRows rows(environment);
    ado::Recordset& archives = rows.Archives();
    std::int32_t id = 0;
    std::u16string name;
    project::CommitWhatIsDone(environment.Connection(), [&] {
        names_.NamesInGroup(projectdb::kArchiveNames, archives);
        name = project::FreeName(ToUtf16(texts_.GetText(MResourceTable::kTextNewArchiveName)),
                                 names_.UseIn(projectdb::kArchiveNames));
        id = rows.AddArchive(name);
        if (from != nullptr) {
            const EditScope scope(archives);
            from->leftOut =
                project::AssignSettings(archives, project::kArchiveTable, from->settings);
            archives.Update();
        }
        const std::int32_t group = rows.AddGroup(id, name);
        rows.AddArchiveText(group, name, ToUtf8(languageColumn));
        return true;
    });
    names_.AddNameInGroup(projectdb::kArchiveNames, ToQString(name));
    tree_.AddArchiveNode(id, ToQString(name));
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
    const auto save = [&] {
        project::Transaction transaction(project_.Environment().Connection());
        if (texts.EditMode() != ado::EditMode::None) texts.Update();
        archives.Update();
        if (NameOf(archives) != oldName) rows.NameGroupAndText(archiveId);
        transaction.Commit();
    };
    if (!edit(archives, texts, save)) return false;
    const QString newName = NameOf(archives);
    if (newName == oldName) return true;
    // The dialog may have changed the list already.
    if (!names_.TestNameInGroup(projectdb::kArchiveNames, newName)) {
        names_.ChangeNameInGroup(projectdb::kArchiveNames, oldName, newName);
    }
    tree_.SetArchiveNodeText(archiveId, newName);
    return true;
}

void RethrowWithRest(const projectdb::Hierarchy& hierarchy, const MResources::TextTable& texts) {
    const projectdb::Deletion& deletion = hierarchy.LastDeletion();
    const auto archives = static_cast<int>(deletion.archives.size());
    const auto trends = static_cast<int>(deletion.trends.size());
    if (archives + trends == 0) throw;
    const int text = archives > 0 ? MResourceTable::kTextArchivePartlyDeleted
                                  : MResourceTable::kTextTrendsPartlyDeleted;
    const projectdb::Failure failure = projectdb::Failure::Current();
    throw projectdb::HalfDone(
        failure,
        texts.GetText(text, {{u"n", QString::number(trends)},
                             {u"left", QString::number(hierarchy.LastTotal() - archives - trends)},
                             {u"cause", failure.Text()}}));
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
            return ask(texts_.GetText(text, {{u"td", QString::number(trends)}}));
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
        RethrowWithRest(hierarchy_, texts_);
    }
    follow();
    return true;
}
