#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "csv/Reader.h"
#include "exchange/Export.h"
#include "exchange/Input.h"

namespace exchange {

/// How a CSV file is written for a spreadsheet.
struct CsvForm {
    csv::Encoding encoding = csv::Encoding::Utf8;
    char separator = ',';
    char decimal = '.';
    bool hasMark = true;  // of UTF-8 at the beginning, by which spreadsheets know it
};
/// What spreadsheets on a station with this locale expect, such as "de_DE.UTF-8". Nothing has to be
/// installed for it.
[[nodiscard]] CsvForm CsvFormOf(std::string_view locale);

/// Writes a sheet as CSV with a heading row: Null is nothing, an empty text is "".
class CsvSheetWriter final : public SheetWriter {
public:
    /// `put` takes the text, piece by piece.
    CsvSheetWriter(CsvForm form, std::function<void(std::string_view)> put)
        : form_(form), put_(std::move(put)) {}

    void Begin(const Sheet& sheet, const words::Language& language) override;
    /// Throws ado::AdoError when the encoding has not all of the characters.
    void Row(std::span<const Cell> cells) override;

private:
    void EndLine();

    CsvForm form_;
    std::function<void(std::string_view)> put_;
    std::string line_;
    std::string utf8_;  // kept for its memory
    std::size_t lines_ = 0;
};

/// Takes records out of CSV.
class CsvInput final : public Input {
public:
    /// `in` is borrowed.
    CsvInput(csv::Source& in, csv::Form form) : reader_(in, form) {}

    [[nodiscard]] bool Next(std::vector<Cell>& record) override;
    [[nodiscard]] std::size_t Line() const override { return reader_.Line(); }
    [[nodiscard]] const std::string& Error() const override { return reader_.Error(); }
    [[nodiscard]] const std::optional<csv::BadByte>& Bad() const { return reader_.Bad(); }

private:
    csv::Reader reader_;
    std::vector<csv::Field> fields_;
};

}  // namespace exchange
