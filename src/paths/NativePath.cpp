#include "paths/NativePath.h"

namespace paths {

std::string ToProject(std::string_view nativePath) {
    std::string path(nativePath);
    if (path.find('\\') != std::string::npos) return path;
    for (char& c : path) {
        if (c == '/') c = '\\';
    }
    return path;
}

std::filesystem::path FileOf(std::string_view nativePath) {
    return std::u8string(nativePath.begin(), nativePath.end());
}

std::string TextOf(const std::filesystem::path& file) {
    const std::u8string text = file.u8string();
    return {text.begin(), text.end()};
}

}  // namespace paths
