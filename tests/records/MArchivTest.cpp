#include "records/MArchiv.h"

#include <functional>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "dialogs/DialogTesting.h"
#include "dialogs/FArchiv.h"
#include "projectdb/Text.h"
#include "records/RecordTesting.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace std::string_literals;
using testing::IsEmpty;

class MArchivTest : public testing::Test {
protected:
    explicit MArchivTest(const char* project = KV_TEST_DATA "/Grenzfaelle.kvs")
        : database_(project) {
        archives_.Open("TchrArchives", database_.connection, ado::CommandType::Table);
        texts_.Open("TidxTexts", database_.connection, ado::CommandType::Table);
    }

    /// Edits an archive as the user does: `act` runs in the dialog, then OK or Cancel.
    bool Edit(const char* archive, const std::function<void(FArchiv&)>& act, bool ok = true,
              platform::Lcid language = 1031) {
        archives_.MoveFirst();
        archives_.Find("Name = '" + std::string(archive) + "'");
        bool shown = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<FArchiv*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            shown = true;
            act(*dialog);
            if (ok) QTest::mouseClick(dialog->cmdOk, Qt::LeftButton);
            stayedOpen_ = ok && dialog->isVisible();
            if (!dialog->isVisible()) return;
            if (refused_) refused_(*dialog);
            QTest::mouseClick(dialog->cmdCancel, Qt::LeftButton);
        });
        const auto save = [this] {
            if (texts_.EditMode() != ado::EditMode::None) texts_.Update();
            archives_.Update();
        };
        const bool changed =
            MArchiv::EditArchive({archives_, texts_, language}, around_.services, nullptr, save);
        if (!shown) QCoreApplication::processEvents();
        shown_ = shown;
        return changed;
    }
    bool Edit(const char* archive) {
        return Edit(archive, [](FArchiv&) {});
    }

    [[nodiscard]] Row ArchiveRow(const std::string& name) {
        for (Row& row : database_.Rows("TchrArchives")) {
            if (ado::ToText(row.at("Name")) == projectdb::ToUtf16(QString::fromStdString(name))) {
                return row;
            }
        }
        ADD_FAILURE() << name;
        return {};
    }

    /// Assigns columns of an archive as another program does.
    void Assign(const char* archive, const Row& values) {
        archives_.MoveFirst();
        archives_.Find("Name = '"s + archive + "'");
        for (const auto& [column, value] : values) archives_.Set(column, value);
        archives_.Update();
    }

    DialogSurroundings around_;
    DatabaseCopy database_;
    ado::Recordset archives_;
    ado::Recordset texts_;
    bool shown_ = false;
    bool stayedOpen_ = false;                // OK could not store
    std::function<void(FArchiv&)> refused_;  // looks at the dialog then
};

struct FileChangeCase {
    const char16_t* newFile;
    int maxSamples;
    int entry;
    const char16_t* storedNewFile;
    int storedMaxSamples;
};

TEST_F(MArchivTest, FileChangeIsReadInBothLanguagesAndWrittenInEnglish) {
    const FileChangeCase cases[] = {
        {u"$Year", 0, 2, u"$Year", 0},
        {u"$Jahr", 0, 2, u"$Year", 0},
        {u"$Month", 0, 3, u"$Month", 0},
        {u"$Monat", 0, 3, u"$Month", 0},
        {u"$Week", 0, 4, u"$Week", 0},
        {u"$Woche", 0, 4, u"$Week", 0},
        {u"$Day", 0, 5, u"$Day", 0},
        {u"$Tag", 0, 5, u"$Day", 0},
        {u"$Hour", 0, 6, u"$Hour", 0},
        {u"$Stunde", 0, 6, u"$Hour", 0},
        {u"$Minute", 0, 7, u"$Minute", 0},
        {u"$Second", 0, 8, u"$Second", 0},
        {u"$Sekunde", 0, 8, u"$Second", 0},
        {u"$minute", 0, 0, u"$minute", 0},
        {u"$day", 0, 0, u"$day", 0},
        {u"$Day ", 0, 0, u"$Day ", 0},
        {u"Sud.Neu", 0, 0, u"Sud.Neu", 0},
        {u"", 500, 1, u"", 500},
        {u"", -1, 1, u"", -1},
        {u"", 0, 9, u"", 0},
        // An event of the clock and a trigger have no count of records; one that is stored stays.
        {u"$Tag", 500, 5, u"$Day", 500},
        {u"Sud.Neu", 500, 0, u"Sud.Neu", 500},
    };
    for (const FileChangeCase& row : cases) {
        SCOPED_TRACE(QString::fromUtf16(row.newFile).toStdString());
        Assign("Niemals",
               {{"NewFile", std::u16string(row.newFile)}, {"MaxSamples", row.maxSamples}});
        int entry = -2;
        QString trigger;
        EXPECT_TRUE(Edit("Niemals", [&](FArchiv& dialog) {
            entry = dialog.cboNewFile->currentIndex();
            trigger = dialog.txtNewFile->text();
        }));
        EXPECT_EQ(entry, row.entry);
        EXPECT_EQ(trigger, row.entry == 0 ? QString::fromUtf16(row.newFile) : QString());
        const Row stored = ArchiveRow("Niemals");
        EXPECT_EQ(stored.at("NewFile"), ado::Value(std::u16string(row.storedNewFile)));
        EXPECT_EQ(stored.at("MaxSamples"), ado::Value(row.storedMaxSamples));
    }
}

TEST_F(MArchivTest, CircularBufferKeepsItsSizeWhateverTheFileChangeIs) {
    for (const auto* newFile : {u"", u"$Day", u"Sud.Neu"}) {
        for (const int samples : {0, 36000}) {
            Assign("Niemals",
                   {{"Type", 0}, {"NewFile", std::u16string(newFile)}, {"MaxSamples", samples}});
            QString shown;
            Edit("Niemals", [&](FArchiv& dialog) { shown = dialog.txtMaxSamples->text(); });
            EXPECT_EQ(shown, QString::number(samples));
            EXPECT_EQ(ArchiveRow("Niemals").at("MaxSamples"), ado::Value(samples));
            EXPECT_EQ(ArchiveRow("Niemals").at("NewFile"), ado::Value(std::u16string(newFile)));
        }
    }
}

TEST_F(MArchivTest, FromACountToNever) {
    Edit("Anzahl500", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.cboNewFile->currentIndex(), 1);
        EXPECT_EQ(dialog.txtMaxSamples->text(), QStringLiteral("500"));
        dialog.tabArchive->setCurrentIndex(1);
        QTest::keyClick(dialog.cboNewFile, Qt::Key_End);
    });
    const Row row = ArchiveRow("Anzahl500");
    EXPECT_EQ(row.at("NewFile"), ado::Value(u""s));
    EXPECT_EQ(row.at("MaxSamples"), ado::Value(0));
}

struct TypeCase {
    ado::Value type;
    int kind;
    bool memory;
    bool safe;
    bool redundancy;
};

TEST_F(MArchivTest, TypeBitsAreShownAndSurviveOk) {
    const TypeCase cases[] = {
        {0, 0, false, false, false},
        {1, 1, false, false, false},
        {9, 1, true, false, false},
        {17, 1, false, true, false},
        {65, 1, false, false, true},
        {88, 0, true, true, true},
        {33, 1, false, false, false},
        {128, 0, false, false, false},
        {3, -1, false, false, false},
        {0x5F, -1, true, true, true},
        {ado::Null(), 0, false, false, false},
        {-32767, 1, false, false, false},
    };
    for (const TypeCase& row : cases) {
        SCOPED_TRACE(ado::ToLong(row.type));
        Assign("Typ33", {{"Type", row.type}});
        Edit("Typ33", [&](FArchiv& dialog) {
            EXPECT_EQ(dialog.cmbType->currentIndex(), row.kind);
            EXPECT_EQ(dialog.optHDRAM[1]->isChecked(), row.memory);
            EXPECT_EQ(dialog.optHDRAM[0]->isChecked(), !row.memory);
            EXPECT_EQ(dialog.optSaveFast[1]->isChecked(), row.safe);
            EXPECT_EQ(dialog.chkRedundancy->isChecked(), row.redundancy);
        });
        EXPECT_TRUE(shown_);
        EXPECT_EQ(ArchiveRow("Typ33").at("Type"), row.type);
    }
}

TEST_F(MArchivTest, AChangedTypeDropsTheBitsThatAreNotEdited) {
    EXPECT_TRUE(Edit("Typ33", [](FArchiv& dialog) {
        QTest::mouseClick(dialog.optHDRAM[1], Qt::LeftButton, {}, QPoint(8, 8));
    }));
    EXPECT_EQ(ArchiveRow("Typ33").at("Type"), ado::Value(9));
    // A kind that the list does not have stays until one is chosen; the rest can be edited.
    Edit("Typ3", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.cmbType->placeholderText(), QStringLiteral("3"));
        dialog.optHDRAM[1]->setChecked(true);
        dialog.chkRedundancy->setChecked(true);
    });
    EXPECT_EQ(ArchiveRow("Typ3").at("Type"), ado::Value(3 + 8 + 64));
    Edit("Typ3", [](FArchiv& dialog) { dialog.cmbType->setCurrentIndex(1); });
    EXPECT_EQ(ArchiveRow("Typ3").at("Type"), ado::Value(1 + 8 + 64));
}

TEST_F(MArchivTest, BlanksAtTheEndsOfATextBelongToIt) {
    const std::pair<const char*, QLineEdit * Ui_FArchiv::*> fields[] = {
        {"Trigger", &Ui_FArchiv::txtTrigger},     {"XVar", &Ui_FArchiv::txtXVar},
        {"StartStop", &Ui_FArchiv::txtStartStop}, {"Reset", &Ui_FArchiv::txtReset},
        {"Comment", &Ui_FArchiv::txtComment},
    };
    for (const auto& [column, control] : fields) {
        Edit("Typ3", [control = control](FArchiv& dialog) {
            (dialog.*control)->setText(QStringLiteral(" A b  "));
        });
        EXPECT_EQ(ArchiveRow("Typ3").at(column), ado::Value(u" A b  "s)) << column;
        Edit("Typ3", [control = control](FArchiv& dialog) {
            EXPECT_EQ((dialog.*control)->text(), QStringLiteral(" A b  "));
        });
    }
}

TEST_F(MArchivTest, EverySampleModeSurvivesOkEvenOneThatIsNotOffered) {
    const std::pair<ado::Value, int> cases[] = {{0, 0},   {1, 1},           {2, 2},  {3, 3},
                                                {4, 4},   {6, 5},           {5, -1}, {7, -1},
                                                {-1, -1}, {ado::Null(), -1}};
    for (const auto& [mode, index] : cases) {
        Assign("Modus5", {{"SampleMode", mode}});
        Edit("Modus5", [index = index](FArchiv& dialog) {
            EXPECT_EQ(dialog.cmbSampleMode->currentIndex(), index);
        });
        if (mode == ado::Value(5)) {
            Edit("Modus5", [](FArchiv& dialog) {
                EXPECT_EQ(dialog.cmbSampleMode->placeholderText(),
                          QStringLiteral("keine Aufzeichnung (Trendviewer) (5)"));
            });
        }
        EXPECT_EQ(ArchiveRow("Modus5").at("SampleMode"), mode);
    }
}

TEST_F(MArchivTest, DisplayTextIsThatOfTheLanguage) {
    EXPECT_TRUE(Edit("JahrDeutsch", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.txtTextID->text(), QStringLiteral("Jahr"));
        dialog.txtTextID->setText(QStringLiteral("Jährlich"));
    }));
    EXPECT_TRUE(Edit(
        "JahrDeutsch",
        [](FArchiv& dialog) {
            EXPECT_EQ(dialog.txtTextID->text(), QStringLiteral("Year"));
            dialog.txtTextID->setText(QStringLiteral("Yearly"));
        },
        true, 1033));
    const Row text = database_.Rows("TidxTexts").front();
    EXPECT_EQ(text.at("L1031"), ado::Value(u"Jährlich"s));
    EXPECT_EQ(text.at("L1033"), ado::Value(u"Yearly"s));
}

// Without a text of its own an archive must not write into the one that the recordset stands on.
TEST_F(MArchivTest, ArchiveWithoutIndexTextWritesIntoNone) {
    const std::vector<Row> before = database_.Rows("TidxTexts");
    const struct {
        const char* archive;
        platform::Lcid language;
        int messages;
    } cases[] = {{"Hängend", 1031, 1}, {"OhneText", 1031, 0}, {"JahrDeutsch", 1036, 0}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.archive);
        around_.messages.clear();
        texts_.MoveFirst();
        EXPECT_TRUE(Edit(
            row.archive,
            [](FArchiv& dialog) {
                EXPECT_EQ(dialog.txtTextID->text(), QString());
                EXPECT_FALSE(dialog.txtTextID->isEnabled());
                dialog.txtTextID->setText(QStringLiteral("verloren"));
                dialog.txtComment->setText(QStringLiteral("neu"));
            },
            true, row.language));
        EXPECT_EQ(around_.messages, QStringList(row.messages, around_.texts.GetText(226)));
        EXPECT_EQ(ArchiveRow(row.archive).at("Comment"), ado::Value(u"neu"s));
    }
    EXPECT_EQ(database_.Rows("TidxTexts"), before);
}

TEST_F(MArchivTest, DisplayTextIsReadAnew) {
    ado::Recordset stale;
    stale.Open("TidxTexts", database_.connection, ado::CommandType::Table);
    EXPECT_EQ(texts_.Get("L1031"), ado::Value(u"Jahr"s));
    stale.Set("L1031", u"von anderswo"s);
    stale.Update();
    Edit("JahrDeutsch", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.txtTextID->text(), QStringLiteral("von anderswo"));
    });
}

TEST_F(MArchivTest, CancelChangesNothing) {
    const auto archives = database_.Rows("TchrArchives");
    const auto texts = database_.Rows("TidxTexts");
    EXPECT_FALSE(Edit(
        "JahrDeutsch",
        [](FArchiv& dialog) {
            QTest::keyClicks(dialog.txtName, QStringLiteral("x"));
            dialog.cmbType->setCurrentIndex(0);
        },
        false));
    EXPECT_EQ(archives_.EditMode(), ado::EditMode::None);
    EXPECT_EQ(database_.Rows("TchrArchives"), archives);
    EXPECT_EQ(database_.Rows("TidxTexts"), texts);
}

// What was typed used to be lost with the dialog. The number fails after the index text has been
// assigned; neither row may keep half of it.
TEST_F(MArchivTest, WhatCannotBeStoredStaysInTheDialog) {
    const auto archives = database_.Rows("TchrArchives");
    const auto texts = database_.Rows("TidxTexts");
    refused_ = [](const FArchiv& dialog) {
        EXPECT_EQ(dialog.txtName->text(), QStringLiteral("Neu"));
        EXPECT_EQ(dialog.txtTextID->text(), QStringLiteral("halb"));
    };
    EXPECT_FALSE(Edit(
        "JahrDeutsch",
        [&](FArchiv& dialog) {
            dialog.txtName->setText(QStringLiteral("Neu"));
            dialog.txtTextID->setText(QStringLiteral("halb"));
            ado::Connection other;
            database_.Connect(other);
            other.BeginTrans();  // and ends it too late
            QTest::mouseClick(dialog.cmdOk, Qt::LeftButton);
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(around_.messages.size(), 1);
            refused_(dialog);
            other.RollbackTrans();
            EXPECT_EQ(archives_.EditMode(), ado::EditMode::None);
            EXPECT_EQ(texts_.EditMode(), ado::EditMode::None);
            QTest::mouseClick(dialog.cmdCancel, Qt::LeftButton);
        },
        false));
    EXPECT_THAT(around_.names.changed, IsEmpty());
    ASSERT_EQ(around_.messages.size(), 1);
    EXPECT_TRUE(around_.messages[0].startsWith(around_.texts.GetText(224) + u"\n\n"_s))
        << "the cause is told, too";
    EXPECT_EQ(database_.Rows("TchrArchives"), archives);
    EXPECT_EQ(database_.Rows("TidxTexts"), texts);
}

TEST_F(MArchivTest, WhatAnotherProgramHasChangedBesideWhatWasTypedJoinsWithoutAQuestion) {
    EXPECT_TRUE(Edit("JahrDeutsch", [&](FArchiv& dialog) {
        dialog.txtComment->setText(QStringLiteral("neu"));
        dialog.txtTextID->setText(QStringLiteral("neu"));
        ado::Connection other;
        database_.Connect(other);
        ado::Recordset rows;
        rows.Open("TchrArchives", other, ado::CommandType::Table);
        rows.Find("Name = 'JahrDeutsch'");
        rows.Set("ScanTime", 77);
        rows.Update();
    }));
    EXPECT_EQ(around_.messages, QStringList());
    const Row stored = ArchiveRow("JahrDeutsch");
    EXPECT_EQ(stored.at("Comment"), ado::Value(u"neu"s));
    EXPECT_EQ(stored.at("ScanTime"), ado::Value(77)) << "what nobody has typed is not overwritten";
    EXPECT_EQ(database_.Rows("TidxTexts").front().at("L1031"), ado::Value(u"neu"s));
}

// The text's row goes before the archive's is stored: nothing of the archive may have changed.
TEST_F(MArchivTest, TextThatAnotherProgramDeletesMeanwhileIsToldOnceAndThenMissing) {
    const auto archives = database_.Rows("TchrArchives");
    EXPECT_FALSE(Edit("JahrDeutsch", [&](FArchiv& dialog) {
        dialog.txtComment->setText(QStringLiteral("neu"));
        dialog.txtTextID->setText(QStringLiteral("neu"));
        ado::Connection other;
        database_.Connect(other);
        ado::Recordset rows;
        rows.Open("TidxTexts", other, ado::CommandType::Table);
        rows.Find("ID = " + std::to_string(ado::ToLong(archives_.Get("TextID"))));
        rows.Delete();
    }));
    EXPECT_TRUE(stayedOpen_);
    EXPECT_EQ(around_.messages,
              QStringList(around_.texts.GetText(224) + u"\n\n"_s +
                          around_.texts.GetText(MResourceTable::kTextRecordGone)));
    EXPECT_EQ(archives_.EditMode(), ado::EditMode::None);
    EXPECT_EQ(texts_.EditMode(), ado::EditMode::None);
    EXPECT_EQ(database_.Rows("TchrArchives"), archives);
    EXPECT_TRUE(Edit("JahrDeutsch"));
    EXPECT_EQ(around_.messages.mid(1), QStringList{around_.texts.GetText(226)});
}

TEST_F(MArchivTest, ColumnsThatAProjectLacksAreNotMissed) {
    // The groups have numbers, but neither parameters nor languages.
    ado::Recordset groups;
    groups.Open("TidxGroups", database_.connection, ado::CommandType::Table);
    ASSERT_FALSE(groups.IsEOF());
    const auto before = database_.Rows("TidxGroups");
    Assign("JahrDeutsch", {{"TextID", groups.Get("ID")}});
    archives_.MoveFirst();
    archives_.Find("Name = 'JahrDeutsch'");
    FArchiv dialog(around_.services, u"Arc");
    const MArchiv::Rows rows{archives_, groups, 1031};
    EXPECT_TRUE(MArchiv::ArchiveToDialog(rows, dialog, around_.texts, nullptr));
    EXPECT_TRUE(MArchiv::DialogToArchive(rows, dialog));
    archives_.CancelUpdate();
    EXPECT_EQ(groups.EditMode(), ado::EditMode::None);

    // A row without any column of an archive offers no display text that would get lost.
    ado::Recordset languages;
    languages.Open("TcfgLanguages", database_.connection, ado::CommandType::Table);
    FArchiv other(around_.services, u"Arc");
    EXPECT_TRUE(MArchiv::ArchiveToDialog({languages, texts_, 1031}, other, around_.texts, nullptr));
    EXPECT_FALSE(other.txtTextID->isEnabled());
}

TEST_F(MArchivTest, FailedLoadShowsNoDialog) {
    EXPECT_FALSE(Edit("gibt es nicht"));
    EXPECT_FALSE(shown_);
    EXPECT_EQ(around_.messages, QStringList(around_.texts.GetText(223) + u"\n\n"_s +
                                            texts::ReasonText({reasons::Cause::RowGone})));
}

TEST_F(MArchivTest, TextsAreNoLongerThanTheirColumns) {
    Edit("JahrDeutsch", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.txtName->maxLength(), 80);
        EXPECT_EQ(dialog.txtComment->maxLength(), 255);
        QTest::keyClick(dialog.txtName, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(dialog.txtName, QString(90, u'n'));
    });
    EXPECT_THAT(around_.messages, IsEmpty());
    EXPECT_EQ(ArchiveRow(std::string(80, 'n')).at("ID"), ado::Value(1));
}

TEST_F(MArchivTest, ParamNamesAreCarriedThrough) {
    Assign("JahrDeutsch", {{"ParamNames", u"a;b"s}});
    texts_.MoveFirst();
    texts_.Set("ParamNames", u"c\td"s);
    texts_.Update();
    Edit("JahrDeutsch", [](FArchiv& dialog) {
        EXPECT_EQ(dialog.ParamNames(), QStringLiteral("a;b"));
        EXPECT_EQ(dialog.IndexTextParamNames(), QStringLiteral("c\td"));
    });
    EXPECT_EQ(ArchiveRow("JahrDeutsch").at("ParamNames"), ado::Value(u"a;b"s));
    EXPECT_EQ(database_.Rows("TidxTexts").front().at("ParamNames"), ado::Value(u"c\td"s));
}

class RoundTrip : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Projects, RoundTrip,
                         testing::Values(KV_TEST_DATA "/Grenzfaelle.kvs",
                                         KV_EXAMPLES "/Brauerei.kvs"));

// Null used to become 0, and the character U+0000.
TEST_P(RoundTrip, OkWithoutAChangeLeavesEveryColumn) {
    const DialogSurroundings around;
    DatabaseCopy database(GetParam());
    ado::Recordset archives;
    ado::Recordset texts;
    archives.Open("TchrArchives", database.connection, ado::CommandType::Table);
    texts.Open("TidxTexts", database.connection, ado::CommandType::Table);
    std::vector<Row> expected = database.Rows("TchrArchives");
    ASSERT_EQ(expected.size(), 14U);
    for (Row& row : expected) {
        ado::Value& event = row["NewFile"];
        if (event == ado::Value(u"$Jahr"s)) event = u"$Year"s;
    }
    const std::vector<Row> expectedTexts = database.Rows("TidxTexts");
    for (int pass = 0; pass < 2; ++pass) {
        for (archives.MoveFirst(); !archives.IsEOF(); archives.MoveNext()) {
            FArchiv dialog(around.services, u"Arc");
            const MArchiv::Rows rows{archives, texts, 1031};
            ASSERT_TRUE(MArchiv::ArchiveToDialog(rows, dialog, around.texts, nullptr));
            ASSERT_TRUE(MArchiv::DialogToArchive(rows, dialog));
            if (texts.EditMode() != ado::EditMode::None) texts.Update();
            archives.Update();
        }
        EXPECT_EQ(database.Rows("TchrArchives"), expected) << "pass " << pass;
        EXPECT_EQ(database.Rows("TidxTexts"), expectedTexts) << "pass " << pass;
    }
}

}  // namespace
