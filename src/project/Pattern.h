#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Many texts out of one: "P{01..12}_V{1..4}", "Tank {1..12} {Temperatur|Druck}".
namespace project {

/// Why a pattern cannot be understood, and where.
struct PatternFault {
    enum class Cause {
        NotClosed,      // a brace without its end
        Empty,          // nothing in braces
        TooMany,        // more texts than kMostPatternTexts
        NoSuchBrace,    // "{3}" where there are two
        EntriesDiffer,  // as many entries are needed as the brace has that it goes with
    };
    Cause cause{};
    std::size_t at = 0;  // UTF-16 unit of the brace
};

inline constexpr std::size_t kMostPatternTexts = 10'000;

/// A text with braces, each of which stands for one of its entries at a time:
///
///   {01..12}     counts, with as many digits as the first number has; {0..100/10} in steps
///   {A|B|C}      a list
///   {1}          what the first brace stands for, again
///   {{           a brace itself
///
/// Every combination of the entries is a text, the last brace changing first. A further pattern
/// goes along with the first: its braces stand for the entry of the same number, the first brace
/// for that of the first one, and so on. "{2:A|B}" goes along with the second one.
class Pattern {
public:
    struct Brace {
        std::vector<std::u16string> entries;
        bool isList = false;
        std::size_t goesWith = 0;  // which brace of the leading pattern, from 0
        std::size_t at = 0;        // in the text
    };

    Pattern() = default;
    explicit Pattern(std::u16string_view text);

    [[nodiscard]] const std::optional<PatternFault>& Wrong() const noexcept { return wrong_; }
    /// But for the repeating ones.
    [[nodiscard]] std::span<const Brace> Braces() const noexcept { return braces_; }
    /// Whether it can go along with another one.
    [[nodiscard]] std::optional<PatternFault> WrongBeside(const Pattern& leading) const;

    /// How many texts it stands for. REQUIRES: not Wrong().
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }
    /// The entries of the braces in one of the combinations, from 0.
    [[nodiscard]] std::vector<std::size_t> Combination(std::size_t number) const;
    /// The text of a combination of the leading pattern. REQUIRES: it goes along with that.
    [[nodiscard]] std::u16string Text(const Pattern& leading,
                                      std::span<const std::size_t> combination) const;

private:
    struct Piece {
        enum class Kind { Text, Brace, Again } kind = Kind::Text;
        std::u16string text;
        std::size_t brace = 0;  // of this pattern; Again: of the leading one
        std::size_t at = 0;
    };
    void ReadBrace(std::u16string_view inside, std::size_t at);
    void Fail(PatternFault::Cause cause, std::size_t at);

    std::vector<Piece> pieces_;
    std::vector<Brace> braces_;
    std::optional<PatternFault> wrong_;
    std::size_t count_ = 1;
};

/// The texts that a pattern with braces of its own stands for; nothing where the text is none.
[[nodiscard]] std::optional<std::vector<std::u16string>> PatternTexts(std::u16string_view text);

}  // namespace project
