// The table over a project, the brewery or that of which KV_PROJECT names the file (make_project
// makes one of 100,000 trends): rows read, narrowed, ordered, scrolled, on the offscreen platform.
// A frame is all that happens between a key and the finished picture.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTableView>

#include "controls/TDBGrid.h"
#include "projecttable/TrendTableModel.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Nobody to ask for a step.
class NoWork final : public projectdb::IProjectWork {
public:
    ado::Connection& Connection() override { return connection_; }
    bool MayStore() override { return false; }
    bool RunStep(const std::function<void()>&) override { return false; }
    void GoStep(bool) override {}
    bool ShowPlace(const projectdb::Place&) override { return false; }
    std::optional<QString> ChooseVariable(QWidget*, const QString&) override { return {}; }
    std::optional<QStringList> ChooseVariables(QWidget*, const QString&) override { return {}; }
    void ExportTrends(const std::vector<std::int32_t>&, QWidget*) override {}
    void ShowHelpTopic(int, QWidget*) override {}

private:
    ado::Connection connection_;
};

TrendTable ReadProject() {
    const char* path = std::getenv("KV_PROJECT");
    ado::Connection connection;
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                    std::string(path != nullptr ? path : KV_EXAMPLES "/Brauerei.kvs") +
                    ";Mode=Read|Share Deny None;");
    return TrendTable::Read(connection);
}

class Window {
public:
    Window() {
        model_.SetTable(ReadProject());
        grid_.SplitAt(1).SetSource(&model_);
        grid_.SplitAt(1).SetFilterRow(true);
        grid_.resize(1900, 1000);
        grid_.show();
        Show();
    }
    static void Show() { QCoreApplication::processEvents(); }
    TrendTableModel& Model() { return model_; }
    GridSplit& Trends() { return grid_.SplitAt(1); }

private:
    MResources::TextTable texts_;
    NoWork work_;
    TrendTableModel model_{texts_, work_};
    TDBGrid grid_;
};

Window& TheWindow() {
    static auto* window = new Window;  // goes with the process
    return *window;
}

void BM_Read(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(ReadProject());
}
BENCHMARK(BM_Read)->Unit(benchmark::kMillisecond);

/// To the picture of what is left, of a text that is contained.
void BM_Narrow(benchmark::State& state) {
    Window& window = TheWindow();
    bool isNarrow = false;
    for (auto _ : state) {
        isNarrow = !isNarrow;
        TrendTableModel::Narrowing narrowing;
        if (isNarrow) narrowing.columns[u"Name"_s] = u"7"_s;
        window.Model().Narrow(std::move(narrowing));
        Window::Show();
    }
}
BENCHMARK(BM_Narrow)->Unit(benchmark::kMillisecond);

/// By names, each its own, and within them by unit. The first time its ranks are worked out.
void BM_SortFirst(benchmark::State& state) {
    Window& window = TheWindow();
    for (auto _ : state) {
        state.PauseTiming();
        window.Model().SetTable(ReadProject());
        window.Model().SetSortKeys({});
        state.ResumeTiming();
        window.Model().SetSortKeys({{u"Name"_s}, {u"Unit"_s}});
        Window::Show();
    }
}
BENCHMARK(BM_SortFirst)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_SortAgain(benchmark::State& state) {
    Window& window = TheWindow();
    Qt::SortOrder order = Qt::AscendingOrder;
    for (auto _ : state) {
        order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
        window.Model().SetSortKeys({{u"Name"_s, order}, {u"Unit"_s}});
        Window::Show();
    }
}
BENCHMARK(BM_SortAgain)->Unit(benchmark::kMillisecond);

/// A page further each time; the longest frame is told.
void BM_Scroll(benchmark::State& state) {
    Window& window = TheWindow();
    window.Model().SetSortKeys({});
    QScrollBar* bar = window.Trends().View()->verticalScrollBar();
    double longest = 0;
    for (auto _ : state) {
        const int next = bar->value() + bar->pageStep();
        QElapsedTimer timer;
        timer.start();
        bar->setValue(next > bar->maximum() ? 0 : next);
        Window::Show();
        longest = std::max(longest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    state.counters["longest_ms"] = longest;
}
BENCHMARK(BM_Scroll)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
