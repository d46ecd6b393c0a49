#include <memory>
#include <vector>

#include "ado/AdoError.h"
#include "ado/Recordset.h"
#include "jet/Database.h"
#include "tools/Commands.h"
#include "tools/CsvWriter.h"
#include "tools/JsonText.h"
#include "tools/JsonWriter.h"
#include "tools/Messages.h"

namespace tools {
namespace {

/// Where a value is written, and the column of the table that it comes from.
struct Place {
    std::size_t at;
    std::size_t column;
};

/// `value` is the column's own, so that its memory serves all rows.
void WriteValue(const jet::Table& table, const jet::Row& row, Place place, jet::Value& value,
                RowWriter& writer, Messages& messages) {
    jet::Status status = row.Read(place.column, value);
    if (!status.IsOk()) {
        writer.PutDamaged(place.at);
        messages.Report(status.In(jet::TableText(table.Name())));
        return;
    }
    const auto* longValue = std::get_if<jet::LongValue>(&value);
    if (longValue == nullptr) {
        writer.Put(place.at, value);
        return;
    }
    if (longValue->isText) {
        jet::MemoReader text = table.OpenMemo(*longValue);
        status = writer.PutMemo(place.at, text);
    } else {
        jet::LongValueReader bytes = table.OpenLongValue(*longValue);
        status = writer.PutOle(place.at, bytes);
    }
    if (!status.IsOk()) messages.Report(status);
}

/// The columns that are wished, by their places in the table.
jet::Result<std::vector<std::size_t>> ChosenColumns(const jet::TableDef& def,
                                                    const std::vector<std::string>& names) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; names.empty() && i < def.columns.size(); ++i) chosen.push_back(i);
    for (const std::string& name : names) {
        const auto found = def.FindColumn(name);
        if (!found) {
            return jet::Status(jet::StatusCode::NotFound, "there is no column \"" + name + "\".");
        }
        chosen.push_back(*found);
    }
    return chosen;
}

std::vector<std::string> NamesOf(const jet::TableDef& def, const std::vector<std::size_t>& chosen) {
    std::vector<std::string> names;
    for (const std::size_t column : chosen) names.push_back(def.columns[column].name);
    return names;
}

/// Writes all rows, or as many as the output takes.
void WriteRows(jet::Table& table, jet::RowCursor& rows, const std::vector<std::size_t>& columns,
               RowWriter& writer, TextBuffer& output, Messages& messages) {
    std::vector<jet::Value> values(columns.size());
    while (!output.HasFailed()) {
        jet::Result<bool> found = rows.Next();
        if (!found.IsOk()) {
            messages.Report(found.GetStatus());
            continue;
        }
        if (!*found) return;
        writer.BeginRow();
        for (std::size_t i = 0; i < values.size(); ++i) {
            WriteValue(table, rows.Current(), {i, columns[i]}, values[i], writer, messages);
        }
        writer.EndRow();
    }
}

jet::Status DumpTable(const std::string& file, const std::string& name, const DumpWish& wish,
                      RowWriter& writer, TextBuffer& output, Messages& messages) {
    std::unique_ptr<jet::Database> database;
    JET_ASSIGN(database, OpenFile(file));
    messages.Warn(database->TakeNotices());
    const jet::ReadScope scope = database->Hold();
    JET_TRY(scope.GetStatus());
    std::unique_ptr<jet::Table> table;
    JET_ASSIGN(table, database->OpenTable(name));
    std::vector<std::size_t> columns;
    JET_ASSIGN(columns, ChosenColumns(table->Definition(), wish.columns));
    jet::RowCursor rows;
    JET_ASSIGN(rows, table->Scan());
    writer.Begin(NamesOf(table->Definition(), columns));
    WriteRows(*table, rows, columns, writer, output, messages);
    writer.End();
    return {};
}

/// The columns of the primary key, as a recordset sorts by them.
jet::Result<std::string> KeyOf(const std::string& file, const std::string& name) {
    std::unique_ptr<jet::Database> database;
    JET_ASSIGN(database, OpenFile(file));
    std::unique_ptr<jet::Table> table;
    JET_ASSIGN(table, database->OpenTable(name));
    const jet::TableDef& def = table->Definition();
    const auto key = def.PrimaryKey();
    if (!key) {
        return jet::Status(jet::StatusCode::NotFound,
                           jet::TableText(name) + " has no primary key to sort by.");
    }
    std::string columns;
    for (const jet::IndexColumn& each : def.realIndexes[*key].columns) {
        columns += (columns.empty() ? "[" : ", [") + def.columns[each.column].name + "]";
        if (!each.ascending) columns += " DESC";
    }
    return columns;
}

void WriteValue(const ado::Recordset& rows, std::size_t at, std::size_t field, RowWriter& writer,
                Messages& messages) {
    try {
        const ado::Value value = rows.Get(field);
        const auto* text = std::get_if<std::u16string>(&value);
        if (text != nullptr && rows.Fields()[field].type == ado::DataType::LongVarWChar) {
            writer.PutMemo(at, *text);
        } else {
            writer.Put(at, StoredOf(value));
        }
    } catch (const ado::AdoError& error) {
        writer.PutDamaged(at);
        messages.Report(error);
    }
}

/// The rows that meet criteria, or all in the order of their key.
void DumpChosen(const std::string& file, const std::string& name, const DumpWish& wish,
                RowWriter& writer, TextBuffer& output, Messages& messages) {
    std::string sort;
    if (wish.isByKey) {
        jet::Result<std::string> key = KeyOf(file, name);
        if (!key.IsOk()) return messages.Report(key.GetStatus());
        sort = *key;
    }
    ado::Connection connection;
    Connect(connection, file, messages);
    const ado::OneState state(connection);
    ado::Recordset rows;
    rows.Open(name, connection, ado::CommandType::Table);
    std::vector<std::size_t> fields;
    std::vector<std::string> names;
    for (const std::string& column : wish.columns) fields.push_back(rows.FieldIndex(column));
    for (std::size_t i = 0; wish.columns.empty() && i < rows.Fields().size(); ++i) {
        fields.push_back(i);
    }
    for (const std::size_t field : fields) names.push_back(rows.Fields()[field].name);
    rows.SetFilter(wish.where);
    rows.SetSort(sort);
    writer.Begin(names);
    for (; !rows.IsEOF() && !output.HasFailed(); rows.MoveNext()) {
        writer.BeginRow();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            WriteValue(rows, i, fields[i], writer, messages);
        }
        writer.EndRow();
    }
    writer.End();
}

}  // namespace

ExitStatus Dump(const std::string& file, const std::string& table, const DumpWish& wish,
                std::FILE* out, std::FILE* err) {
    Messages messages(err, file);
    TextBuffer output(out);
    std::unique_ptr<RowWriter> writer;
    if (wish.format == DumpFormat::Csv) {
        writer = std::make_unique<CsvWriter>(output);
    } else {
        writer = std::make_unique<JsonWriter>(output);
    }
    if (wish.where.empty() && !wish.isByKey) {
        const jet::Status status = DumpTable(file, table, wish, *writer, output, messages);
        if (!status.IsOk()) messages.Report(status);
        return messages.Finish(output);
    }
    try {
        DumpChosen(file, table, wish, *writer, output, messages);
    } catch (const ado::AdoError& error) {
        messages.Report(error);
    }
    return messages.Finish(output);
}

}  // namespace tools
