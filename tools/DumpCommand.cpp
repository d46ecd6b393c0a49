#include <memory>
#include <vector>

#include "jet/Database.h"
#include "tools/Commands.h"
#include "tools/CsvWriter.h"
#include "tools/JsonWriter.h"
#include "tools/Messages.h"

namespace tools {
namespace {

/// `value` is the column's own, so that its memory serves all rows.
void WriteValue(const jet::Table& table, const jet::Row& row, std::size_t column, jet::Value& value,
                RowWriter& writer, Messages& messages) {
    jet::Status status = row.Read(column, value);
    if (!status.IsOk()) {
        writer.PutDamaged(column);
        messages.Report(status.In(jet::TableText(table.Name())));
        return;
    }
    const auto* longValue = std::get_if<jet::LongValue>(&value);
    if (longValue == nullptr) {
        writer.Put(column, value);
        return;
    }
    if (longValue->isText) {
        jet::MemoReader text = table.OpenMemo(*longValue);
        status = writer.PutMemo(column, text);
    } else {
        jet::LongValueReader bytes = table.OpenLongValue(*longValue);
        status = writer.PutOle(column, bytes);
    }
    if (!status.IsOk()) messages.Report(status);
}

/// Writes all rows, or as many as the output takes.
void WriteRows(jet::Table& table, jet::RowCursor& rows, RowWriter& writer, TextBuffer& output,
               Messages& messages) {
    std::vector<jet::Value> values(table.Definition().columns.size());
    while (!output.HasFailed()) {
        jet::Result<bool> found = rows.Next();
        if (!found.IsOk()) {
            messages.Report(found.GetStatus());
            continue;
        }
        if (!*found) return;
        writer.BeginRow();
        for (std::size_t i = 0; i < values.size(); ++i) {
            WriteValue(table, rows.Current(), i, values[i], writer, messages);
        }
        writer.EndRow();
    }
}

jet::Status DumpTable(const std::string& file, const std::string& name, RowWriter& writer,
                      TextBuffer& output, Messages& messages) {
    std::unique_ptr<jet::Database> database;
    JET_ASSIGN(database, OpenFile(file));
    messages.Warn(database->TakeNotices());
    const jet::ReadScope scope = database->Hold();
    JET_TRY(scope.GetStatus());
    std::unique_ptr<jet::Table> table;
    JET_ASSIGN(table, database->OpenTable(name));
    jet::RowCursor rows;
    JET_ASSIGN(rows, table->Scan());
    writer.Begin(table->Definition());
    WriteRows(*table, rows, writer, output, messages);
    writer.End();
    return {};
}

}  // namespace

ExitStatus Dump(const std::string& file, const std::string& table, DumpFormat format,
                std::FILE* out, std::FILE* err) {
    Messages messages(err, file);
    TextBuffer output(out);
    std::unique_ptr<RowWriter> writer;
    if (format == DumpFormat::Csv) {
        writer = std::make_unique<CsvWriter>(output);
    } else {
        writer = std::make_unique<JsonWriter>(output);
    }
    jet::Status status = DumpTable(file, table, *writer, output, messages);
    if (!status.IsOk()) messages.Report(status);
    return messages.Finish(output);
}

}  // namespace tools
