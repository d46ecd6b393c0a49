#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace tools {

/// What `write` puts into the stream that it gets.
[[nodiscard]] inline std::string Written(const std::function<void(std::FILE*)>& write) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* stream = ::open_memstream(&text, &size);
    write(stream);
    std::fclose(stream);
    std::string result(text, size);
    std::free(text);
    return result;
}

}  // namespace tools
