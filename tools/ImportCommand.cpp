#include "ado/AdoError.h"
#include "exchange/Apply.h"
#include "exchange/Workbook.h"
#include "tools/Exchange.h"
#include "tools/InputFile.h"
#include "tools/Messages.h"
#include "tools/PlanText.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using exchange::InputRows;
using exchange::Plan;
using exchange::PlannedRow;

bool IsLeftOut(const PlannedRow& row) {
    return row.cause != PlannedRow::Cause::None;
}

/// What is written when nobody has to wait for it any more.
struct Report {
    std::string out;
    std::string err;
    bool hasRefused = false;
    bool isChanged = false;
};

std::string SummaryOf(const std::vector<Plan>& plans, const char* end) {
    std::string text;
    for (const Plan& plan : plans) {
        // A single one needs no name.
        if (plans.size() > 1) text += unicode::ToUtf8(plan.sheet) + ": ";
        text += Summary(plan) + (&plan == &plans.back() ? end : "; ");
    }
    return text;
}

Report ReportOf(ado::Connection& connection, const std::vector<Plan>& plans,
                const std::string& file, const ImportWish& wish) {
    const words::Language& language = *wish.form.language;
    const std::string source = "kvs: " + file + ": ";
    Report report;
    for (const Plan& plan : plans) {
        const exchange::Sheet sheet(connection, plan.kind);
        for (const PlannedRow& row : plan.rows) {
            if (IsLeftOut(row)) {
                report.err += source + TextOf(plan, row, sheet, language);
                report.hasRefused = true;
            } else if (wish.isDryRun) {
                report.out += TextOf(plan, row, sheet, language);
            } else {
                const std::string doubts = DoubtsOf(plan, row, sheet, language);
                if (!doubts.empty()) report.err += source + doubts;
            }
        }
    }
    report.out += SummaryOf(plans, wish.isDryRun ? " (nothing has been changed)\n" : "\n");
    return report;
}

Report Run(ado::Connection& connection, std::span<const InputRows> sheets, const std::string& file,
           const ImportWish& wish) {
    if (wish.isDryRun) {
        return ReportOf(connection, MakePlans(connection, sheets, wish.plan), file, wish);
    }
    // Somebody else may change the project between the plan and its doing.
    constexpr int kMostTries = 5;
    for (int i = 0; i < kMostTries; ++i) {
        const std::vector<Plan> plans = MakePlans(connection, sheets, wish.plan);
        Report report = ReportOf(connection, plans, file, wish);
        if (report.hasRefused && !wish.leavesOut) {
            report.out.clear();
            report.err += "kvs: " + file + ": " + SummaryOf(plans, ". Nothing has been changed.\n");
            return report;
        }
        if (exchange::Apply(connection, plans, {}) == exchange::Outcome::Done) return report;
    }
    throw ado::AdoError(ado::ErrorNumber::kRowNotLocated,
                        "Other programs have changed the project each time that it was compared.");
}

/// The sheets that have come in. What a workbook has besides is told of in `notes`.
std::vector<InputRows> ReadSheets(ado::Connection& connection, InputFile& in,
                                  const ImportWish& wish, std::string& notes) {
    std::vector<InputRows> sheets;
    if (!spreadsheet::LooksLikeWorkbook(in.Beginning())) {
        const char separator = wish.form.isSeparatorGiven ? wish.form.csv.separator : '\0';
        exchange::CsvInput rows(in, {wish.form.csv.encoding, separator});
        sheets.emplace_back(connection, rows, wish.reading);
        exchange::RequireChoices(sheets, wish.reading);
        return sheets;
    }
    std::string bytes;
    for (std::string_view next = in.Next(); !next.empty(); next = in.Next()) bytes += next;
    const auto fail = [](const std::string& what) {
        throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, what + ".");
    };
    if (!in.Error().empty()) fail(in.Error());
    spreadsheet::WorkbookReader workbook;
    if (!workbook.Open(std::move(bytes))) fail(in.Name() + ": " + workbook.GetFault().Text());
    auto read = exchange::ReadWorkbook(connection, workbook, wish.reading);
    for (const std::string& name : read.passedOver) {
        notes += "kvs: " + in.Name() + ": sheet \"" + name + "\" is passed over\n";
    }
    return std::move(read.sheets);
}

}  // namespace

ExitStatus Import(const std::string& file, const std::string& input, const ImportWish& wish,
                  std::FILE* out, std::FILE* err) {
    InputFile in;
    jet::Status status = in.Open(input);
    if (status.IsOk()) status = in.Collect();
    if (!status.IsOk()) {
        std::fprintf(err, "kvs: %s\n", status.Text().c_str());
        return kFailure;
    }
    try {
        ado::Connection connection;
        Messages messages(err, file);
        Connect(connection, file, messages);
        std::string notes;
        const std::vector<InputRows> sheets = ReadSheets(connection, in, wish, notes);
        const Report report = Run(connection, sheets, file, wish);
        connection.Close();
        std::fputs(notes.c_str(), err);
        std::fputs(report.err.c_str(), err);
        const bool isWritten = std::fputs(report.out.c_str(), out) >= 0 && std::fflush(out) == 0;
        return isWritten && !report.hasRefused ? kSuccess : kFailure;
    } catch (const ado::AdoError& error) {
        std::fprintf(err, "kvs: %s: %s Nothing has been changed.\n", file.c_str(),
                     error.Description().c_str());
        return kFailure;
    }
}

}  // namespace tools
