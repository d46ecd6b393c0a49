#include "languages/MResources.h"

#include <array>

#include "languages/MResourceTable.h"
#include "platform/Error.h"
#include "platform/ReasonText.h"
#include "platform/Registry.h"

namespace MResources {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSlotDistance = 100000;  // from one language to the next

/// Key of a text without memory of its own.
class Key {
public:
    explicit Key(std::int64_t number) {
        bool negative = number < 0;
        if (negative) number = -number;
        begin_ = buffer_.size();
        buffer_[--begin_] = u'R';
        do {
            buffer_[--begin_] = static_cast<char16_t>(u'0' + number % 10);
            number /= 10;
        } while (number != 0);
        if (negative) buffer_[--begin_] = u'-';
    }
    [[nodiscard]] std::u16string_view View() const {
        return {buffer_.data() + begin_, buffer_.size() - begin_};
    }

private:
    std::array<char16_t, 24> buffer_{};
    std::size_t begin_;
};

}  // namespace

void TextTable::Initialize(platform::Registry& registry) {
    std::uint32_t language = kGerman;
    try {
        language = registry.ReadDword(kStudioKey, u"LCID", kGerman);
    } catch (const platform::Error&) {
        Fill();
        throw;
    }
    if (language == kGerman) languageOffset_ = 0;
    if (language == kEnglish) languageOffset_ = kSlotDistance;
    platform::SetInterfaceLanguage(languageOffset_ == 0 ? kGerman : kEnglish);
    Fill();
}

void TextTable::Fill() {
    texts_.clear();
    for (const auto& entries :
         {MResourceTable::kCommonWords, MResourceTable::kTexts, MResourceTable::kOwnTexts}) {
        for (const MResourceTable::Entry& entry : entries) {
            AddTexts(entry.id, {entry.german, entry.english});
        }
    }
}

void TextTable::AddTexts(int id, std::initializer_list<std::u16string_view> texts) {
    std::int64_t number = id;
    for (const std::u16string_view text : texts) {
        texts_.try_emplace(std::u16string(Key(number).View()),
                           QString(reinterpret_cast<const QChar*>(text.data()),
                                   static_cast<qsizetype>(text.size())));
        number += kSlotDistance;
    }
}

QString TextTable::GetText(int id) const {
    const auto found = texts_.find(Key(std::int64_t{id} + languageOffset_).View());
    if (found != texts_.end()) return found->second;
    return u"Resource %1 not found"_s.arg(id);
}

}  // namespace MResources
