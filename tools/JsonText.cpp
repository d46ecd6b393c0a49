#include "tools/JsonText.h"

#include <cmath>

#include "jet/Unicode.h"
#include "tools/ValueText.h"

namespace tools {
namespace {

struct Appender {
    TextBuffer& out;

    void operator()(jet::Null) const { out.Append("null"); }
    void operator()(bool value) const { out.Append(value ? "true" : "false"); }
    void operator()(std::int32_t value) const { AppendNumber(value, out); }
    void operator()(float value) const { Real(value); }
    void operator()(double value) const { Real(value); }
    void operator()(const jet::Currency& value) const { AppendNumber(value, out); }
    void operator()(const jet::Decimal& value) const { AppendNumber(value, out); }
    void operator()(const jet::Date& value) const {
        Quoted([&] { AppendDate(value, out); });
    }
    void operator()(const jet::Guid& value) const {
        Quoted([&] { AppendGuid(value, out); });
    }
    void operator()(const jet::Binary& value) const {
        Quoted([&] { AppendHex(value, out); });
    }
    void operator()(const std::u16string& value) const {
        Quoted([&] { AppendJsonEscaped(jet::ToUtf8(value), out); });
    }
    void operator()(const jet::LongValue&) const {}

private:
    template <typename Append>
    void Quoted(Append append) const {
        out.Append('"');
        append();
        out.Append('"');
    }
    template <typename T>
    void Real(T value) const {
        if (std::isfinite(value)) return AppendNumber(value, out);
        Quoted([&] { AppendNumber(value, out); });
    }
};

/// The same value in the engine's own types.
struct Stored {
    template <typename T>
    jet::Value operator()(const T& value) const {
        return value;
    }
    jet::Value operator()(const ado::Currency& value) const {
        return jet::Currency{value.tenThousandths};
    }
    jet::Value operator()(const ado::Date& value) const { return jet::Date{value.days}; }
    jet::Value operator()(const ado::Guid& value) const { return jet::Guid{value.bytes}; }
    jet::Value operator()(const ado::Decimal& value) const {
        return jet::Decimal{value.negative, value.scale, value.magnitude};
    }
};

}  // namespace

void AppendJsonEscaped(std::string_view text, TextBuffer& out) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out.Append('\\');
            out.Append(c);
        } else if (c == '\n') {
            out.Append("\\n");
        } else if (byte < 0x20) {
            out.Append("\\u00");
            out.Append(kDigits[byte >> 4]);
            out.Append(kDigits[byte & 15]);
        } else {
            out.Append(c);
        }
    }
}

void AppendJson(const jet::Value& value, TextBuffer& out) {
    std::visit(Appender{out}, value);
}

jet::Value StoredOf(const ado::Value& value) {
    return std::visit(Stored(), value);
}

void AppendJson(const ado::Value& value, TextBuffer& out) {
    AppendJson(StoredOf(value), out);
}

void AppendJson(std::string_view text, TextBuffer& out) {
    out.Append('"');
    AppendJsonEscaped(text, out);
    out.Append('"');
}

}  // namespace tools
