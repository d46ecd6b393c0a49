#include "project/History.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <filesystem>
#include <random>

#include "commands/PasteCommands.h"
#include "commands/StepName.h"
#include "CommandTesting.h"

namespace {

using Kind = project::Conflict::Kind;

class HistoryTest : public CommandTest {
protected:
    [[nodiscard]] project::History& Steps() { return project_.history; }
    /// Ends the step that has been done, as the window does behind each action.
    QString EndStep() {
        project::ChangeSet changes = Environment().Recorder().Take();
        QString name = StepName(changes, texts_);
        Steps().Add(projectdb::ToUtf16(name), std::move(changes));
        return name;
    }
    project::History::Outcome Undo(std::span<const project::Settlement> settled = {}) {
        return Steps().Undo(Environment().Connection(), Environment().Recorder(), settled);
    }
    project::History::Outcome Redo() {
        return Steps().Redo(Environment().Connection(), Environment().Recorder());
    }
    void SetTrend(std::int32_t id, const char* column, const ado::Value& value) {
        projectdb::ProjectRows rows(Environment());
        ASSERT_TRUE(rows.SeekTrend(id));
        rows.Trends().Set(column, value);
        rows.Trends().Update();
    }
    [[nodiscard]] ado::Value TrendValue(std::int32_t id, const char* column) {
        projectdb::ProjectRows rows(Environment());
        return rows.SeekTrend(id) ? rows.Trends().Get(column) : ado::Value(u"(no row)");
    }
    [[nodiscard]] std::vector<std::int32_t> All(ado::Recordset& rows) {
        return rows.NumbersOf(rows.FieldIndex("ID"));
    }
    /// Any command, at any row.
    void DoSomething(std::mt19937& random) {
        const auto any = [&](const std::vector<std::int32_t>& ids) {
            return ids.empty() ? 0 : ids[random() % ids.size()];
        };
        projectdb::ProjectRows rows(Environment());
        const std::int32_t archive = any(All(rows.Archives()));
        const std::int32_t trend = any(All(rows.Trends()));
        OpenArchive(archive);
        switch (random() % 8) {
            case 0:
                archives_.New(QStringLiteral("L1031"));
                break;
            case 1:
                archives_.Delete(QStringLiteral("ARCH%1").arg(archive), {}, {});
                break;
            case 2:
                std::ignore = copies_.DuplicateArchive(archive, {});
                break;
            case 3:
                trends_.New();
                break;
            case 4:
                trends_.Delete(std::array{trend}, {}, {});
                break;
            case 5:
                std::ignore = copies_.DuplicateTrends(std::array{trend}, {});
                break;
            case 6:
                archives_.Edit(archive, [](auto& edited, auto&, const auto& save) {
                    edited.Set("Comment", std::u16string(u"anders"));
                    save();
                    return true;
                });
                break;
            default:
                if (trend != 0) SetTrend(trend, "Unit", std::u16string(1 + random() % 5, u'u'));
        }
        OpenArchive(0);
    }
};

TEST_F(HistoryTest, AnyStepsGoBackToTheBeginningAndForwardToTheEnd) {
    OpenBrewery();
    std::mt19937 random(20260411);
    std::vector<Content> states{Read()};
    while (states.size() < 16) {
        DoSomething(random);
        const std::size_t steps = Steps().Done().size();
        EndStep();
        if (Steps().Done().size() > steps) states.push_back(Read());
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = states.size() - 1; i-- > 0;) {
            const auto outcome = Undo();
            EXPECT_TRUE(outcome.taken.open.empty());
            EXPECT_FALSE(outcome.changes.IsEmpty());
            ASSERT_EQ(Read(), states[i]) << "back to " << i;
        }
        EXPECT_TRUE(Steps().Done().empty());
        for (std::size_t i = 1; i < states.size(); ++i) {
            std::ignore = Redo();
            ASSERT_EQ(Read(), states[i]) << "forward to " << i;
        }
        EXPECT_TRUE(Steps().Undone().empty());
    }
    std::ignore = Undo();
    SetTrend(projectdb::ProjectRows(Environment()).Trends().RecordCount() > 0 ? 1 : 0, "Comment",
             std::u16string(u"neu"));
    EndStep();
    EXPECT_TRUE(Steps().Undone().empty()) << "a new step ends the way forward";
}

TEST_F(HistoryTest, WhatAnotherHasChangedIsAskedForFieldByField) {
    OpenBrewery();
    const ado::Value unit = TrendValue(1, "Unit");
    const ado::Value comment = TrendValue(1, "Comment");
    projectdb::ProjectRows rows(Environment());
    ASSERT_TRUE(rows.SeekTrend(1));
    rows.Trends().Set("Unit", std::u16string(u"mbar"));
    rows.Trends().Set("Comment", std::u16string(u"meiner"));
    rows.Trends().Update();
    EndStep();
    Meanwhile([](projectdb::ProjectRows& other) {
        ASSERT_TRUE(other.SeekTrend(1));
        other.Trends().Set("Unit", std::u16string(u"Pa"));
        other.Trends().Set("Factor", 3.5);
        other.Trends().Update();
    });
    const Content before = Read();
    const std::vector<project::Conflict> open = Undo().taken.open;
    ASSERT_EQ(open.size(), 1U) << "what another program alone has changed is no matter of the step";
    EXPECT_EQ(open[0].kind, Kind::Field);
    EXPECT_EQ(open[0].column, "Unit");
    EXPECT_EQ(open[0].was, ado::Value(std::u16string(u"mbar")));
    EXPECT_EQ(open[0].theirs, ado::Value(std::u16string(u"Pa")));
    EXPECT_EQ(open[0].mine, unit);
    EXPECT_EQ(Read(), before) << "nothing is written before it is settled";
    EXPECT_EQ(Steps().Done().size(), 1U);

    // Settled for what the user has seen; by now it is another value.
    const project::Settlement mine{open[0], true};
    Meanwhile([](projectdb::ProjectRows& other) {
        ASSERT_TRUE(other.SeekTrend(1));
        other.Trends().Set("Unit", std::u16string(u"hPa"));
        other.Trends().Update();
    });
    ASSERT_EQ(Undo(std::span(&mine, 1)).taken.open.size(), 1U);
    const project::Settlement theirs{Undo().taken.open[0], false};
    EXPECT_TRUE(Undo(std::span(&theirs, 1)).taken.open.empty());
    EXPECT_EQ(TrendValue(1, "Unit"), ado::Value(std::u16string(u"hPa")));
    EXPECT_EQ(TrendValue(1, "Comment"), comment);
    EXPECT_EQ(TrendValue(1, "Factor"), ado::Value(3.5));

    std::ignore = Redo();
    EXPECT_EQ(TrendValue(1, "Unit"), ado::Value(std::u16string(u"hPa"))) << "left to the other";
    EXPECT_EQ(TrendValue(1, "Comment"), ado::Value(std::u16string(u"meiner")));
}

TEST_F(HistoryTest, RowsThatAnotherHasChangedDeletedOrFilled) {
    struct Case {
        const char* name;
        std::function<void()> step;
        std::function<void(projectdb::ProjectRows&)> meanwhile;
        std::optional<Kind> conflict;
    };
    const Case cases[] = {
        {"the same value on both sides", [this] { SetTrend(1, "Unit", std::u16string(u"neu")); },
         [](auto& rows) {
             std::ignore = rows.SeekTrend(1);
             rows.Trends().Set("Unit", std::u16string(u"°C"));
             rows.Trends().Update();
         },
         std::nullopt},
        {"made, changed since",
         [this] {
             OpenArchive(1);
             trends_.New();
         },
         [](auto& rows) {
             rows.Trends().MoveLast();
             rows.Trends().Set("Unit", std::u16string(u"bar"));
             rows.Trends().Update();
         },
         Kind::RowChanged},
        {"made, filled since", [this] { archives_.New(QStringLiteral("L1031")); },
         [](auto& rows) {
             rows.Archives().MoveLast();
             const std::int32_t archive = ado::ToLong(rows.Archives().Get("ID"));
             project::NewTrend trend;
             trend.name = std::u16string(u"Fremd");
             std::ignore = rows.AddTrend(archive, trend);
         },
         Kind::RowInUse},
        {"edited, deleted since", [this] { SetTrend(1, "Unit", std::u16string(u"neu")); },
         [](auto& rows) { std::ignore = rows.SeekTrend(1), rows.Trends().Delete(); },
         Kind::RowGone},
    };
    OpenBrewery();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Steps().Clear();
        std::ignore = Environment().Recorder().Take();
        SetTrend(1, "Unit", std::u16string(u"°C"));
        std::ignore = Environment().Recorder().Take();
        c.step();
        EndStep();
        Meanwhile(c.meanwhile);
        const Content before = Read();
        const auto outcome = Undo();
        if (c.conflict) {
            ASSERT_EQ(outcome.taken.open.size(), 1U);
            EXPECT_EQ(outcome.taken.open[0].kind, *c.conflict);
            EXPECT_EQ(Steps().Done().size(), 1U);
        } else {
            EXPECT_TRUE(outcome.taken.open.empty());
            EXPECT_TRUE(outcome.changes.IsEmpty());
        }
        EXPECT_EQ(Read(), before);
    }
}

TEST_F(HistoryTest, ANumberThatIsTakenIsGivenAnewAndEverybodyWhoNamesItFollows) {
    OpenBrewery();
    archives_.Edit(1, [](auto& edited, auto&, const auto& save) {
        edited.Set("Comment", std::u16string(u"vorher"));
        save();
        return true;
    });
    EndStep();
    const Content whole = Read();
    OpenArchive(1);
    archives_.Delete(QStringLiteral("ARCH1"), {}, {});
    EXPECT_FALSE(EndStep().isEmpty());
    Meanwhile([](projectdb::ProjectRows& rows) {
        rows.Archives().AddNew();
        rows.Archives().Set("ID", 1);
        rows.Archives().Set("Name", std::u16string(u"Fremd"));
        rows.Archives().Update();
    });
    const std::vector<project::Conflict> open = Undo().taken.open;
    ASSERT_EQ(open.size(), 1U);
    EXPECT_EQ(open[0].kind, Kind::NumberTaken);
    const project::Settlement anew{open[0], true};
    const auto outcome = Undo(std::span(&anew, 1));
    ASSERT_EQ(outcome.taken.renumbered.size(), 1U);
    const std::int32_t number = outcome.taken.renumbered[0].is;
    projectdb::ProjectRows rows(Environment());
    ASSERT_TRUE(rows.SeekArchive(number));
    EXPECT_EQ(rows.Archives().Get("Comment"), ado::Value(std::u16string(u"vorher")));
    EXPECT_TRUE(rows.SeekTrendsOf(number));
    EXPECT_EQ(rows.Trends().RecordCount(), 24U);
    EXPECT_FALSE(rows.SeekTrendsOf(1));
    ASSERT_TRUE(rows.SeekGroup(number));
    // The step before is about the same archive, whatever its number is.
    std::ignore = Undo();
    ASSERT_TRUE(rows.SeekArchive(number));
    EXPECT_NE(rows.Archives().Get("Comment"), ado::Value(std::u16string(u"vorher")));
    ASSERT_TRUE(rows.SeekArchive(1));
    EXPECT_EQ(rows.Archives().Get("Name"), ado::Value(std::u16string(u"Fremd")));
    // And forward again: all of it, but under the new number.
    std::ignore = Redo();
    std::ignore = Redo();
    EXPECT_FALSE(rows.SeekArchive(number));
    EXPECT_EQ(Read().size(), whole.size());
}

/// A file of this process can grow no further; a write beyond is refused, or ends the process.
void LimitFiles(rlim_t bytes, bool kills) {
    std::signal(SIGXFSZ, kills ? SIG_DFL : SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

/// Cut off in the middle, by a kill or a full disk, a step back is made whole or not at all.
TEST_F(HistoryTest, AStepBackThatIsCutOffLeavesTheFileAsItWasBefore) {
    OpenBrewery();
    const Content start = Read();
    archives_.Delete(QStringLiteral("ARCH1"), {}, {});
    const Content deleted = Read();
    EndStep();
    std::ignore = Undo();
    Environment().CloseConnection();
    const std::string source = path_;
    const auto size = static_cast<rlim_t>(std::filesystem::file_size(source));
    int whole = 0;
    int cutOff = 0;
    for (const bool kills : {true, false}) {
        for (rlim_t limit = 4096; limit <= size + 65536; limit += size / 9) {
            path_ = source + std::to_string(limit) + (kills ? "k.kvs" : "r.kvs");
            std::filesystem::copy_file(source, path_);
            const pid_t child = ::fork();
            if (child == 0) {
                Environment().OpenConnection(projectdb::ToQString(path_));
                project_.history = {};
                archives_.Delete(QStringLiteral("ARCH1"), {}, {});
                EndStep();
                LimitFiles(limit, kills);
                try {
                    std::ignore = Undo();
                } catch (const ado::AdoError&) {
                    ::_exit(Steps().Done().size() == 1 ? 1 : 2);
                }
                ::_exit(0);
            }
            int status = 0;
            ::waitpid(child, &status, 0);
            const bool done = WIFEXITED(status) && WEXITSTATUS(status) == 0;
            ++(done ? whole : cutOff);
            EXPECT_EQ(WIFSIGNALED(status), kills && !done) << limit;
            EXPECT_TRUE(!WIFEXITED(status) || WEXITSTATUS(status) != 2) << "the step is lost";
            EXPECT_EQ(Read(), done ? start : deleted) << limit << (kills ? " killed" : " refused");
            EXPECT_TRUE(ErrorsIn(path_).empty()) << limit;
        }
    }
    path_ = source;
    EXPECT_GT(whole, 0);
    EXPECT_GT(cutOff, 6);
}

TEST_F(HistoryTest, TheOldestStepsGo) {
    OpenBrewery();
    for (std::size_t i = 0; i < project::History::kMostSteps + 3; ++i) {
        SetTrend(1, "Comment", projectdb::ToUtf16(QString::number(i)));
        EndStep();
    }
    EXPECT_EQ(Steps().Done().size(), project::History::kMostSteps);
    // A big step stays, and what is older goes.
    project::ChangeSet big;
    ado::RowChange row = Steps().Done().back().changes.Rows()[0];
    row.after[2] = std::u16string(project::History::kMostBytes, u'x');
    big.Add({row});
    Steps().Add(u"groß", std::move(big));
    EXPECT_EQ(Steps().Done().size(), 1U);
}

TEST_F(HistoryTest, StepsBelongToTheirProject) {
    OpenBrewery();
    EXPECT_FALSE(Steps().DropForeign(Environment().Connection()));
    SetTrend(1, "Unit", std::u16string(u"bar"));
    EndStep();
    EXPECT_FALSE(Steps().DropForeign(Environment().Connection())) << "the same once more";
    const std::string elsewhere = path_ + ".other.kvs";
    std::filesystem::copy_file(KV_TEST_DATA "/Leer.kvs", elsewhere);
    ADOArchiv other;
    other.OpenConnection(projectdb::ToQString(elsewhere));
    EXPECT_TRUE(Steps().DropForeign(other.Connection()));
    EXPECT_TRUE(Steps().Done().empty());
}

TEST_F(HistoryTest, AStepBearsWhatItDoesAndToHowMany) {
    OpenBrewery();
    MResources::TextTable texts;
    texts.SetLanguage(MResources::kGerman);
    const auto name = [&](const std::function<void()>& command) {
        std::ignore = Environment().Recorder().Take();
        command();
        return StepName(Environment().Recorder().Take(), texts).toStdString();
    };
    OpenArchive(1);
    const std::string archive = [&] {
        projectdb::ProjectRows rows(Environment());
        std::ignore = rows.SeekArchive(1);
        return projectdb::ToUtf8(projectdb::ToQString(project::NameOf(rows.Archives())));
    }();
    const std::string trend =
        projectdb::ToUtf8(projectdb::ToQString(ado::ToText(TrendValue(1, "Name"))));
    EXPECT_EQ(name([&] { SetTrend(1, "Unit", std::u16string(u"bar")); }),
              "Ändern von Trend " + trend + ": Einheit");
    EXPECT_EQ(name([&] {
                  std::ignore = copies_.DuplicateTrends(std::array{1, 2}, {});
              }),
              "2 neue Trends");
    EXPECT_EQ(name([&] { trends_.Delete(std::array{2}, {}, {}); }).substr(0, 18),
              "Löschen von Trend");
    EXPECT_EQ(name([&] { archives_.Delete(QStringLiteral("ARCH1"), {}, {}); }),
              "Löschen von Archiv " + archive + " mit 25 Trends");
}

}  // namespace
