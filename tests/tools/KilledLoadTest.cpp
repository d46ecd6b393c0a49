#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "tools/Commands.h"
#include "ToolTesting.h"

namespace tools {
namespace {

/// Waits until `isSo`, or until the child has ended; it is left to be waited for.
template <typename Condition>
void WaitUntil(pid_t child, Condition isSo) {
    siginfo_t info{};
    while (!isSo() && info.si_pid != child) {
        ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT), 0);
        std::this_thread::yield();
    }
}

// All rows of a CSV file are there or none, whenever the program that loads them is killed.
TEST(KilledLoadTest, ItLeavesTheOldRowsOrAll) {
    const std::string folder = testing::TempDir() + "load_" + std::to_string(::getpid());
    std::filesystem::create_directory(folder);
    const std::string project = folder + "/project.kvs";
    const std::string csv = folder + "/texts.csv";
    constexpr std::size_t kRows = 2000;
    {
        std::ofstream out(csv);
        out << "L1031\r\n";
        for (std::size_t i = 0; i < kRows; ++i) out << "Text " << i << "\r\n";
    }
    std::size_t counts[2] = {0, 0};  // of projects without the rows, and with them
    for (int round = 0; round < 40; ++round) {
        std::filesystem::copy_file(kBrewery, project,
                                   std::filesystem::copy_options::overwrite_existing);
        const pid_t child = ::fork();
        if (child == 0) {
            std::FILE* out = std::fopen("/dev/null", "w");
            ::_exit(Load(project, "TidxTexts", csv, {}, Mode::Change, out, out));
        }
        // The later it is killed, the further it has come.
        const auto isThere = [&](const char* name) {
            return std::filesystem::exists(folder + "/project" + name);
        };
        const int stages = round % 4;
        if (stages > 0) WaitUntil(child, [&] { return isThere(".ldb"); });
        if (stages > 1) WaitUntil(child, [&] { return isThere(".kvs-journal"); });
        if (stages > 2) WaitUntil(child, [&] { return !isThere(".kvs-journal"); });
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        EXPECT_EQ(RunTool({"check", project}).out, "");
        const std::string rows = RunTool({"tables", project}).out;
        const bool isLoaded = rows.find("TidxTexts\t2242\n") != std::string::npos;
        EXPECT_TRUE(isLoaded || rows.find("TidxTexts\t242\n") != std::string::npos) << rows;
        EXPECT_FALSE(std::filesystem::exists(project + "-journal"));
        ++counts[isLoaded ? 1 : 0];
    }
    EXPECT_GT(counts[0], 0U) << "it was never killed in time";
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tools
