#include "spreadsheet/detail/SheetScan.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "spreadsheet/detail/Escape.h"

namespace spreadsheet {
namespace {

constexpr std::size_t kMostOfACell = 4 * kMostCharacters;     // bytes
constexpr std::size_t kMostOfTexts = std::size_t{512} << 20;  // bytes of a sheet's
constexpr std::string_view kEmptyFormula = "\"\"";

std::optional<double> NumberOf(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '+')) text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
    if (!std::isfinite(number)) return std::nullopt;
    return number;
}

std::string TextOf(double number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

}  // namespace

void SheetScan::Fail(Fault::Kind kind, const char* why) {
    if (fault_) return;
    fault_ = {.kind = kind,
              .sheet = context_.name,
              .cell = CellName(cell_.column, row_.number),
              .detail = why};
}

void SheetScan::Begin(std::string_view name, const Attributes& attributes) {
    if (fault_) return;
    if (name == "sheetData") isInData_ = true;
    if (!isInData_) return;
    if (name == "row" && !isInRow_) return BeginRow(attributes);
    if (name == "c" && isInRow_ && !isInCell_) return BeginCell(attributes);
    if (!isInCell_) return;
    if (name == "v") isInValue_ = hasValue_ = true;
    if (name == "f") isInFormula_ = hasFormula_ = true;
    if (name == "is") hasPieces_ = true;
    pieces_.Begin(name);
}

void SheetScan::BeginRow(const Attributes& attributes) {
    const std::size_t before = row_.number;
    const auto number = attributes.Number("r");
    row_.number = attributes.Has("r") ? number.value_or(0) : before + 1;
    row_.cells.clear();
    column_ = 0;
    cell_.column = 0;
    isInRow_ = true;
    if (row_.number > kMostRows) return Fail(Fault::Kind::TooManyRows);
    if (row_.number <= before) Fail(Fault::Kind::BadCell, "its row comes behind a later one");
}

void SheetScan::BeginCell(const Attributes& attributes) {
    isInCell_ = true;
    hasValue_ = hasFormula_ = hasPieces_ = false;
    value_.clear();
    formula_.clear();
    pieces_.Clear();
    cell_ = {.column = column_};
    type_ = attributes.Get("t");
    style_ = attributes.Number("s").value_or(0);
    if (attributes.Has("r") && !PlaceCell(attributes.Get("r"))) return;
    if (cell_.column < column_) return Fail(Fault::Kind::BadCell, "it comes behind a later one");
    if (cell_.column >= kMostColumns) Fail(Fault::Kind::BadCell, "no sheet has that many columns");
    column_ = cell_.column + 1;
}

bool SheetScan::PlaceCell(std::string_view reference) {
    std::size_t column = 0;
    std::size_t length = 0;
    while (length < reference.size() && length < 4 && reference[length] >= 'A' &&
           reference[length] <= 'Z') {
        column = column * 26 + static_cast<std::size_t>(reference[length++] - 'A' + 1);
    }
    if (length == 0 || reference.substr(length) != std::to_string(row_.number)) {
        Fail(Fault::Kind::BadCell, "it is not where it says");
        return false;
    }
    cell_.column = column - 1;
    return true;
}

void SheetScan::Text(std::string_view text) {
    if (!isInCell_ || fault_) return;
    if (isInValue_) value_ += text;
    if (isInFormula_ && formula_.size() < kMostOfACell) formula_ += text;
    pieces_.Add(text);
    if (value_.size() > kMostOfACell || pieces_.Size() > kMostOfACell) {
        Fail(Fault::Kind::TooLongText);
    }
}

void SheetScan::End(std::string_view name) {
    if (fault_) return;
    if (name == "sheetData") isInData_ = false;
    if (name == "v") isInValue_ = false;
    if (name == "f") isInFormula_ = false;
    if (name == "c" && isInCell_) EndCell();
    if (isInCell_) pieces_.End(name);
    if (name == "row" && isInRow_) {
        isInRow_ = false;
        rows_.push_back(std::move(row_));
        row_ = {.number = rows_.back().number};
    }
}

void SheetScan::EndCell() {
    isInCell_ = false;
    Cell cell{.column = cell_.column};
    // Some programs leave the result out, others leave it empty; that of a text says what it is.
    if (hasFormula_ && (!hasValue_ || (value_.empty() && type_ != "str"))) {
        AddFormula(cell);
    } else if (type_ == "inlineStr") {
        if (!hasPieces_) return;
        cell.text = pieces_.Take();
    } else if (!hasValue_) {
        return;  // a look alone
    } else if (type_ == "s") {
        AddShared(cell);
    } else if (type_ == "str") {
        Unescape(value_);
        cell.text = value_;
    } else if (type_ == "b") {
        cell.kind = CellKind::Boolean;
        cell.text = value_ == "1" || value_ == "true" ? "TRUE" : "FALSE";
    } else if (type_ == "e") {
        cell.kind = CellKind::Unknown;
        cell.text = value_;
    } else if (type_ == "d") {
        cell.kind = CellKind::Date;
        cell.text = value_;
    } else {
        if (value_.empty()) return;
        AddNumber(cell);
    }
    size_ += cell.text.size();
    if (size_ > kMostOfTexts) Fail(Fault::Kind::TooLongText);
    if (!fault_) row_.cells.push_back(std::move(cell));
}

void SheetScan::AddShared(Cell& cell) {
    const auto number = NumberOf(value_);
    const bool isIndex = number && *number >= 0 && *number < UINT32_MAX;
    const auto text =
        isIndex ? context_.texts.Get(static_cast<std::size_t>(*number)) : std::nullopt;
    if (!text) return Fail(Fault::Kind::BadCell, "its text is not in the workbook");
    if (text->size() > kMostOfACell) return Fail(Fault::Kind::TooLongText);
    cell.text = *text;
}

void SheetScan::AddNumber(Cell& cell) {
    const auto number = NumberOf(value_);
    if (!number) return Fail(Fault::Kind::BadCell, "its number is none");
    cell.kind = CellKind::Number;
    if (context_.formats.IsDate(style_)) {
        cell.text = DateText(*number, context_.from1904);
        if (!cell.text.empty()) {
            cell.kind = CellKind::Date;
            return;
        }
    }
    cell.text = TextOf(*number);
}

/// Programs that do not calculate write formulas without results; that of the empty text is known.
void SheetScan::AddFormula(Cell& cell) {
    if (formula_ == kEmptyFormula) return;
    cell.kind = CellKind::Unknown;
    cell.text = "=" + formula_;
}

bool SheetScan::TakeRow(Row& row) {
    if (rows_.empty()) return false;
    row = std::move(rows_.front());
    rows_.pop_front();
    return true;
}

}  // namespace spreadsheet
