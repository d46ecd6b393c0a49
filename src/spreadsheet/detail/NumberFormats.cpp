#include "spreadsheet/detail/NumberFormats.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <utility>

namespace spreadsheet {
namespace {

/// Formats that every workbook has, by number: dates and times, some of them of East Asia.
constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 4> kDates = {
    {{14, 22}, {27, 36}, {45, 47}, {50, 58}}};

constexpr double kLastDay = 2958466;  // behind 9999-12-31
constexpr double kSecondsOfDay = 86400;

}  // namespace

bool ShowsDate(std::string_view code) {
    for (std::size_t i = 0; i < code.size(); ++i) {
        const char c = code[i];
        if (c == ';') return false;  // of numbers above zero; the others look alike
        if (c == '\\' || c == '_' || c == '*') {
            ++i;
        } else if (c == '"') {
            i = std::min(code.find('"', i + 1), code.size());
        } else if (c == '[') {
            // A colour, a condition or a locale; [h] and its like count hours beyond a day.
            const char kind = i + 1 < code.size() ? code[i + 1] : ' ';
            const bool isTime = std::string_view("hHmMsS").find(kind) != std::string_view::npos;
            const std::size_t end = std::min(code.find(']', i), code.size());
            const std::string_view inside = code.substr(i + 1, end - i - 1);
            if (isTime && inside.find_first_not_of(kind) == std::string_view::npos) return true;
            i = end;
        } else if (std::string_view("dDmMyYhHsS").find(c) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

std::string DateText(double number, bool from1904) {
    if (from1904) number += 1462;
    if (!(number >= 0) || number >= kLastDay) return {};
    double day = std::floor(number);
    double seconds = std::round((number - day) * kSecondsOfDay);
    if (seconds >= kSecondsOfDay) {
        seconds = 0;
        ++day;
    }
    std::array<char, 32> text{};
    std::string out;
    if (day > 0) {
        // Workbooks have a 29th of February 1900, and count 1900-01-01 as 1.
        const int sinceEpoch = static_cast<int>(day) + (day < 60 ? 1 : 0) - 25569;
        const std::chrono::year_month_day date{
            std::chrono::sys_days{std::chrono::days{sinceEpoch}}};
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
        out = text.data();
    }
    if (seconds > 0 || day == 0) {
        const int whole = static_cast<int>(seconds);
        std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", whole / 3600, whole / 60 % 60,
                      whole % 60);
        out += (out.empty() ? "" : " ") + std::string(text.data());
    }
    return out;
}

bool NumberFormats::IsDateFormat(std::uint32_t id) const {
    const auto own = own_.find(id);
    if (own != own_.end()) return own->second;
    for (const auto& [first, last] : kDates) {
        if (id >= first && id <= last) return true;
    }
    return false;
}

void NumberFormats::Begin(std::string_view name, const Attributes& attributes) {
    if (name == "cellXfs") isInCells_ = true;
    if (name == "numFmt") {
        const auto id = attributes.Number("numFmtId");
        if (id) own_[*id] = ShowsDate(attributes.Get("formatCode"));
    }
    if (name == "xf" && isInCells_) {
        isDate_.push_back(IsDateFormat(attributes.Number("numFmtId").value_or(0)));
    }
}

void NumberFormats::End(std::string_view name) {
    if (name == "cellXfs") isInCells_ = false;
}

void NumberFormats::Text(std::string_view) {}

}  // namespace spreadsheet
