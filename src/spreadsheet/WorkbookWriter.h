#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/Cell.h"
#include "spreadsheet/Fault.h"

namespace spreadsheet {

/// How a column is shown, and what it takes.
struct ColumnLook {
    std::string heading;
    double width = 10;                   // characters
    bool isText = false;                 // whatever is typed is a text
    bool isFixed = false;                // grey; what stands there cannot be typed over
    std::vector<std::string> choices{};  // a drop-down list; other values are refused
};

/// Writes a workbook (.xlsx), row by row, with a heading row on each sheet that stays in view and
/// has filters. What has been written is no longer in memory but in temporary files.
class WorkbookWriter {
public:
    /// What is told to who types into a fixed column: at most 32 and 255 characters.
    struct Notice {
        std::string title;
        std::string text;
    };

    /// `listName`: of the hidden sheet that has the choices.
    WorkbookWriter(std::string listName, Notice fixedColumns);
    ~WorkbookWriter();  // what has not been finished is forgotten
    WorkbookWriter(const WorkbookWriter&) = delete;
    WorkbookWriter& operator=(const WorkbookWriter&) = delete;

    // False after a fault, which stays.
    /// `frozenColumns`: as many on the left stay in view too.
    [[nodiscard]] bool BeginSheet(const std::string& name, std::span<const ColumnLook> columns,
                                  std::size_t frozenColumns);
    /// The next row of the sheet. An empty text is a cell nevertheless.
    [[nodiscard]] bool Write(std::span<const Cell> cells);
    /// Makes the file and hands it on, piece by piece. To be called once, at the end.
    [[nodiscard]] bool Finish(const std::function<void(std::string_view)>& put);

    [[nodiscard]] const Fault& GetFault() const;

private:
    struct Book;
    std::unique_ptr<Book> book_;
};

}  // namespace spreadsheet
