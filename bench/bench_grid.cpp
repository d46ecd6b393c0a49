// The grid on an archive of 10,000 trends with all columns of a trend, on the offscreen platform.
// A frame is all that happens between a key and the finished picture.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <QApplication>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTableView>
#include <QTest>

#include "../tests/controls/FakeSource.h"
#include "controls/TDBGrid.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRows = 10000;
constexpr int kColumns = 38;

std::vector<FakeSource::Field> Fields() {
    std::vector<FakeSource::Field> fields{{u"Name"_s}, {u"TrendVar"_s}};
    while (fields.size() < kColumns) {
        const auto i = fields.size();
        const GridKind kind = i % 9 == 0   ? GridKind::Colour
                              : i % 5 == 0 ? GridKind::Integer
                                           : GridKind::Number;
        fields.push_back({u"Field%1"_s.arg(i), kind});
    }
    return fields;
}

std::vector<FakeSource::Row> Rows() {
    std::vector<FakeSource::Row> rows;
    for (int i = 0; i < kRows; ++i) {
        FakeSource::Row row{i + 1,
                            {u"Trd%1"_s.arg(i), u"Plant.Tank%1.Level"_s.arg(i * 7919 % kRows)}};
        for (std::size_t column = 2; column < kColumns; ++column) {
            row.values.emplace_back(column % 5 == 0 || column % 9 == 0
                                        ? QVariant(i % 3)
                                        : QVariant(i * 0.25 + static_cast<double>(column)));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

/// A window of 1900 by 1000 pixels with the grid.
class Window {
public:
    Window() {
        grid_.SplitAt(1).SetSource(&trends_);
        for (int i = 2; i < kColumns; ++i) {
            GridColumn* column = grid_.SplitAt(1).ColumnAt(i);
            column->SetNumberFormat(u"General Number"_s);
            if (i % 5 == 0) {
                column->SetValueItems({{0, u"No filter"_s}, {1, u"Average"_s}, {2, u"Mean"_s}});
            }
        }
        grid_.SplitAt(1).SetFrozenColumn(u"Name"_s);
        grid_.resize(1900, 1000);
        grid_.show();
        QApplication::setActiveWindow(&grid_);
        grid_.SplitAt(1).View()->setFocus();
        Show();
    }
    void Show() { QCoreApplication::processEvents(); }
    GridSplit& Trends() { return grid_.SplitAt(1); }
    QTableView& View() { return *grid_.SplitAt(1).View(); }
    FakeSource& Source() { return trends_; }

private:
    FakeSource trends_{Fields()};
    TDBGrid grid_;
};

// From the rows at hand to the first picture of them.
void Open(benchmark::State& state) {
    Window window;
    const std::vector<FakeSource::Row> rows = Rows();
    int archive = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<FakeSource::Row> copy = rows;
        state.ResumeTiming();
        window.Source().Load(std::move(copy), ++archive);
        window.Show();
    }
}
BENCHMARK(Open)->Unit(benchmark::kMillisecond);

/// Holds a key down until the end and back; tells the slowest frame besides the mean,
/// in time of the processor: what else the machine does is none of it.
void Scroll(benchmark::State& state, Qt::Key forth, Qt::Key back) {
    Window window;
    window.Source().Load(Rows(), 1);
    window.Trends().SetCurrentCell(1, 0);
    double slowest = 0;
    Qt::Key key = forth;
    for (auto _ : state) {
        const GridRowId before = window.Trends().CurrentRow();
        const int column = window.Trends().CurrentColumn();
        const std::clock_t start = std::clock();
        QTest::sendKeyEvent(QTest::Click, &window.View(), key, QString(), {});
        window.Show();
        const double frame = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        slowest = std::max(slowest, frame);
        if (window.Trends().CurrentRow() == before && window.Trends().CurrentColumn() == column) {
            key = key == forth ? back : forth;
        }
    }
    state.counters["slowest_cpu_ms"] = slowest;
}
BENCHMARK_CAPTURE(Scroll, by_rows, Qt::Key_Down, Qt::Key_Up)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3000);
BENCHMARK_CAPTURE(Scroll, by_pages, Qt::Key_PageDown, Qt::Key_PageUp)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(600);
BENCHMARK_CAPTURE(Scroll, sideways, Qt::Key_Right, Qt::Key_Left)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(600);

void Sort(benchmark::State& state) {
    Window window;
    window.Source().Load(Rows(), 1);
    for (auto _ : state) {
        window.Trends().Sort(state.range(0) == 0 ? u"TrendVar" : u"Field3");
        window.Show();
    }
}
BENCHMARK(Sort)->ArgName("number")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// One letter more in the find field.
void Narrow(benchmark::State& state) {
    Window window;
    window.Source().Load(Rows(), 1);
    bool more = false;
    for (auto _ : state) {
        window.Trends().SetFilterText((more = !more) ? u"Trd99"_s : u"Trd9"_s);
        window.Show();
    }
}
BENCHMARK(Narrow)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
