#pragma once

#include <cstdint>
#include <initializer_list>
#include <QString>
#include <string>
#include <string_view>
#include <unordered_map>

namespace platform {
class Registry;
}

/// The interface texts by number, in the interface language of the station.
namespace MResources {

/// Registry key of the studio; its value LCID is the interface language.
inline constexpr QStringView kStudioKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0";
inline constexpr std::uint32_t kGerman = 1031;
inline constexpr std::uint32_t kEnglish = 1033;

/// The table of texts. One per program, handed to whoever shows a text; it must outlive them. The
/// language is chosen once, when the table is filled. For the user-interface thread.
class TextTable {
public:
    /// Reads the interface language, which becomes that of messages too, and fills the table anew.
    /// A language other than German and English leaves the one before in force, at first German.
    /// Where the registry cannot be read the table is filled all the same before platform::Error is
    /// thrown on.
    void Initialize(platform::Registry& registry);

    /// Stores the texts of one number, German first. A text that is there already stays.
    void AddTexts(int id, std::initializer_list<std::u16string_view> texts);

    /// The text in the interface language; "Resource 999 not found" for a number without a text.
    /// Looking up allocates nothing.
    [[nodiscard]] QString GetText(int id) const;

private:
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::u16string_view key) const noexcept {
            return std::hash<std::u16string_view>()(key);
        }
    };

    void Fill();

    int languageOffset_ = 0;
    // Under the decimal digits of id + offset, followed by "R".
    std::unordered_map<std::u16string, QString, KeyHash, std::equal_to<>> texts_;
};

}  // namespace MResources
