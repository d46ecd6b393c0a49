// The settings on a window with the real grid: what opening and closing the editor pays for them.
#include <benchmark/benchmark.h>

#include <optional>
#include <QApplication>
#include <QFile>
#include <QLocale>
#include <QMainWindow>
#include <QStatusBar>
#include <QTemporaryDir>

#include "controls/GridSource.h"
#include "controls/TDBGrid.h"
#include "settings/CInit.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kDefault = u"FKVARCHIVDBSERVER"_s;
constexpr int kRows = 100;

/// Columns by name over rows of numbers.
class Rows final : public GridSource {
public:
    explicit Rows(const QStringList& fields) : fields_(fields) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : kRows;
    }
    [[nodiscard]] int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(fields_.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole || role == GridRole::kStored ? index.row() : QVariant();
    }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override {
        if (orientation != Qt::Horizontal) return {};
        return role == Qt::DisplayRole || role == GridRole::kField ? fields_[section] : QVariant();
    }
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& /*index*/) const override {
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    }
    [[nodiscard]] GridRowId IdAt(int row) const override { return row; }
    [[nodiscard]] int RowOf(GridRowId id) const override { return static_cast<int>(id); }
    [[nodiscard]] std::optional<QVariant> ReadCell(int, const QString& text) const override {
        return text;
    }
    GridCommit CommitCell(GridRowId, int, const QVariant&) override {
        return GridCommit::Refused();
    }

private:
    QStringList fields_;
};

struct Window {
    Window() {
        auto* grid = new TDBGrid(&form);
        grid->setObjectName(u"tdbA"_s);
        form.setCentralWidget(grid);
        form.statusBar()->setObjectName(u"sb"_s);
        grid->SplitAt(0).SetSource(&archives);
        grid->SplitAt(1).SetSource(&trends);
        form.show();
        QApplication::processEvents();
        init.SetMotherobject(&form);
        init.LoadDefaultInit(kDefault);
        init.DeleteAValueInCInits(u"Me.PosLeft");  // properties of the editor's own window
        init.DeleteAValueInCInits(u"Me.PosTop");
        file = folder.filePath(u"KVEditors.ini"_s);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    Rows archives{{u"Name"_s}};
    Rows trends{
        u"Name TrendVar Maximum Minimum SurrogateMax SurrogateMin ErrorValue Hysteresis "
        "HysteresisMode Factor Offset Filter FilterDepth Unit VMax VMin VUpper VLower "
        "VLineColor VLineWidth VLineStyle VUpperColor VLowerColor VConfig VDrawMode "
        "VMaxSamples VUnitID Comment"_s.split(u' ')};
    QMainWindow form;
    CInit init;
    QTemporaryDir folder;
    QString file;
};

void LoadFile(benchmark::State& state) {
    Window window;
    window.init.SaveInits(window.file);
    for ([[maybe_unused]] auto _ : state) {
        CInit init;
        init.LoadDefaultInit(kDefault);
        init.LoadInits(window.file);
    }
}
BENCHMARK(LoadFile)->Unit(benchmark::kMillisecond);

// Every second time with other widths, fonts and columns shown, so that each value is a change.
void Apply(benchmark::State& state) {
    Window window;
    CInit other;
    other.LoadDefaultInit(kDefault);
    for (const QString& field :
         u"TrendVar Maximum Minimum SurrogateMax VMax VLineColor Comment"_s.split(u' ')) {
        const QString column = u"tdbA.Splits(1).Columns(\"%1\")."_s.arg(field);
        other.WriteAValueToCInits(column + u"Width"_s, 1500);
        other.WriteAValueToCInits(column + u"Visible"_s, field.startsWith(u'V'));
    }
    other.WriteAValueToCInits(u"tdbA.Font.Size"_s, 10);
    other.DeleteAValueInCInits(u"Me.PosLeft");
    other.DeleteAValueInCInits(u"Me.PosTop");
    other.SetMotherobject(&window.form);
    bool turn = false;
    for ([[maybe_unused]] auto _ : state) {
        CInit& init = turn ? other : window.init;
        init.SetInitToMotherObject();
        init.SetInitToControl(u"Me"_s);
        turn = !turn;
    }
}
BENCHMARK(Apply)->Unit(benchmark::kMillisecond);

// Read the live window and write the file; `1`: with a value that has changed.
void Save(benchmark::State& state) {
    Window window;
    window.init.SaveInits(window.file);
    int changes = 0;
    for ([[maybe_unused]] auto _ : state) {
        window.init.GetInitFromControl(u"tdbA"_s);
        window.init.GetInitFromControl(u"Me"_s);
        if (state.range(0) != 0) window.init.WriteAValueToCInits(u"CurrentLCID"_s, ++changes);
        window.init.SaveInits();
    }
}
BENCHMARK(Save)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void LoadTenMegabytes(benchmark::State& state) {
    Window window;
    QFile file(window.file);
    if (!file.open(QIODevice::WriteOnly)) return state.SkipWithError("cannot write the file");
    file.write("[FKVARCHIVDBSERVER]\r\n");
    for (int i = 0; file.pos() < 10'000'000; ++i) {
        file.write("key" + QByteArray::number(i) + "=value\r\n");
    }
    file.close();
    for ([[maybe_unused]] auto _ : state) window.init.LoadInits(window.file);
}
BENCHMARK(LoadTenMegabytes)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
