#pragma once

#include <string>
#include <string_view>

#include "ado/Value.h"

namespace ado {

/// One word of a criterion or a statement.
struct Token {
    enum class Kind { End, Name, Constant, Symbol };
    Kind kind = Kind::End;
    // Name: without its quotes. Symbol: = <> < <= > >= ( ) , . * Constant: a number as written.
    std::string text;
    ado::Value value;       // Constant: a number, text or date
    bool isQuoted = false;  // Name in backquotes or brackets: never a keyword
};

/// Cuts the text of a criterion or a statement into tokens. Names may stand in backquotes or in
/// brackets; texts stand in single or double quotes, a quote inside doubled; dates between # as
/// year-month-day or month/day/year with an optional time.
class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) { Advance(); }

    [[nodiscard]] const Token& Current() const { return token_; }
    void Advance();
    /// The whole text, for messages.
    [[nodiscard]] std::string Text() const { return std::string(text_); }

    [[nodiscard]] bool IsKeyword(std::string_view upperCase) const;
    [[nodiscard]] bool IsSymbol(std::string_view symbol) const;
    // Take the token when it is the one asked for.
    [[nodiscard]] bool TakeKeyword(std::string_view upperCase);
    [[nodiscard]] bool TakeSymbol(std::string_view symbol);
    void ExpectKeyword(std::string_view upperCase);
    void ExpectSymbol(std::string_view symbol);
    [[nodiscard]] std::string ExpectName(const char* what);
    [[noreturn]] void Fail(const std::string& what) const;

private:
    void ReadNumber(bool negative);
    void ReadQuotedText(char quote);
    void ReadQuotedName(char closing);
    void ReadDate();
    [[nodiscard]] std::string_view TakeUntil(char closing);

    std::string_view text_;
    std::size_t at_ = 0;
    Token token_;
};

}  // namespace ado
