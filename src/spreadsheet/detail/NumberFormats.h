#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "spreadsheet/detail/XmlScan.h"

namespace spreadsheet {

/// Whether a number format with this code shows dates or times.
[[nodiscard]] bool ShowsDate(std::string_view code);
/// The day and time that a number stands for, as in Cell; `from1904` is the other of the two
/// calendars that workbooks have. Empty for a number that is none.
[[nodiscard]] std::string DateText(double number, bool from1904);

/// The part with the styles: which of them show a number as a date.
class NumberFormats final : public XmlHandler {
public:
    void Begin(std::string_view name, const Attributes& attributes) override;
    void End(std::string_view name) override;
    void Text(std::string_view text) override;

    /// Of a cell's style.
    [[nodiscard]] bool IsDate(std::size_t style) const {
        return style < isDate_.size() && isDate_[style];
    }

private:
    [[nodiscard]] bool IsDateFormat(std::uint32_t id) const;

    std::unordered_map<std::uint32_t, bool> own_;  // formats of the workbook, by number
    std::vector<bool> isDate_;
    bool isInCells_ = false;
};

}  // namespace spreadsheet
