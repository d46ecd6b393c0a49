#include "backups/detail/BackupName.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace backups {
namespace {

constexpr const char* kForm = "%04d-%02d-%02dT%02d-%02d-%02d.%03dZ.kvs";
constexpr int kParts = 7;

/// The same for the same path in every version: folders are found by it.
std::uint64_t Fnv1a(const std::string& text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

}  // namespace

std::string NameOf(Moment taken) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(taken);
    const std::time_t time = seconds.time_since_epoch().count();
    std::tm parts{};
    ::gmtime_r(&time, &parts);
    std::array<char, 64> name{};
    std::snprintf(name.data(), name.size(), kForm, parts.tm_year + 1900, parts.tm_mon + 1,
                  parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>((taken - seconds).count()));
    return name.data();
}

std::optional<Moment> TakenOf(const std::string& name) {
    std::tm parts{};
    int milliseconds = 0;
    const int found =
        std::sscanf(name.c_str(), kForm, &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &milliseconds);
    if (found != kParts) return std::nullopt;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    const Moment taken = std::chrono::sys_seconds(std::chrono::seconds(::timegm(&parts))) +
                         std::chrono::milliseconds(milliseconds);
    // Only a name that NameOf has made.
    return NameOf(taken) == name ? std::optional(taken) : std::nullopt;
}

std::string FolderNameOf(const std::string& project) {
    std::string name = project.substr(project.rfind('/') + 1);
    if (const std::size_t dot = name.rfind('.'); dot != std::string::npos && dot > 0) {
        name.resize(dot);
    }
    constexpr std::size_t kMost = 200;  // bytes; a name has at most 255
    if (name.size() > kMost) {
        std::size_t end = kMost;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
        name.resize(end);
    }
    std::array<char, 20> number{};
    std::snprintf(number.data(), number.size(), "-%016llx",
                  static_cast<unsigned long long>(Fnv1a(project)));
    return name + number.data();
}

}  // namespace backups
