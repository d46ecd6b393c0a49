#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exchange/CsvSheet.h"
#include "exchange/Plan.h"
#include "tools/Commands.h"

namespace tools {

enum class ExchangeFormat { Csv, Xlsx, Json };

/// What a command line says of how a sheet is written, over what the locale expects.
struct SheetForm {
    const words::Language* language = nullptr;  // of headings and codes
    exchange::CsvForm csv;
    bool isSeparatorGiven = false;
};
/// Of the locale that the environment names.
[[nodiscard]] SheetForm SheetFormOfStation();

struct ExportWish {
    std::vector<std::string> archives;  // by name; none: all
    ExchangeFormat format = ExchangeFormat::Csv;
    std::optional<exchange::SheetKind> sheet{};  // none: trends; of a workbook both
    SheetForm form;
    std::string to;  // empty: `out`
};
/// Writes a sheet of a project, a workbook with both, or all of its own tables as JSON.
[[nodiscard]] ExitStatus Export(const std::string& file, const ExportWish& wish, std::FILE* out,
                                std::FILE* err);

struct ImportWish {
    exchange::PlanOptions plan;
    exchange::ReadOptions reading;
    SheetForm form;
    bool isDryRun = false;
    bool leavesOut = false;  // what cannot be imported is no reason not to import the rest
};
/// Changes a project after a sheet, CSV, or a workbook; which it is shows in the file. A dry run
/// tells all that would be done and does nothing; else it is done as a whole. What is ambiguous or
/// refused goes to `err`, the status is kFailure then and, unless it is to be left out, nothing is
/// changed.
[[nodiscard]] ExitStatus Import(const std::string& file, const std::string& input,
                                const ImportWish& wish, std::FILE* out, std::FILE* err);

}  // namespace tools
