#include "project/Pattern.h"

#include <algorithm>
#include <cstdint>

namespace project {
namespace {

using Cause = PatternFault::Cause;

constexpr std::size_t kMostDigits = 9;

bool IsNumber(std::u16string_view text) {
    return !text.empty() && text.size() <= kMostDigits &&
           std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

std::int64_t ToNumber(std::u16string_view digits) {
    std::int64_t number = 0;
    for (const char16_t digit : digits) number = number * 10 + (digit - u'0');
    return number;
}

/// Of a brace that is named by its number from 1; 0 becomes that of none.
std::size_t Place(std::u16string_view digits) {
    return static_cast<std::size_t>(ToNumber(digits)) - 1;
}

std::u16string Counted(std::int64_t number, std::size_t width) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return {digits.begin(), digits.end()};
}

/// The numbers of "01..12" and "0..100/10", one more than are allowed at most; nothing for a text
/// that is no counter.
std::optional<std::vector<std::u16string>> Counter(std::u16string_view inside) {
    const std::size_t dots = inside.find(u"..");
    if (dots == inside.npos) return std::nullopt;
    const std::u16string_view first = inside.substr(0, dots);
    std::u16string_view last = inside.substr(dots + 2);
    std::int64_t step = 1;
    if (const std::size_t slash = last.find(u'/'); slash != last.npos) {
        const std::u16string_view by = last.substr(slash + 1);
        if (!IsNumber(by) || ToNumber(by) == 0) return std::nullopt;
        step = ToNumber(by);
        last = last.substr(0, slash);
    }
    if (!IsNumber(first) || !IsNumber(last)) return std::nullopt;
    const std::int64_t from = ToNumber(first);
    const std::int64_t to = ToNumber(last);
    const auto texts = static_cast<std::size_t>((from < to ? to - from : from - to) / step + 1);
    std::vector<std::u16string> entries;
    for (std::size_t i = 0; i < std::min(texts, kMostPatternTexts + 1); ++i) {
        const std::int64_t way = static_cast<std::int64_t>(i) * step;
        entries.push_back(Counted(from < to ? from + way : from - way, first.size()));
    }
    return entries;
}

std::vector<std::u16string> List(std::u16string_view inside) {
    std::vector<std::u16string> entries;
    for (std::size_t begin = 0; begin <= inside.size();) {
        const std::size_t end = std::min(inside.find(u'|', begin), inside.size());
        entries.emplace_back(inside.substr(begin, end - begin));
        begin = end + 1;
    }
    return entries;
}

}  // namespace

Pattern::Pattern(std::u16string_view text) {
    std::u16string plain;
    const auto endPlain = [&] {
        if (!plain.empty()) pieces_.push_back({Piece::Kind::Text, plain});
        plain.clear();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != u'{') {
            plain += text[i];
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == u'{') {
            plain += text[i++];
            continue;
        }
        endPlain();
        const std::size_t end = text.find(u'}', i);
        if (end == text.npos) {
            Fail(Cause::NotClosed, i);
            return;
        }
        ReadBrace(text.substr(i + 1, end - i - 1), i);
        i = end;
    }
    endPlain();
    for (const Piece& piece : pieces_) {
        const bool isAgain = piece.kind == Piece::Kind::Again;
        if (isAgain && piece.brace >= braces_.size()) Fail(Cause::NoSuchBrace, piece.at);
    }
    for (const Brace& brace : braces_) {
        count_ *= brace.entries.size();
        if (count_ > kMostPatternTexts) {
            Fail(Cause::TooMany, brace.at);
            return;
        }
    }
}

void Pattern::Fail(Cause cause, std::size_t at) {
    if (!wrong_) wrong_ = PatternFault{cause, at};
}

void Pattern::ReadBrace(std::u16string_view inside, std::size_t at) {
    if (inside.empty()) return Fail(Cause::Empty, at);
    if (IsNumber(inside)) {
        pieces_.push_back({Piece::Kind::Again, {}, Place(inside), at});
        return;
    }
    Brace brace;
    brace.at = at;
    brace.goesWith = braces_.size();
    if (const std::size_t colon = inside.find(u':');
        colon != inside.npos && IsNumber(inside.substr(0, colon))) {
        brace.goesWith = Place(inside.substr(0, colon));
        inside = inside.substr(colon + 1);
    }
    auto counted = Counter(inside);
    brace.isList = !counted;
    brace.entries = counted ? std::move(*counted) : List(inside);
    pieces_.push_back({Piece::Kind::Brace, {}, braces_.size(), at});
    braces_.push_back(std::move(brace));
}

std::optional<PatternFault> Pattern::WrongBeside(const Pattern& leading) const {
    if (wrong_ && wrong_->cause != Cause::TooMany && wrong_->cause != Cause::NoSuchBrace) {
        return wrong_;
    }
    for (const Piece& piece : pieces_) {
        if (piece.kind == Piece::Kind::Again && piece.brace >= leading.braces_.size()) {
            return PatternFault{Cause::NoSuchBrace, piece.at};
        }
    }
    for (const Brace& brace : braces_) {
        if (brace.goesWith >= leading.braces_.size()) {
            return PatternFault{Cause::NoSuchBrace, brace.at};
        }
        if (brace.entries.size() != leading.braces_[brace.goesWith].entries.size()) {
            return PatternFault{Cause::EntriesDiffer, brace.at};
        }
    }
    return std::nullopt;
}

std::vector<std::size_t> Pattern::Combination(std::size_t number) const {
    std::vector<std::size_t> combination(braces_.size());
    for (std::size_t i = braces_.size(); i-- > 0;) {
        combination[i] = number % braces_[i].entries.size();
        number /= braces_[i].entries.size();
    }
    return combination;
}

std::u16string Pattern::Text(const Pattern& leading,
                             std::span<const std::size_t> combination) const {
    std::u16string text;
    for (const Piece& piece : pieces_) {
        switch (piece.kind) {
            case Piece::Kind::Text:
                text += piece.text;
                break;
            case Piece::Kind::Again:
                text += leading.braces_[piece.brace].entries[combination[piece.brace]];
                break;
            case Piece::Kind::Brace: {
                const Brace& brace = braces_[piece.brace];
                text += brace.entries[combination[brace.goesWith]];
                break;
            }
        }
    }
    return text;
}

std::optional<std::vector<std::u16string>> PatternTexts(std::u16string_view text) {
    const Pattern pattern(text);
    if (pattern.Wrong() || pattern.WrongBeside(pattern) || pattern.Braces().empty()) {
        return std::nullopt;
    }
    std::vector<std::u16string> texts;
    for (std::size_t i = 0; i < pattern.Count(); ++i) {
        texts.push_back(pattern.Text(pattern, pattern.Combination(i)));
    }
    return texts;
}

}  // namespace project
