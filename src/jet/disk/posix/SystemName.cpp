#include "jet/disk/SystemName.h"

#include <unistd.h>

#include <array>

namespace jet {

const char* const kSeparators = "/";

std::string ComputerName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

unsigned long ProcessNumber() {
    return static_cast<unsigned long>(::getpid());
}

bool IsWholePath(const std::string& path) {
    return path.starts_with('/');
}

}  // namespace jet
