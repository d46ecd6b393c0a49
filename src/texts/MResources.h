#pragma once

#include <cstdint>
#include <initializer_list>
#include <QHash>
#include <QString>
#include <string_view>
#include <type_traits>

#include "texts/Fill.h"
#include "texts/Language.h"

namespace platform {
class Registry;
}

/// The interface texts by number, in the interface language of the station.
namespace MResources {

/// Registry key of the studio; its value LCID is the interface language.
inline constexpr QStringView kStudioKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0";
inline constexpr std::uint32_t kGerman = platform::kLcidGerman;
inline constexpr std::uint32_t kEnglish = platform::kLcidEnglish;

/// The table of texts. One per program, handed to whoever shows a text; it must outlive them. It is
/// empty until the language is chosen, which happens once. For the user-interface thread.
class TextTable {
public:
    /// Reads the interface language, which becomes that of messages too, and forgets the texts that
    /// have been added. A language that is not there leaves the one before in force, at first
    /// German. So does a registry that cannot be read, before platform::Error is thrown on.
    void Initialize(platform::Registry& registry);
    /// The same for whoever knows the language already; messages keep theirs.
    void SetLanguage(std::uint32_t lcid);

    /// Stores the texts of one number, in the order of texts::Languages(): German first. A text
    /// that is there already stays.
    void AddTexts(int id, std::initializer_list<std::u16string_view> texts);

    /// The text in the interface language; "Resource 999 not found" for a number without a text.
    /// Looking up allocates nothing.
    [[nodiscard]] QString GetText(int id) const;
    /// With values for its placeholders.
    [[nodiscard]] QString GetText(int id, texts::Values values) const {
        return texts::Fill(GetText(id), values);
    }
    /// By a name of MResourceTable.h.
    template <class Name>
    requires std::is_enum_v<Name>
    [[nodiscard]] QString GetText(Name name) const { return GetText(static_cast<int>(name)); }
    template <class Name>
    requires std::is_enum_v<Name>
    [[nodiscard]] QString GetText(Name name, texts::Values values) const {
        return GetText(static_cast<int>(name), values);
    }

    /// German until one is chosen.
    [[nodiscard]] const texts::Language& Language() const {
        return language_ != nullptr ? *language_ : *texts::Languages().front();
    }

private:
    const texts::Language* language_ = nullptr;  // until it is chosen
    QHash<int, QString> added_;
};

}  // namespace MResources
