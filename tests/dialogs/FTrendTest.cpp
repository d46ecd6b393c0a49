#include "dialogs/FTrend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QToolTip>
#include <QtTest>

#include "dialogs/DialogTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class FTrendTest : public testing::TestWithParam<std::uint32_t> {
protected:
    FTrendTest() {
        around_.services.chooseVariable = [this](QWidget*, const QString& current) {
            asked_ << current;
            return answer_;
        };
        dialog_.txtName->setText(u"Druck"_s);
        dialog_.txtTextID->setText(u"Druck"_s);
        dialog_.cmbHysteresisMode->setCurrentIndex(3);
        dialog_.cmbFilter->setCurrentIndex(0);
        dialog_.SetOpenedName(u"Druck"_s);
    }
    void Show() {
        dialog_.show();
        dialog_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog_));
    }
    static QStringList Entries(const QComboBox& list) {
        QStringList texts;
        for (int i = 0; i < list.count(); ++i) {
            EXPECT_EQ(list.itemData(i).toInt(), i);
            texts << list.itemText(i);
        }
        return texts;
    }

    DialogSurroundings around_{GetParam()};
    QStringList asked_;
    std::optional<QString> answer_;
    FTrend dialog_{around_.services, u"Trd"};
};

INSTANTIATE_TEST_SUITE_P(Languages, FTrendTest,
                         testing::Values(MResources::kGerman, MResources::kEnglish),
                         [](const auto& language) {
                             return std::string(language.param == MResources::kGerman ? "de"
                                                                                      : "en");
                         });

TEST_P(FTrendTest, ListsHoldTheirCodesInOrder) {
    const bool german = GetParam() == MResources::kGerman;
    EXPECT_EQ(Entries(*dialog_.cmbHysteresisMode),
              german ? QStringList({u"Absolut"_s, u"In Promille von Maximum-Minimum"_s,
                                    u"In Promille vom Aufzeichnungswert"_s, u"Keine Hysterese"_s})
                     : QStringList({u"absolute"_s, u"Promille of Maximum-Minimum"_s,
                                    u"Promille of stored Value"_s, u"No Hysteresis"_s}));
    EXPECT_EQ(Entries(*dialog_.cmbFilter).last(), u"Min");
    EXPECT_EQ(dialog_.cmbFilter->count(), 5);
    EXPECT_EQ(Entries(*dialog_.cmbVLineStyle),
              german ? QStringList({u"Linie"_s, u"gestrichelt"_s, u"gepunktet"_s})
                     : QStringList({u"Line"_s, u"---"_s, u"..."_s}));
    EXPECT_EQ(Entries(*dialog_.cmbVConfig).last(), german ? u"Beides" : u"both");
    EXPECT_EQ(dialog_.cmbVConfig->count(), 3);
    EXPECT_EQ(Entries(*dialog_.cmbVDrawMode),
              german ? QStringList({u"Geradeninterpolation"_s, u"Treppeninterpolation"_s})
                     : QStringList({u"Line interpolation"_s, u"Stair interpolation"_s}));
}

TEST_P(FTrendTest, FieldsAreUsableAsTheirListsSay) {
    const struct {
        int mode;
        bool hysteresis;
        int filter;
        bool depth;
    } cases[] = {
        {0, true, 0, false},
        {1, true, 1, true},
        {2, true, 4, true},
        {3, false, -1, true},  // a filter that is not in the list may well have a depth
    };
    for (const auto& each : cases) {
        dialog_.cmbHysteresisMode->setCurrentIndex(each.mode);
        dialog_.cmbFilter->setCurrentIndex(each.filter);
        EXPECT_EQ(dialog_.txtHysteresis->isEnabledTo(&dialog_), each.hysteresis) << each.mode;
        EXPECT_EQ(dialog_.cmdChoose[6]->isEnabledTo(&dialog_), each.hysteresis) << each.mode;
        EXPECT_EQ(dialog_.txtFilterDepth->isEnabledTo(&dialog_), each.depth) << each.filter;
        EXPECT_EQ(dialog_.txtFilterDepth->palette().base() == dialog_.palette().base(), each.depth);
    }
}

TEST_P(FTrendTest, ExactlySevenFieldsTakeDigitsOnly) {
    Show();
    dialog_.cmbHysteresisMode->setCurrentIndex(0);
    dialog_.cmbFilter->setCurrentIndex(1);
    QSet<QString> restricted;
    for (QLineEdit* field : dialog_.findChildren<QLineEdit*>()) {
        if (field->objectName().startsWith(u"qt_")) continue;
        field->setText(u"-5,5"_s);  // what is stored is shown as it is
        EXPECT_EQ(field->text(), u"-5,5");
        field->selectAll();
        QTest::keyClicks(field, u"-1,5a.2"_s);
        const QString typed = field->text();
        const bool digits = typed == u"152";
        EXPECT_EQ(digits, QToolTip::isVisible()) << "tells which keys it takes";
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
        QTest::keyClick(field, Qt::Key_Backspace);
        EXPECT_EQ(field->text(), typed.chopped(1));
        field->clear();
        QApplication::clipboard()->setText(u"-1,5a.2"_s);
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(field->text(), digits ? QString() : typed) << field->objectName().toStdString();
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
        if (digits) restricted << field->objectName();
    }
    EXPECT_EQ(restricted,
              QSet<QString>({u"txtFilterDepth"_s, u"txtVLineWidth"_s, u"txtVLower"_s, u"txtVMax"_s,
                             u"txtVMaxSamples"_s, u"txtVMin"_s, u"txtVUpper"_s}));
}

TEST_P(FTrendTest, PickersAskForTheFieldBesideThem) {
    Show();
    dialog_.cmbHysteresisMode->setCurrentIndex(0);
    QLineEdit* const fields[] = {dialog_.txtTrendVar,     dialog_.txtMaximum,
                                 dialog_.txtMinimum,      dialog_.txtSurrogateMax,
                                 dialog_.txtSurrogateMin, dialog_.txtErrorValue,
                                 dialog_.txtHysteresis};
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        QPushButton* picker = dialog_.cmdChoose[i];
        EXPECT_EQ(picker->objectName(), u"cmdChoose(%1)"_s.arg(i));
        fields[i]->setText(u"120"_s);
        answer_ = std::nullopt;
        picker->click();
        EXPECT_EQ(fields[i]->text(), u"120");
        answer_ = u"Sud.Grenze %1"_s.arg(i);
        picker->click();
        EXPECT_EQ(fields[i]->text(), u"Sud.Grenze %1"_s.arg(i));
    }
    EXPECT_EQ(asked_, QStringList(14, u"120"_s));
}

// Cut to the width of its column, a name would be that of another variable.
TEST_P(FTrendTest, AVariableThatTheFieldCannotHoldIsNotTaken) {
    dialog_.txtMaximum->setText(u"120"_s);
    dialog_.txtMaximum->setMaxLength(8);
    for (const auto& [chosen, taken] : {std::pair{u"Sud.Temp"_s, true}, {u"Sud.<max>"_s, false}}) {
        answer_ = chosen;
        dialog_.cmdChoose[1]->click();
        EXPECT_EQ(dialog_.txtMaximum->text(), u"Sud.Temp");
        EXPECT_EQ(around_.messages.isEmpty(), taken);
    }
    ASSERT_EQ(around_.messages.size(), 1);
    EXPECT_TRUE(around_.messages[0].startsWith(u"'Sud.<max>' "));
    EXPECT_TRUE(around_.messages[0].contains(u" 8 "));
}

TEST_P(FTrendTest, OkChecksTheNameAmongTheTrends) {
    around_.names.inUse = {u"Druck"_s, u"Temperatur"_s};
    Show();
    dialog_.tabTrend->setCurrentIndex(2);
    dialog_.txtName->setText(u"Temperatur"_s);
    EXPECT_EQ(dialog_.txtTextID->text(), u"Temperatur") << "the display text follows the name";
    QTest::mouseClick(dialog_.cmdOk, Qt::LeftButton);
    EXPECT_TRUE(dialog_.isVisible());
    EXPECT_TRUE(dialog_.Cancelled());
    EXPECT_EQ(around_.messages, QStringList(around_.texts.GetText(225)));
    EXPECT_EQ(dialog_.focusWidget(), dialog_.txtName);
    EXPECT_EQ(around_.names.asked, QStringList(u"Trd Temperatur"_s));

    dialog_.txtTextID->setText(u"Kessel"_s);
    QTest::keyClicks(dialog_.txtName, u"  "_s);  // the name is marked: all of it goes
    EXPECT_FALSE(dialog_.cmdOk->isEnabled());
    QTest::keyClick(dialog_.txtName, Qt::Key_Home, Qt::ShiftModifier);
    QTest::keyClicks(dialog_.txtName, u"Neu"_s);
    EXPECT_EQ(dialog_.txtTextID->text(), u"Kessel");
    QTest::keyClick(dialog_.txtName, Qt::Key_Return);
    EXPECT_FALSE(dialog_.Cancelled());
    EXPECT_EQ(around_.names.changed, QStringList(u"Trd Druck>Neu"_s));
}

TEST_P(FTrendTest, KeysLeadThroughThePages) {
    Show();
    const QStringList firstFields = {u"txtName"_s, u"txtMaximum"_s, u"clrVLineColor"_s,
                                     u"txtVUpper"_s};
    for (int page = 0; page < 4; ++page) {
        EXPECT_EQ(dialog_.tabTrend->currentIndex(), page);
        EXPECT_EQ(dialog_.focusWidget()->objectName(), firstFields[page]);
        QTest::keyClick(dialog_.focusWidget(), Qt::Key_F1);
        QTest::keyClick(dialog_.focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    }
    EXPECT_EQ(dialog_.tabTrend->currentIndex(), 0);
    QTest::mouseClick(dialog_.cmdHelp, Qt::LeftButton);
    EXPECT_EQ(around_.topics, QList<int>({30031, 30032, 30033, 30034, 30031}));
    QTest::keyClick(dialog_.focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(dialog_.isVisible());
    EXPECT_TRUE(dialog_.Cancelled());
}

TEST_P(FTrendTest, TabKeyFollowsTheFields) {
    Show();
    dialog_.cmbHysteresisMode->setCurrentIndex(0);
    dialog_.cmbFilter->setCurrentIndex(1);
    const QStringList pages[] = {
        {u"txtName"_s, u"txtTextID"_s, u"cmdEditText"_s, u"txtTrendVar"_s, u"cmdChoose(0)"_s,
         u"txtUnit"_s, u"txtComment"_s, u"cmdOk"_s},
        {u"txtMaximum"_s, u"cmdChoose(1)"_s, u"txtMinimum"_s, u"cmdChoose(2)"_s,
         u"txtSurrogateMax"_s, u"cmdChoose(3)"_s, u"txtSurrogateMin"_s, u"cmdChoose(4)"_s,
         u"txtErrorValue"_s, u"cmdChoose(5)"_s, u"cmbHysteresisMode"_s, u"txtHysteresis"_s,
         u"cmdChoose(6)"_s, u"txtFactor"_s, u"txtOffset"_s, u"cmbFilter"_s, u"txtFilterDepth"_s,
         u"cmdOk"_s},
        {u"clrVLineColor"_s, u"txtVLineWidth"_s, u"cmbVLineStyle"_s, u"cmbVDrawMode"_s,
         u"txtVMax"_s, u"txtVMin"_s, u"txtVMaxSamples"_s, u"cmdOk"_s},
        {u"txtVUpper"_s, u"clrVUpperColor"_s, u"txtVLower"_s, u"clrVLowerColor"_s, u"cmbVConfig"_s,
         u"cmdOk"_s},
    };
    for (int page = 0; page < 4; ++page) {
        dialog_.tabTrend->setCurrentIndex(page);
        dialog_.findChild<QWidget*>(pages[page].first())->setFocus();
        QStringList visited;
        while (visited.size() < pages[page].size()) {
            visited << dialog_.focusWidget()->objectName();
            QTest::keyClick(dialog_.focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ(visited, pages[page]);
    }
}

TEST_P(FTrendTest, PicturesShowTheSettings) {
    dialog_.txtVMax->setText(u"1,5E3"_s);
    dialog_.txtVMin->setText(u"-5.5"_s);
    dialog_.txtVUpper->setText(u"90"_s);
    dialog_.txtVLower->clear();
    dialog_.txtVLineWidth->setText(u"3"_s);
    dialog_.cmbVLineStyle->setCurrentIndex(1);
    dialog_.cmbVDrawMode->setCurrentIndex(1);
    dialog_.cmbVConfig->setCurrentIndex(2);
    dialog_.clrVLineColor->SetColor(0x0000FF);
    dialog_.clrVUpperColor->SetColor(0x00FF00);
    dialog_.clrVLowerColor->ClearColor();
    CurveLook look;
    look.line = QColor(255, 0, 0);
    look.width = 3;
    look.style = CurveLook::Style::Dashed;
    look.mode = CurveLook::Mode::Stairs;
    look.displayMaximum = 1500;
    look.displayMinimum = -5.5;
    look.upper = 90;
    look.upperColor = QColor(0, 255, 0);
    look.lowerColor = dialog_.palette().text().color();
    look.tolerance = CurveLook::Tolerance::Both;
    EXPECT_TRUE(dialog_.picCurve->Look() == look);
    EXPECT_TRUE(dialog_.picTolerance->Look() == look);

    const std::pair<const char16_t*, int> widths[] = {{u"-1e300", 1}, {u"0", 1}, {u"1e300", 1000}};
    for (const auto& [text, width] : widths) {
        dialog_.txtVLineWidth->setText(QString::fromUtf16(text));
        EXPECT_EQ(dialog_.picCurve->Look().width, width);
    }
    dialog_.cmbVDrawMode->setCurrentIndex(-1);  // points, say, which the dialog does not offer
    EXPECT_EQ(dialog_.picCurve->Look().mode, CurveLook::Mode::Lines);
}

// What lies outside the band is drawn in the band's colours, or not, as the configuration says.
TEST_P(FTrendTest, PicturesColorWhatLiesOutsideTheBand) {
    CurvePreview picture;
    picture.resize(400, 200);
    const auto colors = [&](CurveLook::Tolerance tolerance, std::optional<double> upper) {
        CurveLook look;
        look.line = QColor(1, 2, 3);
        look.upperColor = QColor(250, 4, 5);
        look.lowerColor = QColor(6, 7, 250);
        look.width = 4;
        look.displayMaximum = 100;
        look.displayMinimum = 0;
        look.upper = upper;
        look.lower = 30;
        look.tolerance = tolerance;
        picture.SetLook(look);
        const QImage image = picture.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const auto count = [&](const QColor& color) {
            int pixels = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    if (image.pixelColor(x, y) == color) ++pixels;
                }
            }
            return pixels;
        };
        return std::array{count(look.line) > 500, count(look.upperColor) > 300,
                          count(look.lowerColor) > 300};
    };
    using enum CurveLook::Tolerance;
    EXPECT_THAT(colors(CurveColor, 70), testing::ElementsAre(true, true, true));
    EXPECT_THAT(colors(BandLines, 70), testing::ElementsAre(true, true, true));
    EXPECT_THAT(colors(Both, 70), testing::ElementsAre(true, true, true));
    EXPECT_THAT(colors(CurveColor, std::nullopt), testing::ElementsAre(true, false, true));
    EXPECT_THAT(colors(BandLines, 200), testing::ElementsAre(true, false, true));
    EXPECT_THAT(colors(CurveColor, -1e300), testing::ElementsAre(false, true, false));
}

}  // namespace
