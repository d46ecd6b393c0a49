#include "exchange/InputRows.h"

#include <algorithm>

#include "ado/AdoError.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;

[[noreturn]] void FailWith(const std::string& what) {
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, what);
}

bool IsBlank(const Cell& cell) {
    return Folded(cell.text).empty();
}

bool HasColumn(const Sheet& sheet, const ColumnChoice& choice) {
    return Folded(choice.column).empty() || sheet.FindHeading(choice.column).has_value();
}

std::size_t CountKnown(const Sheet& sheet, std::span<const std::u16string> headings,
                       const ReadOptions& options) {
    return static_cast<std::size_t>(
        std::count_if(headings.begin(), headings.end(), [&](const std::u16string& heading) {
            return sheet.FindHeading(MeaningOf(sheet, heading, options)).has_value();
        }));
}

/// The sheet whose headings these are.
SheetKind KindOf(ado::Connection& connection, std::span<const std::u16string> headings,
                 const ReadOptions& options) {
    const Sheet archives(connection, SheetKind::Archives);
    const Sheet trends(connection, SheetKind::Trends);
    const auto archive = trends.FindRole(Role::Archive);
    const bool namesArchive =
        std::any_of(headings.begin(), headings.end(), [&](const std::u16string& heading) {
            return trends.FindHeading(MeaningOf(trends, heading, options)) == archive;
        });
    const std::size_t asTrends = CountKnown(trends, headings, options);
    const std::size_t asArchives = CountKnown(archives, headings, options);
    if (!namesArchive && asTrends == asArchives && !options.isOpen) {
        FailWith("The headings fit archives and trends alike; it has to be said which they are.");
    }
    return namesArchive || asTrends >= asArchives ? SheetKind::Trends : SheetKind::Archives;
}

}  // namespace

std::u16string_view MeaningOf(const Sheet& sheet, std::u16string_view heading,
                              const ReadOptions& options) {
    for (const ColumnChoice& choice : options.columns) {
        if (Folded(choice.heading) == Folded(heading) && HasColumn(sheet, choice)) {
            return choice.column;
        }
    }
    return heading;
}

void RequireChoices(std::span<const InputRows> sheets, const ReadOptions& options) {
    for (const ColumnChoice& choice : options.columns) {
        const bool isThere = std::any_of(sheets.begin(), sheets.end(), [&](const InputRows& rows) {
            const auto has = [&](const std::u16string& heading) {
                return Folded(heading) == Folded(choice.heading);
            };
            return HasColumn(rows.Columns(), choice) &&
                   std::any_of(rows.Headings().begin(), rows.Headings().end(), has);
        });
        if (isThere) continue;
        std::string what = "There is no heading \"" + unicode::ToUtf8(choice.heading) + "\"";
        if (!choice.column.empty()) {
            what += ", or no column \"" + unicode::ToUtf8(choice.column) + "\" for it";
        }
        FailWith(what + ".");
    }
}

InputRows::InputRows(ado::Connection& connection, Input& input, const ReadOptions& options)
    : name_(input.Sheet()), ends_{0} {
    std::vector<Cell> record;
    const auto next = [&] {
        if (input.Next(record)) return true;
        if (!input.Error().empty()) FailWith(input.Error() + ".");
        return false;
    };
    if (!next()) Fail("There is no heading row.");
    for (const Cell& cell : record) headings_.push_back(cell.text);
    sheet_.emplace(connection,
                   options.kind ? *options.kind : KindOf(connection, headings_, options));
    TakeHeadings(options);
    if (!options.isOpen) RequireKey();
    while (next()) {
        if (options.goOn && !options.goOn(Count())) throw GivenUp();
        if (!std::all_of(record.begin(), record.end(), IsBlank)) Add(record, input.Line());
    }
}

void InputRows::Fail(const std::string& what) const {
    FailWith(name_.empty() ? what : "Sheet \"" + unicode::ToUtf8(name_) + "\": " + what);
}

void InputRows::TakeHeadings(const ReadOptions& options) {
    places_.assign(sheet_->Columns().size(), std::nullopt);
    for (std::size_t i = 0; i < headings_.size(); ++i) {
        const std::u16string_view meaning = MeaningOf(*sheet_, headings_[i], options);
        if (Folded(meaning).empty()) continue;
        const auto column = sheet_->FindHeading(meaning);
        const bool isTaken = column && places_[*column];
        if (column && !isTaken) {
            places_[*column] = i;
        } else if (!options.isOpen) {
            const std::string name = "\"" + unicode::ToUtf8(std::u16string(meaning)) + "\"";
            Fail(isTaken ? "The heading row: " + name + " names its column a second time."
                         : "The heading row: no column is called " + name + ".");
        }
    }
}

std::optional<std::size_t> InputRows::ColumnOf(std::size_t heading) const {
    const auto found = std::find(places_.begin(), places_.end(), std::optional(heading));
    if (found == places_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - places_.begin());
}

void InputRows::Assign(std::size_t heading, std::optional<std::size_t> column) {
    if (const auto before = ColumnOf(heading)) places_[*before].reset();
    if (column) places_[*column] = heading;
}

void InputRows::SetKind(ado::Connection& connection, SheetKind kind) {
    sheet_.emplace(connection, kind);
    TakeHeadings({.isOpen = true});
}

bool InputRows::HasKey() const {
    const auto has = [&](Role role) {
        const auto column = sheet_->FindRole(role);
        return !column || places_[*column].has_value();
    };
    const bool hasName = places_[*sheet_->FindField("Name")].has_value();
    return has(Role::Id) || (hasName && has(Role::Archive));
}

void InputRows::RequireKey() const {
    if (HasKey()) return;
    Fail(sheet_->Kind() == SheetKind::Trends
             ? "The heading row names neither the ID nor archive and name of the trends."
             : "The heading row names neither the ID nor the name of the archives.");
}

void InputRows::Add(const std::vector<Cell>& record, std::size_t line) {
    static const Cell kNothing;
    for (std::size_t i = 0; i < headings_.size(); ++i) {
        const Cell& cell = i < record.size() ? record[i] : kNothing;
        texts_ += cell.text;
        ends_.push_back(texts_.size());
        kinds_.push_back(cell.kind);
    }
    lines_.push_back(line);
    // Spreadsheets like to write separators behind the last column.
    const std::size_t last = std::min(headings_.size(), record.size());
    tooLong_.push_back(std::any_of(record.begin() + static_cast<std::ptrdiff_t>(last), record.end(),
                                   [](const Cell& cell) { return !IsBlank(cell); }));
}

std::optional<CellView> InputRows::Get(std::size_t row, std::size_t column) const {
    if (!places_[column]) return std::nullopt;
    return At(row, *places_[column]);
}

CellView InputRows::At(std::size_t row, std::size_t heading) const {
    const std::size_t at = row * headings_.size() + heading;
    const std::size_t begin = ends_[at];
    return {kinds_[at], std::u16string_view(texts_).substr(begin, ends_[at + 1] - begin)};
}

}  // namespace exchange
