#include "spreadsheet/WorkbookWriter.h"

#include <locale.h>
#include <stdlib.h>
#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>
#include <utility>

#include "spreadsheet/detail/Escape.h"
#include "spreadsheet/detail/Package.h"
#include "spreadsheet/detail/XmlScan.h"

namespace spreadsheet {
namespace {

constexpr std::uint8_t kTextFormat = 49;  // "@"; every workbook has it
constexpr std::uint32_t kGrey = 0xE0E0E0;
constexpr std::uint32_t kHeadingGrey = 0xD0D0D0;
constexpr std::size_t kMostFills = 4000;  // workbooks have room for some ten thousand looks

/// Libxlsxwriter writes numbers as the locale has it, and workbooks have a point.
class PointInNumbers {
public:
    PointInNumbers() : own_(::newlocale(LC_NUMERIC_MASK, "C", nullptr)) {
        if (own_ != nullptr) before_ = ::uselocale(own_);
    }
    ~PointInNumbers() {
        if (own_ == nullptr) return;
        ::uselocale(before_);
        ::freelocale(own_);
    }
    PointInNumbers(const PointInNumbers&) = delete;
    PointInNumbers& operator=(const PointInNumbers&) = delete;

private:
    locale_t own_;
    locale_t before_ = nullptr;
};

/// How much there is of a sheet.
struct Extent {
    std::size_t rows = 0;
    std::size_t cells = 0;
    bool operator==(const Extent&) const = default;
};

/// Looks at the sheet's tags alone: whether they nest takes longer than making it.
Extent ExtentOf(Part& sheet) {
    constexpr std::string_view kRow = "<row ";
    constexpr std::string_view kCell = "<c ";
    Extent extent;
    std::string text;
    for (std::string_view block = sheet.Next(); !block.empty(); block = sheet.Next()) {
        text += block;
        std::size_t at = text.find('<');
        while (at != std::string::npos && at + kRow.size() <= text.size()) {
            const std::string_view tag = std::string_view(text).substr(at, kRow.size());
            if (tag == kRow) ++extent.rows;
            if (tag.starts_with(kCell)) ++extent.cells;
            at = text.find('<', at + 1);
        }
        text.erase(0, std::min(at, text.size()));
    }
    return extent;
}

/// Takes nothing of a part: whether it can be read at all is asked.
class Nothing final : public XmlHandler {
public:
    void Begin(std::string_view, const Attributes&) override {}
    void End(std::string_view) override {}
    void Text(std::string_view) override {}
};

std::string ContentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool IsDark(std::uint32_t colour) {
    const auto part = [&](unsigned shift) { return (colour >> shift) & 0xFFU; };
    return part(16) * 299 + part(8) * 587 + part(0) * 114 < 128000;
}

}  // namespace

struct WorkbookWriter::Book {
    std::string listName;
    Notice notice;
    std::filesystem::path folder;  // of the file that is made
    lxw_workbook* book = nullptr;
    lxw_format* headingLook = nullptr;
    lxw_format* textLook = nullptr;
    lxw_format* fixedLook = nullptr;
    std::map<std::uint32_t, lxw_format*> fills;
    std::vector<std::vector<std::string>> lists;  // the columns of the hidden sheet
    Fault fault;
    // Of the sheet.
    lxw_worksheet* sheet = nullptr;
    std::string sheetName;
    std::vector<ColumnLook> columns;
    std::size_t rows = 0;         // with the heading
    std::vector<Extent> written;  // of all sheets

    ~Book() {
        if (book != nullptr) lxw_workbook_free(book);
        std::error_code ignored;  // a temporary folder that stays does no harm
        if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
    }

    [[nodiscard]] std::string FileName() const { return folder / "workbook.xlsx"; }

    /// Where the system says nothing, it is for want of room.
    bool NotWritten(const std::string& why, int error = 0) {
        if (fault) return false;
        fault = {.kind = Fault::Kind::NotWritten,
                 .part = folder.parent_path(),
                 .detail = why,
                 .error = {error != 0 ? error : ENOSPC, std::generic_category()}};
        return false;
    }
    bool Check(lxw_error error, std::size_t column = 0) {
        if (error == LXW_NO_ERROR) return true;
        if (error != LXW_ERROR_MAX_STRING_LENGTH_EXCEEDED) {
            const int why = errno;
            return NotWritten(lxw_strerror(error), why);
        }
        fault = {.kind = Fault::Kind::TooLongText,
                 .sheet = sheetName,
                 .cell = CellName(column, rows + 1)};
        return false;
    }

    bool Open() {
        if (book != nullptr || fault) return !fault;
        std::error_code error;
        folder = std::filesystem::temp_directory_path(error) / "workbook-XXXXXX";
        std::string pattern = folder;
        if (error || ::mkdtemp(pattern.data()) == nullptr) {
            const int why = error ? error.value() : errno;
            NotWritten("there is no place for a temporary file", why);
            folder.clear();
            return false;
        }
        folder = pattern;
        lxw_workbook_options options{};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = pattern.data();
        book = workbook_new_opt(FileName().c_str(), &options);
        if (book == nullptr) return NotWritten("out of memory");
        headingLook = workbook_add_format(book);
        format_set_bold(headingLook);
        format_set_bg_color(headingLook, kHeadingGrey);
        format_set_bottom(headingLook, LXW_BORDER_THIN);
        textLook = workbook_add_format(book);
        format_set_num_format_index(textLook, kTextFormat);
        fixedLook = workbook_add_format(book);
        format_set_bg_color(fixedLook, kGrey);
        return true;
    }

    lxw_worksheet* AddSheet(const std::string& name) {
        lxw_worksheet* added = workbook_add_worksheet(book, name.c_str());
        if (added == nullptr) NotWritten("a sheet \"" + name + "\" cannot be made");
        written.emplace_back();
        return added;
    }

    [[nodiscard]] lxw_format* LookOf(const ColumnLook& column) const {
        return column.isFixed ? fixedLook : column.isText ? textLook : nullptr;
    }

    lxw_format* FillLook(std::uint32_t colour) {
        const auto known = fills.find(colour);
        if (known != fills.end()) return known->second;
        if (fills.size() == kMostFills) return textLook;
        lxw_format* look = workbook_add_format(book);
        format_set_num_format_index(look, kTextFormat);
        // Black is 0, which the library takes for none.
        format_set_bg_color(look, colour != 0 ? colour : std::uint32_t{LXW_COLOR_BLACK});
        if (IsDark(colour)) format_set_font_color(look, LXW_COLOR_WHITE);
        return fills[colour] = look;
    }

    bool PutText(std::size_t column, const std::string& text, lxw_format* look) {
        const auto row = static_cast<lxw_row_t>(rows);
        const auto at = static_cast<lxw_col_t>(column);
        ++written.back().cells;
        // The library makes of an empty text a cell with nothing in it.
        if (text.empty()) {
            return Check(worksheet_write_formula_str(sheet, row, at, "=\"\"", look, ""), column);
        }
        return Check(worksheet_write_string(sheet, row, at, Escaped(text).c_str(), look), column);
    }

    bool Put(const Cell& cell) {
        lxw_format* look = LookOf(columns.at(cell.column));
        if (cell.fill) look = FillLook(*cell.fill);
        if (cell.kind == CellKind::Number) {
            double number = 0;
            const char* end = cell.text.data() + cell.text.size();
            const auto read = std::from_chars(cell.text.data(), end, number);
            if (read.ec == std::errc() && read.ptr == end && std::isfinite(number)) {
                ++written.back().cells;
                return Check(worksheet_write_number(sheet, static_cast<lxw_row_t>(rows),
                                                    static_cast<lxw_col_t>(cell.column), number,
                                                    look));
            }
        }
        return PutText(cell.column, cell.text, look);
    }

    bool BeginColumns(std::size_t frozenColumns) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto at = static_cast<lxw_col_t>(i);
            // Where nothing stands yet, the grey of a fixed column would invite no one.
            lxw_format* look = columns[i].isText ? textLook : nullptr;
            if (!Check(worksheet_set_column(sheet, at, at, columns[i].width, look))) return false;
            if (!columns[i].choices.empty() && !OfferChoices(at, columns[i].choices)) return false;
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!PutText(i, columns[i].heading, headingLook)) return false;
        }
        worksheet_freeze_panes(sheet, 1, static_cast<lxw_col_t>(frozenColumns));
        rows = 1;
        written.back().rows = 1;
        return true;
    }

    /// The list stands on the hidden sheet: a list within the rule may not be longer than 255
    /// characters, nor hold commas.
    bool OfferChoices(lxw_col_t column, const std::vector<std::string>& choices) {
        std::size_t at = 0;
        while (at < lists.size() && lists[at] != choices) ++at;
        if (at == lists.size()) lists.push_back(choices);
        const std::string letter = "$" + ColumnName(at) + "$";
        std::string formula =
            "='" + listName + "'!" + letter + "1:" + letter + std::to_string(choices.size());
        lxw_data_validation rule{};
        rule.validate = LXW_VALIDATION_TYPE_LIST_FORMULA;
        rule.value_formula = formula.data();
        return Check(
            worksheet_data_validation_range(sheet, 1, column, kMostRows - 1, column, &rule));
    }

    /// A rule that nothing meets keeps what stands there from being typed over.
    bool FixColumn(lxw_col_t column) {
        std::string never = "=FALSE";
        lxw_data_validation rule{};
        rule.validate = LXW_VALIDATION_TYPE_CUSTOM_FORMULA;
        rule.value_formula = never.data();
        rule.ignore_blank = LXW_VALIDATION_OFF;
        rule.input_title = notice.title.data();
        rule.input_message = notice.text.data();
        rule.error_title = notice.title.data();
        rule.error_message = notice.text.data();
        const auto last = static_cast<lxw_row_t>(rows - 1);
        return Check(worksheet_data_validation_range(sheet, 1, column, last, column, &rule));
    }

    bool EndSheet() {
        if (sheet == nullptr || fault) return !fault;
        const auto lastRow = static_cast<lxw_row_t>(rows - 1);
        const auto lastColumn = static_cast<lxw_col_t>(columns.size() - 1);
        if (!Check(worksheet_autofilter(sheet, 0, 0, lastRow, lastColumn))) return false;
        for (std::size_t i = 0; i < columns.size() && rows > 1; ++i) {
            if (columns[i].isFixed && !FixColumn(static_cast<lxw_col_t>(i))) return false;
        }
        return true;
    }

    bool WriteLists() {
        if (lists.empty()) return true;
        sheet = AddSheet(listName);
        if (sheet == nullptr) return false;
        std::size_t longest = 0;
        for (const auto& list : lists) longest = std::max(longest, list.size());
        written.back().rows = longest;
        for (rows = 0; rows < longest; ++rows) {
            for (std::size_t i = 0; i < lists.size(); ++i) {
                if (rows < lists[i].size() && !PutText(i, lists[i][rows], textLook)) return false;
            }
        }
        worksheet_hide(sheet);
        return true;
    }

    /// The library does not look whether its temporary files take what it writes; what they have
    /// lost is missing in a workbook that it holds for whole.
    bool IsWhole() {
        Package package;
        Nothing nothing;
        bool isWhole = !package.Open(ContentOf(FileName()));
        const auto find = [&](const std::string& name) {
            auto part = isWhole ? package.Find("xl/" + name + ".xml") : nullptr;
            isWhole = isWhole && part != nullptr;
            return part;
        };
        if (const auto looks = find("styles")) isWhole = !ScanAll(*looks, nothing);
        for (std::size_t i = 0; i < written.size(); ++i) {
            const auto part = find("worksheets/sheet" + std::to_string(i + 1));
            isWhole = part != nullptr && ExtentOf(*part) == written[i] && !part->GetFault();
        }
        return isWhole || NotWritten("part of it has been lost");
    }

    bool HandOn(const std::function<void(std::string_view)>& put) {
        std::ifstream file(FileName(), std::ios::binary);
        std::vector<char> block(std::size_t{64} << 10);
        while (file) {
            file.read(block.data(), static_cast<std::streamsize>(block.size()));
            put({block.data(), static_cast<std::size_t>(file.gcount())});
        }
        return file.eof() || NotWritten("the temporary file cannot be read");
    }
};

WorkbookWriter::WorkbookWriter(std::string listName, Notice fixedColumns)
    : book_(std::make_unique<Book>()) {
    book_->listName = std::move(listName);
    book_->notice = std::move(fixedColumns);
}
WorkbookWriter::~WorkbookWriter() = default;

bool WorkbookWriter::BeginSheet(const std::string& name, std::span<const ColumnLook> columns,
                                std::size_t frozenColumns) {
    const PointInNumbers point;
    if (!book_->Open() || !book_->EndSheet()) return false;
    book_->sheet = book_->AddSheet(name);
    if (book_->sheet == nullptr) return false;
    book_->sheetName = name;
    book_->columns.assign(columns.begin(), columns.end());
    book_->rows = 0;
    return book_->BeginColumns(frozenColumns);
}

bool WorkbookWriter::Write(std::span<const Cell> cells) {
    if (book_->fault) return false;
    if (book_->rows == kMostRows) {
        book_->fault = {.kind = Fault::Kind::TooManyRows, .sheet = book_->sheetName};
        return false;
    }
    const PointInNumbers point;
    for (const Cell& cell : cells) {
        if (!book_->Put(cell)) return false;
    }
    ++book_->rows;
    if (!cells.empty()) ++book_->written.back().rows;
    return true;
}

bool WorkbookWriter::Finish(const std::function<void(std::string_view)>& put) {
    {
        const PointInNumbers point;
        if (!book_->Open() || !book_->EndSheet() || !book_->WriteLists()) return false;
        lxw_workbook* book = std::exchange(book_->book, nullptr);  // closing frees it
        errno = 0;
        if (!book_->Check(workbook_close(book))) return false;
    }
    return book_->IsWhole() && book_->HandOn(put);
}

const Fault& WorkbookWriter::GetFault() const {
    return book_->fault;
}

}  // namespace spreadsheet
