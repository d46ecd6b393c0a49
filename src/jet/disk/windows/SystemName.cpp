#include "jet/disk/SystemName.h"

#include <windows.h>

#include <array>
#include <cctype>

#include "unicode/Unicode.h"

namespace jet {

const char* const kSeparators = "/\\";

std::string ComputerName() {
    std::array<wchar_t, 256> name{};
    DWORD size = name.size();
    if (::GetComputerNameW(name.data(), &size) == 0) return {};
    return unicode::ToUtf8(std::u16string(name.data(), name.data() + size));
}

unsigned long ProcessNumber() {
    return ::GetCurrentProcessId();
}

bool IsWholePath(const std::string& path) {
    const bool hasDrive = path.size() >= 3 && path[1] == ':' &&
                          std::isalpha(static_cast<unsigned char>(path[0])) != 0 &&
                          (path[2] == '\\' || path[2] == '/');
    return hasDrive || path.starts_with("\\\\") || path.starts_with("//");
}

}  // namespace jet
