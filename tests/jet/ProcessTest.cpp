#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "jet/Check.h"
#include "jet/disk/FileLocks.h"
#include "jet/TableWriter.h"
#include "JetTesting.h"
#include "support/NewFolder.h"

namespace jet {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// How long the programs run; KV_TEST_SECONDS makes it longer.
std::chrono::milliseconds RunTime() {
    const char* seconds = std::getenv("KV_TEST_SECONDS");
    return std::chrono::milliseconds(seconds != nullptr ? 1000 * std::atoi(seconds) : 1500);
}

/// Several programs that change one file: each adds 1 to a number that all share, and adds a row
/// of its own, in one transaction.
class ProcessTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-jet");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
        EXPECT_EQ(::pipe(pipe_), 0);
        start_ = Number();
    }
    void TearDown() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
        fs::remove_all(folder_);
    }

    std::unique_ptr<Database> Open(OpenMode mode) {
        return Must(Database::Open(SystemDisk(), path_, mode));
    }

    /// The shared number: a column of the first archive.
    std::int32_t Number() {
        auto database = Open(OpenMode::Read);
        auto table = Must(database->OpenTable("TchrArchives"));
        return NumberIn(*table, AllRows(*table).at(0).Id());
    }
    static std::int32_t NumberIn(Table& table, RowId row) {
        const std::size_t column = table.Definition().FindColumn("CacheSize").value();
        return std::get<std::int32_t>(Must(Must(table.Fetch(row)).Get(column)));
    }

    /// One transaction; tells its success through the pipe.
    void ChangeOnce(Database& database, Table& table, RowId row, std::size_t count) {
        const std::size_t number = table.Definition().FindColumn("CacheSize").value();
        TableWriter writer(table);
        if (!database.Begin().IsOk()) return;
        const std::array<Assignment, 1> next = {
            Assignment{number, Value(NumberIn(table, row) + 1)}};
        Status status = writer.Update(row, next);
        const std::array<Assignment, 2> own = {
            Assignment{1, Value(u"P" + std::u16string(count % 40, u'x'))},
            Assignment{number, Value(-1)}};
        if (status.IsOk()) status = writer.Insert(own).GetStatusOrOk();
        if (!status.IsOk()) {
            std::ignore = database.Rollback();
            return;
        }
        if (database.Commit().IsOk()) std::ignore = ::write(pipe_[1], "+", 1);
    }

    /// Works until it is killed, or until StopWriters.
    pid_t StartWriter() {
        const pid_t child = ::fork();
        if (child != 0) return child;
        int status = 1;
        try {
            auto database = Open(OpenMode::ReadWrite);
            auto table = Must(database->OpenTable("TchrArchives"));
            const RowId row = AllRows(*table).at(0).Id();
            for (std::size_t i = 0; !fs::exists(folder_ / "stop"); ++i) {
                ChangeOnce(*database, *table, row, i);
            }
            status = 0;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "writer: %s\n", error.what());
        }
        ::_exit(status);
    }

    void StopWriters() { std::ofstream(folder_ / "stop").flush(); }

    /// Of those transactions, how many Told has not read yet.
    [[nodiscard]] std::size_t ToldAndNotRead() const {
        int told = 0;
        EXPECT_EQ(::ioctl(pipe_[0], FIONREAD, &told), 0);
        return static_cast<std::size_t>(told);
    }

    /// The transactions whose success has been told so far.
    std::size_t Told() {
        ::close(pipe_[1]);
        std::array<char, 4096> buffer{};
        std::size_t told = 0;
        for (ssize_t n = 0; (n = ::read(pipe_[0], buffer.data(), buffer.size())) > 0;) {
            told += static_cast<std::size_t>(n);
        }
        pipe_[1] = ::dup(pipe_[0]);  // for TearDown
        return told;
    }

    std::size_t OwnRows() {
        auto database = Open(OpenMode::Read);
        auto table = Must(database->OpenTable("TchrArchives"));
        const std::size_t column = table->Definition().FindColumn("CacheSize").value();
        std::size_t count = 0;
        for (const Row& row : AllRows(*table)) count += Must(row.Get(column)) == Value(-1) ? 1 : 0;
        return count;
    }

    void ExpectSound() {
        auto file = Must(OpenFile(path_));
        ASSERT_OK(Check(*file, [](const Finding& finding) {
            EXPECT_NE(finding.severity, Finding::Severity::Error) << finding.text;
            return true;
        }));
    }

    fs::path folder_;
    std::string path_;
    int pipe_[2] = {-1, -1};
    std::int32_t start_ = 0;
};

TEST_F(ProcessTest, NothingIsLostBetweenFourPrograms) {
    const auto end = Clock::now() + RunTime();
    std::vector<pid_t> writers;
    for (int i = 0; i < 4; ++i) writers.push_back(StartWriter());
    // Meanwhile a reader never sees one half of a transaction without the other.
    auto database = Open(OpenMode::Read);
    auto table = Must(database->OpenTable("TchrArchives"));
    const RowId row = AllRows(*table).at(0).Id();
    std::int32_t seen = start_;
    std::size_t changes = 0;
    // The reader must have seen the writers at work, however little of it they get done.
    while (Clock::now() < end || changes <= 5 || seen - start_ <= 20) {
        const std::int32_t now = NumberIn(*table, row);
        EXPECT_GE(now, seen) << "a stale read";
        changes += now != seen ? 1 : 0;
        seen = now;
        EXPECT_GE(AllRows(*table).size(), 14 + static_cast<std::size_t>(seen - start_));
    }
    StopWriters();
    for (const pid_t writer : writers) {
        int status = 0;
        ::waitpid(writer, &status, 0);
        EXPECT_EQ(status, 0);
    }
    const std::size_t told = Told();
    EXPECT_EQ(static_cast<std::size_t>(Number() - start_), told);
    EXPECT_EQ(OwnRows(), told);
    ExpectSound();
}

TEST_F(ProcessTest, AProgramThatIsKilledLeavesASoundFile) {
    std::mt19937 random(std::random_device{}());
    const auto end = Clock::now() + RunTime();
    std::size_t kills = 0;
    while (Clock::now() < end) {
        const std::size_t enough = ToldAndNotRead() + random() % 4;
        const bool isInCommit = random() % 2 == 0;
        const pid_t writer = StartWriter();
        while (ToldAndNotRead() < enough || (isInCommit && !fs::exists(path_ + "-journal"))) {
            ASSERT_EQ(::waitpid(writer, nullptr, WNOHANG), 0) << "it has ended by itself";
            std::this_thread::yield();
        }
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        ++kills;
    }
    const std::size_t told = Told();
    const auto number = static_cast<std::size_t>(Number() - start_);
    // The last transaction of each may have been committed and not told.
    EXPECT_GE(number, told);
    EXPECT_LE(number, told + kills);
    EXPECT_EQ(OwnRows(), number);
    ExpectSound();
    EXPECT_FALSE(fs::exists(path_ + "-journal"));
}

TEST_F(ProcessTest, TheLockFileShowsWhoIsThereAndGoesWithTheLast) {
    const std::string lockFile = (folder_ / "project.ldb").string();
    auto first = Open(OpenMode::ReadWrite);
    EXPECT_TRUE(fs::exists(lockFile));
    EXPECT_THAT(first->OtherUsers(), testing::IsEmpty());
    {
        auto second = Open(OpenMode::Read);
        EXPECT_EQ(first->OtherUsers().size(), 1U);
        EXPECT_EQ(fs::file_size(lockFile), 128U);
    }
    EXPECT_THAT(first->OtherUsers(), testing::IsEmpty());
    EXPECT_TRUE(fs::exists(lockFile));
    first.reset();
    EXPECT_FALSE(fs::exists(lockFile));
}

TEST_F(ProcessTest, OneStateIsReadWhileAWriterWaitsAndTheWriterComesNext) {
    auto reader = Open(OpenMode::Read);
    auto table = Must(reader->OpenTable("TchrArchives"));
    const RowId row = AllRows(*table).at(0).Id();
    auto later = Must(OpenFileLocks(path_, OpenMode::Read));
    Status committed(StatusCode::Busy, "");
    std::thread writer;
    {
        const ReadScope scope = reader->Hold();
        ASSERT_OK(scope.GetStatus());
        EXPECT_FALSE(reader->IsWriterWaiting());
        writer = std::thread([&] {
            auto database = Open(OpenMode::ReadWrite);
            auto rows = Must(database->OpenTable("TchrArchives"));
            const std::size_t number = rows->Definition().FindColumn("CacheSize").value();
            const std::array<Assignment, 1> change = {Assignment{number, Value(start_ + 1)}};
            committed = database->Begin();
            if (committed.IsOk()) committed = TableWriter(*rows).Update(row, change);
            if (committed.IsOk()) committed = database->Commit();
        });
        // Whoever else is going to read for long finds the writer in front of him.
        while (later->LetWriterFirst(std::chrono::milliseconds(0)).IsOk()) {
            EXPECT_EQ(NumberIn(*table, row), start_);
            std::this_thread::yield();
        }
        EXPECT_EQ(NumberIn(*table, row), start_);
        EXPECT_TRUE(reader->IsWriterWaiting());
    }
    writer.join();
    EXPECT_TRUE(committed.IsOk()) << committed.Text();
    ASSERT_OK(later->LetWriterFirst(std::chrono::milliseconds(0)));
    EXPECT_EQ(NumberIn(*table, row), start_ + 1);
}

TEST_F(ProcessTest, NothingIsChangedInsideOfAReading) {
    auto database = Open(OpenMode::ReadWrite);
    {
        const ReadScope scope = database->Hold();
        ASSERT_OK(scope.GetStatus());
        EXPECT_EQ(database->Begin().Code(), StatusCode::BadArgument);
    }
    ASSERT_OK(database->Begin());
    EXPECT_TRUE(database->Hold().GetStatus().IsOk());
    ASSERT_OK(database->Rollback());
}

TEST_F(ProcessTest, AWriterThatHasToWaitTooLongIsTold) {
    auto first = Open(OpenMode::ReadWrite);
    auto second = Open(OpenMode::ReadWrite);
    second->SetWaits({.writer = std::chrono::milliseconds(20)});
    ASSERT_OK(first->Begin());
    const Status status = second->Begin();
    EXPECT_EQ(status.Code(), StatusCode::Busy) << status.Text();
    ASSERT_OK(first->Rollback());
    ASSERT_OK(second->Begin());
    ASSERT_OK(second->Rollback());
}

}  // namespace
}  // namespace jet
