#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "spreadsheet/Cell.h"
#include "spreadsheet/Fault.h"

namespace spreadsheet {

struct SheetInfo {
    std::string name;
    bool isHidden = false;
};

/// Reads the rows of a workbook, a sheet at a time and each from its beginning, whichever program
/// has written it. Only a few rows are in memory.
class WorkbookReader {
public:
    WorkbookReader();
    ~WorkbookReader();
    WorkbookReader(const WorkbookReader&) = delete;
    WorkbookReader& operator=(const WorkbookReader&) = delete;

    /// `bytes` are the file. To be called once. False when they are no workbook, see GetFault().
    [[nodiscard]] bool Open(std::string bytes);
    /// In the order in which they are shown.
    [[nodiscard]] std::span<const SheetInfo> Sheets() const;

    /// Goes to the first row of a sheet. Failures are told by Next and GetFault().
    void Begin(std::size_t sheet);
    /// The next row that has an entry in the file; one may be without cells. False at the end of
    /// the sheet, and after a fault.
    [[nodiscard]] bool Next(Row& row);

    [[nodiscard]] const Fault& GetFault() const;

private:
    struct Book;
    std::unique_ptr<Book> book_;
};

/// Whether bytes are the beginning of what Open may take, or of what it has a clear word for.
[[nodiscard]] bool LooksLikeWorkbook(std::string_view bytes);

}  // namespace spreadsheet
