// Reading through recordsets, on the project file named by KV_BENCH_FILE (default: the brewery).

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "../tests/ado/TrendQuery.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"

namespace {

std::string BenchFile() {
    const char* named = std::getenv("KV_BENCH_FILE");
    return named != nullptr ? named : KV_EXAMPLES "/Brauerei.kvs";
}

void Open(ado::Connection& connection) {
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + BenchFile() +
                    ";Mode=Read|Write|Share Deny None;");
}

// From the file to the first row of the archives, as on the add-in's first use.
void OpenProject(benchmark::State& state) {
    for (auto _ : state) {
        ado::Connection connection;
        Open(connection);
        ado::Recordset archives;
        archives.Open("TchrArchives", connection, ado::CommandType::Table);
        benchmark::DoNotOptimize(archives.Get("Name"));
    }
}
BENCHMARK(OpenProject)->Unit(benchmark::kMicrosecond);

// The trends of the first archive with their texts, every value read at one go, as the editor fills
// its grid.
void OpenArchive(benchmark::State& state) {
    ado::Connection connection;
    Open(connection);
    std::size_t rows = 0;
    for (auto _ : state) {
        const ado::OneState oneState(connection);
        ado::Recordset trends;
        trends.Open(kTrendQuery, connection, ado::CommandType::Text, {u"1"});
        rows = 0;
        for (; !trends.IsEOF(); trends.MoveNext(), ++rows) {
            for (std::size_t i = 0; i < trends.Fields().size(); ++i) {
                benchmark::DoNotOptimize(trends.Get(i));
            }
        }
    }
    state.counters["trends"] = static_cast<double>(rows);
}
BENCHMARK(OpenArchive)->Unit(benchmark::kMicrosecond);

void CountTrends(benchmark::State& state) {
    ado::Connection connection;
    Open(connection);
    std::size_t rows = 0;
    for (auto _ : state) {
        ado::Recordset trends;
        trends.Open("TchrTrends", connection, ado::CommandType::Table);
        rows = trends.RecordCount();
    }
    state.counters["trends"] = static_cast<double>(rows);
}
BENCHMARK(CountTrends)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
