#include "projectdb/Hierarchy.h"

#include <exception>

#include "project/Transaction.h"
#include "projectdb/Failure.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"

namespace projectdb {

using namespace Qt::Literals::StringLiterals;
using Command = ADOArchiv::Command;

namespace {

const QString& DeleteFunction() {
    static const QString name = u"Delete"_s;
    return name;
}

}  // namespace

void ReloadTrends(ProjectContext& project, IEditorWindow& editor) {
    ADOArchiv& environment = project.Environment();
    editor.ReleaseTrends();
    environment.CloseRecordset(Command::tabTrends);
    const QString archiveId = QString::number(NodeId(project.currentNodeKey));
    environment.Open(Command::tabTrends, {ToUtf16(archiveId)});
    editor.NamesInGroup(kTrendNames);
    editor.TrendsReloaded();
}

void Hierarchy::CollectArchive(const QString& nodeKey) {
    nodes_.Clear();
    deletion_ = {};
    counters_.Reset({});
    const std::int32_t id = NodeId(nodeKey);
    ProjectRows rows(project_.Environment());
    if (!rows.SeekArchive(id)) return;
    CHNds& trends = nodes_.Add(CHNds::Kind::Archive, id).Children();
    if (rows.SeekTrendsOf(id)) {
        const std::size_t idField = rows.Trends().FieldIndex("ID");
        for (; !rows.Trends().IsEOF(); rows.Trends().MoveNext()) {
            trends.Add(CHNds::Kind::Trend, ado::ToLong(rows.Trends().Get(idField)));
        }
    }
    counters_.Add({}, 1, static_cast<int>(trends.Count()));
}

bool Hierarchy::DeleteArchive(const QString& nodeKey, const Confirm& confirm,
                              const Progress& progress) {
    CollectArchive(nodeKey);
    return Delete(confirm, progress);
}

bool Hierarchy::DeleteTrends(std::span<const std::int32_t> trendIds, const Confirm& confirm,
                             const Progress& progress) {
    nodes_.Clear();
    deletion_ = {};
    for (const std::int32_t id : trendIds) nodes_.Add(CHNds::Kind::Trend, id);
    counters_.Set({}, 0, static_cast<int>(nodes_.Count()));
    return Delete(confirm, progress);
}

bool Hierarchy::Delete(const Confirm& confirm, const Progress& progress) {
    total_ = counters_.Archives() + counters_.Trends();
    if (confirm && !confirm(counters_.Trends())) return false;
    counters_.Reset({});
    // The split must not read rows while they go, should the progress let the window paint.
    window_.ReleaseTrends();
    bool deleted = false;
    try {
        deleted = Cascade(progress);
    } catch (...) {
        const std::exception_ptr failure = std::current_exception();
        try {
            BringUpToDate();
        } catch (...) {
            // The split then stays empty; the failure that led here is the one to be told.
            qWarning("%s", qUtf8Printable(Failure::Current().Details()));
        }
        std::rethrow_exception(failure);
    }
    BringUpToDate();
    return deleted;
}

/// False when the user gave up.
bool Hierarchy::Cascade(const Progress& progress) {
    ADOArchiv& environment = project_.Environment();
    ProjectRows rows(environment);
    done_ = 0;
    bool goesOn = true;
    project::CommitWhatIsDone(
        environment.Connection(),
        [&] {
            rows.BeginRemoving();
            goesOn = DeleteNodes(nodes_, rows, progress);
            return goesOn;
        },
        [&] {
            deletion_ = {};
            counters_.Reset(DeleteFunction());
        });
    return goesOn;
}

/// False when the user gave up.
bool Hierarchy::DeleteNodes(const CHNds& nodes, ProjectRows& rows, const Progress& progress) {
    for (std::size_t i = 0; i < nodes.Count(); ++i) {
        if (progress && !progress(done_, total_)) return false;
        const CHNd& node = nodes.Item(i);
        // A row may be gone: another program was faster.
        if (node.Kind() == CHNds::Kind::Trend) {
            if (rows.RemoveTrend(node.Id())) {
                deletion_.trends.push_back(node.Id());
                counters_.Add(DeleteFunction(), 0, 1);
            }
        } else if (rows.RemoveArchive(node.Id())) {
            deletion_.archives.push_back(node.Id());
            counters_.Add(DeleteFunction(), 1, 0);
        }
        ++done_;
        if (!DeleteNodes(node.Children(), rows, progress)) return false;
    }
    return true;
}

/// Gives the recordsets of the data environment and the window the rows that are left.
void Hierarchy::BringUpToDate() {
    ADOArchiv& environment = project_.Environment();
    environment.CloseRecordset(Command::IdxTexts);
    environment.PrepareRecordset(Command::IdxTexts);
    environment.CloseRecordset(Command::idxTextGrp);
    environment.CloseRecordset(Command::Trends);
    ReloadTrends(project_, window_);
}

}  // namespace projectdb
