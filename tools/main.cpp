#include <csignal>

#include "tools/Commands.h"

int main(int argc, char** argv) {
    // A reader that closes the pipe is a failed write with a message, not a silent death.
    std::signal(SIGPIPE, SIG_IGN);
    return tools::Run(argc, argv, stdout, stderr);
}
