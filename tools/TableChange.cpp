#include "tools/TableChange.h"

#include "ado/AdoError.h"
#include "tools/Messages.h"

namespace tools {

ExitStatus Edit(const std::string& file, const std::string& table, Mode mode, std::FILE* out,
                std::FILE* err, const TableChange& change) {
    try {
        ado::Connection connection;
        Messages messages(err, file);
        Connect(connection, file, messages);
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        change.prepare(rows);
        connection.BeginTrans();
        const Done done = change.run(connection, rows);
        if (mode == Mode::DryRun) {
            connection.RollbackTrans();
        } else {
            connection.CommitTrans();
        }
        messages.Warn(connection.TakeNotices());
        messages.Warn(done.warnings);
        std::fprintf(out, "%s\n", done.text.c_str());
        return std::fflush(out) == 0 && !done.isRefused ? kSuccess : kFailure;
    } catch (const ado::AdoError& error) {
        std::fprintf(err, "kvs: %s: %s Nothing has been changed.\n", file.c_str(),
                     error.Description().c_str());
        return kFailure;
    }
}

std::string RowCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " row" : " rows");
}

void FailInput(const std::string& what) {
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, what);
}

}  // namespace tools
