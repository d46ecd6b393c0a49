#pragma once

#include <cstdint>
#include <string>
#include <system_error>

namespace spreadsheet {

/// What is wrong with a workbook, and where.
struct Fault {
    enum class Kind : std::uint8_t {
        None,
        NoWorkbook,   // something else, or nothing of it can be read
        Protected,    // by a password, or in the format of before .xlsx
        Damaged,      // `part` cannot be read
        BadCell,      // `cell` of `sheet` cannot be read
        TooLarge,     // `part` unpacks to more than anybody needs
        TooManyRows,  // more than a sheet has room for; also when one is written
        TooLongText,  // for `cell` of `sheet`; also when one is written
        NotWritten,   // `error` and `detail` tell why, `part` is the folder of temporary files
        Unavailable,  // this program knows no workbooks
    };
    Kind kind = Kind::None;
    std::string part{};       // name in the archive, or what the kind says
    std::string sheet{};      // its name
    std::string cell{};       // "C5"
    std::string detail{};     // what a library says
    std::error_code error{};  // what the system says

    [[nodiscard]] explicit operator bool() const noexcept { return kind != Kind::None; }
    /// A sentence without its full stop, for messages.
    [[nodiscard]] std::string Text() const;
};

}  // namespace spreadsheet
