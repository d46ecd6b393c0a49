#include "tools/Commands.h"

namespace tools {

ExitStatus GitSetup(const std::string& /*folder*/, std::FILE* /*out*/, std::FILE* err) {
    std::fputs("kvs: git-setup: it is not there on Windows\n", err);
    return kFailure;
}

}  // namespace tools
