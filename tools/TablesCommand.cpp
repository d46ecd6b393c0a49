#include "jet/Database.h"
#include "tools/Commands.h"
#include "tools/Messages.h"

namespace tools {
namespace {

std::uint64_t CountRows(jet::Table& table, Messages& messages) {
    jet::Result<jet::RowCursor> rows = table.Scan();
    if (!rows.IsOk()) {
        messages.Report(rows.GetStatus());
        return 0;
    }
    std::uint64_t count = 0;
    for (;;) {
        jet::Result<bool> found = rows->Next();
        if (!found.IsOk()) {
            messages.Report(found.GetStatus());
        } else if (!*found) {
            return count;
        } else {
            ++count;
        }
    }
}

jet::Status ListTables(const std::string& file, TextBuffer& output, Messages& messages) {
    std::unique_ptr<jet::Database> database;
    JET_ASSIGN(database, OpenFile(file));
    messages.Warn(database->TakeNotices());
    const jet::ReadScope scope = database->Hold();
    JET_TRY(scope.GetStatus());
    std::vector<jet::Status> damage;
    std::vector<jet::CatalogEntry> tables;
    JET_ASSIGN(tables, database->Tables(&damage));
    for (const jet::Status& status : damage) messages.Report(status);
    for (const jet::CatalogEntry& entry : tables) {
        if (!entry.isUserTable) continue;
        auto table = database->OpenTable(entry);
        if (!table.IsOk()) {
            messages.Report(table.GetStatus());
            continue;
        }
        output.Append(entry.name);
        output.Append('\t');
        output.Append(std::to_string(CountRows(**table, messages)));
        output.Append('\n');
    }
    return {};
}

}  // namespace

ExitStatus Tables(const std::string& file, std::FILE* out, std::FILE* err) {
    Messages messages(err, file);
    TextBuffer output(out);
    jet::Status status = ListTables(file, output, messages);
    if (!status.IsOk()) messages.Report(status);
    return messages.Finish(output);
}

}  // namespace tools
