#include "ado/detail/Lexer.h"

#include <charconv>
#include <chrono>
#include <cstdio>

#include "ado/detail/ProviderError.h"
#include "jet/Unicode.h"

namespace ado {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Letters outside ASCII count as letters of names.
bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

void Lexer::Fail(const std::string& what) const {
    ThrowSyntax(Text(), what);
}

void Lexer::Advance() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\n' || text_[at_] == '\r')) {
        ++at_;
    }
    token_ = {};
    if (at_ >= text_.size()) return;
    const char c = text_[at_];
    const char next = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
    const bool signedNumber = (c == '-' || c == '+') && (IsDigit(next) || next == '.');
    if (IsDigit(c) || (c == '.' && IsDigit(next)) || signedNumber) {
        if (signedNumber) ++at_;
        ReadNumber(c == '-');
    } else if (IsNameStart(c)) {
        const std::size_t begin = at_;
        while (at_ < text_.size() && (IsNameStart(text_[at_]) || IsDigit(text_[at_]))) ++at_;
        token_ = {Token::Kind::Name, std::string(text_.substr(begin, at_ - begin)), {}, false};
    } else if (c == '\'' || c == '"') {
        ReadQuotedText(c);
    } else if (c == '`' || c == '[') {
        ReadQuotedName(c == '[' ? ']' : c);
    } else if (c == '#') {
        ReadDate();
    } else {
        const bool isPair = (c == '<' && (next == '>' || next == '=')) || (c == '>' && next == '=');
        constexpr std::string_view kSymbols = "=<>(),.*";
        if (kSymbols.find(c) == std::string_view::npos) {
            Fail(std::string("unexpected character '") + c + "'");
        }
        token_ = {Token::Kind::Symbol, std::string(text_.substr(at_, isPair ? 2 : 1)), {}, false};
        at_ += isPair ? 2 : 1;
    }
}

void Lexer::ReadNumber(bool negative) {
    double number = 0;
    const char* begin = text_.data() + at_;
    const auto parsed = std::from_chars(begin, text_.data() + text_.size(), number);
    if (parsed.ec != std::errc()) Fail("a number that cannot be read");
    at_ += static_cast<std::size_t>(parsed.ptr - begin);
    if (negative) number = -number;
    token_.text = (negative ? "-" : "") + std::string(begin, parsed.ptr);
    const auto whole =
        static_cast<std::int32_t>(number >= -2147483648.0 && number <= 2147483647.0 ? number : 0);
    token_.kind = Token::Kind::Constant;
    token_.value = static_cast<double>(whole) == number ? Value(whole) : Value(number);
}

std::string_view Lexer::TakeUntil(char closing) {
    const std::size_t end = text_.find(closing, at_ + 1);
    if (end == std::string_view::npos) Fail(std::string("a missing ") + closing);
    const std::string_view inside = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    return inside;
}

void Lexer::ReadQuotedText(char quote) {
    std::string text(TakeUntil(quote));
    while (at_ < text_.size() && text_[at_] == quote) {
        text += quote;
        text += TakeUntil(quote);
    }
    token_.kind = Token::Kind::Constant;
    token_.value = jet::ToUtf16(text);
}

void Lexer::ReadQuotedName(char closing) {
    token_ = {Token::Kind::Name, std::string(TakeUntil(closing)), {}, true};
}

void Lexer::ReadDate() {
    using namespace std::chrono;
    const std::string inside(TakeUntil('#'));
    int y = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    unsigned m = 0;
    unsigned d = 0;
    int read =
        std::sscanf(inside.c_str(), "%d-%u-%u%*[ T]%d:%d:%d", &y, &m, &d, &hour, &minute, &second);
    if (read < 3) {
        read =
            std::sscanf(inside.c_str(), "%u/%u/%d %d:%d:%d", &m, &d, &y, &hour, &minute, &second);
    }
    const year_month_day date{year{y}, month{m}, day{d}};
    const bool timeOk =
        hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    if (read < 3 || !date.ok() || !timeOk) Fail("a date that cannot be read");
    const sys_days zero{year{1899} / December / 30};
    const auto days = static_cast<double>((sys_days{date} - zero).count());
    const double time = (hour * 3600 + minute * 60 + second) / 86400.0;
    token_.kind = Token::Kind::Constant;
    token_.value = Date{days < 0 ? days - time : days + time};
}

bool Lexer::IsKeyword(std::string_view upperCase) const {
    if (token_.kind != Token::Kind::Name || token_.isQuoted) return false;
    if (token_.text.size() != upperCase.size()) return false;
    for (std::size_t i = 0; i < upperCase.size(); ++i) {
        if (Upper(token_.text[i]) != upperCase[i]) return false;
    }
    return true;
}

bool Lexer::IsSymbol(std::string_view symbol) const {
    return token_.kind == Token::Kind::Symbol && token_.text == symbol;
}

bool Lexer::TakeKeyword(std::string_view upperCase) {
    if (!IsKeyword(upperCase)) return false;
    Advance();
    return true;
}

bool Lexer::TakeSymbol(std::string_view symbol) {
    if (!IsSymbol(symbol)) return false;
    Advance();
    return true;
}

void Lexer::ExpectKeyword(std::string_view upperCase) {
    if (!TakeKeyword(upperCase)) Fail("a missing " + std::string(upperCase));
}

void Lexer::ExpectSymbol(std::string_view symbol) {
    if (!TakeSymbol(symbol)) Fail("a missing " + std::string(symbol));
}

std::string Lexer::ExpectName(const char* what) {
    if (token_.kind != Token::Kind::Name) Fail(std::string("a missing ") + what);
    std::string name = token_.text;
    Advance();
    return name;
}

}  // namespace ado
