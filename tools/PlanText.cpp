#include "tools/PlanText.h"

#include "spreadsheet/Cell.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using exchange::FieldChange;
using exchange::Plan;
using exchange::PlannedRow;
using exchange::Sheet;
using exchange::SheetKind;
using State = PlannedRow::State;
using Cause = PlannedRow::Cause;

std::string Quoted(std::u16string_view text) {
    return '"' + unicode::ToUtf8(text) + '"';
}

std::string NameOf(const Plan& plan, const PlannedRow& row) {
    std::string text = (plan.kind == SheetKind::Trends ? "trend " : "archive ") + Quoted(row.name);
    if (plan.kind == SheetKind::Trends) {
        text += row.archive.empty() ? " of no archive" : " of archive " + Quoted(row.archive);
    }
    if (row.id != 0) text += " (ID " + std::to_string(row.id) + ")";
    return text;
}

/// "line 5"; of a workbook "sheet "Trends", row 5".
std::string PlaceOf(const Plan& plan, std::size_t line) {
    if (plan.sheet.empty()) return "line " + std::to_string(line);
    return "sheet " + Quoted(plan.sheet) + ", row " + std::to_string(line);
}

/// " (cell C5)" of a workbook.
std::string CellOf(const Plan& plan, const PlannedRow& row, std::optional<std::size_t> column) {
    if (plan.sheet.empty() || !column || !plan.places[*column]) return {};
    return " (cell " + spreadsheet::CellName(*plan.places[*column], row.line) + ")";
}

std::string HeadingOf(const FieldChange& change, const Sheet& sheet,
                      const words::Language& language) {
    if (change.sheetColumn) return unicode::ToUtf8(sheet.Heading(*change.sheetColumn, language));
    return change.table + "." + change.column;
}

std::string ValueOf(const FieldChange& change, const ado::Value& value, const Sheet& sheet,
                    const words::Language& language) {
    if (ado::IsNull(value)) return "nothing";
    exchange::Cell cell;
    static const exchange::SheetColumn kPlain;
    const bool isKnown = change.sheetColumn.has_value();
    exchange::WriteCell(isKnown ? sheet.Columns()[*change.sheetColumn] : kPlain, value, language,
                        cell);
    const bool isText = cell.kind == exchange::CellKind::Text;
    return isText ? Quoted(cell.text) : unicode::ToUtf8(cell.text);
}

const char* TextOf(exchange::Suspicion suspicion) {
    switch (suspicion) {
        case exchange::Suspicion::Date:
            return " (has a spreadsheet made a date of it?)";
        case exchange::Suspicion::Rounded:
            return " (has a spreadsheet rounded it?)";
        case exchange::Suspicion::NoText:
            return " (a spreadsheet keeps it as a number, not as a text)";
        default:
            return "";
    }
}

const char* TextOf(project::Problem problem) {
    using project::Problem;
    switch (problem) {
        case Problem::NotWhole:
            return "the column takes whole numbers only";
        case Problem::OutOfRange:
            return "the number is beyond what the column holds";
        case Problem::TooLong:
            return "the text is longer than the column is";
        case Problem::NotListed:
            return "it is none of the column's words";
        case Problem::NoColour:
            return "it is no colour such as #FF8000";
        case Problem::NotEditable:
            return "the column cannot be changed";
        default:
            return "it is no number";
    }
}

std::string Reason(const Plan& plan, const PlannedRow& row, const Sheet& sheet,
                   const words::Language& language) {
    const auto cell = [&] {
        return "\"" + unicode::ToUtf8(sheet.Heading(row.column, language)) + "\"" +
               CellOf(plan, row, row.column) + ": " + Quoted(row.given);
    };
    switch (row.cause) {
        case Cause::BadCell:
            return cell() + ": " + TextOf(row.problem) + TextOf(row.suspicion);
        case Cause::NoResult:
            return cell() + ": it is an error, or a formula whose result the file does not have";
        case Cause::NoName:
            return "the row has no name";
        case Cause::NoArchive:
            return row.given.empty() ? "the row names no archive"
                                     : "there is no archive " + Quoted(row.given);
        case Cause::SeveralArchives:
            return "several archives are called " + Quoted(row.given);
        case Cause::SeveralRows:
            return "several rows of the project have this name; the ID tells them apart";
        case Cause::OtherNames:
            return "the ID is another row's, of another name; --update id goes by the ID alone, "
                   "--update name by the names";
        case Cause::GivenTwice:
            return PlaceOf(plan, row.other) + " means the same row";
        case Cause::NameInUse:
            return "another row would have the same name";
        case Cause::TooManyCells:
            return "the row has more cells than there are headings";
        default:
            return {};
    }
}

std::string WhatOf(const Plan& plan, const PlannedRow& row) {
    switch (row.state) {
        case State::New:
            return "new " + NameOf(plan, row);
        case State::Missing: {
            const char* what = plan.deleteMissing ? "deleted: " : "missing here: ";
            std::string text = what + NameOf(plan, row);
            if (row.trends > 0) text += " with its " + std::to_string(row.trends) + " trends";
            return text;
        }
        default:
            return NameOf(plan, row) + (row.ownText ? " (gets a text of its own)" : "");
    }
}

}  // namespace

std::string TextOf(const Plan& plan, const PlannedRow& row, const Sheet& sheet,
                   const words::Language& language) {
    std::string text = row.line > 0 ? PlaceOf(plan, row.line) + ": " : std::string();
    if (row.cause != Cause::None) {
        const char* state = row.state == State::Ambiguous ? ": ambiguous: " : ": refused: ";
        return text + NameOf(plan, row) + state + Reason(plan, row, sheet, language) + "\n";
    }
    text += WhatOf(plan, row) + "\n";
    for (const FieldChange& change : row.changes) {
        text += "    " + HeadingOf(change, sheet, language) +
                CellOf(plan, row, change.sheetColumn) + ": ";
        if (row.state != State::New) text += ValueOf(change, change.was, sheet, language) + " -> ";
        text += ValueOf(change, change.is, sheet, language) + TextOf(change.suspicion) + "\n";
    }
    return text;
}

std::string DoubtsOf(const Plan& plan, const PlannedRow& row, const Sheet& sheet,
                     const words::Language& language) {
    std::string text;
    for (const FieldChange& change : row.changes) {
        if (change.suspicion == exchange::Suspicion::None) continue;
        text += PlaceOf(plan, row.line) + ": \"" + HeadingOf(change, sheet, language) + "\"" +
                CellOf(plan, row, change.sheetColumn) + ": " +
                ValueOf(change, change.is, sheet, language) + TextOf(change.suspicion) + "\n";
    }
    return text;
}

std::string Summary(const Plan& plan) {
    std::string text;
    const auto add = [&](std::size_t count, const char* what, bool always) {
        if (count == 0 && !always) return;
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
    };
    add(plan.Count(State::New), "new", true);
    add(plan.Count(State::Changed), "changed", true);
    add(plan.same, "as they are", true);
    add(plan.Count(State::Missing), plan.deleteMissing ? "deleted" : "missing here", false);
    add(plan.Count(State::Ambiguous), "ambiguous", false);
    add(plan.Count(State::Refused), "refused", false);
    return text;
}

}  // namespace tools
