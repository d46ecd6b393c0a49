#include "jet/TextKey.h"

#include <vector>

#include "jet/index/TextKeyTable.h"

namespace jet {
namespace {

constexpr std::size_t kMaxUnits = 255;
constexpr char kEnd = 0x01;
constexpr char kNoAccent = 0x02;
constexpr std::uint8_t kTrailingKana = 3;

/// The parts of a key while the characters are read one by one.
struct Parts {
    std::string primary;
    std::string accents;
    std::string specials;
    std::vector<std::uint8_t> kana;
    std::size_t characters = 0;   // with a primary weight
    std::size_t accented = 0;     // characters that `accents` speaks of
    std::size_t leadingMark = 0;  // 1: `accents` begins with a mark that follows no character

    void Add(const TextWeight& weight) {
        const std::size_t before = characters;
        if (weight.inlineLength > 0) {
            primary.append(reinterpret_cast<const char*>(weight.inlineBytes.data()),
                           weight.inlineLength);
            ++characters;
        }
        if (weight.extraLength > 0 || weight.add != 0) AddAccent(weight, before);
        if (weight.special != 0) AddSpecial(weight.special, before);
        if (weight.kana != 0) kana.push_back(weight.kana);
    }

private:
    void AddAccent(const TextWeight& weight, std::size_t before) {
        for (; accented < before; ++accented) accents += kNoAccent;
        if (weight.extraLength > 0) {
            accents.append(reinterpret_cast<const char*>(weight.extraBytes.data()),
                           weight.extraLength);
            ++accented;
        } else if (accents.empty()) {
            accents += static_cast<char>(weight.add);
            leadingMark = 1;
        } else {
            accents.back() = static_cast<char>(accents.back() + static_cast<char>(weight.add));
        }
    }

    void AddSpecial(std::uint8_t special, std::size_t before) {
        const std::size_t place = 7 + 4 * (accents.size() + (before - accented) - leadingMark);
        const auto word = static_cast<std::uint16_t>(0x8000U | place);
        specials += static_cast<char>(word >> 8);
        specials += static_cast<char>(word & 0xFF);
        specials += '\x06';
        specials += static_cast<char>(special);
    }
};

std::string PackKana(std::vector<std::uint8_t> kana) {
    while (!kana.empty() && kana.back() == kTrailingKana) kana.pop_back();
    std::string packed;
    for (std::size_t i = 0; i < kana.size(); i += 3) {
        const auto at = [&](std::size_t k) -> unsigned { return k < kana.size() ? kana[k] : 0U; };
        packed += static_cast<char>(0x80U | at(i) << 4 | at(i + 1) << 2 | at(i + 2));
    }
    return packed;
}

}  // namespace

void AppendTextKey(std::u16string_view text, bool ascending, std::string& key) {
    text = text.substr(0, kMaxUnits);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    Parts parts;
    for (const char16_t unit : text) parts.Add(kTextWeights[unit]);

    const std::size_t begin = key.size();
    key += parts.primary;
    key += kEnd;
    while (!parts.accents.empty() && static_cast<unsigned char>(parts.accents.back()) <= 2) {
        parts.accents.pop_back();
    }
    key += parts.accents;
    if (!parts.specials.empty() || !parts.kana.empty()) {
        key += {kEnd, kEnd};
        if (!parts.kana.empty()) {
            key += PackKana(parts.kana);
            key += "\xFF\x02\x80\xFF\x80";
            if (!parts.specials.empty()) key += '\xFF';
        }
        if (!parts.specials.empty()) {
            key += kEnd;
            key += parts.specials;
        }
    }
    key += '\0';
    if (!ascending) {
        for (std::size_t i = begin; i < key.size(); ++i) key[i] = static_cast<char>(~key[i]);
        key += '\0';
    }
}

char16_t FoldUnit(char16_t unit) {
    return kFirstUnits[unit];
}

}  // namespace jet
