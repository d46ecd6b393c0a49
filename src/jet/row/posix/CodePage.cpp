#include "jet/row/CodePage.h"

#include <iconv.h>

namespace jet {

Result<CodePage> CodePage::Open(std::uint16_t number) {
    const std::string name = "CP" + std::to_string(number);
    const iconv_t converter = ::iconv_open("UTF-16LE", name.c_str());
    // NOLINTNEXTLINE(performance-no-int-to-ptr): how iconv_open reports failure
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        return Status::Unsupported("its code page " + std::to_string(number) + " is unknown");
    }
    CodePage page;
    for (std::size_t byte = 0; byte < page.table_.size(); ++byte) {
        char in = static_cast<char>(byte);
        char16_t out = 0;
        char* inAt = &in;
        char* outAt = reinterpret_cast<char*>(&out);
        std::size_t inLeft = 1;
        std::size_t outLeft = sizeof out;
        const bool converted = ::iconv(converter, &inAt, &inLeft, &outAt, &outLeft) == 0;
        page.table_[byte] = converted && outLeft == 0 ? out : u'\uFFFD';
    }
    ::iconv_close(converter);
    return page;
}

}  // namespace jet
