#include "words/Words.h"

#include <algorithm>
#include <vector>

#include "unicode/Unicode.h"
#include "words/TextFiles.h"

namespace words {
namespace {

std::string_view Trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

std::u16string WithoutAccessKeys(std::string_view text) {
    std::u16string plain = unicode::ToUtf16(text);
    std::erase(plain, u'&');
    return plain;
}

}  // namespace

Language::Language(std::string_view name, std::string_view file) : name_(name) {
    while (!file.empty()) {
        const std::size_t end = std::min(file.find('\n'), file.size());
        const std::string_view line = file.substr(0, end);
        file.remove_prefix(std::min(end + 1, file.size()));
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos || line.starts_with('#')) continue;
        texts_[std::string(Trimmed(line.substr(0, sign)))] =
            WithoutAccessKeys(Trimmed(line.substr(sign + 1)));
    }
}

std::u16string Language::Text(int number) const {
    const std::string key = std::to_string(number);
    const auto found = texts_.find(key);
    return found != texts_.end() ? found->second : unicode::ToUtf16(key);
}

std::u16string Language::Text(std::string_view key) const {
    const auto found = texts_.find(std::string(key));
    return found != texts_.end() ? found->second : std::u16string();
}

std::span<const Language> Languages() {
    static const std::vector<Language> kLanguages{{"de", kGermanFile}, {"en", kEnglishFile}};
    return kLanguages;
}

const Language& LanguageOf(std::string_view locale) {
    const Language* language = FindLanguage(locale.substr(0, locale.find_first_of("_.@")));
    return language != nullptr ? *language : Languages().back();
}

const Language* FindLanguage(std::string_view name) {
    const auto languages = Languages();
    const auto found = std::find_if(languages.begin(), languages.end(),
                                    [&](const Language& each) { return each.Name() == name; });
    return found != languages.end() ? &*found : nullptr;
}

}  // namespace words
