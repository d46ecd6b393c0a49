// The editor in the studio, on a large project and the offscreen platform: the first use, an
// archive's way onto the screen, and memory. KV_BENCH_FILE names the project; see make_project.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QTableView>
#include <QTemporaryDir>
#include <string>

#include "platform/ComponentRegistry.h"
#include "studio/AddInLoader.h"
#include "studio/AddInSet.h"
#include "studio/ProjectTree.h"
#include "studio/StudioHost.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace {

using namespace Qt::Literals::StringLiterals;

const QString kArchives = u"ARC0"_s;

/// Resident memory of this process in MB.
double Resident() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
    }
    return 0;
}

/// A copy of the project, since the editor keeps its layout beside it.
QString Project(const QTemporaryDir& folder) {
    const QString source =
        qEnvironmentVariable("KV_BENCH_FILE", QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"));
    const QString copy = folder.filePath(u"Bench.kvs"_s);
    if (!QFile::exists(copy)) QFile::copy(source, copy);
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    return copy;
}

/// The studio with its window on the screen.
class Studio {
public:
    Studio() {
        qputenv("KV_ADDINS", KV_ADDIN_FOLDER);
        platform::ComponentRegistry components;
        const auto reports = studio::LoadAddIns(components, addIns_);
        window_ = std::make_unique<studio::StudioWindow>(registry_, addIns_, reports, nullptr);
        window_->resize(1600, 1000);
        window_->show();
        Paint();
    }

    void Open(const QString& project) { window_->OpenProject(project); }
    void Close() { window_->CloseProject(); }
    void FirstUse() {
        window_->Tree().ExpandAsUser(kArchives);
        Paint();
    }
    void ShowArchive(const QString& key) {
        window_->Tree().ClickAsUser(key);
        Paint();
    }
    /// The table of the trends.
    [[nodiscard]] QTableView& Trends() const {
        return *window_->findChild<QTableView*>(u"tdbA.Splits(1)"_s);
    }
    void Press(QWidget& widget, int key, Qt::KeyboardModifiers held, const QString& text = {}) {
        QKeyEvent press(QEvent::KeyPress, key, held, text);
        QApplication::sendEvent(&widget, &press);
    }
    [[nodiscard]] QStringList Archives() const {
        return window_->Host().ChildKeys(kArchives).value_or(QStringList());
    }

private:
    void Paint() {
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
        window_->repaint();
    }

    studio::StudioRegistry registry_;
    studio::AddInSet addIns_;
    std::unique_ptr<studio::StudioWindow> window_;
};

std::unique_ptr<Studio> theStudio;  // one for all: add-ins stay loaded

Studio& TheStudio() {
    if (!theStudio) theStudio = std::make_unique<Studio>();
    return *theStudio;
}

// From the first click on the archives' node to the filled tree and the editor on the screen.
void FirstUse(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString project = Project(folder);
    Studio& studio = TheStudio();
    for (auto unused : state) {
        (void)unused;
        state.PauseTiming();
        studio.Close();
        studio.Open(project);
        state.ResumeTiming();
        studio.FirstUse();
    }
    state.counters["archives"] = static_cast<double>(studio.Archives().size());
    studio.Close();
}
BENCHMARK(FirstUse)->Unit(benchmark::kMillisecond)->UseRealTime();

// From the click on an archive to its trends on the screen.
void OpenArchive(benchmark::State& state) {
    const QTemporaryDir folder;
    Studio& studio = TheStudio();
    studio.Open(Project(folder));
    studio.FirstUse();
    const QStringList archives = studio.Archives();
    qsizetype next = 0;
    for (auto unused : state) {
        (void)unused;
        studio.ShowArchive(archives[next++ % archives.size()]);
    }
    studio.Close();
}
BENCHMARK(OpenArchive)->Unit(benchmark::kMillisecond)->UseRealTime();

// One value into a column of all trends of an archive, by typing and Ctrl+Enter.
void WriteCells(benchmark::State& state) {
    const QTemporaryDir folder;
    Studio& studio = TheStudio();
    studio.Open(Project(folder));
    studio.FirstUse();
    studio.ShowArchive(studio.Archives().front());
    QTableView& trends = studio.Trends();
    const auto unitColumn = [&] {
        for (int i = 0; i < trends.model()->columnCount(); ++i) {
            if (trends.model()->headerData(i, Qt::Horizontal).toString() == u"Einheit"_s) return i;
        }
        return 0;
    };
    studio.Press(trends, Qt::Key_A, Qt::ControlModifier);
    trends.selectionModel()->setCurrentIndex(trends.model()->index(0, unitColumn()),
                                             QItemSelectionModel::NoUpdate);
    char letter = 'a';
    for (auto unused : state) {
        (void)unused;
        letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1);
        studio.Press(trends, Qt::Key_A, {}, QString(QLatin1Char(letter)));
        auto* editor = trends.findChild<QWidget*>(u"CellEditor"_s);
        if (editor == nullptr) return state.SkipWithError("no cell is being edited");
        studio.Press(*editor, Qt::Key_Return, Qt::ControlModifier);
    }
    const QString written = trends.model()->index(0, unitColumn()).data().toString();
    if (written != QString(QLatin1Char(letter))) state.SkipWithError("nothing was written");
    state.counters["cells"] = trends.model()->rowCount();
    studio.Close();
}
BENCHMARK(WriteCells)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("KV_REGISTRY", "/nonexistent.reg");
    QApplication app(argc, argv);
    {
        QWidget empty;
        empty.resize(1600, 1000);
        empty.show();
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
        const double before = Resident();
        const QTemporaryDir folder;
        Studio& studio = TheStudio();
        studio.Open(Project(folder));
        studio.FirstUse();
        for (const QString& archive : studio.Archives().mid(0, 100)) studio.ShowArchive(archive);
        std::printf("memory above an empty window: %.1f MB\n", Resident() - before);
        studio.Close();
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    theStudio.reset();  // before the application
    return 0;
}
