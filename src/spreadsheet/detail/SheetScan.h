#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "spreadsheet/Cell.h"
#include "spreadsheet/detail/NumberFormats.h"
#include "spreadsheet/detail/SharedTexts.h"
#include "spreadsheet/detail/XmlScan.h"

namespace spreadsheet {

/// What the cells of a sheet refer to.
struct SheetContext {
    std::string name;
    const SharedTexts& texts;
    const NumberFormats& formats;
    bool from1904 = false;
};

/// The part of a sheet: its rows, as they come.
class SheetScan final : public XmlHandler {
public:
    explicit SheetScan(SheetContext context) : context_(std::move(context)) {}

    void Begin(std::string_view name, const Attributes& attributes) override;
    void End(std::string_view name) override;
    void Text(std::string_view text) override;

    /// False when none is whole yet.
    [[nodiscard]] bool TakeRow(Row& row);

private:
    void BeginRow(const Attributes& attributes);
    void BeginCell(const Attributes& attributes);
    [[nodiscard]] bool PlaceCell(std::string_view reference);
    void EndCell();
    void AddShared(Cell& cell);
    void AddNumber(Cell& cell);
    void AddFormula(Cell& cell);
    void Fail(Fault::Kind kind, const char* why = "");

    SheetContext context_;
    std::deque<Row> rows_;
    bool isInData_ = false;
    bool isInRow_ = false;
    bool isInCell_ = false;
    bool isInValue_ = false;
    bool isInFormula_ = false;
    Row row_;
    std::size_t column_ = 0;  // of the next cell that does not say where it is
    std::size_t size_ = 0;    // bytes of all texts
    // Of the cell.
    Cell cell_;
    std::string type_;
    std::uint32_t style_ = 0;
    bool hasValue_ = false;
    bool hasFormula_ = false;
    bool hasPieces_ = false;
    std::string value_;
    std::string formula_;
    TextPieces pieces_;
};

}  // namespace spreadsheet
