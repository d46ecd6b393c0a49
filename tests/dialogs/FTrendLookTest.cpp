#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QtTest>

#include "dialogs/DialogTesting.h"
#include "dialogs/FTrend.h"

// What can be seen of the trend dialog. With KV_SCREENSHOTS set to a folder the pictures of all
// pages are kept there.
namespace {

using namespace Qt::Literals::StringLiterals;

QPalette DarkPalette() {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        dark.setColor(role, Qt::white);
        dark.setColor(QPalette::Disabled, role, QColor(140, 140, 140));
    }
    return dark;
}

struct Look {
    std::uint32_t language;
    const char* suffix;
};

class FTrendLookTest : public testing::TestWithParam<Look> {
protected:
    FTrendLookTest() {
        const std::initializer_list<std::pair<QLineEdit*, const char16_t*>> texts = {
            {dialog_.txtName, u"Würzepfanne Durchfluss"},
            {dialog_.txtTextID, u"Durchfluss der Würzepfanne"},
            {dialog_.txtTrendVar, u"Sudhaus.Würzepfanne.Durchfluss"},
            {dialog_.txtUnit, u"hl/h"},
            {dialog_.txtMaximum, u"400"},
            {dialog_.txtMinimum, u"0"},
            {dialog_.txtSurrogateMax, u"Sudhaus.Würzepfanne.Grenze"},
            {dialog_.txtFactor, u"0,1"},
            {dialog_.txtOffset, u"0"},
            {dialog_.txtFilterDepth, u"8"},
            {dialog_.txtVMax, u"400"},
            {dialog_.txtVMin, u"0"},
            {dialog_.txtVMaxSamples, u"1000"},
            {dialog_.txtVUpper, u"320"},
            {dialog_.txtVLower, u"100"},
            {dialog_.txtVLineWidth, u"3"},
        };
        for (const auto& [field, text] : texts) field->setText(QString::fromUtf16(text));
        dialog_.cmbHysteresisMode->setCurrentIndex(3);
        dialog_.cmbFilter->setCurrentIndex(1);
        dialog_.cmbVLineStyle->setCurrentIndex(0);
        dialog_.cmbVDrawMode->setCurrentIndex(1);
        dialog_.cmbVConfig->setCurrentIndex(2);
        dialog_.clrVLineColor->SetColor(16711680);
        dialog_.clrVUpperColor->SetColor(0x0000C0);
        dialog_.clrVLowerColor->SetColor(0x00A5FF);
        dialog_.SetOpenedName(dialog_.txtName->text());
    }
    void Show() {
        dialog_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog_));
    }
    void Keep(const char* palette) {
        const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
        if (folder.isEmpty()) return;
        const QStringList pages = {u"standard"_s, u"recording"_s, u"appearance"_s, u"tolerance"_s};
        dialog_.tabTrend->tabBar()->setFocus();
        for (int page = 0; page < pages.size(); ++page) {
            dialog_.tabTrend->setCurrentIndex(page);
            ASSERT_TRUE(dialog_.grab().save(u"%1/trend-dialog-%2%3-%4.png"_s.arg(
                folder, pages[page], QString::fromLatin1(palette),
                QString::fromLatin1(GetParam().suffix))));
        }
    }

    DialogSurroundings around_{GetParam().language};
    FTrend dialog_{around_.services, u"Trd"};
};

INSTANTIATE_TEST_SUITE_P(Languages, FTrendLookTest,
                         testing::Values(Look{MResources::kGerman, "de"},
                                         Look{MResources::kEnglish, "en"}),
                         [](const auto& look) { return std::string(look.param.suffix); });

TEST_P(FTrendLookTest, NoTextIsCutOff) {
    Show();
    for (int page = 0; page < dialog_.tabTrend->count(); ++page) {
        dialog_.tabTrend->setCurrentIndex(page);
        for (const QWidget* control : dialog_.findChildren<QWidget*>()) {
            const bool isText = qobject_cast<const QLabel*>(control) != nullptr ||
                                qobject_cast<const QAbstractButton*>(control) != nullptr;
            if (!isText || !control->isVisible()) continue;
            if (qobject_cast<QTabBar*>(control->parentWidget()) != nullptr) continue;
            if (control->maximumWidth() < control->sizeHint().width()) continue;
            EXPECT_GE(control->width(), control->sizeHint().width())
                << control->objectName().toStdString();
        }
        for (const QComboBox* list : dialog_.findChildren<QComboBox*>()) {
            for (int i = 0; i < list->count() && list->isVisible(); ++i) {
                EXPECT_LT(list->fontMetrics().horizontalAdvance(list->itemText(i)),
                          list->width() - list->height())
                    << list->itemText(i).toStdString();
            }
        }
    }
    const QRect screen = dialog_.screen()->availableGeometry();
    EXPECT_LT(dialog_.height(), 600) << "of the smallest screens that are still in use";
    EXPECT_LT(dialog_.width(), std::max(800, screen.width()));
    Keep("");
    dialog_.setPalette(DarkPalette());
    Keep("-dark");
}

TEST_P(FTrendLookTest, AccessKeysAreUnique) {
    EXPECT_EQ(AccessKeyFaults(dialog_, *dialog_.tabTrend), QStringList());
}

TEST_P(FTrendLookTest, EveryControlHasANameOfItsOwn) {
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
    EXPECT_EQ(names.size(), 39);
}

}  // namespace
