// The editor's commands in a project of 1,000 archives and 100,000 trends with their texts, each to
// the end of its commits, syncs included; the window is left out.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <tuple>

#include "commands/ArchiveCommands.h"
#include "commands/DuplicateCommands.h"
#include "commands/Statistic.h"
#include "commands/TrendCommands.h"
#include "project/Transaction.h"
#include "projectdb/NodeKey.h"

namespace {

constexpr int kArchives = 1000;
constexpr int kTrendsOfEach = 100;
constexpr int kManyTrends = 1000;  // of an archive that is deleted or copied

struct NoStatus final : projectdb::IStatusPanels {
    [[nodiscard]] QString PanelText(int) const override { return {}; }
    void SetPanelText(int, const QString&) override {}
};

struct NoTree final : IArchiveTree {
    void AddArchiveNode(std::int32_t, const QString&) override {}
    void SetArchiveNodeText(std::int32_t, const QString&) override {}
    void RemoveArchiveNode(std::int32_t) override {}
};

class Window final : public projectdb::IEditorWindow {
public:
    Window(projectdb::ProjectContext& project, NameLists& names)
        : project_(project), names_(names) {}
    void ReleaseTrends() override {}
    void TrendsReloaded() override {}
    void NamesInGroup(QStringView group) override {
        names_.NamesInGroup(group, project_.Environment());
    }

private:
    projectdb::ProjectContext& project_;
    NameLists& names_;
};

/// Made once, in the working folder: the system's folder for temporary files may be memory, where
/// syncs cost nothing.
class Project {
public:
    static Project& Instance() {
        static Project project;
        return project;
    }

    Project() {
        std::filesystem::copy_file(KV_EXAMPLES "/Brauerei.kvs", kPath,
                                   std::filesystem::copy_options::overwrite_existing);
        texts_.AddTexts(704, {u"Neues Archiv"});
        texts_.AddTexts(701, {u"Kopie von "});
        context_.Environment().OpenConnection(QString::fromLatin1(kPath));
        project::Transaction transaction(context_.Environment().Connection());
        for (int i = 0; i < kArchives; ++i) AddArchive(kTrendsOfEach);
        transaction.Commit();
        ForgetSteps();
    }
    ~Project() {
        context_.CloseDatabase();
        std::filesystem::remove(kPath);
    }
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    std::int32_t AddArchive(int trends) {
        projectdb::ProjectRows rows(context_.Environment());
        const std::u16string name = u"Archiv " + ado::ToText(ado::Value(std::int32_t{++count_}));
        rows.Archives().AddNew();
        rows.Archives().Set("Name", name);
        rows.Archives().Set("TextID", AddText(rows, name));
        rows.Archives().Update();
        const std::int32_t id = ado::ToLong(rows.Archives().Get("ID"));
        rows.Groups().AddNew();
        rows.Groups().Set("Name", name);
        rows.Groups().Set("ParentID", 1);
        rows.Groups().Set("Type", -2);
        rows.Groups().Set("Parameter", id);
        rows.Groups().Update();
        for (int i = 0; i < trends; ++i) {
            const std::u16string trend = name + u" " + ado::ToText(ado::Value(std::int32_t{i}));
            rows.Trends().AddNew();
            rows.Trends().Set("Name", trend);
            rows.Trends().Set("ArchiveID", id);
            rows.Trends().Set("TextID", AddText(rows, trend));
            rows.Trends().Set("TrendVar", u"Anlage.Motor." + trend);
            rows.Trends().Set("VMax", 100.0);
            rows.Trends().Update();
        }
        return id;
    }
    /// As the window does when a step has ended: nobody keeps all that has ever been changed.
    void ForgetSteps() { std::ignore = context_.Environment().Recorder().Take(); }
    /// The same in a transaction of its own.
    QString AddLargeArchive() {
        project::Transaction transaction(context_.Environment().Connection());
        const std::int32_t id = AddArchive(kManyTrends);
        transaction.Commit();
        ForgetSteps();
        return projectdb::ArchiveNodeKey(id);
    }

    projectdb::ProjectContext context_;
    MResources::TextTable texts_;
    NameLists names_;
    NoStatus status_;
    NoTree tree_;
    Window window_{context_, names_};
    projectdb::Hierarchy hierarchy_{context_, window_, status_};
    ArchiveCommands archives_{context_, hierarchy_, names_, texts_, tree_};
    TrendCommands trends_{context_, hierarchy_, window_, names_, texts_};
    DuplicateCommands copies_{context_, window_, names_, texts_, tree_};

private:
    static std::int32_t AddText(projectdb::ProjectRows& rows, const std::u16string& text) {
        rows.Texts().AddNew();
        rows.Texts().Set("Name", u"Idx" + text);
        rows.Texts().Set("L1031", text);
        rows.Texts().Set("L1033", text);
        rows.Texts().Update();
        return ado::ToLong(rows.Texts().Get("ID"));
    }

    static constexpr const char* kPath = "bench_cascade.kvs";
    int count_ = 0;
};

void DeleteArchiveOfThousandTrends(benchmark::State& state) {
    Project& project = Project::Instance();
    for (auto _ : state) {
        state.PauseTiming();
        const QString key = project.AddLargeArchive();
        state.ResumeTiming();
        project.archives_.Delete(key, {}, {});
    }
}
BENCHMARK(DeleteArchiveOfThousandTrends)->Unit(benchmark::kMillisecond);

/// Taking the deletion back; beside it what the step holds in memory.
void UndoDeletionOfThousandTrends(benchmark::State& state) {
    Project& project = Project::Instance();
    project::ChangeRecorder& recorder = project.context_.Environment().Recorder();
    std::size_t bytes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const QString key = project.AddLargeArchive();
        project.archives_.Delete(key, {}, {});
        project::ChangeSet step = recorder.Take();
        bytes = step.Bytes();
        project.context_.history.Add(u"", std::move(step));
        state.ResumeTiming();
        std::ignore =
            project.context_.history.Undo(project.context_.Environment().Connection(), recorder);
    }
    project.context_.history.Clear();
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(UndoDeletionOfThousandTrends)->Unit(benchmark::kMillisecond);

void DuplicateArchiveOfThousandTrends(benchmark::State& state) {
    Project& project = Project::Instance();
    const QString key = project.AddLargeArchive();
    for (auto _ : state) {
        const auto copy = project.copies_.DuplicateArchive(projectdb::NodeId(key), {});
        state.PauseTiming();
        project.archives_.Delete(projectdb::ArchiveNodeKey(copy.value_or(0)), {}, {});
        project.ForgetSteps();
        state.ResumeTiming();
    }
    project.archives_.Delete(key, {}, {});
}
BENCHMARK(DuplicateArchiveOfThousandTrends)->Unit(benchmark::kMillisecond);

void NewArchive(benchmark::State& state) {
    Project& project = Project::Instance();
    for (auto _ : state) {
        const std::int32_t id = project.archives_.New(QStringLiteral("L1031"));
        state.PauseTiming();
        project.archives_.Delete(projectdb::ArchiveNodeKey(id), {}, {});
        project.ForgetSteps();
        state.ResumeTiming();
    }
}
BENCHMARK(NewArchive)->Unit(benchmark::kMillisecond);

void NewTrend(benchmark::State& state) {
    Project& project = Project::Instance();
    project.context_.currentNodeKey = projectdb::ArchiveNodeKey(500);
    for (auto _ : state) {
        const std::int32_t id = project.trends_.New();
        state.PauseTiming();
        project.trends_.Delete({&id, 1}, {}, {});
        project.ForgetSteps();
        state.ResumeTiming();
    }
}
BENCHMARK(NewTrend)->Unit(benchmark::kMillisecond);

void CountEverything(benchmark::State& state) {
    Project& project = Project::Instance();
    for (auto _ : state) {
        Statistic::Show(project.context_.Environment(), project.hierarchy_.Counters());
    }
}
BENCHMARK(CountEverything)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
