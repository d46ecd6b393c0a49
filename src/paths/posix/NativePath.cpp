#include "paths/NativePath.h"

#include <strings.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace paths {
namespace {

namespace fs = std::filesystem;

/// `name` in `folder` as the folder spells it; `name` itself when there is no such entry or when
/// several differ only in capitals.
fs::path SpelledAsStored(const fs::path& folder, const fs::path& name) {
    std::error_code error;
    if (fs::symlink_status(folder / name, error).type() != fs::file_type::not_found) return name;
    fs::path found;
    fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path stored = entry->path().filename();
        if (strcasecmp(stored.c_str(), name.c_str()) != 0) continue;
        if (!found.empty()) return name;
        found = stored;
    }
    return found.empty() ? name : found;
}

/// Stations that write such paths ignore blanks and dots at the end of a name.
std::string WithoutTrail(const std::string& name) {
    const std::size_t last = name.find_last_not_of(" .");
    return last == std::string::npos ? name : name.substr(0, last + 1);
}

}  // namespace

std::string ToNative(std::string_view path) {
    const bool drive = path.size() >= 2 && path[1] == ':' &&
                       std::isalpha(static_cast<unsigned char>(path[0])) != 0;
    if (!drive && path.find('\\') == std::string_view::npos) return std::string(path);

    std::string root;
    if (drive) {
        const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
        const char* mapped = std::getenv((std::string("KV_DRIVE_") + letter).c_str());
        root = mapped != nullptr ? mapped : "/";
        path.remove_prefix(2);
    }
    std::string slashed(path);
    for (char& c : slashed) {
        if (c == '\\') c = '/';
    }
    fs::path native = root.empty() ? fs::path() : fs::path(root);
    for (const fs::path& part : fs::path(slashed)) {
        if (part == "/") {
            if (native.empty()) native = "/";
        } else if (!part.empty()) {
            native /= SpelledAsStored(native, WithoutTrail(part.string()));
        }
    }
    return native.string();
}

}  // namespace paths
