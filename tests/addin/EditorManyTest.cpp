#include <gmock/gmock.h>

#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Several trends in one dialog.
class EditorManyTest : public EditorTest {
protected:
    /// Opens the dialog for the first trends and works in it.
    void Edit(int rows, const std::function<void(QDialog&)>& work) {
        ClickCell(0, u"Unit"_s);
        for (int i = 1; i < rows; ++i) Key(Qt::Key_Down, Qt::ShiftModifier);
        AnswerDialog([this] { Key(Qt::Key_F9, Qt::ControlModifier); }, work);
    }
    [[nodiscard]] static QLineEdit& Field(QDialog& dialog, const QString& name) {
        return *dialog.findChild<QLineEdit*>(name);
    }
    [[nodiscard]] static QPushButton& Ok(QDialog& dialog) {
        return *dialog.findChild<QPushButton*>(u"cmdOk"_s);
    }
    /// As a user does, where the offscreen platform gives no focus.
    static void TypeOver(QLineEdit& field, const QString& text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, text);
    }
    [[nodiscard]] QByteArray Bytes() const {
        QFile file(project_);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] QStringList StoredIn(const std::string& field, int rows) {
        QStringList texts;
        for (int row = 0; row < rows; ++row) texts += Stored(Text(row, u"Name"_s), field);
        return texts;
    }
};

TEST_F(EditorManyTest, WithoutAChangeNotAByteIsWritten) {
    Open();
    const QByteArray before = Bytes();
    Edit(static_cast<int>(Names().size()), [](QDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), u"FTrend"_s);
        EXPECT_EQ(Field(dialog, u"txtUnit"_s).placeholderText(), u"(different)"_s);
        EXPECT_EQ(Field(dialog, u"txtUnit"_s).text(), QString());
        EXPECT_EQ(Ok(dialog).text(), u"OK"_s);
        Ok(dialog).click();
    });
    EXPECT_TRUE(Bytes() == before);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
}

TEST_F(EditorManyTest, WhatIsChangedGoesIntoAllAndBackInOneStep) {
    Open();
    const QStringList units = StoredIn("Unit", 4);
    const QStringList filters = StoredIn("Filter", 4);
    const QStringList comments = StoredIn("Comment", 4);
    Edit(3, [](QDialog& dialog) {
        TypeOver(Field(dialog, u"txtUnit"_s), u"mbar"_s);
        EXPECT_EQ(Ok(dialog).text(), u"Change 1 field in 3 trends"_s);
        auto* filter = dialog.findChild<QComboBox*>(u"cmbFilter"_s);
        filter->setCurrentIndex(filter->findData(2));
        // Changed and taken back.
        QLineEdit& comment = Field(dialog, u"txtComment"_s);
        TypeOver(comment, u"none"_s);
        EXPECT_EQ(Ok(dialog).text(), u"Change 3 fields in 3 trends"_s);
        EXPECT_TRUE(comment.findChild<QToolButton*>(u"cmdBack"_s)->isVisible());
        QTest::keyClick(&comment, Qt::Key_Backspace, Qt::AltModifier);
        EXPECT_EQ(Ok(dialog).text(), u"Change 2 fields in 3 trends"_s);
        EXPECT_FALSE(comment.findChild<QToolButton*>(u"cmdBack"_s)->isVisible());
        // A list has a mark too, which is the way back for the mouse.
        auto* style = dialog.findChild<QComboBox*>(u"cmbVLineStyle"_s);
        const int shown = style->currentIndex();
        style->setCurrentIndex(shown == 1 ? 2 : 1);
        EXPECT_EQ(Ok(dialog).text(), u"Change 3 fields in 3 trends"_s);
        style->findChild<QToolButton*>(u"cmdBack"_s)->click();
        EXPECT_EQ(style->currentIndex(), shown);
        EXPECT_EQ(Ok(dialog).text(), u"Change 2 fields in 3 trends"_s);
        Ok(dialog).click();
    });
    EXPECT_EQ(StoredIn("Unit", 4), QStringList({u"mbar"_s, u"mbar"_s, u"mbar"_s, units[3]}));
    EXPECT_EQ(StoredIn("Filter", 4), QStringList({u"2"_s, u"2"_s, u"2"_s, filters[3]}));
    EXPECT_EQ(StoredIn("Comment", 4), comments);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(StoredIn("Unit", 4), units);
    EXPECT_EQ(StoredIn("Filter", 4), filters);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());

    // Typed and cleared again is not untouched.
    Edit(3, [](QDialog& dialog) {
        TypeOver(Field(dialog, u"txtUnit"_s), u"x"_s);
        QTest::keyClick(&Field(dialog, u"txtUnit"_s), Qt::Key_Backspace);
        EXPECT_EQ(Field(dialog, u"txtUnit"_s).placeholderText(), u"(empty)"_s);
        EXPECT_EQ(Ok(dialog).text(), u"Change 1 field in 3 trends"_s);
        Ok(dialog).click();
    });
    EXPECT_EQ(StoredIn("Unit", 3), QStringList(3, QString(QChar(0)))) << "as a dialog stores it";
}

/// Each trend its own, in the order in which they stand.
TEST_F(EditorManyTest, NamesAndTextsTakeAPattern) {
    Open();
    const QStringList before = Names();
    Edit(3, [&](QDialog& dialog) {
        TypeOver(Field(dialog, u"txtName"_s), u"P{08..10}"_s);
        for (const QString& pattern : {u"{A|B}"_s, u"{A|B|C|D}"_s}) {
            TypeOver(Field(dialog, u"txtComment"_s), pattern);
            messages_.clear();
            Ok(dialog).click();
            EXPECT_EQ(messages_.size(), 1) << "for three trends " << pattern.toStdString();
            EXPECT_TRUE(dialog.isVisible());
        }
        TypeOver(Field(dialog, u"txtComment"_s), u"{A|B|C}"_s);
        EXPECT_EQ(Ok(dialog).text(), u"Change 2 fields in 3 trends"_s);
        Ok(dialog).click();
    });
    EXPECT_EQ(Names().mid(0, 4), QStringList({u"P08"_s, u"P09"_s, u"P10"_s, before[3]}));
    EXPECT_EQ(StoredIn("Comment", 3), QStringList({u"A"_s, u"B"_s, u"C"_s}));
    EXPECT_EQ(Stored(u"P09"_s, "ID") == u"(no row)"_s, false);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Names(), before);
    // A name for all of them is a double.
    Edit(2, [&](QDialog& dialog) {
        TypeOver(Field(dialog, u"txtName"_s), u"Same"_s);
        messages_.clear();
        Ok(dialog).click();
        EXPECT_EQ(messages_.size(), 1);
        dialog.reject();
    });
    EXPECT_EQ(Names(), before);
}

/// The picture has the colours of all until one is chosen for all.
TEST_F(EditorManyTest, TheCurvesOfAllAreShown) {
    Open();
    const QStringList stored = StoredIn("VLineColor", 3);
    ASSERT_EQ(QSet<QString>(stored.begin(), stored.end()).size(), 3);
    Edit(3, [&](QDialog& dialog) {
        auto* picture = dialog.findChild<QWidget*>(u"picCurve"_s);
        const auto has = [&](const QString& colour) {
            const int bits = colour.toInt();
            const QColor wanted(bits & 0xFF, bits >> 8 & 0xFF, bits >> 16 & 0xFF);
            const QImage image = picture->grab().toImage();
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    if (image.pixelColor(x, y).rgb() == wanted.rgb()) return true;
                }
            }
            return false;
        };
        for (const QString& colour : stored) EXPECT_TRUE(has(colour)) << colour.toStdString();
        dialog.reject();
    });
}

/// Each field by itself writes itself alone, and its partner where the two are one setting.
TEST_F(EditorManyTest, AFieldWritesItselfAlone) {
    Open();
    const std::vector<std::string> columns{"TrendVar",       "Unit",   "Comment",    "Factor",
                                           "Maximum",        "VMax",   "VUpper",     "Hysteresis",
                                           "HysteresisMode", "Filter", "VLineStyle", "VDrawMode"};
    for (const QString& name : {u"txtFactor"_s, u"txtMaximum"_s, u"txtVMax"_s, u"txtVUpper"_s}) {
        std::map<std::string, QStringList> before;
        for (const std::string& column : columns) before[column] = StoredIn(column, 3);
        Edit(3, [&](QDialog& dialog) {
            TypeOver(Field(dialog, name), u"17"_s);
            EXPECT_EQ(Ok(dialog).text(), u"Change 1 field in 3 trends"_s);
            Ok(dialog).click();
        });
        for (const std::string& column : columns) {
            const bool written = u"txt"_s + QString::fromStdString(column) == name;
            EXPECT_EQ(StoredIn(column, 3), written ? QStringList(3, u"17"_s) : before[column])
                << name.toStdString() << ": " << column;
        }
    }
    // A refused value leaves the dialog with what was typed, and the file as it is.
    const QByteArray before = Bytes();
    Edit(3, [&](QDialog& dialog) {
        TypeOver(Field(dialog, u"txtVLineWidth"_s), u"70000"_s);
        messages_.clear();
        Ok(dialog).click();
        EXPECT_EQ(messages_.size(), 1);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(Field(dialog, u"txtVLineWidth"_s).text(), u"70000"_s);
        dialog.reject();
    });
    EXPECT_TRUE(Bytes() == before);
}

}  // namespace
