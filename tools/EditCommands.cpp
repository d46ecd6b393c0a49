#include <unistd.h>

#include <fstream>
#include <functional>
#include <iostream>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "tools/Commands.h"
#include "tools/CsvReader.h"
#include "tools/ValueParser.h"

namespace tools {
namespace {

/// Runs `edit` on a table in one transaction; it returns the number of rows it has changed. What
/// fails leaves the file as it was.
ExitStatus Edit(const std::string& file, const std::string& table, std::FILE* out, std::FILE* err,
                const std::function<std::size_t(ado::Recordset&)>& edit) {
    try {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
                        ";Mode=Read|Write|Share Deny None;");
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        connection.BeginTrans();
        const std::size_t count = edit(rows);
        connection.CommitTrans();
        std::fprintf(out, "%zu %s\n", count, count == 1 ? "row" : "rows");
        return std::fflush(out) == 0 ? kSuccess : kFailure;
    } catch (const ado::AdoError& error) {
        std::fprintf(err, "kvs: %s: %s\n", file.c_str(), error.Description().c_str());
        return kFailure;
    }
}

[[noreturn]] void FailInput(const std::string& what) {
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, what);
}

/// "COLUMN=VALUE", the value as CSV has it.
std::pair<std::size_t, ado::Value> ParseAssignment(const ado::Recordset& rows,
                                                   const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) FailInput("\"" + text + "\" is not COLUMN=VALUE.");
    const std::size_t field = rows.FieldIndex(text.substr(0, equals));
    const std::string value = text.substr(equals + 1);
    if (value.empty()) return {field, ado::Null{}};
    return {field, value == "\"\"" ? ado::Value(std::u16string())
                                   : ParseValue(rows.Fields()[field], value)};
}

/// Shows how far it is, on a terminal and only there.
class Progress {
public:
    explicit Progress(std::FILE* stream) : stream_(stream), isShown_(::isatty(::fileno(stream))) {}
    ~Progress() {
        if (isShown_ && count_ >= kEvery) std::fputs("\r\033[K", stream_);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step() {
        if (++count_ % kEvery == 0 && isShown_) std::fprintf(stream_, "\r%zu rows", count_);
    }
    [[nodiscard]] std::size_t Count() const { return count_; }

private:
    static constexpr std::size_t kEvery = 1000;

    std::FILE* stream_;
    bool isShown_;
    std::size_t count_ = 0;
};

std::size_t LoadRows(ado::Recordset& rows, std::istream& in, std::FILE* err) {
    CsvReader reader(in);
    std::vector<CsvField> record;
    if (!reader.Next(record)) FailInput("There is no heading row." + reader.Error());
    std::vector<std::size_t> fields;
    for (const CsvField& name : record) fields.push_back(rows.FieldIndex(name.value_or("")));
    Progress progress(err);
    while (reader.Next(record)) {
        const std::string line = "Line " + std::to_string(reader.Line()) + ": ";
        if (record.size() != fields.size()) {
            FailInput(line + std::to_string(record.size()) + " values instead of " +
                      std::to_string(fields.size()) + ".");
        }
        try {
            rows.AddNew();
            for (std::size_t i = 0; i < fields.size(); ++i) {
                if (!record[i]) continue;
                rows.Set(fields[i], ParseValue(rows.Fields()[fields[i]], *record[i]));
            }
            rows.Update();
        } catch (const ado::AdoError& error) {
            rows.CancelUpdate();
            throw ado::AdoError(error.Number(), line + error.Description());
        }
        progress.Step();
    }
    if (!reader.Error().empty()) {
        FailInput("Line " + std::to_string(reader.Line()) + ": " + reader.Error() + ".");
    }
    return progress.Count();
}

}  // namespace

ExitStatus Set(const std::string& file, const std::string& table, const std::string& criteria,
               const std::vector<std::string>& assignments, std::FILE* out, std::FILE* err) {
    return Edit(file, table, out, err, [&](ado::Recordset& rows) {
        std::vector<std::pair<std::size_t, ado::Value>> values;
        for (const std::string& text : assignments) values.push_back(ParseAssignment(rows, text));
        rows.SetFilter(criteria);
        // Counted first: a change may put a row to another place of an index.
        const std::size_t count = rows.RecordCount();
        for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) {
            for (const auto& [field, value] : values) rows.Set(field, value);
            rows.Update();
        }
        return count;
    });
}

ExitStatus Delete(const std::string& file, const std::string& table, const std::string& criteria,
                  std::FILE* out, std::FILE* err) {
    return Edit(file, table, out, err, [&](ado::Recordset& rows) {
        rows.SetFilter(criteria);
        const std::size_t count = rows.RecordCount();
        for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) rows.Delete();
        return count;
    });
}

ExitStatus Load(const std::string& file, const std::string& table, const std::string& csv,
                std::FILE* out, std::FILE* err) {
    std::ifstream opened;
    if (csv != "-") {
        opened.open(csv, std::ios::binary);
        if (!opened) {
            std::fprintf(err, "kvs: %s cannot be opened\n", csv.c_str());
            return kFailure;
        }
    }
    return Edit(file, table, out, err, [&](ado::Recordset& rows) {
        return LoadRows(rows, csv == "-" ? std::cin : opened, err);
    });
}

}  // namespace tools
