#include "tools/posix/Program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tools {
namespace {

constexpr int kNotRun = 127;

[[noreturn]] void BecomeProgram(const std::string& folder, char** arguments, int output) {
    const int nothing = ::open("/dev/null", O_RDONLY);
    if (nothing < 0 || ::dup2(nothing, STDIN_FILENO) < 0 || ::dup2(output, STDOUT_FILENO) < 0 ||
        ::dup2(output, STDERR_FILENO) < 0 || ::chdir(folder.c_str()) != 0) {
        ::_exit(kNotRun);
    }
    // Of a hook in which kvs may run.
    for (const char* name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE", "GIT_EXTERNAL_DIFF"}) {
        ::unsetenv(name);
    }
    ::execvp(arguments[0], arguments);
    ::_exit(kNotRun);
}

std::string ReadAll(int from) {
    std::string text;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t count = ::read(from, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return text;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

ProgramResult RunProgram(const std::string& folder, const std::vector<std::string>& words) {
    std::vector<std::string> own = words;
    std::vector<char*> arguments;
    for (std::string& word : own) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) return {kNotRun, std::generic_category().message(errno)};
    const pid_t child = ::fork();
    if (child == 0) BecomeProgram(folder, arguments.data(), ends[1]);
    ::close(ends[1]);
    ProgramResult result;
    result.output = ReadAll(ends[0]);
    ::close(ends[0]);
    int status = 0;
    while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    result.status = child > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : kNotRun;
    return result;
}

std::string OwnPath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

}  // namespace tools
