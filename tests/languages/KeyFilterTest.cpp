#include "languages/KeyFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kDigits = 2;
constexpr int kFloat = 5;
constexpr int kIdentifier = 6;
constexpr int kFileName = 8;
constexpr int kPath = 9;

/// Sets the user's locale for one test.
class LocaleGuard {
public:
    explicit LocaleGuard(const QLocale& locale) { QLocale::setDefault(locale); }
    ~LocaleGuard() { QLocale::setDefault(before_); }

private:
    QLocale before_;
};

// Of a text with the characters that tell the modes apart, what each mode lets through.
TEST(KeyFilterTest, EachModePassesItsCharacters) {
    const LocaleGuard locale(QLocale(QLocale::English));
    const QString all = u"09afgAFGzZ_ eE+-.,\"#\\/:*?<>|ßÄ'"_s;
    const QString expected[] = {
        u"09afgAFGzZ_ eE+-.,\\/:*?<>|ßÄ'"_s,
        u"09afgAFGzZ_eE+-.,\\/:*?<>|ßÄ'"_s,
        u"09"_s,
        u"09afe"_s,
        u"09+-"_s,
        u"09eE+-."_s,
        u"09afgAFGzZ_eE"_s,
        u"09afgAFGzZ_eE."_s,
        u"09afgAFGzZ_eE+-.,#ßÄ'"_s,
        u"09afgAFGzZ_eE+-.,#\\:ßÄ'"_s,
        all,
        all,
    };
    for (int mode = 0; mode < static_cast<int>(std::size(expected)); ++mode) {
        QString passing;
        for (const QChar c : all) {
            if (MResources::KeyFilter(mode, c.unicode()) == c.unicode()) passing += c;
        }
        EXPECT_EQ(passing, expected[mode]) << "mode " << mode;
        EXPECT_EQ(MResources::KeyFilter(mode, 8), 8) << "Backspace in mode " << mode;
    }
}

TEST(KeyFilterTest, CodesThatAreNoCharacterAreInNoList) {
    for (const int code : {-1, 0x30 + 0x10000, 0x1F600, 0x7FFFFFFF}) {
        EXPECT_EQ(MResources::KeyFilter(kDigits, code), 0) << code;
        EXPECT_EQ(MResources::KeyFilter(kFileName, code), code) << code;
    }
}

TEST(KeyFilterTest, DecimalSeparatorIsTheUsers) {
    const LocaleGuard locale(QLocale(QLocale::German));
    EXPECT_EQ(MResources::KeyFilter(kFloat, ','), ',');
    EXPECT_EQ(MResources::KeyFilter(kFloat, '.'), 0);
}

class RestrictInputTest : public testing::Test {
protected:
    RestrictInputTest() {
        field_.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&field_));
        field_.setFocus();
    }

    /// QTest types ASCII only.
    static void Type(QWidget& widget, const QString& text) {
        for (const QChar c : text) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(c));
            QCoreApplication::sendEvent(&widget, &press);
        }
    }
    static bool Drop(QWidget& widget, const QString& text) {
        QMimeData mimeData;
        mimeData.setText(text);
        QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction | Qt::MoveAction, &mimeData,
                              Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &enter);
        QDropEvent event(QPointF(2, 2), Qt::CopyAction | Qt::MoveAction, &mimeData, Qt::LeftButton,
                         Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    }
    static void Commit(QWidget& widget, const QString& text) {
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(&widget, &event);
    }
    /// Chooses Paste in the field's context menu, as the user does.
    static void PasteByMenu(QWidget& widget) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(2, 2),
                                widget.mapToGlobal(QPoint(2, 2)));
        QCoreApplication::sendEvent(&widget, &event);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        const QList<QAction*> actions = menu->actions();
        const auto paste = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
            return action->text().startsWith(u"&Paste"_s);
        });
        ASSERT_NE(paste, actions.end());
        (*paste)->trigger();
        menu->close();
    }

    QLineEdit field_;
};

TEST_F(RestrictInputTest, EveryWayInIsFilteredAlike) {
    struct Case {
        const char* way;
        void (*enter)(QLineEdit&, const QString&);
    };
    const Case ways[] = {
        {"typed", [](QLineEdit& field, const QString& text) { Type(field, text); }},
        {"pasted",
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             QTest::keySequence(&field, QKeySequence::Paste);
         }},
        {"pasted by Shift+Insert",
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             QTest::keyClick(&field, Qt::Key_Insert, Qt::ShiftModifier);
         }},
        {"pasted by the menu",
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             PasteByMenu(field);
         }},
        {"dropped", [](QLineEdit& field, const QString& text) { Drop(field, text); }},
        {"from an input method",
         [](QLineEdit& field, const QString& text) { Commit(field, text); }},
    };
    struct Text {
        int mode;
        const char16_t* entered;
        const char16_t* expected;
    };
    const Text texts[] = {
        {kDigits, u"-1.5 kg 20", u"1520"},
        {kDigits, u"abc", u""},
        {kDigits, u"815", u"815"},
        {kIdentifier, u"Pumpe 1-ä", u"Pumpe1"},
        {kFileName, u"a b*?.dat", u"ab.dat"},
        {kPath, u"C:\\Daten\\<x> y", u"C:\\Daten\\xy"},
    };
    for (const Case& way : ways) {
        for (const Text& text : texts) {
            SCOPED_TRACE(testing::Message() << way.way << ", mode " << text.mode);
            MResources::RestrictInput(field_, text.mode);
            field_.clear();
            way.enter(field_, QString::fromUtf16(text.entered));
            EXPECT_EQ(field_.text(), QString::fromUtf16(text.expected));
        }
    }
}

TEST_F(RestrictInputTest, MiddleClickIsFilteredWherePlatformsKnowIt) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard->supportsSelection()) GTEST_SKIP() << "not on this platform";
    MResources::RestrictInput(field_, kDigits);
    for (const QString& text : {u"a1b2"_s, u"abc"_s, u"34"_s}) {
        clipboard->setText(text, QClipboard::Selection);
        QTest::mouseClick(&field_, Qt::MiddleButton, {}, field_.rect().center());
    }
    EXPECT_EQ(field_.text(), u"1234"_s);
}

// Copying cells of a spreadsheet ends in a line break, which no field can hold.
TEST_F(RestrictInputTest, ControlCharactersNeverComeIn) {
    MResources::RestrictInput(field_, 0);
    QGuiApplication::clipboard()->setText(u"Kessel\t1\r\n"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), u"Kessel1"_s);
}

TEST_F(RestrictInputTest, WhatStandsInTheFieldIsLeftAlone) {
    MResources::RestrictInput(field_, kDigits);
    field_.setText(u"-1,5 kg"_s);
    EXPECT_EQ(field_.text(), u"-1,5 kg"_s);
    QTest::keyClicks(&field_, u"x7"_s);
    EXPECT_EQ(field_.text(), u"-1,5 kg7"_s);
    // A selection is replaced by what comes in, and survives what does not.
    field_.setSelection(0, 2);
    QTest::keyClicks(&field_, u"x"_s);
    EXPECT_EQ(field_.selectedText(), u"-1"_s);
    QTest::keyClicks(&field_, u"2"_s);
    EXPECT_EQ(field_.text(), u"2,5 kg7"_s);
}

TEST_F(RestrictInputTest, EditingKeysAndUndoWork) {
    MResources::RestrictInput(field_, kDigits);
    QTest::keyClicks(&field_, u"123"_s);
    QTest::keyClick(&field_, Qt::Key_Backspace);
    EXPECT_EQ(field_.text(), u"12"_s);
    QTest::keyClick(&field_, Qt::Key_Home);
    QTest::keyClick(&field_, Qt::Key_Delete);
    EXPECT_EQ(field_.text(), u"2"_s);

    field_.setText(u"40"_s);
    QSignalSpy edited(&field_, &QLineEdit::textEdited);
    QGuiApplication::clipboard()->setText(u"a1b"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), u"401"_s);
    EXPECT_EQ(edited.size(), 1) << "the foreign characters must not be seen in between";
    QTest::keySequence(&field_, QKeySequence::Undo);
    EXPECT_EQ(field_.text(), u"40"_s);
    QTest::keySequence(&field_, QKeySequence::Redo);
    EXPECT_EQ(field_.text(), u"401"_s);
    QTest::keySequence(&field_, QKeySequence::SelectAll);
    EXPECT_EQ(field_.selectedText(), u"401"_s);
}

TEST_F(RestrictInputTest, NothingComesIntoAReadOnlyOrFullField) {
    MResources::RestrictInput(field_, kDigits);
    field_.setMaxLength(3);
    QGuiApplication::clipboard()->setText(u"a12345"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), u"123"_s);
    field_.clear();
    field_.setReadOnly(true);
    QTest::keySequence(&field_, QKeySequence::Paste);
    QTest::keyClicks(&field_, u"1"_s);
    Drop(field_, u"a1"_s);
    EXPECT_EQ(field_.text(), QString());
}

TEST_F(RestrictInputTest, ADropOfWhichNothingPassesIsRefused) {
    MResources::RestrictInput(field_, kDigits);
    EXPECT_FALSE(Drop(field_, u"abc"_s));
    EXPECT_TRUE(Drop(field_, u"a1"_s));
    EXPECT_EQ(field_.text(), u"1"_s);
}

TEST_F(RestrictInputTest, EditableComboBoxFiltersToo) {
    QComboBox combo;
    combo.setEditable(true);
    combo.addItem(u"<ProjectDir>"_s);
    MResources::RestrictInput(combo, kPath);
    combo.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&combo));
    combo.setFocus();
    EXPECT_EQ(combo.currentText(), u"<ProjectDir>"_s);

    combo.clearEditText();
    QTest::keyClicks(&combo, u"D:\\A b<1>"_s);
    EXPECT_EQ(combo.currentText(), u"D:\\Ab1"_s);
    combo.clearEditText();
    QTest::keyClicks(combo.lineEdit(), u"D:\\A b<1>"_s);
    EXPECT_EQ(combo.currentText(), u"D:\\Ab1"_s);

    combo.clearEditText();
    QGuiApplication::clipboard()->setText(u"E:\\? c"_s);
    QTest::keySequence(&combo, QKeySequence::Paste);
    EXPECT_EQ(combo.currentText(), u"E:\\c"_s);
    combo.clearEditText();
    PasteByMenu(*combo.lineEdit());
    EXPECT_EQ(combo.currentText(), u"E:\\c"_s);
    combo.clearEditText();
    Commit(combo, u"F:\\|d"_s);
    EXPECT_EQ(combo.currentText(), u"F:\\d"_s);
    combo.clearEditText();
    Drop(*combo.lineEdit(), u"G:\\ e"_s);
    EXPECT_EQ(combo.currentText(), u"G:\\e"_s);

    combo.setCurrentIndex(-1);
    QTest::keyClick(&combo, Qt::Key_Down);
    EXPECT_EQ(combo.currentText(), u"<ProjectDir>"_s) << "choosing an entry is not typing";
}

}  // namespace
