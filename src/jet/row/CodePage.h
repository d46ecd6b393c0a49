#pragma once

#include <array>
#include <string>

#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// A Windows code page of one byte a character, as Jet 3 stores text. Bytes that the code page
/// does not define become U+FFFD.
class CodePage {
public:
    [[nodiscard]] static Result<CodePage> Open(std::uint16_t number);
    void Append(Bytes text, std::u16string& out) const {
        for (const std::byte b : text) out += table_[static_cast<std::size_t>(b)];
    }

private:
    std::array<char16_t, 256> table_{};
};

}  // namespace jet
