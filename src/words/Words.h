#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

/// The interface's texts, for what runs without Qt. They are those of the files in src/texts/data,
/// built in.
namespace words {

class Language {
public:
    /// `name` is what locales of the language begin with; `file` the contents of its file of texts.
    Language(std::string_view name, std::string_view file);

    [[nodiscard]] std::string_view Name() const noexcept { return name_; }
    /// The text of that number without access keys; the number itself where there is none.
    [[nodiscard]] std::u16string Text(int number) const;
    /// The text of a key as the files have it, without access keys; escapes stay as they are. Empty
    /// where there is none.
    [[nodiscard]] std::u16string Text(std::string_view key) const;

private:
    std::string_view name_;
    std::unordered_map<std::string, std::u16string> texts_;
};

/// German, then English.
[[nodiscard]] std::span<const Language> Languages();
/// The one of a locale such as "de_DE.UTF-8": English where there is no other. REQUIRES nothing of
/// what is installed.
[[nodiscard]] const Language& LanguageOf(std::string_view locale);
/// The one of that name, "de" or "en"; null when there is none.
[[nodiscard]] const Language* FindLanguage(std::string_view name);

}  // namespace words
