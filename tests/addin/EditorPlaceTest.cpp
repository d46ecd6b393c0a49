// Where the user is: kept when the connection is refreshed and when the interface changes its
// language, and brought up to date with what other programs do to the archives.

#include <gmock/gmock.h>

#include <QComboBox>
#include <QLineEdit>
#include <QStatusBar>

#include "addin/DamagedRow.h"
#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class EditorPlaceTest : public EditorTest {
protected:
    [[nodiscard]] int Lcid() {
        return Editor()->findChild<QComboBox*>(u"cmbLanguage"_s)->currentData().toInt();
    }
    void Refresh() {
        Action(u"mnuExtra(2)"_s)->trigger();
        QApplication::processEvents();
        QApplication::setActiveWindow(&host_.container);
        QApplication::processEvents();
    }
    /// The user makes himself at home; nothing of it is saved on exit.
    void MoveIn() {
        WriteIni("SaveOnExit=False\r\n");
        Open(u"ARCH2"_s);
        auto* languages = Editor()->findChild<QComboBox*>(u"cmbLanguage"_s);
        languages->setCurrentIndex(languages->findData(1033));
        emit languages->activated(languages->currentIndex());
        Column(1, u"Maximum"_s)->setProperty("Visible", true);
        auto* font = Grid()->property("Font").value<QObject*>();
        font->setProperty("Size", 14);
        ClickCell(0, u"Unit"_s);
        Key(Qt::Key_O, Qt::ControlModifier);
        ClickCell(5, u"Unit"_s);
        current_ = CurrentName();
        names_ = Names();
    }
    void ExpectAtHome() {
        EXPECT_EQ(host_.selected, u"ARCH2"_s);
        EXPECT_EQ(Names(), names_) << "the order of the rows";
        EXPECT_EQ(CurrentName(), current_);
        EXPECT_EQ(Split(1)->currentIndex().column(), ColumnNumber(1, u"Unit"_s));
        EXPECT_EQ(Lcid(), 1033);
        EXPECT_TRUE(ShownFields(1).contains(u"Maximum"_s));
        EXPECT_EQ(Split(1)->font().pointSizeF(), 14);
        EXPECT_EQ(Keyboard(), Split(1));
    }
    void WriteIni(const QByteArray& body) {
        QFile file(folder_.filePath(u"KVEditors.ini"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[FKVARCHIVDBSERVER]\r\n" + body);
    }

    QString current_;
    QStringList names_;
};

TEST_F(EditorPlaceTest, RefreshComesBackToWhereTheUserWas) {
    MoveIn();
    Refresh();
    ExpectAtHome();
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: Gärkeller"_s);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorPlaceTest, AnotherInterfaceLanguageComesBackThereToo) {
    MoveIn();
    const QVariant answer = addIn_->CKV4Extensibility_GetMessage(
        KV4AddIn::kHostSender.toString(), KV4AddIn::kReopening.toString(), {});
    EXPECT_FALSE(answer.isValid());
    CloseProject();
    Open(u"ARCH2"_s, false);
    ExpectAtHome();
    EXPECT_EQ(Editor()->windowTitle(), u"Archiv Editor: Gärkeller"_s);
    // Opened another time it begins as saved.
    CloseProject();
    Open(u"ARCH2"_s, false);
    EXPECT_FALSE(ShownFields(1).contains(u"Maximum"_s));
}

TEST_F(EditorPlaceTest, ArchivesOfOtherProgramsShowWhenTheWindowIsTurnedTo) {
    Open(u"ARCH2"_s);
    TurnTo(0);
    TurnAway();
    Elsewhere([](projectdb::ProjectRows& rows) {
        rows.Archives().AddNew();
        rows.Archives().Set("Name", std::u16string(u"Theirs"));
        rows.Archives().Update();
        ASSERT_TRUE(rows.SeekArchive(2));
        rows.Archives().Set("Name", std::u16string(u"Renamed"));
        rows.Archives().Update();
        ASSERT_TRUE(rows.SeekArchive(3));
        rows.Archives().Delete();
    });
    host_.calls.clear();
    TurnTo(0);
    EXPECT_THAT(Names(0), Contains(u"Theirs"_s));
    EXPECT_THAT(Names(0), Contains(u"Renamed"_s));
    EXPECT_THAT(Names(0), Not(Contains(u"Lagerkeller"_s)));
    EXPECT_THAT(host_.ChildTexts(u"ARC0"_s), Contains(u"Theirs"_s));
    EXPECT_THAT(host_.calls, Contains(u"change ARCH2"_s));
    EXPECT_EQ(host_.Find(u"ARCH3"_s), nullptr);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: Renamed"_s);
    EXPECT_EQ(CurrentName(0), u"Renamed"_s);
    EXPECT_THAT(messages_, IsEmpty());
}

// It used to be "3021 Either BOF or EOF", or an archive without trends.
TEST_F(EditorPlaceTest, AnArchiveThatHasGoneSaysSoAndGoes) {
    const QString told = u"Another program has deleted the archive '%1'."_s;
    const auto deleteElsewhere = [this](int id) {
        Elsewhere([id](projectdb::ProjectRows& rows) {
            ASSERT_TRUE(rows.SeekArchive(id));
            rows.Archives().Delete();
        });
    };
    Open(u"ARCH1"_s);
    deleteElsewhere(5);
    Click(u"ARCH5"_s);
    EXPECT_THAT(MessageTexts(), ElementsAre(told.arg(u"Abfüllung"_s)));
    EXPECT_EQ(host_.Find(u"ARCH5"_s), nullptr);
    EXPECT_EQ(host_.selected, u"ARCH1"_s) << "what is open";

    const auto key = [this](int split, Qt::Key pressed) {
        return [this, split, pressed] {
            TurnTo(split);
            Key(pressed);
        };
    };
    struct Case {
        int archive;
        QString name;
        std::function<void()> command;
    };
    const Case cases[] = {
        {6, u"KEG"_s, key(0, Qt::Key_F9)},
        {7, u"CIP"_s, key(1, Qt::Key_Insert)},
        {8, u"Kälte"_s, [this] { TurnAway(), TurnTo(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        Click(u"ARCH%1"_s.arg(c.archive));
        TurnTo(c.archive == 6 ? 0 : 1);
        messages_.clear();
        deleteElsewhere(c.archive);
        c.command();
        QApplication::processEvents();
        EXPECT_THAT(MessageTexts(), ElementsAre(told.arg(c.name)));
        EXPECT_EQ(host_.Find(u"ARCH%1"_s.arg(c.archive)), nullptr);
        EXPECT_EQ(host_.selected, u"ARC0"_s);
        EXPECT_EQ(RowCount(1), 0);
    }
}

// An archive that cannot be read any more is there all the same.
TEST_F(EditorPlaceTest, AnArchiveThatCannotBeReadStaysInTheTree) {
    Open();
    const qsizetype nodes = host_.nodes.size();
    DamageRow(project_, ADOArchiv::Command::Archives, 3);
    Elsewhere([](projectdb::ProjectRows& rows) {
        ASSERT_TRUE(rows.SeekArchive(1));
        rows.Archives().Set("Comment", std::u16string(u"x"));
        rows.Archives().Update();
    });
    TurnAway();
    TurnTo();
    EXPECT_EQ(RowCount(0), 13);
    EXPECT_EQ(host_.nodes.size(), nodes);
    EXPECT_EQ(host_.selected, u"ARCH1"_s);
}

TEST_F(EditorPlaceTest, BehindTheLastArchiveThereIsTheOneBeforeIt) {
    Open();
    const QStringList names = Names(0);
    ClickCell(static_cast<int>(names.size()) - 1, u"Name"_s, 0);
    ASSERT_EQ(CurrentName(0), names.back());
    TurnTo(0);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(Names(0), names.first(names.size() - 1));
    EXPECT_EQ(CurrentName(0), names[names.size() - 2]);
    // A new one shows, whatever the list has been narrowed to.
    auto* find = Editor()->findChild<QLineEdit*>(u"txtFind"_s);
    Key(Qt::Key_F, Qt::ControlModifier);
    find->setText(u"keller"_s);
    ASSERT_LT(Names(0).size(), names.size() - 1);
    TurnTo(0);
    Key(Qt::Key_F8);
    EXPECT_EQ(find->text(), QString());
    EXPECT_EQ(CurrentName(0), u"New Archive"_s);
    EXPECT_EQ(Names(0).size(), names.size());
}

}  // namespace
