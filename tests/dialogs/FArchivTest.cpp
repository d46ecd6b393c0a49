#include "dialogs/FArchiv.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <QClipboard>
#include <QTabBar>
#include <QTimer>
#include <QtTest>

#include "dialogs/ArchiveSummary.h"
#include "dialogs/DialogTesting.h"
#include "dialogs/FieldMark.h"
#include "dialogs/TextDialog.h"
#include "platform/HelpTopics.h"
#include "texts/MResourceTable.h"

namespace {

class FArchivTest : public testing::TestWithParam<std::uint32_t> {
protected:
    FArchivTest() { dialog_->SetOpenedName({}); }

    /// Shows the dialog with an archive as it would have been loaded; `load` adds to that.
    void Show(const QString& name = QStringLiteral("Arc1"),
              const std::function<void()>& load = {}) {
        dialog_ = std::make_unique<FArchiv>(around_.services, u"Arc");
        dialog_->txtName->setText(name);
        dialog_->txtTextID->setText(name);
        dialog_->cmbType->setCurrentIndex(1);
        dialog_->cboNewFile->setCurrentIndex(5);
        if (load) load();
        dialog_->SetOpenedName(name);
        dialog_->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog_.get()));
    }
    void ShowPage(int page) { dialog_->tabArchive->setCurrentIndex(page); }
    [[nodiscard]] QString Focus() const {
        const QWidget* focus = dialog_->focusWidget();
        return focus == nullptr ? QString() : focus->objectName();
    }
    /// Keys of any keyboard; QTest::keyClicks knows ASCII only.
    static void Keys(QWidget* field, const QString& keys) {
        for (const QChar key : keys) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(key));
            QApplication::sendEvent(field, &press);
        }
    }
    /// Puts `keys` in the place of what stands in the field.
    static void Type(QWidget* field, const QString& keys) {
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_Delete);
        Keys(field, keys);
    }

    DialogSurroundings around_{GetParam()};
    std::unique_ptr<FArchiv> dialog_ = std::make_unique<FArchiv>(around_.services, u"Arc");
};

INSTANTIATE_TEST_SUITE_P(Languages, FArchivTest,
                         testing::Values(MResources::kGerman, MResources::kEnglish));

struct EnablingCase {
    const char* description;
    int type;
    int storage;
    bool redundancy;
    int fileChange;
    const char* usable;  // letters of kRuled
};

// A letter for each control that the settings govern.
struct Ruled {
    char letter;
    const char* name;
};
constexpr Ruled kRuled[] = {
    {'p', "cboFilePath"},      {'P', "cmdChoosePath(0)"}, {'f', "txtFileName"},
    {'F', "cmdEditFileName"},  {'s', "optSaveFast(0)"},   {'S', "optSaveFast(1)"},
    {'c', "txtCacheSize"},     {'r', "chkRedundancy"},    {'d', "cboRedundancyFilePath"},
    {'D', "cmdChoosePath(1)"}, {'e', "cboNewFile"},       {'v', "txtNewFile"},
    {'V', "cmdChoose(1)"},     {'n', "txtMaxSamples"},    {'m', "txtMaxFiles"},
    {'k', "txtMaxSizekB"},
};

TEST_P(FArchivTest, SettingsThatDoNotApplyAreGreyAndUnusable) {
    const EnablingCase cases[] = {
        {"circular buffer on disk", 0, 0, false, 5, "pPfFsScrn"},
        {"circular buffer in memory", 0, 1, true, 1, "n"},
        {"continuation file, trigger", 1, 0, false, 0, "pPfFsScrevVmk"},
        {"continuation file, count", 1, 0, false, 1, "pPfFsScrenmk"},
        {"continuation file, day, redundancy", 1, 0, true, 5, "pPfFsScrdDemk"},
        {"continuation file, never", 1, 0, false, 9, "pPfFsScremk"},
        {"continuation file in memory", 1, 1, true, 0, ""},
        {"a type that the list does not have", -1, 0, false, 1, "pPfFsScr"},
    };
    Show();
    const QPalette palette = dialog_->palette();
    for (const EnablingCase& row : cases) {
        SCOPED_TRACE(row.description);
        dialog_->cmbType->setCurrentIndex(row.type);
        dialog_->optHDRAM.at(static_cast<std::size_t>(row.storage))->setChecked(true);
        dialog_->chkRedundancy->setChecked(row.redundancy);
        dialog_->cboNewFile->setCurrentIndex(row.fileChange);
        QByteArray usable;
        for (const auto& [letter, name] : kRuled) {
            const auto* control = dialog_->findChild<QWidget*>(QString::fromLatin1(name));
            ASSERT_NE(control, nullptr) << name;
            if (control->isEnabledTo(dialog_.get())) usable += letter;
            if (qobject_cast<const QLineEdit*>(control) == nullptr &&
                qobject_cast<const QComboBox*>(control) == nullptr) {
                continue;
            }
            EXPECT_EQ(control->palette().color(QPalette::Base),
                      palette.color(QPalette::Active, control->isEnabledTo(dialog_.get())
                                                          ? QPalette::Base
                                                          : QPalette::Button))
                << name;
        }
        EXPECT_EQ(usable.toStdString(), row.usable);
    }
}

TEST_P(FArchivTest, SampleModeGovernsTriggerAndScanTime) {
    Show();
    const QString cycles = around_.texts.GetText(181);
    const QString milliseconds = around_.texts.GetText(182);
    struct {
        int mode;
        bool timed;
        bool trigger;
        QString unit;
    } const cases[] = {{0, true, false, cycles},        {1, true, false, milliseconds},
                       {2, false, false, milliseconds}, {3, false, true, milliseconds},
                       {4, false, false, milliseconds}, {-1, false, false, milliseconds},
                       {0, true, false, cycles},        {5, false, false, cycles}};
    for (const auto& row : cases) {
        dialog_->cmbSampleMode->setCurrentIndex(row.mode);
        EXPECT_EQ(dialog_->txtScantime->isEnabled(), row.timed) << row.mode;
        EXPECT_EQ(dialog_->lblScanTimeUnit->isEnabled(), row.timed) << row.mode;
        EXPECT_EQ(dialog_->txtTrigger->isEnabled(), row.trigger) << row.mode;
        EXPECT_EQ(dialog_->cmdChoose[0]->isEnabled(), row.trigger) << row.mode;
        EXPECT_EQ(dialog_->lblScanTimeUnit->text(), row.unit) << row.mode;
    }
}

TEST_P(FArchivTest, FileChangeByKeysSetsWhatIsStored) {
    Show();
    dialog_->txtNewFile->setText(QStringLiteral("Sud.Neu"));
    dialog_->txtMaxSamples->setText(QStringLiteral("500"));
    dialog_->cboNewFile->setCurrentIndex(9);
    ShowPage(1);
    dialog_->cboNewFile->setFocus();
    QTest::keyClick(dialog_->cboNewFile, Qt::Key_Home);
    const char* const stored[][2] = {
        {"Sud.Neu", "0"}, {"", "500"},    {"$Year", "0"},   {"$Month", "0"},  {"$Week", "0"},
        {"$Day", "0"},    {"$Hour", "0"}, {"$Minute", "0"}, {"$Second", "0"}, {"", "0"}};
    for (const auto& [newFile, maxSamples] : stored) {
        EXPECT_EQ(dialog_->lblNewFile->text(), QString::fromLatin1(newFile));
        EXPECT_EQ(dialog_->lblMaxSamples->text(), QString::fromLatin1(maxSamples)) << newFile;
        QTest::keyClick(dialog_->cboNewFile, Qt::Key_Down);
    }
    // The fields fill the holders whatever entry is chosen.
    dialog_->txtMaxSamples->setText(QStringLiteral("7"));
    dialog_->txtNewFile->setText(QStringLiteral("X"));
    EXPECT_EQ(dialog_->lblMaxSamples->text(), QStringLiteral("7"));
    EXPECT_EQ(dialog_->lblNewFile->text(), QStringLiteral("X"));
}

// A buffer of 500 records that becomes a file a day must not be stored with 500 records a file.
TEST_P(FArchivTest, SizeOfACircularBufferDoesNotBecomeThatOfAFile) {
    Show();
    dialog_->cmbType->setCurrentIndex(0);
    dialog_->txtMaxSamples->setText(QStringLiteral("500"));
    dialog_->cmbType->setCurrentIndex(1);
    EXPECT_EQ(dialog_->lblMaxSamples->text(), QStringLiteral("0"));
    dialog_->cmbType->setCurrentIndex(0);
    EXPECT_EQ(dialog_->lblMaxSamples->text(), QStringLiteral("500"));
}

TEST_P(FArchivTest, DisplayTextFollowsTheNameUntilItIsEditedItself) {
    Show();
    QTest::keyClick(dialog_->txtName, Qt::Key_End);
    QTest::keyClicks(dialog_->txtName, QStringLiteral("x"));
    EXPECT_EQ(dialog_->txtTextID->text(), QStringLiteral("Arc1x"));
    Type(dialog_->txtName, QStringLiteral("Nord"));  // by way of an empty name
    EXPECT_EQ(dialog_->txtTextID->text(), QStringLiteral("Nord"));
    QTest::keyClicks(dialog_->txtTextID, QStringLiteral(" 2"));
    QTest::keyClicks(dialog_->txtName, QStringLiteral("b"));
    EXPECT_EQ(dialog_->txtTextID->text(), QStringLiteral("Nord 2"));
}

TEST_P(FArchivTest, OkNeedsANameThatIsNotBlankAndNotInUse) {
    Show();
    around_.names.inUse = {QStringLiteral("Arc1"), QStringLiteral("B")};
    for (const auto* blank : {u"", u"   "}) {
        Type(dialog_->txtName, QString::fromUtf16(blank));
        EXPECT_FALSE(dialog_->cmdOk->isEnabled());
        QTest::keyClick(dialog_->txtName, Qt::Key_Return);
        EXPECT_TRUE(dialog_->isVisible());
    }
    Type(dialog_->txtName, QStringLiteral("B"));
    ShowPage(2);
    QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
    EXPECT_EQ(around_.messages, QStringList{around_.texts.GetText(225)});
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_TRUE(dialog_->Cancelled());
    EXPECT_EQ(Focus(), QStringLiteral("txtName"));
    EXPECT_TRUE(dialog_->txtName->isVisible());
    EXPECT_TRUE(around_.names.changed.isEmpty());

    Type(dialog_->txtName, QStringLiteral("C"));
    QTest::keyClick(dialog_->txtName, Qt::Key_Return);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_FALSE(dialog_->Cancelled());
    EXPECT_EQ(around_.names.changed, QStringList{QStringLiteral("Arc Arc1>C")});
}

TEST_P(FArchivTest, TheNameItWasOpenedWithIsNotChecked) {
    Show();
    around_.names.inUse = {QStringLiteral("Arc1")};
    QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
    EXPECT_FALSE(dialog_->Cancelled());
    EXPECT_TRUE(around_.names.asked.isEmpty());
    EXPECT_TRUE(around_.messages.isEmpty());
}

TEST_P(FArchivTest, EveryOtherWayOutCancels) {
    Show();
    QTest::keyClick(dialog_->txtName, Qt::Key_Escape);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_TRUE(dialog_->Cancelled());
    Show();
    QTest::mouseClick(dialog_->cmdCancel, Qt::LeftButton);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_TRUE(dialog_->Cancelled());
    Show();
    dialog_->close();
    EXPECT_TRUE(dialog_->Cancelled());
    EXPECT_TRUE(around_.names.changed.isEmpty());
}

TEST_P(FArchivTest, CtrlTabOpensTheNextPageAndGoesIntoIt) {
    Show();
    dialog_->txtComment->setFocus();
    const std::pair<int, const char*> stops[] = {
        {1, "txtFileName"}, {2, "cmbSampleMode"}, {0, "txtName"}};
    for (const auto& [page, control] : stops) {
        QTest::keyClick(dialog_->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(dialog_->tabArchive->currentIndex(), page);
        EXPECT_EQ(Focus(), QString::fromLatin1(control));
    }
    QTest::keyClick(dialog_->focusWidget(), Qt::Key_Backtab,
                    Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(dialog_->tabArchive->currentIndex(), 2);
    // On the tabs it stays on the tabs; from the buttons it goes into the page.
    dialog_->tabArchive->tabBar()->setFocus();
    QTest::keyClick(dialog_->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(dialog_->tabArchive->currentIndex(), 0);
    EXPECT_TRUE(dialog_->tabArchive->tabBar()->hasFocus());
    dialog_->cmdCancel->setFocus();
    QTest::keyClick(dialog_->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(Focus(), QStringLiteral("txtFileName"));
}

TEST_P(FArchivTest, TabGoesThroughTheFieldsAsTheyAreRead) {
    Show();
    dialog_->cmbSampleMode->setCurrentIndex(1);
    dialog_->chkRedundancy->setChecked(true);
    const char* const pages[] = {
        "txtName txtTextID cmdEditRuntimeName cmbType optHDRAM(0) txtAuthorizationLevel "
        "txtComment cmdOk cmdCancel cmdHelp qt_tabwidget_tabbar",
        "txtFileName cmdEditFileName cboFilePath cmdChoosePath(0) optSaveFast(0) txtCacheSize "
        "cboNewFile txtMaxFiles txtMaxSizekB chkRedundancy cboRedundancyFilePath "
        "cmdChoosePath(1) cmdOk cmdCancel cmdHelp qt_tabwidget_tabbar",
        "cmbSampleMode txtScantime txtXVar cmdChooseXVar txtStartStop cmdChoose(2) txtReset "
        "cmdChoose(3) cmdOk cmdCancel cmdHelp qt_tabwidget_tabbar",
    };
    for (int page = 0; page < 3; ++page) {
        ShowPage(page);
        QStringList order;
        dialog_->tabArchive->tabBar()->setFocus();
        do {
            QTest::keyClick(dialog_->focusWidget(), Qt::Key_Tab);
            order << Focus();
        } while (!dialog_->tabArchive->tabBar()->hasFocus() && order.size() < 40);
        EXPECT_EQ(order.join(u' '), QString::fromLatin1(pages[page]));
    }
}

TEST_P(FArchivTest, HelpKnowsThePage) {
    Show();
    QTest::keyClick(dialog_->txtName, Qt::Key_F1);
    ShowPage(1);
    QTest::keyClick(dialog_->cboFilePath, Qt::Key_F1);
    ShowPage(2);
    QTest::mouseClick(dialog_->cmdHelp, Qt::LeftButton);
    EXPECT_EQ(around_.topics,
              (QList<int>{platform::kHelpArchiveStandard, platform::kHelpArchiveFormat,
                          platform::kHelpArchiveRecording}));
}

TEST_P(FArchivTest, VariablePickersFillTheFieldBesideThem) {
    Show();
    QStringList asked;
    std::optional<QString> answer;
    around_.services.chooseVariable = [&](QWidget*, const QString& current) {
        asked << current;
        return answer;
    };
    dialog_->cboNewFile->setCurrentIndex(0);
    dialog_->cmbSampleMode->setCurrentIndex(3);
    const std::pair<const char*, QLineEdit*> pickers[] = {{"cmdChoose(0)", dialog_->txtTrigger},
                                                          {"cmdChoose(1)", dialog_->txtNewFile},
                                                          {"cmdChoose(2)", dialog_->txtStartStop},
                                                          {"cmdChoose(3)", dialog_->txtReset},
                                                          {"cmdChooseXVar", dialog_->txtXVar}};
    for (const auto& [name, field] : pickers) {
        field->setText(QStringLiteral("Alt"));
        ShowPage(field == dialog_->txtNewFile ? 1 : 2);
        auto* button = dialog_->findChild<QPushButton*>(QString::fromLatin1(name));
        answer.reset();
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(field->text(), QStringLiteral("Alt")) << name;
        answer = QStringLiteral("Sud.Temperatur");
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(field->text(), QStringLiteral("Sud.Temperatur")) << name;
    }
    EXPECT_EQ(dialog_->lblNewFile->text(), QStringLiteral("Sud.Temperatur"));
    EXPECT_EQ(asked.size(), 10);
    EXPECT_EQ(asked.count(QStringLiteral("Alt")), 10);
}

TEST_P(FArchivTest, FolderInsideTheProjectIsOfferedRelativeToIt) {
    Show();
    ShowPage(1);
    const QString project = around_.folder.path();
    ASSERT_TRUE(QDir(project).mkpath(QStringLiteral("Archive/Alt")));
    QString start;
    QString chosen;
    around_.services.chooseFolder = [&](QWidget*, const QString&, const QString& from) {
        start = from;
        return chosen.isEmpty() ? std::nullopt : std::optional(chosen);
    };
    const struct {
        const char* before;
        QString startsAt;
        QString chosen;
        QString after;
    } cases[] = {
        {"", project, project, QStringLiteral("<ProjectDir>")},
        {"<ProjectDir>", project, project + QStringLiteral("/Archive/Alt"),
         QStringLiteral("<ProjectDir>\\Archive\\Alt")},
        {"<ProjectDir>\\Archive", project + QStringLiteral("/Archive"), QStringLiteral("/tmp"),
         QStringLiteral("\\tmp")},
        {"Q:\\gibt es nicht", project, {}, QStringLiteral("Q:\\gibt es nicht")},
        // Its name begins like the project's, but it lies beside it.
        {"<ProjectDir>", project, project + QStringLiteral("2"),
         around_.services.projectFolder + QStringLiteral("2")},
    };
    for (const auto& row : cases) {
        dialog_->cboFilePath->setEditText(QString::fromLatin1(row.before));
        chosen = row.chosen;
        QTest::mouseClick(dialog_->cmdChoosePath[0], Qt::LeftButton);
        EXPECT_EQ(start, row.startsAt) << row.before;
        EXPECT_EQ(dialog_->cboFilePath->currentText(), row.after) << row.before;
    }
}

TEST_P(FArchivTest, TextEditorChangesTheFieldOnOkOnly) {
    Show();
    const auto edit = [&](const QString& keys, const char* button) {
        QTimer::singleShot(0, dialog_.get(), [&, keys, button] {
            auto* editor = qobject_cast<TextDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(editor, nullptr);
            auto* text = editor->findChild<QLineEdit*>(QStringLiteral("txtText"));
            Keys(text, keys);
            QTest::mouseClick(editor->findChild<QPushButton*>(QString::fromLatin1(button)),
                              Qt::LeftButton);
        });
    };
    edit(QStringLiteral(" Süd"), "cmdCancel");
    QTest::mouseClick(dialog_->cmdEditRuntimeName, Qt::LeftButton);
    EXPECT_EQ(dialog_->txtTextID->text(), QStringLiteral("Arc1"));
    edit(QStringLiteral(" Süd #1"), "cmdOk");
    QTest::mouseClick(dialog_->cmdEditRuntimeName, Qt::LeftButton);
    EXPECT_EQ(dialog_->txtTextID->text(), QStringLiteral("Arc1 Süd #1"));
    ShowPage(1);
    edit(QStringLiteral("a/b c"), "cmdOk");
    QTest::mouseClick(dialog_->cmdEditFileName, Qt::LeftButton);
    EXPECT_EQ(dialog_->txtFileName->text(), QStringLiteral("a/b c"));
}

// "C:\Program Files\Daten" used to become "C:\ProgramFiles\Daten".
TEST_P(FArchivTest, WhatIsTypedAndPastedComesInAsItIs) {
    Show();
    dialog_->cmbType->setCurrentIndex(0);
    dialog_->cmbSampleMode->setCurrentIndex(3);
    const struct {
        QLineEdit* field;
        int page;
        const char16_t* text;
    } cases[] = {
        {dialog_->cboFilePath->lineEdit(), 1, u"C:\\Program Files\\Daten"},
        {dialog_->cboFilePath->lineEdit(), 1, u"<ProjectDir>\\sub dir"},
        {dialog_->txtFileName, 1, u"sud haus 1"},
        {dialog_->txtTrigger, 2, u"Sud .\"Takt[1]#"},
        {dialog_->txtName, 0, u"Süd (1) #"},
        {dialog_->txtTextID, 0, u"Süd \"1\" #"},
    };
    for (const auto& row : cases) {
        ShowPage(row.page);
        const QString text = QString::fromUtf16(row.text);
        Type(row.field, text);
        EXPECT_EQ(row.field->text(), text);
        row.field->clear();
        QApplication::clipboard()->setText(text);
        QTest::keyClick(row.field, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(row.field->text(), text);
    }
    dialog_->txtName->setMaxLength(5);
    dialog_->txtName->clear();
    QApplication::clipboard()->setText(QStringLiteral("123456"));
    QTest::keyClick(dialog_->txtName, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(dialog_->txtName->text(), QString()) << "half a name is another name";
}

TEST_P(FArchivTest, ANumberThatIsNotQuiteOneShowsWhatWouldBeStored) {
    const struct {
        const char16_t* typed;
        const char16_t* mark;
        bool stores;
    } cases[] = {{u"12", u"", true},
                 {u"12 Stück", u"\u2192 12", true},
                 {u"abc", u"\u2192 0", true},
                 {u"", u"\u2192 0", true},
                 {u"1,5", u"\u2192 1", true},
                 {u"2.5", u"\u2192 2", true},
                 {u"2147483647", u"", true},
                 {u"99999999999", nullptr, false},
                 {u"-99999999999", nullptr, false}};
    for (const auto& row : cases) {
        Show(QStringLiteral("Arc1"), [this] {
            dialog_->txtMaxFiles->setText(QStringLiteral("31"));
            dialog_->ExpectNumber(*dialog_->txtMaxFiles, *project::RangeOf(ado::DataType::Integer));
        });
        ShowPage(1);
        around_.messages.clear();
        Type(dialog_->txtMaxFiles, QString::fromUtf16(row.typed));
        const auto* mark = dialog_->txtMaxFiles->findChild<FieldMark*>();
        const QString shown = mark != nullptr && mark->isVisible() ? mark->text() : QString();
        EXPECT_EQ(shown, row.mark != nullptr
                             ? QString::fromUtf16(row.mark)
                             : around_.texts.GetText(MResourceTable::kTextTooLarge));
        ShowPage(0);
        QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
        EXPECT_EQ(dialog_->Cancelled(), !row.stores);
        EXPECT_EQ(around_.messages.size(), row.stores ? 0 : 1);
        if (row.stores) continue;
        EXPECT_TRUE(dialog_->isVisible());
        EXPECT_EQ(Focus(), QStringLiteral("txtMaxFiles"));
        EXPECT_TRUE(dialog_->txtMaxFiles->isVisible()) << "on its page";
        Type(dialog_->txtMaxFiles, QStringLiteral("31"));
        EXPECT_FALSE(mark->isVisible());
    }
}

// Both used to be stored as "never".
TEST_P(FArchivTest, AFileChangeNeedsWhatItHappensOn) {
    for (const int entry : {FileChange::kTrigger, FileChange::kCount}) {
        Show(QStringLiteral("Arc1"),
             [this] { dialog_->cboNewFile->setCurrentIndex(FileChange::kNever); });
        around_.messages.clear();
        dialog_->cboNewFile->setCurrentIndex(entry);
        QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
        EXPECT_TRUE(dialog_->Cancelled());
        const bool trigger = entry == FileChange::kTrigger;
        EXPECT_EQ(around_.messages,
                  QStringList(around_.texts.GetText(trigger ? MResourceTable::kTextTriggerMissing
                                                            : MResourceTable::kTextCountMissing)));
        EXPECT_EQ(Focus(),
                  trigger ? QStringLiteral("txtNewFile") : QStringLiteral("txtMaxSamples"));
        Type(trigger ? dialog_->txtNewFile : dialog_->txtMaxSamples, QStringLiteral("5"));
        QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
        EXPECT_FALSE(dialog_->Cancelled());
    }
}

TEST_P(FArchivTest, TheOwnNameMayBeWrittenInAnotherWay) {
    Show();
    around_.names.inUse = {QStringLiteral("Arc1"), QStringLiteral("ARC1")};
    Type(dialog_->txtName, QStringLiteral("ARC1"));
    QTest::mouseClick(dialog_->cmdOk, Qt::LeftButton);
    EXPECT_FALSE(dialog_->Cancelled());
    EXPECT_EQ(around_.names.changed, QStringList{QStringLiteral("Arc Arc1>ARC1")});
}

TEST_P(FArchivTest, SummaryFollowsTheFields) {
    Show();
    dialog_->cmbType->setCurrentIndex(0);
    dialog_->cmbSampleMode->setCurrentIndex(1);
    dialog_->txtMaxSamples->setText(QStringLiteral("36000"));
    const QString before = dialog_->lblSummary->text();
    ShowPage(2);
    Type(dialog_->txtScantime, QStringLiteral("100"));
    EXPECT_NE(dialog_->lblSummary->text(), before);
    EXPECT_TRUE(dialog_->lblSummary->isVisible());
}

}  // namespace
