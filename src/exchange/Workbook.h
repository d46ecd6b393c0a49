#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/Export.h"
#include "exchange/Plan.h"
#include "spreadsheet/WorkbookReader.h"
#include "spreadsheet/WorkbookWriter.h"

namespace exchange {

/// Writes sheets as those of a workbook (.xlsx): numbers as numbers, texts as texts whatever they
/// look like, words of codes with lists to choose from, colours filled with themselves, the ID not
/// to be changed. Null is no cell, an empty text is one.
class WorkbookSheets final : public SheetWriter {
public:
    explicit WorkbookSheets(const words::Language& language);

    void Begin(const Sheet& sheet, const words::Language& language) override;
    void Row(std::span<const Cell> cells) override;
    /// Makes the file and hands it on, piece by piece. To be called once, at the end. All three
    /// throw ado::AdoError when the workbook cannot be written or has no room.
    void Finish(const std::function<void(std::string_view)>& put);

private:
    void Require(bool isDone) const;

    spreadsheet::WorkbookWriter writer_;
    std::vector<spreadsheet::Cell> cells_;  // kept for their memory
};

/// What has come in with a workbook.
struct WorkbookRows {
    std::vector<InputRows> sheets;          // archives, then trends
    std::vector<std::string> passedOver{};  // names of visible sheets that hold something else
};
/// Reads the sheets of archives and of trends, known by their names in any language or by their
/// headings; with a kind that one alone, without a word of the other: the only sheet is of that
/// kind whatever it is called. Hidden sheets are left out. Throws ado::AdoError when there are
/// none, or two of a kind, or one cannot be read, or a heading is chosen that no sheet has.
[[nodiscard]] WorkbookRows ReadWorkbook(ado::Connection& connection,
                                        spreadsheet::WorkbookReader& workbook,
                                        const ReadOptions& options);

}  // namespace exchange
