#include <fcntl.h>
#include <gtest/gtest.h>

#include <unistd.h>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "messages/MessageBox.h"
#include "project/Rows.h"
#include "support/CancelsProgress.h"
#include "support/PrintQt.h"
#include "support/SmallDisk.h"
#include "transfer/FExport.h"
#include "transfer/FImport.h"
#include "transfer/PlanModel.h"
#include "words/Words.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using transfer::PlanModel;

/// The brewery, and what the windows ask of the editor window.
class TransferTest : public testing::TestWithParam<std::uint32_t>, public projectdb::IProjectWork {
protected:
    TransferTest() {
        const QString path = Path();
        EXPECT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        connection_.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path.toStdString() +
                         ";");
        texts_.SetLanguage(GetParam());
        transfer::Keep({});
    }

    ado::Connection& Connection() override { return connection_; }
    bool MayStore() override { return true; }
    bool RunStep(const std::function<void()>& change) override {
        ++steps_;
        change();
        return true;
    }
    void GoStep(bool) override {}
    bool ShowPlace(const projectdb::Place&) override { return false; }
    std::optional<QString> ChooseVariable(QWidget*, const QString&) override { return {}; }
    std::optional<QStringList> ChooseVariables(QWidget*, const QString&) override { return {}; }
    void ExportTrends(const std::vector<std::int32_t>&, QWidget*) override {}
    void ShowHelpTopic(int, QWidget*) override {}

    [[nodiscard]] QString Path() const { return folder_.filePath(u"project.kvs"_s); }
    [[nodiscard]] bool IsGerman() const { return GetParam() == 1031; }
    [[nodiscard]] QString Text(const char16_t* german, const char16_t* english) const {
        return QString::fromUtf16(IsGerman() ? german : english);
    }
    [[nodiscard]] static QByteArray Content(const QString& name) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }
    /// Exports with the window as it is set up by `choose`.
    template <typename Choose>
    QString Export(const QString& name, FExport::Selection selection, Choose choose) {
        FExport window(*this, texts_, std::move(selection), nullptr);
        window.show();
        choose(window);
        const QString file = folder_.filePath(name);
        window.findChild<QLineEdit*>(u"txtFile"_s)->setText(file);
        window.findChild<QPushButton*>(u"cmdOk"_s)->click();
        EXPECT_EQ(window.result(), QDialog::Accepted);
        EXPECT_TRUE(QFile::exists(file));
        return file;
    }
    QString WriteFile(const QString& name, const QByteArray& content) {
        QFile file(folder_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    }
    [[nodiscard]] QString Unit(std::int32_t trend) {
        project::Rows rows(connection_);
        EXPECT_TRUE(rows.SeekTrend(trend));
        return QString::fromStdU16String(ado::ToText(rows.Trends().Get("Unit")));
    }
    void SetUnit(std::int32_t trend, const char16_t* unit) {
        project::Rows rows(connection_);
        EXPECT_TRUE(rows.SeekTrend(trend));
        rows.Trends().Set("Unit", std::u16string(unit));
        rows.Trends().Update();
    }

    QTemporaryDir folder_;
    ado::Connection connection_;
    MResources::TextTable texts_;
    int steps_ = 0;
};

/// What a user sees of an import.
struct Import {
    explicit Import(FImport& window)
        : tree(window.findChild<QTreeView*>(u"treePlan"_s)),
          button(window.findChild<QPushButton*>(u"cmdImport"_s)),
          state(window.findChild<QLabel*>(u"lblState"_s)) {}

    [[nodiscard]] QString Cell(int row, int column, const QModelIndex& parent = {}) const {
        return tree->model()->index(row, column, parent).data().toString();
    }
    /// Of the unit, wherever it stands among the changed fields.
    [[nodiscard]] QString UnitCell(int row, int column) const {
        const QModelIndex parent = tree->model()->index(row, 0);
        for (int field = 0; field < tree->model()->rowCount(parent); ++field) {
            const QString name = Cell(field, PlanModel::kName, parent);
            if (name == u"Einheit" || name == u"Unit") return Cell(field, column, parent);
        }
        return u"(not changed)"_s;
    }
    void Tick(int row, bool on) const {
        tree->model()->setData(tree->model()->index(row, 0), on ? Qt::Checked : Qt::Unchecked,
                               Qt::CheckStateRole);
    }
    /// After ticks.
    void WaitForPlan() const {
        ASSERT_TRUE(QTest::qWaitFor([&] { return button->isEnabled(); }));
    }

    QTreeView* tree;
    QPushButton* button;
    QLabel* state;
};

void Choose(FImport& window, int heading, const QString& column) {
    auto* choice = window.findChild<QComboBox*>(u"cmbColumn%1"_s.arg(heading));
    ASSERT_NE(choice, nullptr);
    const int index = choice->findText(column);
    ASSERT_GE(index, 0) << column.toStdString();
    choice->setCurrentIndex(index);
    emit choice->activated(index);
}

TEST_P(TransferTest, WhatGoesOutComesBackAsNoChange) {
    const QByteArray before = Content(Path());
    const auto csv = [](int encoding) {
        return [=](FExport& window) {
            window.findChild<QRadioButton*>(u"optCsv"_s)->click();
            window.findChild<QComboBox*>(u"cmbEncoding"_s)->setCurrentIndex(encoding);
        };
    };
    const QString files[] = {Export(u"out.xlsx"_s, {}, [](FExport&) {}),
                             Export(u"utf8.csv"_s, {}, csv(0)), Export(u"1252.csv"_s, {}, csv(1))};
    for (const QString& file : files) {
        FImport window(*this, texts_, nullptr);
        window.findChild<QComboBox*>(u"cmbEncoding"_s)
            ->setCurrentIndex(file.contains(u"1252") ? 1 : 0);
        window.Open(file);
        const Import import(window);
        EXPECT_EQ(import.tree->model()->rowCount(), 0) << file.toStdString();
        EXPECT_FALSE(import.button->isEnabled());
        EXPECT_TRUE(import.state->text().contains(Text(u"228 unverändert", u"228 as they are")))
            << import.state->text().toStdString();
    }
    connection_.Close();
    EXPECT_TRUE(Content(Path()) == before);
}

// What is previewed is what is written; what has been chosen is there the next time.
TEST_P(TransferTest, ThePreviewIsTheBeginningOfTheFile) {
    QString preview;
    const QString file = Export(u"out.csv"_s, {{1, 2, 3}, 1}, [&](FExport& window) {
        window.findChild<QRadioButton*>(u"optCsv"_s)->click();
        EXPECT_TRUE(window.findChild<QRadioButton*>(u"optSelected"_s)->isChecked());
        window.findChild<QComboBox*>(u"cmbSeparator"_s)->setCurrentIndex(2);
        window.findChild<QCheckBox*>(u"chkMark"_s)->setChecked(false);
        const auto* shown = window.findChild<QPlainTextEdit*>(u"txtPreview"_s);
        auto* sheets = window.findChild<QComboBox*>(u"cmbSheet"_s);
        sheets->setCurrentIndex(1);
        const QString archives = shown->toPlainText();
        sheets->setCurrentIndex(0);
        EXPECT_NE(shown->toPlainText(), archives);
        preview = window.findChild<QPlainTextEdit*>(u"txtPreview"_s)->toPlainText();
    });
    const QString content = QString::fromUtf8(Content(file)).remove(u'\r');
    EXPECT_EQ(content, preview);
    EXPECT_EQ(content.count(u'\n'), 4) << content.toStdString();
    EXPECT_TRUE(content.startsWith(u"ID\t"_s));

    FExport again(*this, texts_, {}, nullptr);
    EXPECT_TRUE(again.findChild<QRadioButton*>(u"optCsv"_s)->isChecked());
    EXPECT_EQ(again.findChild<QComboBox*>(u"cmbSeparator"_s)->currentIndex(), 2);
    EXPECT_FALSE(again.findChild<QCheckBox*>(u"chkMark"_s)->isChecked());
    again.findChild<QPushButton*>(u"cmdLocale"_s)->click();
    EXPECT_NE(again.findChild<QComboBox*>(u"cmbSeparator"_s)->currentIndex(), 2);
    auto* name = again.findChild<QLineEdit*>(u"txtFile"_s);
    name->setText(u"x.csv"_s);
    again.findChild<QRadioButton*>(u"optXlsx"_s)->click();
    EXPECT_EQ(name->text(), u"x.xlsx"_s);
    name->setText(u"x.CSV"_s);
    EXPECT_TRUE(again.findChild<QRadioButton*>(u"optCsv"_s)->isChecked());
}

TEST_P(TransferTest, ArchivesAreExportedByTheirTicks) {
    const QString file = Export(u"out.csv"_s, {{}, 2}, [&](FExport& window) {
        window.findChild<QRadioButton*>(u"optCsv"_s)->click();
        window.findChild<QComboBox*>(u"cmbSheet"_s)->setCurrentIndex(1);
        window.findChild<QRadioButton*>(u"optArchives"_s)->click();
        auto* archives = window.findChild<QListWidget*>(u"lstArchives"_s);
        EXPECT_EQ(archives->count(), 14);
        auto* ok = window.findChild<QPushButton*>(u"cmdOk"_s);
        window.findChild<QLineEdit*>(u"txtFile"_s)->setText(u"x"_s);
        QListWidgetItem* open = archives->currentItem();
        ASSERT_NE(open, nullptr);
        open->setCheckState(Qt::Unchecked);
        EXPECT_FALSE(ok->isEnabled()) << "nothing is ticked";
        open->setCheckState(Qt::Checked);
    });
    const QList<QByteArray> lines = Content(file).split('\n');
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[1].startsWith("2")) << lines[1].toStdString();
}

TEST_P(TransferTest, AFileThatCannotBeWrittenStays) {
    QStringList told;
    const messages::MessageAnswer answer([&](const messages::Message& message) {
        told << message.text;
        return messages::MessageResult::Ok;
    });
    SetUnit(1, u"水");
    const QString file = WriteFile(u"out.csv"_s, "old");
    FExport window(*this, texts_, {}, nullptr);
    window.findChild<QRadioButton*>(u"optCsv"_s)->click();
    window.findChild<QComboBox*>(u"cmbEncoding"_s)->setCurrentIndex(1);
    EXPECT_TRUE(window.findChild<QLabel*>(u"lblNote"_s)->text().contains(u"Windows-1252"));
    auto* name = window.findChild<QLineEdit*>(u"txtFile"_s);
    auto* ok = window.findChild<QPushButton*>(u"cmdOk"_s);
    name->setText(file);
    ok->click();
    ASSERT_EQ(told.size(), 2) << "whether it is to be replaced, and why it is not";
    EXPECT_TRUE(told[1].contains(u"Windows-1252")) << told[1].toStdString();
    name->setText(folder_.filePath(u"no/out.csv"_s));
    ok->click();
    ASSERT_EQ(told.size(), 3);
    EXPECT_TRUE(told[2].contains(u"no/out.csv")) << told[2].toStdString();
    EXPECT_EQ(window.result(), 0);
    EXPECT_EQ(Content(file), "old");

    {
        const SmallDisk disk(1000);
        window.findChild<QComboBox*>(u"cmbEncoding"_s)->setCurrentIndex(0);
        name->setText(file);
        ok->click();
    }
    ASSERT_EQ(told.size(), 5) << "asked, and refused by the disk";
    EXPECT_TRUE(told[4].contains(QDir::tempPath())) << told[4].toStdString();
    EXPECT_EQ(Content(file), "old");

    transfer::ExportWish wish{.file = file, .language = &words::LanguageOf("en")};
    transfer::ExportJob job(connection_.DataSource(), wish);
    job.Cancel();
    job.start();
    job.wait();
    EXPECT_FALSE(job.IsWritten());
    EXPECT_FALSE(job.Failed());
    EXPECT_EQ(Content(file), "old");
}

// Another program is just writing to the project, so that the export has to wait.
TEST_P(TransferTest, AnExportThatTakesLongCanBeCancelled) {
    const int project = ::open(qPrintable(Path()), O_RDWR);
    struct flock pages {};
    pages.l_type = F_WRLCK;
    pages.l_start = 0x100000001;
    pages.l_len = 1;
    const QString file = folder_.filePath(u"out.xlsx"_s);
    FExport window(*this, texts_, {}, nullptr);
    window.show();
    window.findChild<QLineEdit*>(u"txtFile"_s)->setText(file);
    ASSERT_EQ(::fcntl(project, F_OFD_SETLK, &pages), 0);
    bool isPressed = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        auto* progress = window.findChild<QProgressDialog*>(u"dlgProgress"_s);
        if (progress == nullptr || !progress->isVisible()) return;
        timer.stop();
        auto* cancel = progress->findChild<QPushButton*>();
        isPressed = cancel->isEnabled();
        cancel->click();
        ::close(project);
    });
    timer.start(1);
    window.findChild<QPushButton*>(u"cmdOk"_s)->click();
    EXPECT_TRUE(isPressed);
    EXPECT_EQ(window.result(), 0);
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_TRUE(window.findChild<QPushButton*>(u"cmdOk"_s)->isEnabled());
}

TEST_P(TransferTest, WhatIsTickedIsDoneInOneStep) {
    const QString file = WriteFile(u"in.csv"_s,
                                   "ID,Archive,Runtime Name,Unit,Factor\n"
                                   "1,Sudhaus,Maischbottich Temperatur,K,\n"
                                   "2,Sudhaus,Maischbottich Druck,1.5.,\n"
                                   "3,Sudhaus,Maischbottich F\xC3\xBCllstand,,many\n"
                                   ",Sudhaus,Neu,,\n");
    const QString before = Unit(1);
    FImport window(*this, texts_, nullptr);
    window.show();
    window.Open(file);
    const Import import(window);
    ASSERT_GE(import.tree->model()->rowCount(), 4);
    EXPECT_EQ(import.Cell(0, PlanModel::kState), Text(u"geändert", u"changed"));
    EXPECT_EQ(import.UnitCell(0, PlanModel::kWas), before);
    EXPECT_EQ(import.UnitCell(0, PlanModel::kIs), u"K"_s);
    EXPECT_TRUE(import.UnitCell(1, PlanModel::kIs).contains(Text(u"Datum", u"date")));
    EXPECT_EQ(import.Cell(2, PlanModel::kState), Text(u"abgelehnt", u"refused"));
    EXPECT_TRUE(import.Cell(2, PlanModel::kIs).contains(u"many"_s));
    EXPECT_EQ(import.Cell(3, PlanModel::kState), Text(u"neu", u"new"));
    EXPECT_EQ(import.Cell(4, PlanModel::kState), Text(u"fehlt hier", u"missing here"));
    EXPECT_TRUE(import.button->text().contains(u'3')) << import.button->text().toStdString();

    EXPECT_FALSE(import.tree->model()->index(2, 0).data(Qt::CheckStateRole).isValid())
        << "what is refused cannot be wanted";
    import.Tick(1, false);
    import.WaitForPlan();
    window.Open(file);
    EXPECT_TRUE(import.button->text().contains(u'3')) << "a file begins with all of its rows";
    import.Tick(1, false);
    EXPECT_FALSE(import.button->isEnabled()) << "what is shown is not what was planned";
    import.WaitForPlan();
    EXPECT_TRUE(import.button->text().contains(u'2')) << import.button->text().toStdString();
    const QString kept = Unit(2);
    import.button->click();
    EXPECT_EQ(steps_, 1);
    EXPECT_EQ(Unit(1), u"K"_s);
    EXPECT_EQ(Unit(2), kept);
    EXPECT_TRUE(import.button->isEnabled()) << "what is left can be wanted after all";
    project::Rows rows(connection_);
    EXPECT_TRUE(rows.SeekTrend(4)) << "nothing has been deleted";
    rows.Trends().SetFilter("Name = 'Neu'");
    EXPECT_FALSE(rows.Trends().IsEOF());
}

TEST_P(TransferTest, RowsGoOnlyWhenThatIsAskedFor) {
    const QString file =
        WriteFile(u"in.csv"_s, "ID,Archive,Runtime Name\n1,Sudhaus,Maischbottich Temperatur\n");
    FImport window(*this, texts_, nullptr);
    window.show();
    window.Open(file);
    const Import import(window);
    EXPECT_FALSE(import.button->isEnabled());
    window.findChild<QCheckBox*>(u"chkDelete"_s)->click();
    EXPECT_TRUE(import.button->isEnabled());
    EXPECT_EQ(import.Cell(0, PlanModel::kState), Text(u"wird gelöscht", u"deleted"));
    // All but the first two stay.
    const int all = import.tree->model()->rowCount();
    ASSERT_GT(all, 3);
    import.tree->setFocus();
    import.tree->setCurrentIndex(import.tree->model()->index(2, 0));
    import.tree->selectAll();
    for (const int row : {0, 1}) {
        import.tree->selectionModel()->select(
            import.tree->model()->index(row, 0),
            QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    }
    QTest::keyClick(import.tree, Qt::Key_Space);
    import.WaitForPlan();
    EXPECT_TRUE(import.button->text().contains(u'2')) << import.button->text().toStdString();
    import.button->click();
    project::Rows rows(connection_);
    EXPECT_FALSE(rows.SeekTrend(2));
    EXPECT_FALSE(rows.SeekTrend(3));
    EXPECT_TRUE(rows.SeekTrend(4));
}

// A file of somebody else, with headings of his own.
TEST_P(TransferTest, ColumnsAreAssignedByHand) {
    const QString file = WriteFile(u"in.csv"_s, "Nr.;Einheit alt;Einheit\n1;K;bar\n");
    FImport window(*this, texts_, nullptr);
    window.show();
    window.Open(file);
    const Import import(window);
    EXPECT_EQ(import.tree->model()->rowCount(), 0);
    EXPECT_FALSE(import.button->isEnabled());
    EXPECT_TRUE(import.state->text().contains(u"Nr."_s)) << import.state->text().toStdString();
    Choose(window, 0, u"ID"_s);
    ASSERT_GE(import.tree->model()->rowCount(), 1);
    EXPECT_EQ(import.UnitCell(0, PlanModel::kIs), u"bar"_s);
    Choose(window, 1, Text(u"Einheit", u"Unit"));
    EXPECT_EQ(import.UnitCell(0, PlanModel::kIs), u"K"_s);
    EXPECT_EQ(window.findChild<QComboBox*>(u"cmbColumn2"_s)->currentIndex(), 0)
        << "a column is taken once";
    import.button->click();
    EXPECT_EQ(Unit(1), u"K"_s);

    auto* kind = window.findChild<QComboBox*>(u"cmbKind"_s);
    kind->setCurrentIndex(1);
    emit kind->activated(1);
    EXPECT_FALSE(import.button->isEnabled());
    EXPECT_LT(window.findChild<QComboBox*>(u"cmbColumn0"_s)->findText(Text(u"Einheit", u"Unit")),
              0);
}

TEST_P(TransferTest, AProjectThatHasChangedIsPlannedAnewAndNothingIsDone) {
    const QString file = WriteFile(
        u"in.csv"_s, "ID,Archive,Runtime Name,Unit\n1,Sudhaus,Maischbottich Temperatur,K\n");
    FImport window(*this, texts_, nullptr);
    window.Open(file);
    const Import import(window);
    SetUnit(1, u"mbar");
    import.button->click();
    EXPECT_EQ(Unit(1), u"mbar"_s);
    EXPECT_EQ(import.UnitCell(0, PlanModel::kWas), u"mbar"_s);
    EXPECT_TRUE(import.state->text().contains(Text(u"inzwischen", u"meanwhile")));
    SetUnit(1, u"bar");
    QEvent activated(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&window, &activated);
    EXPECT_EQ(import.UnitCell(0, PlanModel::kWas), u"bar"_s);
    import.button->click();
    EXPECT_EQ(Unit(1), u"K"_s);
}

TEST_P(TransferTest, WhatFindsNoRoomLeavesTheOldFile) {
    QStringList told;
    const messages::MessageAnswer answer([&](const messages::Message& message) {
        told << message.text;
        return messages::MessageResult::Ok;
    });
    const struct {
        const char16_t* file;
        const char16_t* cause;  // in the language of the machine's settings
    } cases[] = {{u"out.csv", u"voll"}, {u"out.xlsx", u"voll"}, {u"old/out.csv", u"Ordner"}};
    const QString old = WriteFile(u"old"_s, "old");
    for (const auto& each : cases) {
        const QString name = QString::fromUtf16(each.file);
        SCOPED_TRACE(name.toStdString());
        told.clear();
        if (!name.contains(u'/')) WriteFile(name, "old");
        const QStringList before = QDir(folder_.path()).entryList();
        FExport window(*this, texts_, {}, nullptr);
        window.show();
        window.findChild<QLineEdit*>(u"txtFile"_s)->setText(folder_.filePath(name));
        {
            const SmallDisk disk(1000);
            window.findChild<QPushButton*>(u"cmdOk"_s)->click();
        }
        EXPECT_NE(window.result(), QDialog::Accepted);
        ASSERT_FALSE(told.isEmpty());
        EXPECT_TRUE(told.back().contains(QString::fromUtf16(each.cause)))
            << told.back().toStdString();
        const QString full = name.contains(u'/') ? name : QDir::tempPath();
        EXPECT_TRUE(told.back().contains(full)) << told.back().toStdString();
        EXPECT_EQ(QDir(folder_.path()).entryList(), before);
        EXPECT_EQ(Content(name.contains(u'/') ? old : folder_.filePath(name)), "old");
    }
}

TEST_P(TransferTest, ReadingAndPlanningAreGivenUp) {
    QByteArray rows = "ID,Archive,Runtime Name,Unit\n1,Sudhaus,Maischbottich Temperatur,K\n";
    for (int i = 0; i < 600; ++i) rows += ",Sudhaus,Neu " + QByteArray::number(i) + ",K\n";
    const QString file = WriteFile(u"in.csv"_s, rows);
    FImport window(*this, texts_, nullptr);
    window.show();
    const Import import(window);
    const QString givenUp = Text(u"Abgebrochen", u"Given up");
    {
        const CancelsProgress cancels;
        window.Open(file);
        EXPECT_TRUE(cancels.hasCancelled);
    }
    EXPECT_TRUE(import.state->text().contains(givenUp)) << import.state->text().toStdString();
    EXPECT_EQ(import.tree->model()->rowCount(), 0);
    window.Open(file);
    EXPECT_FALSE(import.state->text().contains(givenUp));
    EXPECT_GT(import.tree->model()->rowCount(), 0);
    {
        // Something else is planned of what has been read.
        const CancelsProgress cancels;
        window.findChild<QCheckBox*>(u"chkDelete"_s)->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return cancels.hasCancelled; }));
    }
    EXPECT_TRUE(import.state->text().contains(givenUp));
    EXPECT_EQ(import.tree->model()->rowCount(), 0);
    EXPECT_FALSE(import.button->isEnabled());
    window.findChild<QCheckBox*>(u"chkDelete"_s)->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return import.button->isEnabled(); }));
    EXPECT_FALSE(import.state->text().contains(givenUp));
}

TEST_P(TransferTest, AFileThatIsNoneIsToldOf) {
    QStringList told;
    const messages::MessageAnswer answer([&](const messages::Message& message) {
        told << message.text + message.details;
        return messages::MessageResult::Ok;
    });
    FImport window(*this, texts_, nullptr);
    const Import import(window);
    const struct {
        QByteArray content;
        QString says;
    } cases[] = {
        {"PK\x03\x04 broken", u"in.csv"_s},
        {"", u"heading"_s},
        {"ID,Unit\n1,a\n2,b\xFF\n",
         Text(u"Zeile 3, Spalte 2, Zeichen 2", u"line 3, column 2, character 2")},
    };
    for (const auto& each : cases) {
        told.clear();
        window.Open(WriteFile(u"in.csv"_s, each.content));
        ASSERT_EQ(told.size(), 1);
        EXPECT_TRUE(told[0].contains(each.says)) << told[0].toStdString();
        EXPECT_EQ(import.tree->model()->rowCount(), 0);
        EXPECT_FALSE(import.button->isEnabled());
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, TransferTest, testing::Values(1031U, 1033U));

}  // namespace
