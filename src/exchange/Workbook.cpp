#include "exchange/Workbook.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "ado/AdoError.h"
#include "paths/NewFile.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;

[[noreturn]] void Fail(const std::string& what) {
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, what);
}

double WidthOf(const SheetColumn& column, std::size_t heading) {
    constexpr std::size_t kFilterArrow = 4;  // characters
    std::size_t width = heading + kFilterArrow;
    if (column.IsText()) width = std::max<std::size_t>(width, 24);
    for (const project::Code& code : column.codes) {
        for (const words::Language& language : words::Languages()) {
            width = std::max(width, language.Text(code.text).size() + 2);
        }
    }
    return static_cast<double>(std::clamp<std::size_t>(width, 8, 40));
}

spreadsheet::ColumnLook LookOf(const Sheet& sheet, std::size_t i, const words::Language& language) {
    const SheetColumn& column = sheet.Columns()[i];
    const bool isColour =
        column.meaning != nullptr && column.meaning->kind == project::Kind::Colour;
    spreadsheet::ColumnLook look;
    look.heading = unicode::ToUtf8(sheet.Heading(i, language));
    look.width = WidthOf(column, look.heading.size());
    look.isFixed = column.role == Role::Id;
    look.isText =
        column.IsText() || column.role == Role::Archive || isColour || !column.codes.empty();
    for (const project::Code& code : column.codes) {
        look.choices.push_back(unicode::ToUtf8(language.Text(code.text)));
    }
    return look;
}

/// "#RRGGBB".
std::optional<std::uint32_t> ColourOf(std::string_view text) {
    if (!text.starts_with('#')) return std::nullopt;
    std::uint32_t colour = 0;
    const auto read = std::from_chars(text.data() + 1, text.data() + text.size(), colour, 16);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
    return colour;
}

CellKind KindOf(spreadsheet::CellKind kind) {
    switch (kind) {
        case spreadsheet::CellKind::Text:
            return CellKind::Text;
        case spreadsheet::CellKind::Number:
            return CellKind::Number;
        case spreadsheet::CellKind::Boolean:
            return CellKind::Boolean;
        case spreadsheet::CellKind::Date:
            return CellKind::Date;
        default:
            return CellKind::Unknown;
    }
}

/// One sheet of a workbook, from its first row with something in it.
class WorkbookInput final : public Input {
public:
    /// `workbook` is borrowed.
    WorkbookInput(spreadsheet::WorkbookReader& workbook, std::size_t sheet)
        : workbook_(workbook), name_(unicode::ToUtf16(workbook.Sheets()[sheet].name)) {
        workbook.Begin(sheet);
    }

    [[nodiscard]] bool Next(std::vector<Cell>& record) override {
        do {
            if (!workbook_.Next(row_)) {
                error_ = workbook_.GetFault().Text();
                return false;
            }
        } while (row_.cells.empty());
        if (width_ == 0) width_ = row_.cells.back().column + 1;
        record.assign(width_, {});
        for (const spreadsheet::Cell& cell : row_.cells) {
            // However far to the right a cell may be, it is one more than there are headings.
            const std::size_t at = std::min(cell.column, width_);
            if (at == record.size()) record.emplace_back();
            if (at == width_ && !record[at].text.empty()) continue;
            record[at] = {KindOf(cell.kind), unicode::ToUtf16(cell.text)};
        }
        return true;
    }
    [[nodiscard]] std::size_t Line() const override { return row_.number; }
    [[nodiscard]] std::u16string Sheet() const override { return name_; }
    [[nodiscard]] const std::string& Error() const override { return error_; }

private:
    spreadsheet::WorkbookReader& workbook_;
    std::u16string name_;
    std::size_t width_ = 0;  // of the heading
    spreadsheet::Row row_;
    std::string error_;
};

/// What the sheets of a workbook are.
class Kinds {
public:
    explicit Kinds(ado::Connection& connection)
        : sheets_{Sheet(connection, SheetKind::Archives), Sheet(connection, SheetKind::Trends)} {}

    /// By its name, else by its headings, of which more than half have to be a column's.
    [[nodiscard]] std::optional<SheetKind> Of(std::u16string_view name,
                                              const std::vector<Cell>& heading,
                                              const ReadOptions& options) const {
        for (const Sheet& sheet : sheets_) {
            for (const words::Language& language : words::Languages()) {
                if (Folded(NameOf(sheet.Kind(), language)) == Folded(name)) return sheet.Kind();
            }
        }
        const auto isBlank = [](const Cell& cell) { return Folded(cell.text).empty(); };
        const auto blanks = std::count_if(heading.begin(), heading.end(), isBlank);
        const auto all = static_cast<std::ptrdiff_t>(heading.size()) - blanks;
        const auto known = [&](const Sheet& sheet) {
            return std::count_if(heading.begin(), heading.end(), [&](const Cell& cell) {
                return sheet.FindHeading(MeaningOf(sheet, cell.text, options)).has_value();
            });
        };
        const auto archives = known(sheets_.front());
        const auto trends = known(sheets_.back());
        if (2 * std::max(archives, trends) <= all || archives == trends) return std::nullopt;
        return archives > trends ? SheetKind::Archives : SheetKind::Trends;
    }

private:
    std::vector<Sheet> sheets_;
};

}  // namespace

WorkbookSheets::WorkbookSheets(const words::Language& language)
    : writer_(unicode::ToUtf8(language.Text("Exchange.Lists")),
              {unicode::ToUtf8(language.Text("Exchange.FixedTitle")),
               unicode::ToUtf8(language.Text("Exchange.FixedText"))}) {}

void WorkbookSheets::Require(bool isDone) const {
    if (isDone) return;
    const spreadsheet::Fault& fault = writer_.GetFault();
    reasons::Reason reason;
    if (fault.kind == spreadsheet::Fault::Kind::NotWritten) {
        reason = {paths::NewFile::CauseOf(fault.error), fault.part};
    }
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, fault.Text() + ".", reason);
}

void WorkbookSheets::Begin(const Sheet& sheet, const words::Language& language) {
    std::vector<spreadsheet::ColumnLook> looks;
    for (std::size_t i = 0; i < sheet.Columns().size(); ++i) {
        looks.push_back(LookOf(sheet, i, language));
    }
    const std::size_t frozen = *sheet.FindField("Name") + 1;
    Require(writer_.BeginSheet(unicode::ToUtf8(NameOf(sheet.Kind(), language)), looks, frozen));
}

void WorkbookSheets::Row(std::span<const Cell> cells) {
    cells_.resize(cells.size());
    std::size_t count = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].kind == CellKind::Null) continue;
        spreadsheet::Cell& cell = cells_[count++];
        cell.column = i;
        cell.text.clear();
        unicode::AppendUtf8(cells[i].text, cell.text);
        cell.fill.reset();
        if (cells[i].kind == CellKind::Colour) cell.fill = ColourOf(cell.text);
        cell.kind = cells[i].kind == CellKind::Number ? spreadsheet::CellKind::Number
                                                      : spreadsheet::CellKind::Text;
    }
    Require(writer_.Write(std::span(cells_).first(count)));
}

void WorkbookSheets::Finish(const std::function<void(std::string_view)>& put) {
    Require(writer_.Finish(put));
}

WorkbookRows ReadWorkbook(ado::Connection& connection, spreadsheet::WorkbookReader& workbook,
                          const ReadOptions& options) {
    const Kinds kinds(connection);
    WorkbookRows rows;
    const auto find = [&](SheetKind wanted) {
        return std::find_if(rows.sheets.begin(), rows.sheets.end(),
                            [&](const InputRows& each) { return each.Columns().Kind() == wanted; });
    };
    const auto shown = std::count_if(workbook.Sheets().begin(), workbook.Sheets().end(),
                                     [](const auto& sheet) { return !sheet.isHidden; });
    for (std::size_t i = 0; i < workbook.Sheets().size(); ++i) {
        if (workbook.Sheets()[i].isHidden) continue;
        const std::string& name = workbook.Sheets()[i].name;
        std::vector<Cell> heading;
        WorkbookInput first(workbook, i);
        const bool hasHeading = first.Next(heading);
        if (!first.Error().empty()) Fail(first.Error() + ".");
        const auto known = options.kind && shown == 1
                               ? options.kind
                               : kinds.Of(unicode::ToUtf16(name), heading, options);
        if (!hasHeading || !known) {
            rows.passedOver.push_back(name);
            continue;
        }
        if (options.kind && known != options.kind) continue;
        const auto other = find(*known);
        if (other != rows.sheets.end()) {
            Fail("The sheets \"" + unicode::ToUtf8(other->SheetName()) + "\" and \"" + name +
                 "\" hold rows of the same kind.");
        }
        WorkbookInput input(workbook, i);
        ReadOptions reading = options;
        reading.kind = known;
        rows.sheets.push_back(InputRows(connection, input, reading));
    }
    if (rows.sheets.empty()) Fail("No sheet of the workbook has headings of archives or trends.");
    RequireChoices(rows.sheets, options);
    std::partition(rows.sheets.begin(), rows.sheets.end(), [](const InputRows& sheet) {
        return sheet.Columns().Kind() == SheetKind::Archives;
    });
    return rows;
}

}  // namespace exchange
