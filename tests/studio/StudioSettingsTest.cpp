#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "colours/Contrast.h"
#include "messages/MessageBox.h"
#include "platform/Locale.h"
#include "studio/AddInSet.h"
#include "studio/EditorArea.h"
#include "studio/ProjectTree.h"
#include "studio/RecordingAddIn.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"
#include "studio/Theme.h"
#include "support/PrintQt.h"

// What the studio keeps for its user from one day to the next, and what it says by itself.
namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::Contains;

TEST(ThemeTest, EveryThemeCanBeReadByThoseWhoSeeLittle) {
    for (const Theme theme : {Theme::Light, Theme::Dark, Theme::Contrast}) {
        const QPalette palette = PaletteOf(theme);
        struct Pair {
            QPalette::ColorRole role;
            QPalette::ColorRole ground;
            double least;
        };
        constexpr Pair kPairs[] = {
            {QPalette::WindowText, QPalette::Window, colours::kForText},
            {QPalette::Text, QPalette::Base, colours::kForText},
            {QPalette::Text, QPalette::AlternateBase, colours::kForText},
            {QPalette::ButtonText, QPalette::Button, colours::kForText},
            {QPalette::ToolTipText, QPalette::ToolTipBase, colours::kForText},
            {QPalette::PlaceholderText, QPalette::Base, colours::kForText},
            {QPalette::HighlightedText, QPalette::Highlight, colours::kForText},
            {QPalette::Link, QPalette::Base, colours::kForText},
            {QPalette::Link, QPalette::Window, colours::kForText},
            // The ring around what has the keyboard.
            {QPalette::Highlight, QPalette::Base, colours::kForMarks},
            {QPalette::Highlight, QPalette::Window, colours::kForMarks},
        };
        for (const Pair& pair : kPairs) {
            EXPECT_GE(colours::Contrast(palette.color(pair.role), palette.color(pair.ground)),
                      pair.least)
                << "theme " << static_cast<int>(theme) << ", " << pair.role << " on "
                << pair.ground;
        }
    }
}

TEST(ThemeTest, FramesOfFieldsCanBeSeen) {
    for (const Theme theme : {Theme::Light, Theme::Dark, Theme::Contrast}) {
        ApplyTheme(theme, 0);
        QLineEdit line;
        QComboBox list;
        list.setEditable(true);
        QDoubleSpinBox number;
        for (QWidget* field : {static_cast<QWidget*>(&line), static_cast<QWidget*>(&list),
                               static_cast<QWidget*>(&number)}) {
            field->resize(160, 28);
            const QImage picture = field->grab().toImage();
            const QColor ground = field->palette().color(QPalette::Base);
            double best = 0;
            for (int x = 0; x < 3; ++x) {
                best = std::max(best, colours::Contrast(picture.pixelColor(x, 14), ground));
            }
            EXPECT_GE(best, colours::kForMarks)
                << "theme " << static_cast<int>(theme) << ", " << field->metaObject()->className();
        }
        QCheckBox box;
        box.resize(40, 20);
        const QImage picture = box.grab().toImage();
        double best = 0;
        for (int x = 0; x < 6; ++x) {
            best = std::max(best, colours::Contrast(picture.pixelColor(x, 10),
                                                    box.palette().color(QPalette::Base)));
        }
        EXPECT_GE(best, colours::kForMarks) << "theme " << static_cast<int>(theme) << ", box";
    }
    ApplyTheme(Theme::System, 0);
}

class StudioSettingsTest : public testing::Test {
protected:
    StudioSettingsTest() {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        addIns_.Add(u"Sample"_s, addIn_);
        QFile::copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), Path(u"Anlage.kvs"_s));
        Start();
    }
    ~StudioSettingsTest() override {
        window_.reset();
        ApplyTheme(Theme::System, 0);
    }
    /// As the next morning.
    void Start() {
        if (window_) window_->close();
        window_.reset();
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), &state_);
        window_->show();
    }
    [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }
    template <typename Control>
    [[nodiscard]] Control* Find(const QString& name) const {
        return window_->findChild<Control*>(name);
    }
    /// Opens the settings and lets `change` set them; OK.
    void Set(const std::function<void(QDialog&)>& change) {
        QTimer::singleShot(0, window_.get(), [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            change(*dialog);
            dialog->findChild<QPushButton*>(u"cmdOk"_s)->click();
        });
        Find<QAction>(u"mnuSettingsOptions"_s)->trigger();
    }

    QTemporaryDir folder_;
    QSettings state_{folder_.filePath(u"kvstudio.ini"_s), QSettings::IniFormat};
    StudioRegistry registry_;
    RecordingAddIn addIn_;
    AddInSet addIns_;
    std::unique_ptr<StudioWindow> window_;
};

TEST_F(StudioSettingsTest, TheLastProjectComesBackWhereTheUserWas) {
    window_->OpenLastSession();
    EXPECT_FALSE(window_->HasProject()) << "there has been none";
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    window_->Tree().ClickAsUser(u"SMP0"_s);
    window_->Tree().ClickAsUser(u"SMPL2"_s);
    Start();
    window_->OpenLastSession();
    ASSERT_TRUE(window_->HasProject());
    ASSERT_TRUE(window_->Tree().SelectedNode());
    EXPECT_EQ(window_->Tree().SelectedNode()->key, u"SMPL2"_s);

    // Nor what the user has closed himself, or does not want, or what is not there: no word of it.
    Find<QAction>(u"mnuFileClose"_s)->trigger();
    Start();
    window_->OpenLastSession();
    EXPECT_FALSE(window_->HasProject());
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    Set([](QDialog& dialog) { dialog.findChild<QCheckBox*>(u"chkReopen"_s)->setChecked(false); });
    Start();
    window_->OpenLastSession();
    EXPECT_FALSE(window_->HasProject());
    Set([](QDialog& dialog) { dialog.findChild<QCheckBox*>(u"chkReopen"_s)->setChecked(true); });
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    ASSERT_TRUE(QFile::rename(Path(u"Anlage.kvs"_s), Path(u"Woanders.kvs"_s)));
    Start();
    int told = 0;
    const messages::MessageAnswer answer([&told](const messages::Message&) {
        ++told;
        return messages::MessageResult::Ok;
    });
    window_->OpenLastSession();
    EXPECT_FALSE(window_->HasProject());
    EXPECT_EQ(told, 0);
    EXPECT_EQ(window_->statusBar()->currentMessage(),
              u"Nicht wieder geöffnet, weil nicht zu erreichen: "_s + Path(u"Anlage.kvs"_s));
}

TEST_F(StudioSettingsTest, ColoursAndTheSizeOfLettersAreKept) {
    const QFont desktop = QApplication::font();
    Set([](QDialog& dialog) {
        dialog.findChild<QComboBox*>(u"cmbTheme"_s)->setCurrentIndex(static_cast<int>(Theme::Dark));
        dialog.findChild<QDoubleSpinBox*>(u"spnTextSize"_s)->setValue(14);
    });
    EXPECT_EQ(QApplication::palette().color(QPalette::Base).name(),
              PaletteOf(Theme::Dark).color(QPalette::Base).name());
    EXPECT_EQ(QApplication::font().pointSizeF(), 14);
    ApplyTheme(Theme::System, 0);
    EXPECT_EQ(QApplication::font(), desktop);
    Start();
    EXPECT_EQ(QApplication::palette().color(QPalette::Base).name(),
              PaletteOf(Theme::Dark).color(QPalette::Base).name());
    EXPECT_EQ(QApplication::font().pointSizeF(), 14) << "at the next start, too";
}

TEST_F(StudioSettingsTest, NumbersAreWrittenTheChosenWayAndReadAnew) {
    const QLocale before;
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    addIn_.Take();
    Set([](QDialog& dialog) { dialog.findChild<QComboBox*>(u"cmbNumbers"_s)->setCurrentIndex(1); });
    EXPECT_THAT(addIn_.Take(), Contains(u"Terminate"_s)) << "its tables are made anew";
    EXPECT_TRUE(window_->HasProject());
    EXPECT_EQ(QLocale().toString(1234.5, 'f', 1), u"1.234,5"_s);
    Set([](QDialog& dialog) { dialog.findChild<QComboBox*>(u"cmbNumbers"_s)->setCurrentIndex(2); });
    EXPECT_EQ(QLocale().toString(1234.5, 'f', 1), u"1,234.5"_s);
    EXPECT_EQ(platform::NumberLocale(QLocale(QLocale::German)).decimalPoint(), u"."_s)
        << "texts in German too";
    addIn_.Take();
    Set([](QDialog&) {});
    EXPECT_TRUE(addIn_.Take().isEmpty()) << "nothing else has changed";
    platform::SetNumberLocale({});
    Start();
    EXPECT_EQ(platform::NumberLocaleName(), u"en_GB"_s) << "at the next start, too";
    Set([](QDialog& dialog) { dialog.findChild<QComboBox*>(u"cmbNumbers"_s)->setCurrentIndex(0); });
    EXPECT_EQ(QLocale(), QLocale::system());
    QLocale::setDefault(before);
}

TEST_F(StudioSettingsTest, TheLanguageCanBeChosenAmongTheSettings) {
    Set([](QDialog& dialog) {
        auto* languages = dialog.findChild<QComboBox*>(u"cmbLanguage"_s);
        EXPECT_EQ(languages->currentText(), u"Deutsch"_s) << "without the mark of its menu item";
        languages->setCurrentIndex(languages->findData(kEnglish));
    });
    EXPECT_EQ(Find<QAction>(u"mnuFileOpen"_s)->text(), u"&Open..."_s);
    EXPECT_EQ(StudioRegistry().InterfaceLanguage(), kEnglish);
}

TEST_F(StudioSettingsTest, WhatBecomesOfTheFileIsSaidWithoutAQuestion) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    auto* strip = Find<QWidget>(u"fraWatch"_s);
    const auto says = [&](const QString& part) {
        return QTest::qWaitFor(
            [&] {
                return strip->isVisible() && Find<QLabel>(u"lblWatch"_s)->text().contains(part);
            },
            15000);
    };
    EXPECT_FALSE(strip->isVisible());
    ASSERT_TRUE(QFile::rename(Path(u"Anlage.kvs"_s), Path(u"weg"_s)));
    EXPECT_TRUE(says(u"nicht zu erreichen"_s));
    EXPECT_FALSE(Find<QPushButton>(u"cmdReload"_s)->isVisible());
    ASSERT_TRUE(QFile::rename(Path(u"weg"_s), Path(u"Anlage.kvs"_s)));
    EXPECT_TRUE(says(u"wieder da"_s));
    Find<QPushButton>(u"cmdHide"_s)->click();
    EXPECT_FALSE(strip->isVisible());

    ASSERT_TRUE(QFile::copy(Path(u"Anlage.kvs"_s), Path(u"neu"_s)));
    ASSERT_TRUE(QFile::rename(Path(u"Anlage.kvs"_s), Path(u"alt"_s)));
    ASSERT_TRUE(QFile::rename(Path(u"neu"_s), Path(u"Anlage.kvs"_s)));
    EXPECT_TRUE(says(u"ersetzt"_s));
    addIn_.Take();
    Find<QPushButton>(u"cmdReload"_s)->click();
    QCoreApplication::processEvents();
    EXPECT_THAT(addIn_.Take(), Contains(u"Terminate"_s));
    EXPECT_TRUE(window_->HasProject());
    EXPECT_FALSE(strip->isVisible());
}

TEST_F(StudioSettingsTest, TheStartPageLeadsToRecentProjectsOneControlEach) {
    ASSERT_TRUE(QFile::copy(Path(u"Anlage.kvs"_s), Path(u"Zwei & drei.kvs"_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Zwei & drei.kvs"_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    EXPECT_FALSE(Find<QPushButton>(u"cmdNew"_s)->isVisible());
    for (int open = 0; open < 2; ++open) ASSERT_TRUE(window_->CloseProject());
    QCoreApplication::processEvents();
    for (const QString& link : {u"cmdNew"_s, u"cmdOpen"_s, u"cmdRecent(0)"_s, u"cmdRecent(1)"_s}) {
        auto* button = Find<QPushButton>(link);
        ASSERT_NE(button, nullptr) << link.toStdString();
        EXPECT_TRUE(button->isVisible());
        EXPECT_NE(button->focusPolicy() & Qt::TabFocus, 0);
        EXPECT_GE(colours::Contrast(button->palette().color(QPalette::Link),
                                    button->palette().color(QPalette::Window)),
                  colours::kForText);
    }
    auto* second = Find<QPushButton>(u"cmdRecent(1)"_s);
    EXPECT_TRUE(second->text().startsWith(u"Zwei && drei"_s)) << second->text().toStdString();
    QTest::keyClick(second, Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([this] { return window_->HasProject(); }));
    EXPECT_EQ(window_->windowTitle(), u"Zwei & drei - Korvala Studio"_s);
}

TEST_F(StudioSettingsTest, TheTitleSaysWhatIsBeingEdited) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    window_->Tree().ClickAsUser(u"SMP0"_s);
    ASSERT_TRUE(addIn_.editor);
    QCoreApplication::processEvents();
    addIn_.editor->setWindowTitle(u"Archiv Editor: Sudhaus"_s);
    EXPECT_EQ(window_->windowTitle(), u"Archiv Editor: Sudhaus - Anlage - Korvala Studio"_s);
    ASSERT_TRUE(window_->CloseProject());
    EXPECT_EQ(window_->windowTitle(), u"Korvala Studio"_s);
}

}  // namespace
}  // namespace studio
