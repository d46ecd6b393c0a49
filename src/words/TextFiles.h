#pragma once

#include <string_view>

namespace words {

/// The files of texts as they are, UTF-8.
extern const std::string_view kGermanFile;
extern const std::string_view kEnglishFile;

}  // namespace words
