#include "jet/page/FileHeader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/page/Bytes.h"
#include "jet/TextKey.h"

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
constexpr std::size_t kCollation = 0x6E;
constexpr std::size_t kConstants = 0x98;
constexpr std::string_view kVersionText("4.0\0", 4);
constexpr std::size_t kCommits = 0xE00;  // a word for each user slot, up to the end of the page

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

/// What a file without a password holds in its place, again and again.
std::array<std::uint8_t, 4> DatePattern(double date) {
    const bool fits = date > -2147483648.0 && date < 2147483648.0;
    return std::bit_cast<std::array<std::uint8_t, 4>>(static_cast<std::int32_t>(fits ? date : 0));
}

/// A file without a password holds the pattern that the creation date makes.
bool HasPassword(Bytes plain, Format format) {
    std::array<std::uint8_t, 4> pattern{};
    std::size_t size = 20;
    if (format == Format::Jet4) {
        pattern = DatePattern(Load<double>(plain, kCreationDate));
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

void FileHeader::MakeNew(std::span<std::byte> page, double created) {
    constexpr std::array<std::uint32_t, 6> kPlaces = {
        0x100, 0x101,                     // row pointers of the two maps of free pages
        2,     3,     4, 5};              // definitions of the system's tables
    constexpr std::size_t kBuild = 9756;  // of a program that made such files
    std::fill(page.begin(), page.end(), std::byte{0});
    StoreU32(page, 0, 0x100);
    std::memcpy(page.data() + 4, kJetName.data(), kJetName.size());
    StoreU32(page, 0x14, 1);
    for (std::size_t i = 0; i < kPlaces.size(); ++i) {
        StoreU32(page, kMaskBegin + 4 * i, kPlaces[i]);
    }
    StoreU16(page, kCodePage, 1252);
    const auto pattern = DatePattern(created);
    for (std::size_t i = 0; i < 40; ++i) page[kPassword + i] = std::byte{pattern[i % 4]};
    StoreU32(page, 0x6A, kBuild);
    StoreU16(page, kCollation, kGeneralLcid);
    Store(page, kCreationDate, created);
    ApplyMask(page.subspan(kMaskBegin, kMaskEndJet4 - kMaskBegin));
    StoreU32(page, kConstants, 0x654);
    std::memcpy(page.data() + kConstants + 4, kVersionText.data(), kVersionText.size());
    StoreU16(page, kCommits, 0x101);
    for (std::size_t at = kCommits + 2; at < page.size(); at += 2) StoreU16(page, at, 0x100);
}

}  // namespace jet
