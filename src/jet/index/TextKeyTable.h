#pragma once

#include <array>
#include <cstdint>

namespace jet {

/// Weights of one UTF-16 unit; a length or a value of 0 means that it has none of the kind.
struct TextWeight {
    std::uint8_t inlineLength;  // 0..4
    std::array<std::uint8_t, 4> inlineBytes;
    std::uint8_t extraLength;  // 0..2; bytes for the accents
    std::array<std::uint8_t, 2> extraBytes;
    std::uint8_t add;      // added to the accent byte of the character before
    std::uint8_t special;  // control characters, apostrophe, hyphens
    std::uint8_t kana;     // 2 or 3

    [[nodiscard]] bool operator==(const TextWeight&) const = default;
};

/// One entry a unit, made at build time from data/text-keys.tsv.
extern const std::array<TextWeight, 65536> kTextWeights;
/// The first of the units that have the same weights; the unit itself where it has none.
extern const std::array<char16_t, 65536> kFirstUnits;

}  // namespace jet
