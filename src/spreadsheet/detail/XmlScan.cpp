#include "spreadsheet/detail/XmlScan.h"

#include <expat.h>

#include <charconv>
#include <new>

namespace spreadsheet {
namespace {

// A tag that goes on for longer is kept whole by the parser, and is no tag of a workbook.
constexpr std::uint64_t kMostOfATag = std::uint64_t{1} << 20;  // bytes

std::string_view WithoutPrefix(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

}  // namespace

const char* Attributes::Find(std::string_view name) const {
    for (const char** pair = pairs_; *pair != nullptr; pair += 2) {
        if (WithoutPrefix(pair[0]) == name) return pair[1];
    }
    return nullptr;
}

std::string_view Attributes::Get(std::string_view name) const {
    const char* value = Find(name);
    return value != nullptr ? std::string_view(value) : std::string_view();
}

std::optional<std::uint32_t> Attributes::Number(std::string_view name) const {
    const std::string_view text = Get(name);
    std::uint32_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
    return number;
}

bool Attributes::IsTrue(std::string_view name) const {
    const std::string_view text = Get(name);
    return text == "1" || text == "true";
}

/// What expat calls.
struct XmlScan::Calls {
    static XmlScan& Of(void* user) { return *static_cast<XmlScan*>(user); }

    static void XMLCALL Begin(void* user, const char* name, const char** attributes) {
        Of(user).handler_.Begin(WithoutPrefix(name), Attributes(attributes));
        StopAfterFault(user);
    }
    static void XMLCALL End(void* user, const char* name) {
        Of(user).handler_.End(WithoutPrefix(name));
        StopAfterFault(user);
    }
    static void XMLCALL Text(void* user, const char* text, int length) {
        Of(user).handler_.Text({text, static_cast<std::size_t>(length)});
        StopAfterFault(user);
    }
    /// Its entities are what makes XML grow without bounds.
    static void XMLCALL Doctype(void* user, const char*, const char*, const char*, int) {
        Of(user).Fail("it has a document type");
        XML_StopParser(Of(user).parser_, XML_FALSE);
    }

    static void StopAfterFault(void* user) {
        if (Of(user).handler_.GetFault()) XML_StopParser(Of(user).parser_, XML_FALSE);
    }
};

XmlScan::XmlScan(Part& part, XmlHandler& handler)
    : part_(part), handler_(handler), parser_(XML_ParserCreate(nullptr)) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, Calls::Begin, Calls::End);
    XML_SetCharacterDataHandler(parser_, Calls::Text);
    XML_SetStartDoctypeDeclHandler(parser_, Calls::Doctype);
}

XmlScan::~XmlScan() {
    XML_ParserFree(parser_);
}

void XmlScan::Fail(const char* why) {
    if (!fault_) fault_ = {.kind = Fault::Kind::Damaged, .part = part_.Name(), .detail = why};
}

bool XmlScan::Step() {
    if (isAtEnd_ || fault_) return false;
    const std::string_view bytes = part_.Next();
    if (part_.GetFault()) {
        fault_ = part_.GetFault();
        return false;
    }
    isAtEnd_ = bytes.empty();
    fed_ += bytes.size();
    const int length = static_cast<int>(bytes.size());
    const bool isGood =
        XML_Parse(parser_, bytes.data(), length, isAtEnd_ ? XML_TRUE : XML_FALSE) == XML_STATUS_OK;
    if (handler_.GetFault()) {
        fault_ = handler_.GetFault();
    } else if (!isGood) {
        Fail(XML_ErrorString(XML_GetErrorCode(parser_)));
    } else {
        const XML_Index used = XML_GetCurrentByteIndex(parser_);
        const bool isHeld = used >= 0 && fed_ - static_cast<std::uint64_t>(used) > kMostOfATag;
        if (isHeld && !isAtEnd_) Fail("a tag does not end");
    }
    return !fault_;
}

Fault ScanAll(Part& part, XmlHandler& handler) {
    XmlScan scan(part, handler);
    while (scan.Step()) {
    }
    return scan.GetFault();
}

}  // namespace spreadsheet
