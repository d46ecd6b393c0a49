#include "texts/MResources.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/Registry.h"

namespace MResources {

using namespace Qt::Literals::StringLiterals;

void TextTable::Initialize(platform::Registry& registry) {
    std::uint32_t language = kGerman;
    try {
        language = registry.ReadDword(kStudioKey, u"LCID", kGerman);
    } catch (const platform::Error&) {
        SetLanguage(Language().lcid);
        throw;
    }
    SetLanguage(language);
    texts::SetInterfaceLanguage(Language().lcid);
}

void TextTable::SetLanguage(std::uint32_t lcid) {
    const texts::Language* language = texts::FindLanguage(lcid);
    language_ = language != nullptr ? language : &Language();
    added_.clear();
}

void TextTable::AddTexts(int id, std::initializer_list<std::u16string_view> texts) {
    const auto& languages = texts::Languages();
    const auto slot = static_cast<std::size_t>(
        std::find(languages.begin(), languages.end(), &Language()) - languages.begin());
    if (slot >= texts.size() || added_.contains(id)) return;
    if (language_ != nullptr && language_->texts.contains(id)) return;
    const std::u16string_view text = texts.begin()[slot];
    added_.insert(id, QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())));
}

QString TextTable::GetText(int id) const {
    if (language_ != nullptr) {
        const auto found = language_->texts.find(id);
        if (found != language_->texts.end()) return *found;
    }
    if (const auto found = added_.find(id); found != added_.end()) return *found;
    return u"Resource %1 not found"_s.arg(id);
}

}  // namespace MResources
