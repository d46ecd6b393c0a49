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

std::size_t CountKnown(const Sheet& sheet, const std::vector<Cell>& heading) {
    return static_cast<std::size_t>(
        std::count_if(heading.begin(), heading.end(),
                      [&](const Cell& cell) { return sheet.FindHeading(cell.text).has_value(); }));
}

/// The sheet whose headings these are.
SheetKind KindOf(ado::Connection& connection, const std::vector<Cell>& heading) {
    const Sheet archives(connection, SheetKind::Archives);
    const Sheet trends(connection, SheetKind::Trends);
    const auto archive = trends.FindRole(Role::Archive);
    const bool namesArchive = std::any_of(heading.begin(), heading.end(), [&](const Cell& cell) {
        return trends.FindHeading(cell.text) == archive;
    });
    const std::size_t asTrends = CountKnown(trends, heading);
    const std::size_t asArchives = CountKnown(archives, heading);
    if (!namesArchive && asTrends == asArchives) {
        FailWith("The headings fit archives and trends alike; it has to be said which they are.");
    }
    return namesArchive || asTrends > asArchives ? SheetKind::Trends : SheetKind::Archives;
}

}  // namespace

InputRows::InputRows(ado::Connection& connection, Input& input, std::optional<SheetKind> kind)
    : name_(input.Sheet()), ends_{0} {
    std::vector<Cell> record;
    const auto next = [&] {
        if (input.Next(record)) return true;
        if (!input.Error().empty()) FailWith(input.Error() + ".");
        return false;
    };
    if (!next()) Fail("There is no heading row.");
    sheet_.emplace(connection, kind ? *kind : KindOf(connection, record));
    ReadHeading(record);
    while (next()) {
        if (!std::all_of(record.begin(), record.end(), IsBlank)) Add(record, input.Line());
    }
}

void InputRows::Fail(const std::string& what) const {
    FailWith(name_.empty() ? what : "Sheet \"" + unicode::ToUtf8(name_) + "\": " + what);
}

std::vector<std::optional<std::size_t>> InputRows::Places() const {
    std::vector<std::optional<std::size_t>> places(places_.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places_[i]) places[i] = taken_[*places_[i]];
    }
    return places;
}

void InputRows::ReadHeading(const std::vector<Cell>& heading) {
    width_ = heading.size();
    places_.resize(sheet_->Columns().size());
    for (std::size_t i = 0; i < heading.size(); ++i) {
        if (IsBlank(heading[i])) continue;
        const std::string name = "\"" + unicode::ToUtf8(heading[i].text) + "\"";
        const auto column = sheet_->FindHeading(heading[i].text);
        if (!column) Fail("The heading row: no column is called " + name + ".");
        if (places_[*column]) {
            Fail("The heading row: " + name + " names its column a second time.");
        }
        places_[*column] = taken_.size();
        taken_.push_back(i);
    }
    const auto has = [&](Role role) {
        const auto column = sheet_->FindRole(role);
        return !column || places_[*column].has_value();
    };
    const bool hasName = places_[*sheet_->FindField("Name")].has_value();
    if (!has(Role::Id) && !(hasName && has(Role::Archive))) {
        Fail(sheet_->Kind() == SheetKind::Trends
                 ? "The heading row names neither the ID nor archive and name of the trends."
                 : "The heading row names neither the ID nor the name of the archives.");
    }
}

void InputRows::Add(const std::vector<Cell>& record, std::size_t line) {
    static const Cell kNothing;
    for (const std::size_t i : taken_) {
        const Cell& cell = i < record.size() ? record[i] : kNothing;
        texts_ += cell.text;
        ends_.push_back(texts_.size());
        kinds_.push_back(cell.kind);
    }
    lines_.push_back(line);
    // Spreadsheets like to write separators behind the last column.
    const std::size_t last = std::min(width_, record.size());
    tooLong_.push_back(std::any_of(record.begin() + static_cast<std::ptrdiff_t>(last), record.end(),
                                   [](const Cell& cell) { return !IsBlank(cell); }));
}

std::optional<CellView> InputRows::Get(std::size_t row, std::size_t column) const {
    if (!places_[column]) return std::nullopt;
    const std::size_t at = row * taken_.size() + *places_[column];
    const std::size_t begin = ends_[at];
    return CellView{kinds_[at], std::u16string_view(texts_).substr(begin, ends_[at + 1] - begin)};
}

}  // namespace exchange
