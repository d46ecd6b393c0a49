#include "dialogs/FConfigEditor.h"

#include <gtest/gtest.h>

#include <QFontDialog>
#include <QScrollBar>
#include <QStatusBar>
#include <QtTest>
#include <stdexcept>

#include "controls/FakeSource.h"
#include "controls/FontProperties.h"
#include "controls/TDBGrid.h"
#include "dialogs/DialogTesting.h"
#include "dialogs/MConfigeditor.h"
#include "settings/CInit.h"
#include "texts/MResourceTable.h"
#include "texts/ReasonText.h"

// The options over a grid and settings as the editor window has them. With KV_SCREENSHOTS set to a
// folder the pictures of both pages are kept there.
namespace {

using namespace Qt::Literals::StringLiterals;

QStringList Words(const char* words) {
    return QString::fromLatin1(words).split(u' ');
}

/// The trends' columns in the source's order; the numbers of their captions follow each other,
/// from Name on. Name, Factor and Unit are shown, but not for the user to choose.
const QStringList kColumns = Words(
    "ID Name TrendVar Maximum Minimum SurrogateMax SurrogateMin ErrorValue Hysteresis "
    "HysteresisMode Factor Offset Filter FilterDepth Unit VMax VMin VUpper VLower VLineColor "
    "VLineWidth VLineStyle VUpperColor VLowerColor VConfig VDrawMode VMaxSamples VUnitID "
    "Comment");
/// Neither shown nor for the user to choose.
const QStringList kUnseen = Words("ID Offset VLineStyle");
/// Those that the built-in settings hide, in the same order.
const QStringList kHidden = Words(
    "Maximum Minimum SurrogateMax SurrogateMin ErrorValue Hysteresis HysteresisMode Filter "
    "FilterDepth VMax VMin VUpper VLower VLineColor VLineWidth VUpperColor VLowerColor "
    "VConfig VDrawMode VMaxSamples VUnitID");

std::vector<FakeSource::Field> Fields() {
    std::vector<FakeSource::Field> fields;
    for (const QString& name : kColumns) fields.push_back({name});
    return fields;
}

QPalette DarkPalette() {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        dark.setColor(role, Qt::white);
        dark.setColor(QPalette::Disabled, role, QColor(140, 140, 140));
    }
    return dark;
}

class FConfigEditorTest : public testing::TestWithParam<std::uint32_t> {
protected:
    FConfigEditorTest() {
        window_.setObjectName(u"frmtabGrid"_s);
        grid_.setObjectName(u"tdbA"_s);
        statusBar_.setObjectName(u"sb"_s);
        grid_.SplitAt(0).SetCaption(u"Archives"_s);
        trends_.SetCaption(u"Trends"_s);
        source_.Load({}, 1);
        trends_.SetSource(&source_);
        grid_.SplitAt(0).SetSource(&archives_);
        for (const QString& field : kUnseen) trends_.Column(field)->SetVisible(false);
        // Captions that differ from the fields' names, as in the window.
        for (int i = 0; i < trends_.ColumnCount(); ++i) {
            trends_.ColumnAt(i)->SetCaption(kColumns[i].toUpper());
        }
        settings_.LoadDefaultInit(u"FKVARCHIVDBSERVER"_s);
        settings_.SetMotherobject(&window_);
        settings_.SetInitToMotherObject();
        Place({u"Name"_s});
        window_.show();
    }

    /// Runs the dialog, lets `user` work with it and gives it up if it is still open then.
    bool Edit(const std::function<void(FConfigEditor&)>& user) {
        opened_ = false;
        QTimer start;
        start.setSingleShot(true);
        QObject::connect(&start, &QTimer::timeout, &window_, [&] {
            auto* dialog = window_.findChild<FConfigEditor*>();
            if (dialog == nullptr) return;
            opened_ = true;
            EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
            user(*dialog);
            if (dialog->isVisible()) dialog->reject();
        });
        start.start(0);
        return MConfigeditor::EditOptions(session_, &window_);
    }
    /// Brings columns of the grid to the front.
    void Place(const QStringList& fields) {
        QList<int> order;
        for (const QString& field : fields) order << trends_.ColumnIndex(field);
        trends_.SetColumnOrders(order);
    }
    [[nodiscard]] QStringList Shown() const {
        QStringList fields;
        for (const int column : trends_.ColumnOrders()) {
            const GridColumn& shown = *trends_.ColumnAt(column);
            if (shown.Visible()) fields << shown.DataField();
        }
        return fields;
    }
    /// All that the dialog could change.
    [[nodiscard]] QStringList State() {
        const QString file = around_.folder.filePath(u"state.ini"_s);
        settings_.SaveInits(file);
        QFile saved(file);
        EXPECT_TRUE(saved.open(QIODevice::ReadOnly));
        return Shown() << QString::fromUtf8(saved.readAll()) << Font().toString()
                       << QString::number(statusBar_.isHidden())
                       << QVariant::fromValue(trends_.ColumnOrders()).toStringList();
    }
    [[nodiscard]] const QFont& Font() const {
        return qobject_cast<FontProperties*>(grid_.Font())->Font();
    }
    [[nodiscard]] bool Setting(const QString& key) const {
        EXPECT_TRUE(settings_.ParamExist(key)) << key.toStdString();
        return settings_.ReadAValueFromCInits(key).AsBoolean();
    }
    [[nodiscard]] bool ColumnSetting(const char* column, const char* property) const {
        return Setting(u"tdbA.Splits(1).Columns(\"%1\").%2"_s.arg(QLatin1String(column),
                                                                  QLatin1String(property)));
    }
    static QStringList Entries(const QListWidget& list) {
        QStringList fields;
        for (int row = 0; row < list.count(); ++row) {
            const QString caption = list.item(row)->text();
            for (const QString& field : kColumns) {
                if (field.toUpper() == caption) fields << field;
            }
        }
        return fields;
    }
    static void Select(QListWidget* list, const char* field) {
        const auto found = list->findItems(QString::fromLatin1(field).toUpper(), Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << field;
        list->scrollToItem(found.first());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(found.first()).center());
        ASSERT_EQ(list->currentItem(), found.first());
    }
    static QString Selected(const QListWidget& list) {
        return list.selectedItems().isEmpty() ? QString() : list.selectedItems().first()->text();
    }
    static void DoubleClickFirst(QListWidget* list) {
        const QPoint at = list->visualItemRect(list->item(0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    }
    static void Click(FConfigEditor& dialog, QAction* button) {
        QTest::mouseClick(dialog.tbrTrendCol->widgetForAction(button), Qt::LeftButton);
    }
    static QString Enabled(const FConfigEditor& dialog) {
        QString letters;
        for (const QAction* button : dialog.tbrTrendCol->actions()) {
            if (!button->isSeparator()) letters += button->isEnabled() ? u'1' : u'0';
        }
        return letters;
    }

    DialogSurroundings around_{GetParam()};
    FakeSource archives_{{{u"Name"_s}}};
    FakeSource source_{Fields()};
    QWidget window_;
    TDBGrid grid_{&window_};
    QStatusBar statusBar_{&window_};
    GridSplit& trends_ = grid_.SplitAt(1);
    CInit settings_;
    MConfigeditor::Session session_{
        settings_, grid_, statusBar_, around_.texts, around_.services.showHelp, [this] {
            settings_.WriteAValueToCInits(u"TDBAColOrders"_s, u",stored"_s);
        }};
    bool opened_ = false;
};

INSTANTIATE_TEST_SUITE_P(Languages, FConfigEditorTest,
                         testing::Values(MResources::kGerman, MResources::kEnglish),
                         [](const auto& language) {
                             return std::string(language.param == MResources::kGerman ? "de"
                                                                                      : "en");
                         });

TEST_P(FConfigEditorTest, ShowsWhatIsInForce) {
    settings_.WriteAValueToCInits(u"SaveOnExit"_s, false);
    statusBar_.hide();
    Place(Words("Comment Name TrendVar"));
    Edit([&](FConfigEditor& dialog) {
        EXPECT_EQ(Entries(*dialog.lstTrendColExist), kHidden);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed), Words("Comment TrendVar"));
        EXPECT_EQ(dialog.lstTrendColChoosed->item(1)->data(Qt::UserRole), 2);
        EXPECT_FALSE(dialog.chkSaveOnExit->isChecked());
        EXPECT_TRUE(dialog.chkDelQuestion->isChecked());
        EXPECT_FALSE(dialog.chkShowStatusBar->isChecked());
        EXPECT_EQ(dialog.EditorFont(), Font());
        EXPECT_TRUE(dialog.txtEditorFont->text().startsWith(u"Arial, 8"));
        EXPECT_EQ(dialog.txtEditorFont->font().family(), u"Arial");
        EXPECT_EQ(dialog.windowTitle(), around_.texts.GetText(301));
    });
}

TEST_P(FConfigEditorTest, OkTakesOver) {
    const bool taken = Edit([&](FConfigEditor& dialog) {
        for (QCheckBox* box :
             {dialog.chkDelQuestion, dialog.chkShowStatusBar, dialog.chkSaveOnExit}) {
            QTest::mouseClick(box, Qt::LeftButton, {}, {30, box->height() / 2});
        }
        dialog.tabConfig->setCurrentIndex(1);
        Select(dialog.lstTrendColExist, "VMax");
        Click(dialog, dialog.btnAdd);
        Click(dialog, dialog.btnUp);
        Select(dialog.lstTrendColExist, "Minimum");
        Click(dialog, dialog.btnAdd);
        Select(dialog.lstTrendColChoosed, "TrendVar");
        Click(dialog, dialog.btnDel);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed), Words("VMax Comment Minimum"));
        EXPECT_EQ(Shown(), Words("Name TrendVar Factor Unit Comment")) << "nothing before OK";
        QTest::mouseClick(dialog.cmdOk, Qt::LeftButton);
    });
    EXPECT_TRUE(taken);
    EXPECT_EQ(Shown(), Words("Name VMax Factor Unit Comment Minimum"));
    EXPECT_TRUE(statusBar_.isHidden());
    for (const auto& key : {u"RequestOnDelete"_s, u"SaveOnExit"_s, u"sb.Visible"_s}) {
        EXPECT_FALSE(Setting(key)) << key.toStdString();
    }
    for (const char* property : {"Visible", "AllowSizing"}) {
        EXPECT_TRUE(ColumnSetting("VMax", property));
        EXPECT_TRUE(ColumnSetting("Comment", property));
        EXPECT_FALSE(ColumnSetting("TrendVar", property));
        EXPECT_FALSE(ColumnSetting("VMin", property));
    }
    EXPECT_EQ(settings_.ReadAValueFromCInits(u"TDBAColOrders").AsText(), u",stored");
    EXPECT_TRUE(around_.messages.isEmpty());
}

TEST_P(FConfigEditorTest, ColumnsThatCannotBeChosenKeepTheirPlaces) {
    const struct {
        const char* before;
        std::function<void(FConfigEditor&)> user;
        const char* after;
    } cases[] = {
        {"TrendVar Maximum Name Factor Comment Unit", [](FConfigEditor&) {},
         "TrendVar Name Factor Comment Unit"},
        {"TrendVar Maximum Name Factor Comment Unit",
         [](FConfigEditor& dialog) {
             Select(dialog.lstTrendColChoosed, "TrendVar");
             Click(dialog, dialog.btnDn);
         },
         "Comment Name Factor TrendVar Unit"},
        {"TrendVar Name Comment Unit Factor",
         [](FConfigEditor& dialog) {
             for (const char* column : {"VMax", "VMin"}) {
                 Select(dialog.lstTrendColExist, column);
                 Click(dialog, dialog.btnAdd);
             }
         },
         "TrendVar Name Comment VMax VMin Unit Factor"},
        {"TrendVar Comment VMax Name Factor Unit VMin",
         [](FConfigEditor& dialog) {
             Select(dialog.lstTrendColChoosed, "VMax");
             Click(dialog, dialog.btnDel);
         },
         "TrendVar Comment Name Factor Unit VMin"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.before);
        Place(Words(each.before));
        const QList<int> orders = trends_.ColumnOrders();
        EXPECT_TRUE(Edit([&](FConfigEditor& dialog) {
            dialog.tabConfig->setCurrentIndex(1);
            each.user(dialog);
            dialog.cmdOk->click();
        }));
        EXPECT_EQ(Shown(), Words(each.after));
        if (&each == &cases[0]) {
            EXPECT_EQ(trends_.ColumnOrders(), orders) << "hidden ones too: nothing was changed";
        }
    }
}

TEST_P(FConfigEditorTest, AllColumnsCanBeHidden) {
    EXPECT_TRUE(Edit([&](FConfigEditor& dialog) {
        dialog.tabConfig->setCurrentIndex(1);
        DoubleClickFirst(dialog.lstTrendColExist);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed), Words("TrendVar Comment Maximum"));
        while (dialog.lstTrendColChoosed->count() > 0) DoubleClickFirst(dialog.lstTrendColChoosed);
        EXPECT_EQ(Enabled(dialog), u"1000");
        EXPECT_EQ(Entries(*dialog.lstTrendColExist),
                  kHidden.mid(1) + Words("TrendVar Comment Maximum"));
        dialog.cmdOk->click();
    }));
    EXPECT_EQ(Shown(), Words("Name Factor Unit"));
    EXPECT_FALSE(ColumnSetting("Comment", "Visible"));
}

TEST_P(FConfigEditorTest, CancelChangesNothing) {
    const QStringList before = State();
    for (const bool escape : {false, true}) {
        EXPECT_FALSE(Edit([&](FConfigEditor& dialog) {
            dialog.chkShowStatusBar->click();
            dialog.chkSaveOnExit->click();
            QFont font = Font();
            font.setPointSize(30);
            dialog.SetEditorFont(font);
            dialog.tabConfig->setCurrentIndex(1);
            DoubleClickFirst(dialog.lstTrendColExist);
            DoubleClickFirst(dialog.lstTrendColChoosed);
            if (escape) {
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Escape);
            } else {
                QTest::mouseClick(dialog.cmdCancel, Qt::LeftButton);
            }
            EXPECT_FALSE(dialog.isVisible());
        }));
        EXPECT_TRUE(opened_);
        EXPECT_EQ(State(), before);
    }
}

TEST_P(FConfigEditorTest, ButtonsAreUsableWhereTheyApply) {
    Place(Words("Name TrendVar Comment"));
    Edit([&](FConfigEditor& dialog) {
        dialog.tabConfig->setCurrentIndex(1);
        QListWidget* chosen = dialog.lstTrendColChoosed;
        EXPECT_EQ(Enabled(dialog), u"1101") << "the first entries are selected";
        Select(dialog.lstTrendColExist, "VUnitID");
        Click(dialog, dialog.btnAdd);
        EXPECT_EQ(Selected(*dialog.lstTrendColExist), u"VMAXSAMPLES") << "the last one went";
        EXPECT_EQ(Selected(*chosen), u"VUNITID");
        EXPECT_EQ(Enabled(dialog), u"1110");
        Select(dialog.lstTrendColExist, "Minimum");
        Click(dialog, dialog.btnAdd);
        EXPECT_EQ(Selected(*dialog.lstTrendColExist), u"SURROGATEMAX");
        Select(chosen, "Comment");
        EXPECT_EQ(Enabled(dialog), u"1111");
        const QStringList entries = Entries(*chosen);
        // Neither a button that cannot be pressed nor its key does anything.
        for (const auto& [field, button, key] :
             {std::tuple{"TrendVar", dialog.btnUp, Qt::Key_Up},
              std::tuple{"Minimum", dialog.btnDn, Qt::Key_Down}}) {
            Select(chosen, field);
            EXPECT_FALSE(button->isEnabled());
            Click(dialog, button);
            QTest::keyClick(chosen, key, Qt::ControlModifier);
            QMetaObject::invokeMethod(&dialog,
                                      (button->objectName() + u"_Click"_s).toLatin1().constData());
            EXPECT_EQ(Entries(*chosen), entries);
            EXPECT_EQ(Selected(*chosen), QString::fromLatin1(field).toUpper());
        }
        chosen->setCurrentRow(-1);
        dialog.lstTrendColExist->clearSelection();
        EXPECT_EQ(Enabled(dialog), u"0000");
        for (const char* slot : {"btnAdd_Click", "btnDel_Click", "btnUp_Click", "btnDn_Click"}) {
            EXPECT_TRUE(QMetaObject::invokeMethod(&dialog, slot));
        }
        EXPECT_EQ(Entries(*chosen), entries);
    });
    EXPECT_TRUE(opened_);
}

TEST_P(FConfigEditorTest, KeysDoAllThatTheButtonsDo) {
    EXPECT_TRUE(Edit([&](FConfigEditor& dialog) {
        const auto press = [&](Qt::Key key, Qt::KeyboardModifiers held = {}) {
            QTest::keyClick(dialog.focusWidget(), key, held);
        };
        press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(dialog.focusWidget(), dialog.lstTrendColExist);
        press(Qt::Key_Down);
        press(Qt::Key_Return);                     // Minimum
        press(Qt::Key_Enter, Qt::KeypadModifier);  // SurrogateMax
        press(Qt::Key_Delete);                     // of no use here
        EXPECT_TRUE(dialog.isVisible()) << "Enter is not OK while a list has the keyboard";
        press(Qt::Key_Tab);
        EXPECT_EQ(dialog.focusWidget(), dialog.lstTrendColChoosed);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed),
                  Words("TrendVar Comment Minimum SurrogateMax"));
        press(Qt::Key_Up, Qt::ControlModifier);
        press(Qt::Key_Up, Qt::ControlModifier);
        press(Qt::Key_Down, Qt::ControlModifier);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed),
                  Words("TrendVar Comment SurrogateMax Minimum"));
        press(Qt::Key_Home);
        press(Qt::Key_Delete);
        press(Qt::Key_Return);
        EXPECT_EQ(Entries(*dialog.lstTrendColChoosed), Words("SurrogateMax Minimum"));
        EXPECT_EQ(Selected(*dialog.lstTrendColChoosed), u"SURROGATEMAX");
        for (int i = 0; i < 3; ++i) press(Qt::Key_Delete);
        EXPECT_EQ(dialog.lstTrendColChoosed->count(), 0);
        press(Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        press(Qt::Key_Tab);
        EXPECT_EQ(dialog.focusWidget(), dialog.cmdOk);
        press(Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    }));
}

TEST_P(FConfigEditorTest, KeysLeadThroughThePages) {
    Edit([&](FConfigEditor& dialog) {
        const auto press = [&](Qt::Key key, Qt::KeyboardModifiers held = {}) {
            QTest::keyClick(dialog.focusWidget(), key, held);
        };
        EXPECT_EQ(dialog.focusWidget(), dialog.chkDelQuestion) << "Enter is OK there";
        press(Qt::Key_F1);
        press(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(dialog.tabConfig->currentIndex(), 1);
        press(Qt::Key_F1);
        QTest::mouseClick(dialog.cmdHelp, Qt::LeftButton);
        press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(dialog.tabConfig->currentIndex(), 0);
        for (const char* name : {"chkDelQuestion", "chkShowStatusBar", "chkSaveOnExit", "cmdOk",
                                 "cmdCancel", "cmdHelp"}) {
            EXPECT_EQ(dialog.focusWidget()->objectName(), QLatin1String(name));
            press(Qt::Key_Tab);
        }
        QSet<QString> keys;
        for (QCheckBox* box : dialog.pageCommon->findChildren<QCheckBox*>()) {
            const bool before = box->isChecked();
            const QKeySequence key = QKeySequence::mnemonic(box->text());
            QTest::keySequence(&dialog, key);
            // The box is pressed for a moment, to be seen.
            EXPECT_TRUE(QTest::qWaitFor([&] { return box->isChecked() != before; }))
                << box->text().toStdString();
            keys << key.toString();
        }
        EXPECT_EQ(keys.size(), 3);
        QTest::keySequence(&dialog, QKeySequence::mnemonic(dialog.tabConfig->tabText(1)));
        EXPECT_EQ(dialog.tabConfig->currentIndex(), 1);
        QTest::keySequence(&dialog, QKeySequence::mnemonic(dialog.lblTrendColChoosed->text()));
        EXPECT_EQ(dialog.focusWidget(), dialog.lstTrendColChoosed);
    });
    EXPECT_EQ(around_.topics, QList<int>({30010, 30011, 30011}));
}

TEST_P(FConfigEditorTest, ChosenColumnsCanBeDragged) {
    EXPECT_TRUE(Edit([&](FConfigEditor& dialog) {
        dialog.tabConfig->setCurrentIndex(1);
        for (int i = 0; i < 2; ++i) DoubleClickFirst(dialog.lstTrendColExist);
        QListWidget* list = dialog.lstTrendColChoosed;
        list->setCurrentRow(0);
        if (QGuiApplication::platformName() == u"offscreen") {
            // Nothing can be dragged there: what a drop comes to.
            list->model()->moveRow({}, 0, {}, 3);
        } else {
            const auto lowerHalf = [&](int row) {
                const QRect entry = list->visualItemRect(list->item(row));
                return list->viewport()->mapTo(&dialog, entry.bottomLeft() + QPoint(30, -1));
            };
            QWindow* screen = dialog.windowHandle();
            // The drag has an event loop of its own.
            QTimer::singleShot(100, screen, [&] { QTest::mouseMove(screen, lowerHalf(2)); });
            QTimer::singleShot(200, screen, [&] {
                QTest::mouseRelease(screen, Qt::LeftButton, {}, lowerHalf(2));
            });
            QTest::mousePress(screen, Qt::LeftButton, {}, lowerHalf(0));
            QTest::mouseMove(screen, lowerHalf(1));
            QTest::mouseMove(screen, lowerHalf(1) + QPoint(5, 0));
        }
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return Entries(*list) == Words("Comment Maximum TrendVar Minimum");
        })) << Entries(*list).join(u' ').toStdString();
        EXPECT_EQ(Selected(*list), u"TRENDVAR");
        EXPECT_EQ(Enabled(dialog), u"1111");
        for (int row = 0; row < list->count(); ++row) {
            EXPECT_FALSE(list->item(row)->flags() & Qt::ItemIsDropEnabled) << "would be replaced";
        }
        dialog.cmdOk->click();
    }));
    EXPECT_EQ(Shown(), Words("Name Comment Maximum Factor Unit TrendVar Minimum"));
}

TEST_P(FConfigEditorTest, FontIsChosenAndStored) {
    const QString family = QFontInfo(QApplication::font()).family();
    // Opens the chooser, where a family and bold are picked, and closes it.
    const auto choose = [&](FConfigEditor& dialog, const QString& pick, bool accept) {
        QTimer::singleShot(0, &dialog, [&dialog, pick, accept] {
            auto* chooser = dialog.findChild<QFontDialog*>();
            ASSERT_NE(chooser, nullptr);
            QFont font = chooser->currentFont();
            if (!pick.isEmpty()) font.setFamily(pick);
            font.setStyleName({});
            font.setPointSize(14);
            font.setBold(true);
            font.setUnderline(true);
            font.setStrikeOut(true);
            chooser->setCurrentFont(font);
            accept ? chooser->accept() : chooser->reject();
        });
        QTest::mouseClick(dialog.cmdEditorFont, Qt::LeftButton);
    };
    const QFont before = Font();
    EXPECT_TRUE(Edit([&](FConfigEditor& dialog) {
        choose(dialog, family, false);
        EXPECT_EQ(dialog.EditorFont(), before);
        choose(dialog, {}, true);
        EXPECT_EQ(dialog.EditorFont().family(), u"Arial") << "also on a station without it";
        EXPECT_EQ(dialog.txtEditorFont->text(), u"Arial, 14");
        choose(dialog, family, true);
        EXPECT_TRUE(dialog.txtEditorFont->font().bold());
        EXPECT_EQ(Font(), before) << "not before OK";
        dialog.cmdOk->click();
    }));
    EXPECT_EQ(Font().family(), family);
    EXPECT_TRUE(Font().styleName().isEmpty());
    EXPECT_TRUE(Font().bold() && Font().underline() && Font().strikeOut());
    const auto stored = [&](const QString& property) {
        return settings_.ReadAValueFromCInits(u"tdbA.Font."_s + property);
    };
    EXPECT_EQ(stored(u"Name"_s).AsText(), family);
    EXPECT_EQ(stored(u"Size"_s).AsNumber(), 14);
    EXPECT_EQ(stored(u"Weight"_s).AsNumber(), 700);
    EXPECT_TRUE(stored(u"Underline"_s).AsBoolean());
    EXPECT_FALSE(stored(u"Italic"_s).AsBoolean());
}

TEST_P(FConfigEditorTest, FailuresAreTold) {
    session_.takeColumnOrders = [] { throw std::runtime_error("no memory"); };
    EXPECT_FALSE(Edit([&](FConfigEditor& dialog) {
        dialog.chkDelQuestion->click();
        DoubleClickFirst(dialog.lstTrendColChoosed);
        dialog.cmdOk->click();
    }));
    EXPECT_FALSE(Setting(u"RequestOnDelete"_s)) << "what was taken over stays";

    trends_.SetSource(nullptr);
    EXPECT_FALSE(Edit([](FConfigEditor&) {}));
    EXPECT_FALSE(opened_);
    const bool german = GetParam() == MResources::kGerman;
    EXPECT_EQ(around_.messages,
              QStringList({(german ? u"Zurückschreiben von Konfigurationsdialog fehlgegangen"_s
                                   : u"Error: Write Back Configuration Dialog"_s) +
                               u"\n\n"_s + texts::ReasonText({}),
                           (german ? u"Initialisierung Konfigurationsdialog fehlgegangen"_s
                                   : u"Error: Initializing Configuration Dialog"_s) +
                               u"\n\n"_s + texts::ReasonText({})}));
}

void Keep(FConfigEditor& dialog, const QString& page) {
    const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
    if (folder.isEmpty()) return;
    const QString name = u"%1/options-%2-%3%4.png"_s.arg(
        folder, page, dialog.windowTitle() == u"Options" ? u"en"_s : u"de"_s);
    EXPECT_TRUE(dialog.grab().save(name.arg(QString())));
    const QPalette light = QApplication::palette();
    QApplication::setPalette(DarkPalette());
    QApplication::processEvents();
    EXPECT_TRUE(dialog.grab().save(name.arg(u"-dark"_s)));
    QApplication::setPalette(light);
    QApplication::processEvents();
}

TEST_P(FConfigEditorTest, NoTextIsCutOff) {
    for (int i = 1; i < trends_.ColumnCount(); ++i) {
        trends_.ColumnAt(i)->SetCaption(around_.texts.GetText(100 + i));
    }
    Edit([&](FConfigEditor& dialog) {
        for (int page = 0; page < 2; ++page) {
            dialog.tabConfig->setCurrentIndex(page);
            for (const QWidget* control : dialog.findChildren<QWidget*>()) {
                const bool isText = qobject_cast<const QLabel*>(control) != nullptr ||
                                    qobject_cast<const QAbstractButton*>(control) != nullptr;
                if (!isText || !control->isVisible()) continue;
                if (qobject_cast<QTabBar*>(control->parentWidget()) != nullptr) continue;
                if (control->maximumWidth() < control->sizeHint().width()) continue;
                EXPECT_GE(control->width(), control->sizeHint().width())
                    << control->objectName().toStdString();
            }
            for (const QListWidget* list : {dialog.lstTrendColExist, dialog.lstTrendColChoosed}) {
                EXPECT_FALSE(list->isVisible() && list->horizontalScrollBar()->isVisible());
            }
            Keep(dialog, page == 0 ? u"common"_s : u"columns"_s);
        }
        EXPECT_LT(dialog.height(), 600) << "of the smallest screens that are still in use";
        for (const QAction* button : dialog.tbrTrendCol->actions()) {
            if (button->isSeparator()) continue;
            EXPECT_FALSE(button->icon().isNull());
            EXPECT_FALSE(button->toolTip().isEmpty() || button->toolTip().contains(u"not found"));
        }
    });
}

}  // namespace
