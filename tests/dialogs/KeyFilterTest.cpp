#include "dialogs/KeyFilter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include "texts/MResources.h"
#include "texts/MResourceTable.h"

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
    const LocaleGuard locale(QLocale{QLocale::English});
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
    const LocaleGuard locale(QLocale{QLocale::German});
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

// Of a pasted path only "C:\ProgramFiles" used to be left.
TEST_F(RestrictInputTest, KeysAreSwallowedAndWhatIsPastedComesInWholeOrNotAtAll) {
    struct Case {
        const char* way;
        bool keys;  // a key at a time
        void (*enter)(QLineEdit&, const QString&);
    };
    const Case ways[] = {
        {"typed", true, [](QLineEdit& field, const QString& text) { Type(field, text); }},
        {"from an input method", true,
         [](QLineEdit& field, const QString& text) { Commit(field, text); }},
        {"pasted", false,
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             QTest::keySequence(&field, QKeySequence::Paste);
         }},
        {"pasted by Shift+Insert", false,
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             QTest::keyClick(&field, Qt::Key_Insert, Qt::ShiftModifier);
         }},
        {"pasted by the menu", false,
         [](QLineEdit& field, const QString& text) {
             QGuiApplication::clipboard()->setText(text);
             PasteByMenu(field);
         }},
        {"dropped", false, [](QLineEdit& field, const QString& text) { Drop(field, text); }},
    };
    struct Text {
        int mode;
        const char16_t* entered;
        const char16_t* typed;
        const char16_t* pasted;
    };
    const Text texts[] = {
        {kDigits, u"-1.5 kg 20", u"1520", u""},
        {kDigits, u"abc", u"", u""},
        {kDigits, u"815", u"815", u"815"},
        {kIdentifier, u"Pumpe 1-ä", u"Pumpe1", u""},
        {kFileName, u"a b*?.dat", u"ab.dat", u""},
        {kPath, u"C:\\Daten\\<x> y", u"C:\\Daten\\xy", u""},
        {MResources::kEveryKey, u"C:\\Program Files <x>\"#", u"C:\\Program Files <x>\"#",
         u"C:\\Program Files <x>\"#"},
    };
    for (const Case& way : ways) {
        for (const Text& text : texts) {
            SCOPED_TRACE(testing::Message() << way.way << ", mode " << text.mode);
            MResources::RestrictInput(field_, text.mode);
            field_.clear();
            way.enter(field_, QString::fromUtf16(text.entered));
            EXPECT_EQ(field_.text(), QString::fromUtf16(way.keys ? text.typed : text.pasted));
        }
    }
}

TEST_F(RestrictInputTest, TheFieldTellsWhatItTakes) {
    MResources::TextTable texts;
    texts.AddTexts(MResourceTable::kTextKeysTaken, {u"nur <keys>"});
    texts.AddTexts(MResourceTable::kTextKeysNotTaken, {u"nicht <keys>"});
    texts.AddTexts(MResourceTable::kTextBlankKey, {u"Leerzeichen"});
    texts.AddTexts(MResourceTable::kTextNotPasted, {u"nichts aus '<text>'."});
    texts.AddTexts(MResourceTable::kTextPasteTooLong, {u"höchstens <max>"});
    const auto told = [&](int mode, const QString& text, bool paste) {
        QToolTip::hideText();  // takes a moment
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
        MResources::RestrictInput(field_, mode, &texts);
        field_.clear();
        if (paste) {
            QGuiApplication::clipboard()->setText(text);
            QTest::keySequence(&field_, QKeySequence::Paste);
        } else {
            QTest::keyClicks(&field_, text);
        }
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    field_.setMaxLength(5);
    EXPECT_EQ(told(kDigits, u"7"_s, false), QString());
    EXPECT_EQ(told(kDigits, u"7x"_s, false), u"nur 0-9"_s);
    EXPECT_EQ(told(kPath, u" "_s, false), u"nicht / * ? < > | \" Leerzeichen"_s);
    EXPECT_EQ(told(kDigits, u"1<b>"_s, true), u"nichts aus '1<b>'. nur 0-9"_s);
    EXPECT_EQ(told(MResources::kEveryKey, u"123456"_s, true),
              u"nichts aus '123456'. höchstens 5"_s);
    EXPECT_EQ(field_.text(), QString()) << "nothing is cut off";
    EXPECT_EQ(told(MResources::kEveryKey, u"12345"_s, true), QString());
}

TEST_F(RestrictInputTest, MiddleClickIsFilteredWherePlatformsKnowIt) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard->supportsSelection()) GTEST_SKIP() << "not on this platform";
    MResources::RestrictInput(field_, kDigits);
    for (const QString& text : {u"a1b2"_s, u"abc"_s, u"34"_s}) {
        clipboard->setText(text, QClipboard::Selection);
        QTest::mouseClick(&field_, Qt::MiddleButton, {}, field_.rect().center());
    }
    EXPECT_EQ(field_.text(), u"34"_s);
}

TEST_F(RestrictInputTest, TheLineEndOfASpreadsheetsCellIsNoPartOfIt) {
    for (const int mode : {0, MResources::kEveryKey}) {
        MResources::RestrictInput(field_, mode);
        field_.clear();
        QGuiApplication::clipboard()->setText(u"Kessel 1\r\n"_s);
        QTest::keySequence(&field_, QKeySequence::Paste);
        EXPECT_EQ(field_.text(), u"Kessel 1"_s);
        field_.clear();
        Drop(field_, u"Kessel 2\n"_s);
        EXPECT_EQ(field_.text(), u"Kessel 2"_s);
    }
    MResources::RestrictInput(field_, 0);
    field_.clear();
    QGuiApplication::clipboard()->setText(u"Kessel\t1"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), QString()) << "two cells are no text";
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
    QGuiApplication::clipboard()->setText(u"1\n"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), u"401"_s);
    EXPECT_EQ(edited.size(), 1) << "the line end must not be seen in between";
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
    QGuiApplication::clipboard()->setText(u"12345"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), QString());
    field_.setText(u"123"_s);
    field_.selectAll();
    QGuiApplication::clipboard()->setText(u"456"_s);
    QTest::keySequence(&field_, QKeySequence::Paste);
    EXPECT_EQ(field_.text(), u"456"_s) << "what is selected makes room";
    field_.clear();
    field_.setReadOnly(true);
    QTest::keySequence(&field_, QKeySequence::Paste);
    QTest::keyClicks(&field_, u"1"_s);
    Drop(field_, u"a1"_s);
    EXPECT_EQ(field_.text(), QString());
}

TEST_F(RestrictInputTest, ADropOfWhichNotAllPassesIsRefused) {
    MResources::RestrictInput(field_, kDigits);
    EXPECT_FALSE(Drop(field_, u"abc"_s));
    EXPECT_FALSE(Drop(field_, u"a1"_s));
    EXPECT_TRUE(Drop(field_, u"1"_s));
    EXPECT_EQ(field_.text(), u"1"_s);
}

}  // namespace
