#include "jet/row/TextDecoder.h"

#include <algorithm>

#include "jet/page/Bytes.h"

namespace jet {

void TextDecoder::AppendWide(std::byte byte, std::u16string& out) {
    if (!hasLow_) {
        low_ = byte;
        hasLow_ = true;
        return;
    }
    out += static_cast<char16_t>(static_cast<unsigned>(low_) | static_cast<unsigned>(byte) << 8);
    hasLow_ = false;
}

void TextDecoder::Append(Bytes piece, std::u16string& out) {
    if (codePage_ != nullptr) {
        codePage_->Append(piece, out);
        return;
    }
    std::size_t at = 0;
    while (at < piece.size()) {
        const std::byte byte = piece[at];
        switch (mode_) {
            case Mode::Start:
                mode_ = byte == std::byte{0xFF} ? Mode::StartMarked : Mode::Wide;
                if (mode_ == Mode::StartMarked) ++at;
                break;
            case Mode::StartMarked:
                mode_ = byte == std::byte{0xFE} ? Mode::Narrow : Mode::Wide;
                if (mode_ == Mode::Narrow) {
                    ++at;
                } else {
                    AppendWide(std::byte{0xFF}, out);
                }
                break;
            case Mode::Wide: {
                // The common case of a whole value in one piece.
                if (!hasLow_ && piece.size() - at >= 2) {
                    const std::size_t units = (piece.size() - at) / 2;
                    const std::size_t before = out.size();
                    out.resize(before + units);
                    std::memcpy(out.data() + before, piece.data() + at, units * 2);
                    at += units * 2;
                } else {
                    AppendWide(byte, out);
                    ++at;
                }
                break;
            }
            case Mode::Narrow: {
                const auto begin = piece.begin() + static_cast<std::ptrdiff_t>(at);
                const auto end = std::find(begin, piece.end(), std::byte{0});
                const auto count = static_cast<std::size_t>(end - begin);
                const std::size_t before = out.size();
                out.resize(before + count);
                std::transform(begin, end, out.begin() + static_cast<std::ptrdiff_t>(before),
                               [](std::byte b) { return static_cast<char16_t>(b); });
                at += count;
                if (end != piece.end()) {
                    mode_ = Mode::SwitchedWide;
                    ++at;
                }
                break;
            }
            case Mode::SwitchedWide:
                if (!hasLow_ && byte == std::byte{0}) {
                    mode_ = Mode::Narrow;
                } else {
                    AppendWide(byte, out);
                }
                ++at;
                break;
        }
    }
}

void DecodeText(const CodePage* codePage, Bytes text, std::u16string& out) {
    constexpr std::size_t kMark = 2;
    const bool isMarked =
        text.size() >= kMark && text[0] == std::byte{0xFF} && text[1] == std::byte{0xFE};
    const Bytes rest = text.subspan(isMarked ? kMark : 0);
    if (codePage != nullptr || !isMarked || std::memchr(rest.data(), 0, rest.size()) != nullptr) {
        out.clear();
        TextDecoder(codePage).Append(text, out);
        return;
    }
    // One byte a character, as most texts are.
    out.resize(rest.size());
    for (std::size_t i = 0; i < rest.size(); ++i) out[i] = static_cast<char16_t>(rest[i]);
}

}  // namespace jet
