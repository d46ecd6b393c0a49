#pragma once

#include <QLocale>
#include <QString>

#include "platform/Locale.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace studio {

/// The studio's own interface texts. Add-ins bring their own.
using Text = MResourceTable::Studio;

/// Windows locale identifiers of the languages that the studio begins with.
inline constexpr int kGerman = 1031;
inline constexpr int kEnglish = 1033;

/// The texts of one interface language. A plain value; changing the language means making a new
/// one and setting the texts again.
class StudioTexts {
public:
    /// German where there is no such language.
    explicit StudioTexts(int lcid = kGerman) {
        table_.SetLanguage(static_cast<std::uint32_t>(lcid));
    }

    [[nodiscard]] int Lcid() const noexcept { return static_cast<int>(table_.Language().lcid); }
    /// How the language, or the user, writes numbers and dates.
    [[nodiscard]] QLocale Locale() const {
        return platform::NumberLocale(QLocale(table_.Language().locale));
    }
    /// The text with its "&" access key, if it has one, and values for its placeholders.
    [[nodiscard]] QString operator()(Text text, texts::Values values = {}) const {
        return table_.GetText(text, values);
    }
    [[nodiscard]] const MResources::TextTable& Table() const noexcept { return table_; }

private:
    MResources::TextTable table_;
};

}  // namespace studio
