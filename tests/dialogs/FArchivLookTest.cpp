#include <gtest/gtest.h>

#include <memory>
#include <QAbstractButton>
#include <QLabel>
#include <QtTest>

#include "dialogs/DialogTesting.h"
#include "dialogs/FArchiv.h"

// What can be seen of the archive dialog. With KV_SCREENSHOTS set to a folder the pictures of all
// pages are kept there.
namespace {

QPalette DarkPalette() {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(140, 140, 140));
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(140, 140, 140));
    return dark;
}

/// Colours of a desktop whose fields and buttons look alike.
QPalette FlatPalette() {
    QPalette flat(Qt::white);
    for (const auto role : {QPalette::Base, QPalette::Button, QPalette::Window}) {
        flat.setColor(role, Qt::white);
    }
    return flat;
}

struct Look {
    std::uint32_t language;
    const char* suffix;
};

class FArchivLookTest : public testing::TestWithParam<Look> {
protected:
    FArchivLookTest() {
        dialog_.txtName->setText(QStringLiteral("Gärkeller"));
        dialog_.txtTextID->setText(QStringLiteral("Gärkeller, Tanks 1 bis 12"));
        dialog_.txtComment->setText(QStringLiteral("Monatsdateien mit Redundanz"));
        dialog_.txtAuthorizationLevel->setText(QStringLiteral("5"));
        dialog_.cmbType->setCurrentIndex(1);
        dialog_.chkRedundancy->setChecked(true);
        dialog_.cboNewFile->setCurrentIndex(3);
        dialog_.cmbSampleMode->setCurrentIndex(1);
        dialog_.txtScantime->setText(QStringLiteral("10000"));
        dialog_.txtFileName->setText(QStringLiteral("gärkeller"));
        dialog_.cboFilePath->setEditText(QStringLiteral("<ProjectDir>"));
        dialog_.cboRedundancyFilePath->setEditText(QStringLiteral("D:\\Redundanz"));
        dialog_.txtCacheSize->setText(QStringLiteral("100"));
        dialog_.txtMaxFiles->setText(QStringLiteral("24"));
        dialog_.txtMaxSizekB->setText(QStringLiteral("104857600"));
        dialog_.txtStartStop->setText(QStringLiteral("Gaerkeller.Aktiv"));
        dialog_.SetOpenedName(dialog_.txtName->text());
    }

    void Show() {
        dialog_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog_));
    }
    void Keep(const char* palette) {
        const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
        if (folder.isEmpty()) return;
        const char* const pages[] = {"standard", "format", "recording"};
        dialog_.tabArchive->tabBar()->setFocus();
        for (int page = 0; page < 3; ++page) {
            dialog_.tabArchive->setCurrentIndex(page);
            ASSERT_TRUE(dialog_.grab().save(QStringLiteral("%1/archive-dialog-%2%3-%4.png")
                                                .arg(folder, QString::fromLatin1(pages[page]),
                                                     QString::fromLatin1(palette),
                                                     QString::fromLatin1(GetParam().suffix))));
        }
    }

    DialogSurroundings around_{GetParam().language};
    FArchiv dialog_{around_.services, u"Arc"};
};

INSTANTIATE_TEST_SUITE_P(Languages, FArchivLookTest,
                         testing::Values(Look{MResources::kGerman, "de"},
                                         Look{MResources::kEnglish, "en"}),
                         [](const auto& look) { return std::string(look.param.suffix); });

TEST_P(FArchivLookTest, NoTextIsCutOff) {
    Show();
    for (int page = 0; page < dialog_.tabArchive->count(); ++page) {
        dialog_.tabArchive->setCurrentIndex(page);
        for (const QWidget* control : dialog_.findChildren<QWidget*>()) {
            const auto* label = qobject_cast<const QLabel*>(control);
            const bool isText =
                label != nullptr || qobject_cast<const QAbstractButton*>(control) != nullptr;
            if (!isText || !control->isVisible()) continue;
            if (label != nullptr && label->wordWrap()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width()));
                continue;
            }
            if (control->maximumWidth() < control->sizeHint().width()) continue;
            EXPECT_GE(control->width(), control->sizeHint().width())
                << control->objectName().toStdString();
        }
        for (const QLineEdit* field : dialog_.findChildren<QLineEdit*>()) {
            if (!field->isVisible()) continue;
            EXPECT_GE(field->width(), field->fontMetrics().horizontalAdvance(field->text()) + 8)
                << field->objectName().toStdString();
        }
        for (const QComboBox* combo : dialog_.findChildren<QComboBox*>()) {
            for (int i = 0; i < combo->count() && combo->isVisible(); ++i) {
                EXPECT_LT(combo->fontMetrics().horizontalAdvance(combo->itemText(i)),
                          combo->width() - combo->height())
                    << combo->objectName().toStdString();
            }
        }
    }
    EXPECT_FALSE(dialog_.lblNewFile->isVisible());
    EXPECT_FALSE(dialog_.lblMaxSamples->isVisible());
    Keep("");
}

// Two options bring letters along that a page and a button have.
TEST_P(FArchivLookTest, AccessKeysAreUnique) {
    EXPECT_EQ(AccessKeyFaults(dialog_, *dialog_.tabArchive), QStringList());
    for (const QRadioButton* option : {dialog_.optHDRAM_0, dialog_.optHDRAM_1}) {
        EXPECT_FALSE(QKeySequence::mnemonic(option->text()).isEmpty()) << "it has moved";
    }
}

TEST_P(FArchivLookTest, EveryControlHasAnAccessibleNameOfItsOwn) {
    QSet<QString> names;
    for (const QWidget* control : dialog_.findChildren<QWidget*>()) {
        const bool isField = qobject_cast<const QLineEdit*>(control) != nullptr ||
                             qobject_cast<const QComboBox*>(control) != nullptr ||
                             qobject_cast<const QAbstractButton*>(control) != nullptr;
        const bool isPartOfAnother = control->objectName().startsWith(u"qt_") ||
                                     control->objectName().isEmpty() ||
                                     qobject_cast<QTabBar*>(control->parentWidget()) != nullptr;
        if (!isField || isPartOfAnother) continue;
        QString name = control->accessibleName();
        if (const auto* button = qobject_cast<const QAbstractButton*>(control)) {
            if (name.isEmpty()) name = button->text();
        }
        EXPECT_GT(name.size(), 1) << control->objectName().toStdString();
        EXPECT_FALSE(name.contains(u"not found")) << name.toStdString();
        EXPECT_FALSE(names.contains(name)) << name.toStdString();
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 37);
}

TEST_P(FArchivLookTest, GreyedFieldsAreToldApartInEveryPalette) {
    Show();
    dialog_.tabArchive->setCurrentIndex(1);
    const QPalette before = dialog_.palette();
    for (const QPalette& palette : {before, DarkPalette(), FlatPalette()}) {
        dialog_.setPalette(palette);
        const auto ground = [](QWidget* field) {
            const QImage picture = field->grab().toImage();
            return qGray(picture.pixel(picture.width() * 3 / 4, picture.height() / 2));
        };
        ASSERT_TRUE(dialog_.txtMaxFiles->isEnabled() && !dialog_.txtMaxSamples->isEnabled());
        EXPECT_GE(std::abs(ground(dialog_.txtMaxFiles) - ground(dialog_.txtMaxSamples)), 10);
        if (palette == DarkPalette()) Keep("-dark");
        dialog_.tabArchive->setCurrentIndex(1);
        const int usable = ground(dialog_.cboNewFile);
        dialog_.cmbType->setCurrentIndex(0);
        EXPECT_GE(std::abs(usable - ground(dialog_.cboNewFile)), 8);
        dialog_.cmbType->setCurrentIndex(1);
    }
}

}  // namespace
