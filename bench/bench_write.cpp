// Writing through recordsets, on a copy of the project file named by KV_BENCH_FILE (default: the
// brewery). Every measurement ends with a commit, syncs included.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include "ado/Connection.h"
#include "ado/Recordset.h"

namespace {

constexpr std::int32_t kArchive = 999'999;  // has no trends of its own

/// A copy that is open, and goes in the end. In the working folder: the system's folder for
/// temporary files may be memory, where syncs cost nothing.
class Project {
public:
    Project() {
        const char* named = std::getenv("KV_BENCH_FILE");
        std::filesystem::copy_file(named != nullptr ? named : KV_EXAMPLES "/Brauerei.kvs", kPath,
                                   std::filesystem::copy_options::overwrite_existing);
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + std::string(kPath) +
                        ";Mode=Read|Write|Share Deny None;");
        trends.Open("TchrTrends", connection, ado::CommandType::Table);
        texts.Open("TidxTexts", connection, ado::CommandType::Table);
    }
    ~Project() {
        connection.Close();
        std::filesystem::remove(kPath);
    }
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    void AddTrends(int count) {
        connection.BeginTrans();
        for (int i = 0; i < count; ++i) {
            const std::u16string name = u"Trend " + ado::ToText(ado::Value(std::int32_t{i}));
            texts.AddNew();
            texts.Set("Name", u"Idx" + name);
            texts.Set("L1031", name);
            texts.Set("L1033", name);
            texts.Update();
            trends.AddNew();
            trends.Set("Name", name);
            trends.Set("ArchiveID", kArchive);
            trends.Set("TextID", texts.Get("ID"));
            trends.Set("TrendVar", u"Anlage.Motor." + name);
            trends.Set("VMax", 100.0);
            trends.Update();
        }
        connection.CommitTrans();
    }

    void DeleteTrends() {
        connection.BeginTrans();
        trends.SetFilter("ArchiveID = " + std::to_string(kArchive));
        for (; !trends.IsEOF(); trends.MoveNext()) {
            texts.SetFilter("ID=" + std::to_string(ado::ToLong(trends.Get("TextID"))));
            if (!texts.IsEOF()) texts.Delete();
            trends.Delete();
        }
        connection.CommitTrans();
        trends.SetFilter("");
        texts.SetFilter("");
    }

    ado::Connection connection;
    ado::Recordset trends;
    ado::Recordset texts;

private:
    static constexpr const char* kPath = "bench_write.kvs";
};

void InsertThousandTrends(benchmark::State& state) {
    Project project;
    for (auto _ : state) {
        project.AddTrends(1000);
        state.PauseTiming();
        project.DeleteTrends();
        state.ResumeTiming();
    }
}
BENCHMARK(InsertThousandTrends)->Unit(benchmark::kMillisecond);

void DeleteThousandTrends(benchmark::State& state) {
    Project project;
    for (auto _ : state) {
        state.PauseTiming();
        project.AddTrends(1000);
        state.ResumeTiming();
        project.DeleteTrends();
    }
}
BENCHMARK(DeleteThousandTrends)->Unit(benchmark::kMillisecond);

// One trend with its text, committed by itself, as the editor adds one.
void NewTrend(benchmark::State& state) {
    Project project;
    for (auto _ : state) project.AddTrends(1);
}
BENCHMARK(NewTrend)->Unit(benchmark::kMillisecond);

void ChangeOneRow(benchmark::State& state) {
    Project project;
    std::int32_t value = 0;
    for (auto _ : state) {
        project.trends.Set("VMaxSamples", ++value);
        project.trends.Update();
    }
}
BENCHMARK(ChangeOneRow)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
