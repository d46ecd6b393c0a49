#include "jet/detail/FileHeader.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/detail/Bytes.h"

namespace jet {
namespace {

constexpr std::string_view kJetName("Standard Jet DB\0", 16);
constexpr std::string_view kAceName("Standard ACE DB\0", 16);
constexpr std::array<std::uint8_t, 4> kMaskKey = {0xC7, 0xDA, 0x39, 0x6B};
constexpr std::size_t kMaskBegin = 0x18;
constexpr std::size_t kMaskEndJet4 = 0x98;
constexpr std::size_t kMaskEndJet3 = 0x96;
constexpr std::size_t kCodePage = 0x3C;
constexpr std::size_t kPageKey = 0x3E;
constexpr std::size_t kPassword = 0x42;
constexpr std::size_t kCreationDate = 0x72;

/// XORs `bytes` with the RC4 key stream of kMaskKey.
void ApplyMask(std::span<std::byte> bytes) {
    std::array<std::uint8_t, 256> state{};
    for (std::size_t i = 0; i < state.size(); ++i) state[i] = static_cast<std::uint8_t>(i);
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + kMaskKey[i % kMaskKey.size()]);
        std::swap(state[i], state[j]);
    }
    std::uint8_t i = 0;
    j = 0;
    for (std::byte& b : bytes) {
        ++i;
        j = static_cast<std::uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        b ^= std::byte{state[static_cast<std::uint8_t>(state[i] + state[j])]};
    }
}

/// A file without a password holds the pattern that the creation date makes.
bool HasPassword(Bytes plain, Format format) {
    std::array<std::uint8_t, 4> pattern{};
    std::size_t size = 20;
    if (format == Format::Jet4) {
        const auto date = Load<double>(plain, kCreationDate);
        const bool fits = date > -2147483648.0 && date < 2147483648.0;
        const auto days = static_cast<std::int32_t>(fits ? date : 0);
        std::memcpy(pattern.data(), &days, sizeof days);
        size = 40;
    }
    for (std::size_t i = 0; i < size; ++i) {
        if (LoadU8(plain, kPassword + i) != pattern[i % 4]) return true;
    }
    return false;
}

}  // namespace

Result<FileHeader> FileHeader::Parse(Bytes page) {
    const std::string_view name(reinterpret_cast<const char*>(page.data() + 4), kJetName.size());
    if (LoadU32(page, 0) != 0x00000100 || (name != kJetName && name != kAceName)) {
        return Status::BadArgument("it is not a Jet database");
    }
    FileHeader header;
    const std::uint8_t version = LoadU8(page, 0x14);
    if (version > 1 || name == kAceName) {
        return Status::Unsupported("it is of a later version (" + std::to_string(version) +
                                   ") than Jet 4; save it in the format of 2000 or 2002-2003");
    }
    header.format = version == 0 ? Format::Jet3 : Format::Jet4;
    std::vector<std::byte> plain(page.begin(), page.begin() + 0xA0);
    const std::size_t maskEnd = header.format == Format::Jet4 ? kMaskEndJet4 : kMaskEndJet3;
    ApplyMask(std::span(plain).subspan(kMaskBegin, maskEnd - kMaskBegin));
    if (LoadU32(plain, kPageKey) != 0) {
        return Status::Unsupported("it is encrypted; remove the encryption where it was made");
    }
    header.codePage = LoadU16(plain, kCodePage);
    header.hasPassword = HasPassword(plain, header.format);
    return header;
}

}  // namespace jet
