#include "exchange/Cell.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "project/Colour.h"
#include "project/Number.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;
using project::Problem;

/// A number in the fewest digits that read back as the same one.
template <typename Number>
void AssignDigits(Number number, std::u16string& text) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.assign(digits.data(), end);
}

/// The number that counts in a column; none where there is none.
std::optional<std::int32_t> NumberIn(const SheetColumn& column, const ado::Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    if (number == nullptr) return std::nullopt;
    return column.mask != 0 ? *number & column.mask : *number;
}

bool WriteCode(const SheetColumn& column, std::int32_t number, const words::Language& language,
               Cell& cell) {
    const auto found = std::find_if(column.codes.begin(), column.codes.end(),
                                    [&](const auto& each) { return each.code == number; });
    if (found == column.codes.end()) return false;
    cell.kind = CellKind::Text;
    cell.text = language.Text(found->text);
    return true;
}

bool IsColour(const SheetColumn& column) {
    return column.meaning != nullptr && column.meaning->kind == project::Kind::Colour;
}

void WriteNumber(const SheetColumn& column, const ado::Value& value,
                 const words::Language& language, Cell& cell) {
    if (const auto number = NumberIn(column, value)) {
        if (WriteCode(column, *number, language, cell)) return;
        if (IsColour(column)) {
            cell.kind = CellKind::Colour;
            cell.text = project::ColourText(*number);
            return;
        }
        AssignDigits(*number, cell.text);
    } else if (const auto* real = std::get_if<double>(&value)) {
        AssignDigits(*real, cell.text);
    } else if (const auto* single = std::get_if<float>(&value)) {
        AssignDigits(*single, cell.text);
    } else {
        cell.text = ado::ToText(value);
    }
    cell.kind = CellKind::Number;
}

std::optional<std::int32_t> CodeOf(const SheetColumn& column, std::u16string_view text) {
    const std::u16string wanted = Folded(text);
    for (const project::Code& code : column.codes) {
        for (const words::Language& language : words::Languages()) {
            if (Folded(language.Text(code.text)) == wanted) return code.code;
        }
    }
    return std::nullopt;
}

/// A number that stands for bits has to be one that they can hold.
project::Reading ReadBits(const SheetColumn& column, const CellView& cell) {
    if (const auto code = CodeOf(column, cell.text)) return {*code, Problem::None};
    const project::NumberText read = project::ReadNumber(cell.text);
    const bool fits = read.whole && read.number >= 0 && read.number <= column.mask;
    const auto number = fits ? static_cast<std::int32_t>(read.number) : 0;
    if (!fits || number != read.number || (number & ~column.mask) != 0) {
        return {{}, Problem::NotListed};
    }
    return {number, Problem::None};
}

bool HasSameNumber(const ado::Value& stored, const ado::Value& given) {
    const auto asDouble = [](const ado::Value& value) -> std::optional<double> {
        if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
        if (const auto* single = std::get_if<float>(&value)) return *single;
        if (const auto* real = std::get_if<double>(&value)) return *real;
        return std::nullopt;
    };
    const auto left = asDouble(stored);
    const auto right = asDouble(given);
    if (!left || !right) return false;
    if (*left == *right) return true;
    // A float as a double has digits that nobody has written.
    if (std::holds_alternative<float>(stored)) return *left == static_cast<float>(*right);
    return false;
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

/// "1.5.", "01. Mai", "1-May-26", "2026-05-01": a day with a month as a number or a word, or more
/// than one separator between numbers.
bool LooksLikeDate(std::u16string_view text) {
    std::size_t groups = 0;
    std::size_t letters = 0;
    std::size_t separators = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (IsDigit(c)) {
            if (i == 0 || !IsDigit(text[i - 1])) ++groups;
        } else if (c == u'.' || c == u'/' || c == u'-' || c == u' ') {
            ++separators;
        } else {
            ++letters;
        }
    }
    const bool isMonth = letters >= 3 && letters <= 9 && groups >= 1 && groups <= 2;
    const bool isDay = letters == 0 && groups >= 2 && groups <= 3 && separators >= 2;
    return separators >= 1 && (isMonth || isDay) && (IsDigit(text.front()) || isMonth);
}

/// The same number in fewer digits, or without its zeros in front.
bool LostDigits(std::u16string_view old, std::u16string_view given) {
    const project::NumberText before = project::ReadNumber(old);
    const project::NumberText now = project::ReadNumber(given);
    if (!before.whole || !now.whole || given.size() >= old.size()) return false;
    const double distance = before.number - now.number;
    const double scale = std::max(before.number, -before.number);
    const bool isNear = distance <= scale * 1e-3 && -distance <= scale * 1e-3;
    constexpr std::size_t kMostDigits = 11;  // that a cell of usual width shows
    const bool canLose =
        old.front() == u'0' || old.find(u'.') != old.npos || old.size() > kMostDigits;
    return isNear && canLose;
}

/// To the digits that a spreadsheet has.
bool IsSameNumber(std::u16string_view old, std::u16string_view given) {
    const project::NumberText before = project::ReadNumber(old);
    const project::NumberText now = project::ReadNumber(given);
    return before.whole && now.whole &&
           project::FormatNumber(before.number) == project::FormatNumber(now.number);
}

}  // namespace

void WriteCell(const SheetColumn& column, const ado::Value& value, const words::Language& language,
               Cell& cell) {
    cell.text.clear();
    cell.kind = CellKind::Null;
    if (ado::IsNull(value)) return;
    if (const auto* text = std::get_if<std::u16string>(&value)) {
        cell.kind = CellKind::Text;
        if (*text != project::kEmptyText) cell.text = *text;
        return;
    }
    WriteNumber(column, value, language, cell);
}

bool IsSame(const SheetColumn& column, const ado::Value& stored, const Cell& written,
            const CellView& given) {
    if (given.kind == CellKind::Unknown) return false;
    const bool isNull = given.kind == CellKind::Null || (!column.IsText() && given.text.empty());
    if (isNull || ado::IsNull(stored)) return isNull && ado::IsNull(stored);
    if (given.text == written.text) return true;
    if (const auto* text = std::get_if<std::u16string>(&stored)) {
        // Halves of surrogate pairs do not survive outside.
        return unicode::ToUtf16(unicode::ToUtf8(*text)) == given.text;
    }
    if (const auto* real = std::get_if<double>(&stored)) {
        const std::u16string shown = project::FormatNumber(*real);
        if (given.text == shown || given.text == project::FormatNumber(*real, u',')) return true;
    }
    const project::Reading read = ReadCell(column, given);
    if (read.problem != Problem::None) return false;
    if (column.mask != 0) return NumberIn(column, stored) == NumberIn(column, read.value);
    if (stored == read.value || HasSameNumber(stored, read.value)) return true;
    const auto* before = std::get_if<double>(&stored);
    const auto* now = std::get_if<double>(&read.value);
    // What workbooks keep is not always the last digit.
    return given.kind == CellKind::Number && before != nullptr && now != nullptr &&
           project::FormatNumber(*before) == project::FormatNumber(*now);
}

project::Reading ReadCell(const SheetColumn& column, const CellView& cell) {
    if (cell.kind == CellKind::Null) return {ado::Null(), Problem::None};
    if (column.IsText() && cell.text.empty()) {
        return {std::u16string(project::kEmptyText), Problem::None};
    }
    if (!column.IsText() && cell.kind == CellKind::Date) return {{}, Problem::NoNumber};
    if (column.mask != 0 && !cell.text.empty()) return ReadBits(column, cell);
    project::CellRules rules;
    rules.column = column.meaning;
    if (!column.codes.empty()) {
        rules.codeOf = [&](std::u16string_view text) { return CodeOf(column, text); };
    }
    return project::ReadCell(cell.text, column.field, rules);
}

Suspicion SuspicionOf(const SheetColumn& column, const ado::Value& was, const CellView& given) {
    if (!column.IsText() || given.text.empty()) return Suspicion::None;
    const auto* old = std::get_if<std::u16string>(&was);
    const bool wasDate = old != nullptr && !old->empty() && LooksLikeDate(*old);
    if (given.kind == CellKind::Date) return Suspicion::Date;
    if (!wasDate && LooksLikeDate(given.text)) return Suspicion::Date;
    const bool isNumber = given.kind == CellKind::Number;
    const bool isLost = old != nullptr &&
                        (isNumber ? IsSameNumber(*old, given.text) : LostDigits(*old, given.text));
    if (isLost) return Suspicion::Rounded;
    return isNumber || given.kind == CellKind::Boolean ? Suspicion::NoText : Suspicion::None;
}

}  // namespace exchange
