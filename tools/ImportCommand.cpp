#include "ado/AdoError.h"
#include "exchange/Apply.h"
#include "tools/Exchange.h"
#include "tools/InputFile.h"
#include "tools/Messages.h"
#include "tools/PlanText.h"

namespace tools {
namespace {

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

Report ReportOf(ado::Connection& connection, const Plan& plan, const std::string& file,
                const ImportWish& wish) {
    const exchange::Sheet sheet(connection, plan.kind);
    Report report;
    for (const PlannedRow& row : plan.rows) {
        const std::string text = TextOf(plan, row, sheet, *wish.form.language);
        if (IsLeftOut(row)) {
            report.err += "kvs: " + file + ": " + text;
            report.hasRefused = true;
        } else if (wish.isDryRun) {
            report.out += text;
        }
    }
    report.out += Summary(plan) + (wish.isDryRun ? " (nothing has been changed)\n" : "\n");
    return report;
}

Report Run(ado::Connection& connection, exchange::Input& input, const std::string& file,
           const ImportWish& wish) {
    if (wish.isDryRun) {
        const ado::OneState state(connection);
        return ReportOf(connection, MakePlan(connection, input, wish.plan), file, wish);
    }
    // From the plan on nobody else changes the project.
    connection.BeginTrans();
    const Plan plan = MakePlan(connection, input, wish.plan);
    Report report = ReportOf(connection, plan, file, wish);
    if (report.hasRefused && !wish.leavesOut) {
        connection.RollbackTrans();
        report.out.clear();
        report.err += "kvs: " + file + ": " + Summary(plan) + ". Nothing has been changed.\n";
        return report;
    }
    if (!exchange::Apply(connection, plan)) {
        throw ado::AdoError(ado::ErrorNumber::kRowNotLocated,
                            "The project is not what it was a moment ago.");
    }
    connection.CommitTrans();
    return report;
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
    const char separator = wish.form.isSeparatorGiven ? wish.form.csv.separator : '\0';
    exchange::CsvInput rows(in, {wish.form.csv.encoding, separator});
    try {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
                        ";Mode=Read|Write|Share Deny None;");
        Messages messages(err, file);
        messages.Warn(connection.TakeNotices());
        const Report report = Run(connection, rows, file, wish);
        connection.Close();
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
