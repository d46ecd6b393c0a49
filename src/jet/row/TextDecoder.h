#pragma once

#include <string>

#include "jet/row/CodePage.h"
#include "jet/Types.h"

namespace jet {

/// Decodes one stored text, which may come in pieces. Make a new one for every text.
///
/// Jet 4 stores UTF-16LE, or FF FE followed by the compressed form: bytes that stand for U+0001
/// to U+00FF, where a byte 00 switches to two-byte units and a byte 00 in front of a unit switches
/// back. Jet 3 stores the bytes of the file's code page.
class TextDecoder {
public:
    /// `codePage` is null for Jet 4; it is borrowed.
    explicit TextDecoder(const CodePage* codePage) : codePage_(codePage) {}
    void Append(Bytes piece, std::u16string& out);
    /// False when the pieces so far end inside a character.
    [[nodiscard]] bool IsComplete() const { return !hasLow_ && mode_ != Mode::StartMarked; }

private:
    void AppendWide(std::byte byte, std::u16string& out);

    enum class Mode { Start, StartMarked, Wide, Narrow, SwitchedWide };
    const CodePage* codePage_;
    Mode mode_ = Mode::Start;
    bool hasLow_ = false;  // the first byte of a unit has been read
    std::byte low_{};
};

/// Decodes a text that is there as a whole. `codePage` as above.
void DecodeText(const CodePage* codePage, Bytes text, std::u16string& out);

}  // namespace jet
