#include <gtest/gtest.h>

#include <QDialog>

#include "SampleForm.h"
#include "settings/CInit.h"

namespace {

using namespace Qt::Literals::StringLiterals;

int warnings = 0;

class PropertyPathTest : public testing::Test {
protected:
    PropertyPathTest() { init_.SetMotherobject(&form_); }
    /// With a tree of its own, that holds nothing else.
    void Set(const QString& path, const InitValue& value) {
        CInit init;
        init.SetMotherobject(&form_);
        init.WriteAValueToCInits(path, value);
        init.SetInitToControl(path.section(u'.', 0, 0));
    }
    InitValue Get(const QString& path) {
        CInit init;
        init.SetMotherobject(&form_);
        init.WriteAValueToCInits(path, u"?"_s);
        init.GetInitFromControl(path.section(u'.', 0, 0));
        return init.ReadAValueFromCInits(path);
    }

    SampleForm form_;
    CInit init_;
};

TEST_F(PropertyPathTest, ValuesArePutAndReadBackByName) {
    struct Case {
        QString path;
        InitValue put;
        InitValue read;
    };
    const QString column = u"tdbA.Splits(1).Columns(\"TrendVar\")."_s;
    const Case cases[] = {
        // All but texts are put as 16-bit numbers, halves to the even one.
        {column + u"Width"_s, 1995.024, 1995},
        {column + u"Width"_s, 2.5, 2},
        {column + u"Width"_s, 3.5, 4},
        {column + u"Width"_s, true, -1},
        {column + u"Width"_s, 1e9, 32767},
        {column + u"Width"_s, u"-5"_s, -5},
        {column + u"Width"_s, u" 1995,024 "_s, 1995.024},
        {column + u"Width"_s, u"wide"_s, 1995.024},  // not taken
        {column + u"Visible"_s, true, true},
        {column + u"Visible"_s, 0, false},
        {column + u"Visible"_s, u"tRUE"_s, true},
        {column + u"Visible"_s, u"maybe"_s, true},
        {column + u"Caption"_s, u"Größe"_s, u"Größe"_s},
        {column + u"Caption"_s, 8.25, u"8"_s},
        {column + u"Colour"_s, 0x0000FF, 0x0000FF},
        {column + u"Colour"_s, u"#0000ff"_s, 0xFF0000},
        {column + u"Colour"_s, u"no colour"_s, 0xFF0000},
        {column + u"Colour"_s, 1e12, 0xFF0000},
        {column + u"Alignment"_s, int{Qt::AlignRight}, int{Qt::AlignRight}},
        {column + u"Tag"_s, 3, 3},
        {column + u"Tag"_s, u"three"_s, u"three"_s},
        {column + u"Extent"_s, 3, u"?"_s},  // of a kind that settings do not hold
        // However a segment is written.
        {u"TDBA.splits(1).columns(TrendVar).WIDTH"_s, 21, 21},
        {u"tdbA.Splits(1).Columns( 1 ).Width"_s, 22, 22},
        {u"tdbA.Splits(0,9).Columns(\"TrendVar\").Order"_s, 5, 5},
        // What every form and control has, in twips and codes.
        {u"Me.PosLeft"_s, u"-600"_s, -600},
        {u"mE.Width"_s, 6000, 6000},
        {u"Me.Height"_s, 3007, 3000},
        {u"Me.Width"_s, u"1e300"_s, 32760},
        {u"Me.Caption"_s, u"Archive"_s, u"Archive"_s},
        {u"lbl(1).Caption"_s, u"one"_s, u"one"_s},
        {u"sb.Visible"_s, 0.4, false},
        {u"sb.Visible"_s, 1, true},
        {u"sb.Visible"_s, false, false},
        {u"sb.Visible"_s, true, true},
        {u"Me.WindowState"_s, 2, 2},
        {u"Me.Width"_s, 300, 32760},  // of a maximised window: what it will be afterwards
        {u"Me.WindowState"_s, 17, 2},
        {u"Me.WindowState"_s, 0, 0},
        // Fonts.
        {u"tdbA.Font.Name"_s, u"Arial"_s, u"Arial"_s},
        {u"tdbA.Font"_s, u"Courier"_s, u"Courier"_s},
        {u"tdbA.font.size"_s, 8.25, 8},
        {u"tdbA.Font.Size"_s, 0, 8},
        {u"tdbA.Font.Size"_s, 30000, 8},
        {u"tdbA.Font.Weight"_s, 700, 700},
        {u"tdbA.Font.Bold"_s, false, false},
        {u"tdbA.Font.Italic"_s, true, true},
        {u"tdbA.Font.Underline"_s, true, true},
        {u"tdbA.Font.Strikethrough"_s, true, true},
        {u"tdbA.Font.Charset"_s, 238, u"?"_s},  // without effect: keeps the value of the tree
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path.toStdString() + " = " + c.put.AsText().toStdString());
        Set(c.path, c.put);
        EXPECT_TRUE(Get(c.path) == c.read) << Get(c.path).AsText().toStdString();
    }
    EXPECT_EQ(form_.tdbA->splits[1][u"TrendVar"_s]->width, 22);
    EXPECT_EQ(form_.size(), QSize(2184, 200));
    EXPECT_EQ(form_.labels[1]->text(), u"one"_s);
    EXPECT_TRUE(form_.labels[0]->text().isEmpty());
    EXPECT_EQ(form_.tdbA->font().family(), u"Courier"_s);
}

TEST_F(PropertyPathTest, SingleNumbersKeepTheirDigits) {
    form_.tdbA->splits[1][u"TrendVar"_s]->width = 1995.024F;
    EXPECT_EQ(Get(u"tdbA.Splits(1).Columns(\"TrendVar\").Width"_s).AsNumber(), 1995.024);
}

TEST_F(PropertyPathTest, WhatNamesNothingIsLoggedOnceAndPassedOver) {
    const QStringList paths = {
        u"none.Width"_s,
        u"tdbA.None"_s,
        u"tdbA.None.Width"_s,
        u"tdbA.Splits(2).Order"_s,
        u"tdbA.Splits.Order"_s,
        u"tdbA.Splits(.Order"_s,
        u"tdbA.Splits().Order"_s,
        u"tdbA.Splits(99999999999999999999).Order"_s,
        u"tdbA.Splits(1).Columns(\"None\").Width"_s,
        u"tdbA.Splits(1).Columns(70).Width"_s,
        u"tdbA.Splits(1).Columns(\"a.b\").Width"_s,
        u"tdbA.Splits(1).Columns(\"Trouble\").Width"_s,
        u"tdbA.Splits(1).Columns(\"Name\").Width.Deeper"_s,
        u"tdbA.Splits(1).Columns(\"Name\").Position"_s,
        u"tdbA.Font.None"_s,
        u"tdbA.Font.Name.Deeper"_s,
        u"tdbA..Width"_s,
        u"Me."_s,
        u"lbl(7).Caption"_s,
    };
    for (const QString& path : paths) {
        SCOPED_TRACE(path.toStdString());
        CInit init;
        init.SetMotherobject(&form_);
        init.WriteAValueToCInits(path, 5);
        warnings = 0;
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
        init.SetInitToControl(path.section(u'.', 0, 0));
        init.SetInitToControl(path.section(u'.', 0, 0));
        qInstallMessageHandler(before);
        EXPECT_EQ(warnings, 1);
        EXPECT_TRUE(init.ParamExist(path));
    }
    CInit init;
    init.WriteAValueToCInits(u"tdbA.None"_s, 5);
    init.WriteAValueToCInits(u"tdbA.MinimumWidth"_s, 3);
    init.SetInitToControl(u"tdbA"_s);  // without a form
    init.GetInitFromControl(u"tdbA"_s);
    EXPECT_EQ(form_.tdbA->minimumWidth(), 0);
    init.SetMotherobject(&form_);
    init.SetInitToControl(u"tdbA"_s);
    EXPECT_EQ(form_.tdbA->minimumWidth(), 3) << "the paths behind it are set all the same";
}

TEST_F(PropertyPathTest, ControlsOfTheFormTakeTheirNodes) {
    QDialog dialog(&form_);
    auto* other = new QLabel(&dialog);
    other->setObjectName(u"lblDialog"_s);
    init_.WriteAValueToCInits(u"lblDialog.Caption"_s, u"not mine"_s);
    init_.WriteAValueToCInits(u"LBL(1).Caption"_s, u"one"_s);
    init_.WriteAValueToCInits(u"tdbA.Splits(1).Columns(\"Name\").Width"_s, 300);
    init_.WriteAValueToCInits(u"Me.Caption"_s, u"form"_s);
    init_.SetInitToMotherObject();
    EXPECT_EQ(form_.labels[1]->text(), u"one"_s);
    EXPECT_EQ(form_.tdbA->splits[1][u"Name"_s]->width, 300);
    EXPECT_TRUE(other->text().isEmpty()) << "a dialog is a form of its own";
    EXPECT_TRUE(form_.windowTitle().isEmpty()) << "the form's own properties are asked for by Me";
    init_.SetInitToControl(u"Me"_s);
    EXPECT_EQ(form_.windowTitle(), u"form"_s);
}

}  // namespace
