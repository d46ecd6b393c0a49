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

}  // namespace

ExitStatus Tables(const std::string& file, std::FILE* out, std::FILE* err) {
    Messages messages(err, file);
    TextBuffer output(out);
    const auto fail = [&](const jet::Status& status) {
        messages.Report(status);
        return messages.Finish(output);
    };
    auto database = OpenFile(file);
    if (!database.IsOk()) return fail(database.GetStatus());
    std::vector<jet::Status> damage;
    auto tables = (*database)->Tables(&damage);
    if (!tables.IsOk()) return fail(tables.GetStatus());
    for (const jet::Status& status : damage) messages.Report(status);
    for (const jet::CatalogEntry& entry : *tables) {
        if (!entry.isUserTable) continue;
        auto table = (*database)->OpenTable(entry);
        if (!table.IsOk()) {
            messages.Report(table.GetStatus());
            continue;
        }
        output.Append(entry.name);
        output.Append('\t');
        output.Append(std::to_string(CountRows(**table, messages)));
        output.Append('\n');
    }
    return messages.Finish(output);
}

}  // namespace tools
