#include "jet/row/CodePage.h"

#include <windows.h>

namespace jet {

Result<CodePage> CodePage::Open(std::uint16_t number) {
    CPINFO info{};
    if (::GetCPInfo(number, &info) == 0) {
        return Status::Unsupported("its code page " + std::to_string(number) + " is unknown");
    }
    CodePage page;
    for (std::size_t byte = 0; byte < page.table_.size(); ++byte) {
        const char in = static_cast<char>(byte);
        wchar_t out = 0;
        const int count = ::MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, &in, 1, &out, 1);
        page.table_[byte] = count == 1 ? static_cast<char16_t>(out) : u'\uFFFD';
    }
    return page;
}

}  // namespace jet
