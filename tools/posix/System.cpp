#include "tools/System.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace tools {

void PrepareStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsFile(std::FILE* stream) {
    struct stat info {};
    const int descriptor = ::fileno(stream);
    return descriptor < 0 || (::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode));
}

bool IsTerminal(std::FILE* stream) {
    return ::isatty(::fileno(stream)) != 0;
}

bool TakesText(std::FILE* terminal) {
    pollfd waiting{::fileno(terminal), POLLOUT, 0};
    return ::poll(&waiting, 1, 0) == 1 && (waiting.revents & POLLOUT) != 0;
}

std::string UserName() {
    const char* name = std::getenv("USER");
    return name != nullptr ? name : "";
}

PrivateFiles::PrivateFiles() : before_(::umask(S_IRWXG | S_IRWXO)) {}

PrivateFiles::~PrivateFiles() {
    ::umask(before_);
}

}  // namespace tools
