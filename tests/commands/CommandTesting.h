#pragma once

#include "commands/ArchiveCommands.h"
#include "commands/DuplicateCommands.h"
#include "commands/Statistic.h"
#include "commands/TrendCommands.h"
#include "projectdb/ProjectTesting.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

/// The fields of a new archive behind its keys, and of a new trend.
inline std::string NewArchiveFields(const std::string& fileName) {
    return "|Type=0|FileName=" + fileName +
           "|FilePath=<ProjectDir>|RedundancyFilePath=<ProjectDir>|SampleMode=1|ScanTime=1000"
           "|MaxSamples=10000|CacheSize=100|AuthorizationLevel=0|MaxFiles=0|MaxSizeKb=0";
}
inline std::string NewTrendFields(std::int32_t colour) {
    return "|HysteresisMode=3|Factor=1|Offset=0|Filter=0|FilterDepth=0|VMax=100|VMin=0|VUpper=90"
           "|VLower=10|VLineColor=" +
           std::to_string(colour) +
           "|VLineWidth=1|VLineStyle=0|VUpperColor=255|VLowerColor=16711680|VConfig=0|VDrawMode=0"
           "|VMaxSamples=1000";
}

/// The archives' nodes as the host would show them.
struct FakeTree final : IArchiveTree {
    void AddArchiveNode(std::int32_t archiveId, const QString& name) override {
        calls += QStringLiteral("add %1 %2").arg(archiveId).arg(name);
    }
    void SetArchiveNodeText(std::int32_t archiveId, const QString& name) override {
        calls += QStringLiteral("text %1 %2").arg(archiveId).arg(name);
    }
    void RemoveArchiveNode(std::int32_t archiveId) override {
        calls += QStringLiteral("remove %1").arg(archiveId);
    }

    QStringList calls;
};

/// The commands on a project file, their surroundings played by the test. Questions are kept.
class CommandTest : public ProjectTest {
protected:
    CommandTest() {
        texts_.AddTexts(526, {u"Archiv mit einem Trend?"});
        texts_.AddTexts(527, {u"Archiv mit <td> Trends?"});
        texts_.AddTexts(528, {u"Einen Trend?"});
        texts_.AddTexts(529, {u"<td> Trends?"});
        texts_.AddTexts(MResourceTable::kTextArchivePartlyDeleted,
                        {u"Archiv und <n> Trends weg, <left> da: <cause>"});
        texts_.AddTexts(701, {u"Kopie von "});
        texts_.AddTexts(702, {u") von "});
        texts_.AddTexts(703, {u"Kopie("});
        texts_.AddTexts(704, {u"Neues Archiv"});
    }

    AskUser Answer(bool answer) {
        return [this, answer](const QString& question) {
            questions_ += question;
            return answer;
        };
    }
    /// Changes the file as another program would.
    void Meanwhile(const std::function<void(projectdb::ProjectRows&)>& change) {
        ADOArchiv other;
        other.OpenConnection(projectdb::ToQString(path_));
        projectdb::ProjectRows rows(other);
        change(rows);
    }
    void OpenArchive(std::int32_t id) {
        project_.currentNodeKey = QStringLiteral("ARCH%1").arg(id);
        projectdb::ReloadTrends(project_, window_);
    }
    [[nodiscard]] bool IsUsed(const QString& archiveName) {
        return names_.TestNameInGroup(projectdb::kArchiveNames, archiveName);
    }

    MResources::TextTable texts_;
    FakeTree tree_;
    NameLists names_;
    QStringList questions_;
    projectdb::Hierarchy hierarchy_{project_, window_, status_};
    ArchiveCommands archives_{project_, hierarchy_, names_, texts_, tree_};
    TrendCommands trends_{project_, hierarchy_, window_, names_, texts_};
    DuplicateCommands copies_{project_, window_, names_, texts_, tree_};
};
