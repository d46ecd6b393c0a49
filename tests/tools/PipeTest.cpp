#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <fstream>
#include <set>
#include <thread>

#include "tools/InputFile.h"
#include "tools/Spool.h"
#include "ToolTesting.h"

namespace tools {
namespace {

using Clock = std::chrono::steady_clock;

/// How long the programs run; KV_TEST_SECONDS makes it longer.
std::chrono::milliseconds RunTime() {
    const char* seconds = std::getenv("KV_TEST_SECONDS");
    return std::chrono::milliseconds(seconds != nullptr ? 1000 * std::atoi(seconds) : 1500);
}

/// A pipe that holds a page.
class Pipe {
public:
    Pipe() {
        ::signal(SIGPIPE, SIG_IGN);  // as the program does
        EXPECT_EQ(::pipe(ends_.data()), 0);
        ::fcntl(ends_[1], F_SETPIPE_SZ, kSize);
        in_ = ::fdopen(ends_[1], "w");
    }
    ~Pipe() {
        CloseReader();
        if (in_ != nullptr) std::fclose(in_);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] std::FILE* In() const { return in_; }
    void CloseWriter() {
        std::fclose(in_);
        in_ = nullptr;
    }
    void CloseReader() {
        if (ends_[0] >= 0) ::close(ends_[0]);
        ends_[0] = -1;
    }
    void WaitUntilFull() const {
        for (int size = 0; size < kSize; std::this_thread::yield()) {
            ASSERT_EQ(::ioctl(ends_[0], FIONREAD, &size), 0);
        }
    }
    std::string Read(std::size_t most) const {
        std::string text(most, '\0');
        const ssize_t count = ::read(ends_[0], text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }
    [[nodiscard]] std::string ReadAll() const {
        std::string all;
        for (std::string text = Read(65536); !text.empty(); text = Read(65536)) all += text;
        return all;
    }

private:
    static constexpr int kSize = 4096;
    std::array<int, 2> ends_{-1, -1};
    std::FILE* in_ = nullptr;
};

TEST(PipeTest, ASpoolNeverWaitsAndKeepsTheOrder) {
    const Pipe pipe;
    std::string all;
    {
        Spool spool(pipe.In());
        for (std::size_t i = 0; all.size() < Spool::kMostInMemory + (std::size_t{3} << 20); ++i) {
            const std::string block(60'000 + i, static_cast<char>('a' + i % 26));
            all += block;
            EXPECT_TRUE(spool.Put(block));
        }
        // It would fit into memory, and is not to come before what did not.
        all += "small";
        EXPECT_TRUE(spool.Put("small"));
        std::string read;
        while (read.size() < all.size()) read += pipe.Read(1 << 20);
        EXPECT_TRUE(read == all);
        // When the temporary file has been emptied, memory is used again.
        EXPECT_TRUE(spool.Put("end"));
        EXPECT_EQ(pipe.Read(3), "end");
        spool.Finish();
        EXPECT_EQ(spool.Error(), "");
    }
}

TEST(PipeTest, ADumpIntoAStuckPipeHoldsNobodyOff) {
    const ProjectCopy copy(kBrewery);
    const std::string before = RunTool({"dump", copy.Path(), "TchrTrends"}).out;
    Pipe pipe;
    std::thread dump([&] {
        EXPECT_EQ(Dump(copy.Path(), "TchrTrends", {}, pipe.In(), stderr), kSuccess);
        pipe.CloseWriter();
    });
    pipe.WaitUntilFull();
    EXPECT_EQ(RunTool({"set", copy.Path(), "TchrTrends", "", "Comment=neu"}).out, "228 rows\n");
    const std::string all = pipe.ReadAll();
    dump.join();
    EXPECT_EQ(all, before);
}

TEST(PipeTest, AReaderThatHasEnoughIsNoFailureToSpeakOf) {
    for (const DumpFormat format : {DumpFormat::Csv, DumpFormat::Json}) {
        Pipe pipe;
        const std::string err = Written([&](std::FILE* stream) {
            std::thread dump([&] {
                EXPECT_EQ(Dump(kBrewery, "TchrTrends", {format}, pipe.In(), stream), kFailure);
                pipe.CloseWriter();
            });
            EXPECT_FALSE(pipe.Read(10).empty());
            pipe.CloseReader();
            dump.join();
        });
        EXPECT_EQ(err, "");
    }
}

TEST(PipeTest, ALoadFromASlowPipeHoldsNobodyOff) {
    const ProjectCopy copy(kBrewery);
    const std::string fifo = copy.Path("rows.csv");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    Outcome loaded;
    std::thread load([&] { loaded = RunTool({"load", copy.Path(), "TidxTexts", fifo}); });
    std::FILE* rows = std::fopen(fifo.c_str(), "w");  // returns when the other end is open
    std::fputs("ParentID,L1031\r\n1,\xEF\xBB\xBFMark\r\n", rows);
    std::fflush(rows);
    EXPECT_EQ(RunTool({"set", copy.Path(), "TidxTexts", "ID = 1", "L1031=neu"}).out, "1 row\n");
    for (int i = 0; i < 1000; ++i) std::fprintf(rows, "1,Text %d\r\n", i);
    std::fclose(rows);
    load.join();
    EXPECT_EQ(loaded.out, "1001 rows\n") << loaded.err;
    EXPECT_THAT(RunTool({"dump", copy.Path(), "TidxTexts"}).out,
                testing::HasSubstr(",\xEF\xBB\xBFMark,"));
}

// A file may lie where reading takes long, or somebody may write it meanwhile.
TEST(PipeTest, WhatIsLoadedIsReadWholeBeforeAnythingElse) {
    const ProjectCopy folder(kBrewery);
    const std::string path = folder.Path("rows.csv");
    for (const std::size_t size : {std::size_t{1000}, InputFile::kMostInMemory + 1'000'000}) {
        std::string all;
        for (int i = 0; all.size() < size; ++i) all += std::to_string(i) + "\r\n";
        std::ofstream(path) << all;
        InputFile in;
        ASSERT_TRUE(in.Open(path).IsOk());
        ASSERT_TRUE(in.Collect().IsOk());
        std::ofstream(path) << "other";
        std::string read;
        for (;;) {
            const auto bytes = in.Next();
            if (bytes.empty()) break;
            read += bytes;
        }
        EXPECT_EQ(in.Error(), "");
        EXPECT_TRUE(read == all) << size;
    }
}

// Each change sets all rows to one number: a dump that shows two has mixed two states.
TEST(PipeTest, ADumpBesideWritersShowsOneState) {
    const ProjectCopy copy(kBrewery);
    ASSERT_EQ(RunTool({"set", copy.Path(), "TchrTrends", "", "Comment=0"}).err, "");
    const auto end = Clock::now() + RunTime();
    std::vector<pid_t> writers;
    for (int number = 0; number < 2; ++number) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::FILE* nowhere = std::fopen("/dev/null", "w");
            int changes = 0;
            int failures = 0;
            for (; Clock::now() < end || changes == 0; ++changes) {
                const std::string text = std::to_string(2 * changes + number);
                // Of different lengths, so that rows move.
                const std::string comment =
                    "Comment=" + text +
                    std::string(static_cast<std::size_t>(changes % 7) * 20, '.');
                const ExitStatus status =
                    Set(copy.Path(), "TchrTrends", "", {comment, "VMax=" + text}, Mode::Change,
                        nowhere, nowhere);
                failures += status == kSuccess ? 0 : 1;
            }
            ::_exit(failures == 0 ? 0 : 1);
        }
        writers.push_back(child);
    }
    std::size_t dumps = 0;
    std::string last;
    std::size_t changes = 0;
    while (Clock::now() < end || changes < 2) {
        const Outcome outcome = RunTool({"dump", copy.Path(), "TchrTrends"});
        ASSERT_EQ(outcome.err, "");
        ++dumps;
        if (outcome.out == last) continue;
        last = outcome.out;
        ++changes;
        const Outcome tables = RunTool({"tables", copy.Path()});
        EXPECT_THAT(tables.out, testing::HasSubstr("TchrTrends\t228\n"));
        std::set<std::string> comments;
        for (std::size_t at = last.find("\r\n") + 2; at < last.size();
             at = last.find("\r\n", at) + 2) {
            const std::size_t lineEnd = last.find("\r\n", at);
            const std::size_t comment = last.rfind(',', lineEnd) + 1;  // the last column
            comments.insert(last.substr(comment, lineEnd - comment));
        }
        EXPECT_EQ(comments.size(), 1U) << "after " << dumps << " dumps";
    }
    for (const pid_t writer : writers) {
        int status = 0;
        ::waitpid(writer, &status, 0);
        EXPECT_EQ(status, 0) << "a writer was held off";
    }
    EXPECT_EQ(RunTool({"check", copy.Path()}).out, "");
}

}  // namespace
}  // namespace tools
