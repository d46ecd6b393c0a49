#include "project/Names.h"

namespace project {
namespace {

std::u16string Digits(std::int64_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::u16string Joined(std::u16string_view first, std::u16string_view second) {
    std::u16string text(first);
    return text += second;
}

}  // namespace

std::u16string ArchiveTextName(std::u16string_view archive) {
    return Joined(u"arch", archive);
}

std::u16string TrendTextName(std::u16string_view trend) {
    return Joined(u"Idx", trend);
}

std::u16string FreeName(std::u16string_view first,
                        const std::function<bool(const std::u16string& name)>& isInUse) {
    std::u16string name(first);
    for (int n = 1; isInUse(name); ++n) name = Joined(first, u'(' + Digits(n) + u')');
    return name;
}

std::u16string NewTrendName(std::int32_t id,
                            const std::function<bool(const std::u16string& name)>& isInUse) {
    return FreeName(Joined(u"Trd", Digits(id)), isInUse);
}

std::u16string FileNameOf(std::u16string_view name) {
    constexpr std::u16string_view kForbidden = u"\\/:*?\"<>| ";
    std::u16string file(name);
    for (char16_t& c : file) {
        if (c < u' ' || c == u'\x7F' || kForbidden.find(c) != kForbidden.npos) c = u'_';
    }
    return file;
}

}  // namespace project
