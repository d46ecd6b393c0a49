#include "exchange/CsvSheet.h"

#include <algorithm>
#include <array>

#include "ado/AdoError.h"
#include "csv/Quoted.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

/// As csv::AppendText wants it.
struct Line {
    std::string& text;

    void Append(char c) { text += c; }
    void Append(std::string_view piece) { text += piece; }
};

}  // namespace

CsvForm CsvFormOf(std::string_view locale) {
    // Languages that write 1,5; their lists are separated by semicolons.
    static constexpr std::array<std::string_view, 36> kComma = {
        "af", "az", "be", "bg", "bs", "ca", "cs", "da", "de", "el", "es", "et",
        "eu", "fi", "fr", "gl", "hr", "hu", "id", "is", "it", "lt", "lv", "mk",
        "nb", "nl", "nn", "pl", "pt", "ro", "ru", "sk", "sl", "sr", "sv", "tr"};
    static constexpr std::array<std::string_view, 2> kAlsoComma = {"uk", "vi"};
    static constexpr std::array<std::string_view, 6> kPoint = {"de_CH", "de_LI", "es_MX",
                                                               "es_US", "fr_CH", "it_CH"};
    const std::string_view place = locale.substr(0, locale.find_first_of(".@"));
    const std::string_view language = place.substr(0, place.find('_'));
    const auto has = [](const auto& names, std::string_view name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    CsvForm form;
    if (!has(kComma, language) && !has(kAlsoComma, language)) return form;
    const bool isSwiss = place.ends_with("_CH") || place.ends_with("_LI");
    const bool hasPoint = has(kPoint, place);
    form.decimal = hasPoint ? '.' : ',';
    form.separator = hasPoint && !isSwiss ? ',' : ';';
    return form;
}

void CsvSheetWriter::Begin(const Sheet& sheet, const words::Language& language) {
    if (form_.hasMark && form_.encoding == csv::Encoding::Utf8) line_ = "\xEF\xBB\xBF";
    Line line{line_};
    for (std::size_t i = 0; i < sheet.Columns().size(); ++i) {
        if (i > 0) line_ += form_.separator;
        csv::AppendText(unicode::ToUtf8(sheet.Heading(i, language)), form_.separator, line);
    }
    EndLine();
}

void CsvSheetWriter::Row(std::span<const Cell> cells) {
    Line line{line_};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Cell& cell = cells[i];
        if (i > 0) line_ += form_.separator;
        if (cell.kind == CellKind::Null) continue;
        utf8_.clear();
        unicode::AppendUtf8(cell.text, utf8_);
        if (cell.kind == CellKind::Number) {
            std::replace(utf8_.begin(), utf8_.end(), '.', form_.decimal);
        }
        csv::AppendText(utf8_, form_.separator, line);
    }
    EndLine();
}

void CsvSheetWriter::EndLine() {
    line_ += "\r\n";
    ++lines_;
    if (!csv::FromUtf8(line_, form_.encoding)) {
        throw ado::AdoError(ado::ErrorNumber::kInvalidArgument,
                            "Line " + std::to_string(lines_) +
                                " has characters that windows-1252 does not have; utf-8 has all.");
    }
    put_(line_);
    line_.clear();
}

bool CsvInput::Next(std::vector<Cell>& record) {
    if (!reader_.Next(fields_)) return false;
    record.resize(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        record[i].kind = fields_[i] ? CellKind::Text : CellKind::Null;
        record[i].text.clear();
        if (fields_[i]) record[i].text = unicode::ToUtf16(*fields_[i]);
    }
    return true;
}

}  // namespace exchange
