// What the user meets when something fails in the middle of the work: a word about it, the rows as
// they were, and an editor that goes on.

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QStatusBar>
#include <QTableView>

#include <sys/resource.h>
#include <csignal>

#include "messages/MessageBox.h"
#include "project/CreateProject.h"
#include "studio/StudioDesk.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

/// No file of this process can be written behind its first `bytes` while it lives, as on a disk
/// that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        before_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &limit_);
        rlimit none = limit_;
        none.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, before_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit limit_{};
    void (*before_)(int) = nullptr;
};

/// The file can be read, but not written. An administrator can write any file, so that he is
/// somebody else meanwhile.
class ReadOnly {
public:
    ReadOnly(const QString& folder, const QString& file) : file_(file.toStdString()) {
        constexpr uid_t kNobody = 65534;
        EXPECT_EQ(::chmod(file_.c_str(), 0444), 0);
        if (::geteuid() != 0) return;
        for (const QString& path : QDir(folder).entryList(QDir::Files)) {
            if (path == QFileInfo(file).fileName()) continue;
            EXPECT_EQ(::chown(QFile::encodeName(folder + u'/' + path), kNobody, kNobody), 0);
        }
        EXPECT_EQ(::chown(QFile::encodeName(folder), kNobody, kNobody), 0);
        EXPECT_EQ(::seteuid(kNobody), 0);
        wasRoot_ = true;
    }
    ~ReadOnly() {
        EXPECT_TRUE(!wasRoot_ || ::seteuid(0) == 0);
        EXPECT_EQ(::chmod(file_.c_str(), 0644), 0);
    }
    ReadOnly(const ReadOnly&) = delete;
    ReadOnly& operator=(const ReadOnly&) = delete;

private:
    std::string file_;
    bool wasRoot_ = false;
};

class FailureTest : public StudioDesk {
protected:
    struct Command {
        const char* name;
        std::function<void()> prepare;
        std::function<void()> run;
        std::function<void()> plan;  // what has to be there when it has run
    };

    FailureTest() {
        const std::uint32_t languages[] = {kGerman, kEnglish};
        project::CreateProject(file_.toStdString(), languages);
        others_ = ReadContent(file_.toStdString());
        StartWithProject(kEnglish);
        for (const QString& name : {u"Alpha"_s, u"Beta"_s}) AddArchive(name);
    }

    /// An archive with three trends.
    void AddArchive(const QString& name) {
        studio_->ClickNode();
        User::Press(Qt::Key_F8);
        studio_->ClickNode(u"New Archive"_s);
        EditInDialog(u"FArchiv"_s,
                     [&](QWidget& dialog) { User::Fill(dialog, u"txtName"_s, name); });
        plan_.archives.append({name, {{}, name}, {}, {}});
        OpenArchive(name);
        Paste(u"Name\tUnit\none\tbar\ntwo\tbar\nthree\tbar"_s);
        for (const QString& trend : {u"one"_s, u"two"_s, u"three"_s}) {
            plan_.Of(name).trends.append({trend, {}, {{"Unit", "bar"}}});
        }
    }
    [[nodiscard]] DayPlan::Archive& Alpha() { return plan_.Of(u"Alpha"_s); }
    void MarkTrend(int row) {
        OpenArchive(u"Alpha"_s);
        Trends().ClickCell(row, u"Name"_s);
    }
    void TypeOver(const QString& text) {
        User::Type(text);
        User::Press(Qt::Key_Return);
    }
    [[nodiscard]] std::vector<Command> AllCommands();
    /// What the user has been told but for questions.
    [[nodiscard]] QStringList TakeComplaints() {
        QStringList told = TakeMessages();
        told.removeIf([](const QString& text) { return text.startsWith(u"Do you really"_s); });
        return told;
    }
    /// Changes a row as another program does.
    void Meanwhile(const char* table, const QString& name, const char* field,
                   const std::u16string& value) {
        ado::Connection connection;
        Connect(connection);
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        rows.SetFilter("Name = '" + name.toStdString() + "'");
        ASSERT_FALSE(rows.IsEOF());
        rows.Set(field, value);
        rows.Update();
    }
    void ExpectEditorAsPlanned() {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
        EXPECT_EQ(Archives().Names(), plan_.ArchiveNames());
        for (const DayPlan::Archive& archive : plan_.archives) OpenArchive(archive.name);
        ExpectFileAsPlanned();
    }
};

std::vector<FailureTest::Command> FailureTest::AllCommands() {
    const auto key = [](Qt::Key k, Qt::KeyboardModifiers held = {}) {
        return [=] { User::Press(k, held); };
    };
    return {
        {"new archive", [this] { studio_->ClickNode(); }, key(Qt::Key_F8),
         [this] {
             plan_.archives.append({u"New Archive"_s, {{}, u"New Archive"_s}, {}, {}});
         }},
        {"rename archive", [this] { studio_->ClickNode(u"Alpha"_s); },
         [this] {
             EditInDialog(u"FArchiv"_s, [](QWidget& dialog) {
                 User::Fill(dialog, u"txtName"_s, u"Gamma"_s);
                 User::Fill(dialog, u"txtComment"_s, u"renamed"_s);
             });
         },
         [this] {
             DayPlan::Archive& archive = Alpha();
             archive.fields["Comment"] = "renamed";
             archive.name = archive.texts.english = u"Gamma"_s;
         }},
        {"name it back", [this] { studio_->ClickNode(u"Gamma"_s); },
         [this] {
             EditInDialog(u"FArchiv"_s,
                          [](QWidget& dialog) { User::Fill(dialog, u"txtName"_s, u"Alpha"_s); });
         },
         [this] {
             DayPlan::Archive& archive = plan_.Of(u"Gamma"_s);
             archive.name = archive.texts.english = u"Alpha"_s;
         }},
        {"type into a cell",
         [this] {
             MarkTrend(0);
             Trends().ClickCell(0, u"Unit"_s);
         },
         [this] { TypeOver(u"kPa"_s); }, [this] { Alpha().trends[0].fields["Unit"] = "kPa"; }},
        {"rename trend", [this] { MarkTrend(0); }, [this] { TypeOver(u"first"_s); },
         [this] { Alpha().trends[0].name = u"first"_s; }},
        {"edit trend", [this] { MarkTrend(1); },
         [this] {
             EditInDialog(u"FTrend"_s, [](QWidget& dialog) {
                 User::Fill(dialog, u"txtComment"_s, u"edited"_s);
                 User::Fill(dialog, u"txtTextID"_s, u"zwei"_s);
             });
         },
         [this] {
             Alpha().trends[1].fields["Comment"] = "edited";
             Alpha().trends[1].texts.english = u"zwei"_s;
         }},
        {"paste trends", [this] { OpenArchive(u"Alpha"_s); },
         [this] { Paste(u"Name\tUnit\nfour\tK\nfive\tK"_s); },
         [this] {
             for (const QString& name : {u"four"_s, u"five"_s}) {
                 Alpha().trends.append({name, {}, {{"Unit", "K"}}});
             }
         }},
        {"copy trend", [this] { MarkTrend(2); }, key(Qt::Key_D, Qt::ControlModifier),
         [this] {
             Alpha().trends.append({u"Copy of three"_s, {}, {{"Unit", "bar"}}});
         }},
        {"delete trends",
         [this] {
             MarkTrend(2);
             Trends().ClickRecord(1);
             Trends().ClickRecord(2, Qt::ShiftModifier);
         },
         key(Qt::Key_Delete, Qt::ControlModifier), [this] { Alpha().trends.remove(1, 2); }},
        {"copy archive",
         [this] {
             OpenArchive(u"Beta"_s);
             User::Press(Qt::Key_F6);
         },
         key(Qt::Key_D, Qt::ControlModifier),
         [this] {
             DayPlan::Archive copy = plan_.Of(u"Beta"_s);
             copy.name = u"Copy of Beta"_s;
             plan_.archives.append(copy);
         }},
        {"delete archive", [this] { studio_->ClickNode(u"Beta"_s); },
         key(Qt::Key_Delete, Qt::ControlModifier), [this] { plan_.Remove(u"Beta"_s); }},
    };
}

TEST_F(FailureTest, AFullDiskStopsEveryCommandAndLeavesTheEditorUsable) {
    for (const Command& command : AllCommands()) {
        SCOPED_TRACE(command.name);
        const Content before = ReadContent(file_.toStdString());
        // With the second, the disk is full in the middle of a change.
        for (const rlim_t bytes : {0U, 6000U}) {
            command.prepare();
            std::ignore = TakeMessages();
            {
                const FullDisk fault(bytes);
                command.run();
            }
            EXPECT_THAT(TakeComplaints(), testing::SizeIs(1));
            User::Press(Qt::Key_Escape);  // gives up what could not be stored
            EXPECT_EQ(ReadContent(file_.toStdString()), before);
            ExpectEditorAsPlanned();
            EXPECT_THAT(TakeMessages(), IsEmpty());
        }
        command.prepare();
        command.run();
        command.plan();
        ExpectEditorAsPlanned();
        std::ignore = TakeMessages();  // questions
        if (HasFailure()) return;
    }
    studio_.reset();
    EXPECT_THAT(ErrorsIn(file_.toStdString()), IsEmpty());
}

TEST_F(FailureTest, AFileThatCannotBeWrittenCanBeLookedAt) {
    const std::vector<Command> commands = AllCommands();
    studio_.reset();
    std::ignore = TakeMessages();
    const Content before = ReadContent(file_.toStdString());
    {
        const ReadOnly fault(folder_.path(), file_);
        StartWithProject(kEnglish);
        EXPECT_TRUE(studio_->Window().windowTitle().contains(u" [read only] - "_s))
            << studio_->Window().windowTitle().toStdString();
        OpenArchive(u"Alpha"_s);
        for (const auto& [name, enabled] :
             {std::pair(u"mnuArchiv(1)"_s, true), std::pair(u"mnuArchiv(2)"_s, false),
              std::pair(u"mnuTrend(0)"_s, false), std::pair(u"mnuTrend(1)"_s, true),
              std::pair(u"mnuTrend(2)"_s, false)}) {
            EXPECT_EQ(studio_->Find<QAction>(name)->isEnabled(), enabled) << name.toStdString();
        }
        for (const Command& command : commands) {
            // Those that need what the one before it has done.
            if (std::string_view(command.name) == "name it back") continue;
            SCOPED_TRACE(command.name);
            command.prepare();
            std::ignore = TakeMessages();
            studio_->Find<QStatusBar>(u"sb"_s)->clearMessage();
            command.run();
            // What can be typed is refused when it is stored; the other commands are grey, and
            // a word in the status bar says why.
            const QString name = QString::fromLatin1(command.name);
            const bool typed = name.contains(u"rename"_s) || name.startsWith(u"type"_s) ||
                               name.startsWith(u"edit"_s);
            EXPECT_THAT(TakeComplaints(), testing::SizeIs(typed ? 1 : 0));
            const QString said = studio_->Find<QStatusBar>(u"sb"_s)->currentMessage();
            EXPECT_EQ(said, typed ? QString() : u"The project can only be read."_s);
            User::Press(Qt::Key_Escape);
            ExpectEditorAsPlanned();
            if (HasFailure()) return;
        }
    }
    EXPECT_EQ(ReadContent(file_.toStdString()), before);
    ChooseExtra(kRefresh);
    QCoreApplication::processEvents();
    commands.front().prepare();
    commands.front().run();
    commands.front().plan();
    EXPECT_THAT(TakeMessages(), IsEmpty()) << "opened again, it can be written";
    ExpectEditorAsPlanned();
}

TEST_F(FailureTest, AProgramThatHoldsTheFileIsWaitedForAndTold) {
    MarkTrend(0);
    {
        ado::Connection connection;
        Connect(connection);
        connection.BeginTrans();
        User::Press(Qt::Key_Insert);
        EXPECT_THAT(TakeMessages(), testing::SizeIs(1));
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        connection.RollbackTrans();
    }
    ExpectEditorAsPlanned();
    OpenArchive(u"Alpha"_s);
    User::Press(Qt::Key_Insert);
    Alpha().trends.append({Trends().CurrentName(), {}});
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectEditorAsPlanned();
}

TEST_F(FailureTest, WhatAnotherProgramHasChangedInARowStaysBesideWhatIsTyped) {
    MarkTrend(0);
    Trends().ClickCell(0, u"Unit"_s);
    Meanwhile("TchrTrends", u"one"_s, "Comment", u"theirs");
    TypeOver(u"kPa"_s);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    Alpha().trends[0].fields["Comment"] = "theirs";
    Alpha().trends[0].fields["Unit"] = "kPa";
    plan_.Of(u"Beta"_s).trends[0].fields.erase("Comment");
    ExpectEditorAsPlanned();
    OpenArchive(u"Alpha"_s);

    // In the middle of the dialogs.
    Trends().ClickCell(1, u"Name"_s);
    EditInDialog(u"FTrend"_s, [&](QWidget& dialog) {
        User::Fill(dialog, u"txtComment"_s, u"ours"_s);
        Meanwhile("TchrTrends", u"two"_s, "Unit", u"mbar");
    });
    EXPECT_THAT(TakeMessages(), IsEmpty());
    Alpha().trends[1].fields["Unit"] = "mbar";
    Alpha().trends[1].fields["Comment"] = "ours";
    ExpectEditorAsPlanned();
    studio_->ClickNode(u"Beta"_s);
    EditInDialog(u"FArchiv"_s, [&](QWidget& dialog) {
        User::Fill(dialog, u"txtName"_s, u"Delta"_s);
        Meanwhile("TchrArchives", u"Beta"_s, "Comment", u"theirs");
    });
    EXPECT_THAT(TakeMessages(), IsEmpty());
    plan_.archives[1].fields["Comment"] = "theirs";
    plan_.archives[1].name = plan_.archives[1].texts.english = u"Delta"_s;
    ExpectEditorAsPlanned();
}

TEST_F(FailureTest, WhatAnotherProgramHasDeletedIsMissedByNobody) {
    const auto erase = [this](const char* table, const std::string& criterion) {
        ado::Connection connection;
        Connect(connection);
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        for (rows.SetFilter(criterion); !rows.IsEOF(); rows.MoveNext()) rows.Delete();
    };
    // The trend that is current, with its text.
    const auto eraseTrend = [&](const QString& name) {
        const std::string criterion = "Name = '" + name.toStdString() + "' AND ArchiveID = 1";
        erase("TidxTexts", "Name = 'Idx" + name.toStdString() + "' AND ParentID = 2");
        erase("TchrTrends", criterion);
        Alpha().trends.removeIf([&](const DayPlan::Trend& t) { return t.name == name; });
    };
    MarkTrend(1);
    eraseTrend(u"two"_s);
    TypeOver(u"new name"_s);
    EXPECT_THAT(TakeComplaints(), testing::SizeIs(3))
        << "the cell, what is done about it, and what has been typed";
    ExpectEditorAsPlanned();

    MarkTrend(1);
    eraseTrend(u"three"_s);
    User::Press(Qt::Key_D, Qt::ControlModifier);
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), IsEmpty()) << "there is nothing left to copy or delete";
    ExpectEditorAsPlanned();

    // The archive that is open.
    OpenArchive(u"Alpha"_s);
    eraseTrend(u"one"_s);
    erase("TidxTexts", "Name = 'archAlpha'");
    erase("TidxGroups", "Name = 'Alpha'");
    erase("TchrArchives", "Name = 'Alpha'");
    const Content without = ReadContent(file_.toStdString());
    User::Press(Qt::Key_Insert);
    EXPECT_THAT(TakeMessages(), ElementsAre(u"Another program has deleted the archive 'Alpha'."_s));
    Paste(u"Name\tUnit\nlost\tbar"_s);
    EXPECT_EQ(ReadContent(file_.toStdString()), without) << "no trends of nobody";
    plan_.Remove(u"Alpha"_s);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectEditorAsPlanned();
}

}  // namespace
