#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "tools/Commands.h"
#include "tools/CsvReader.h"
#include "tools/Messages.h"
#include "tools/ValueParser.h"

namespace tools {
namespace {

/// What is done to a table; the input is read before anybody else has to wait.
struct Change {
    std::function<void(ado::Recordset&)> prepare;
    /// Returns the number of rows that it has changed.
    std::function<std::size_t(ado::Recordset&)> run;
};

/// Runs `change` on a table in one transaction. What fails leaves the file as it was.
ExitStatus Edit(const std::string& file, const std::string& table, std::FILE* out, std::FILE* err,
                const Change& change) {
    try {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
                        ";Mode=Read|Write|Share Deny None;");
        Messages(err, file).Warn(connection.TakeNotices());
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        change.prepare(rows);
        connection.BeginTrans();
        const std::size_t count = change.run(rows);
        connection.CommitTrans();
        Messages(err, file).Warn(connection.TakeNotices());
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
    return {field, ParseValue(rows.Fields()[field], value == "\"\"" ? "" : value)};
}

/// Shows how far it is, on a terminal and only there. Others wait for the end of the change, so it
/// must not wait for a terminal that somebody has stopped: what that does not take is left out.
class Progress {
public:
    explicit Progress(std::FILE* stream) : stream_(stream), isShown_(::isatty(::fileno(stream))) {}
    ~Progress() {
        if (isShown_ && count_ >= kEvery) Show("\r\033[K");
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step() {
        if (++count_ % kEvery == 0 && isShown_) Show("\r" + std::to_string(count_) + " rows");
    }
    [[nodiscard]] std::size_t Count() const { return count_; }

private:
    static constexpr std::size_t kEvery = 1000;

    void Show(const std::string& text) const {
        pollfd terminal{::fileno(stream_), POLLOUT, 0};
        if (::poll(&terminal, 1, 0) == 1 && (terminal.revents & POLLOUT) != 0) {
            std::fputs(text.c_str(), stream_);
        }
    }

    std::FILE* stream_;
    bool isShown_;
    std::size_t count_ = 0;
};

void Require(const jet::Status& status) {
    if (!status.IsOk()) FailInput(status.Text() + ".");
}

void RequireNoError(const CsvReader& reader) {
    if (!reader.Error().empty()) FailInput(reader.Error() + ".");
}

/// Collects what comes through a pipe and looks through it.
void CollectInput(InputFile& in, Encoding encoding) {
    Require(in.Collect());
    if (!in.IsCollected()) return;
    CsvReader reader(in, encoding);
    std::vector<CsvField> record;
    while (reader.Next(record)) {
    }
    RequireNoError(reader);
    in.Rewind();
}

/// The fields that the heading row names.
std::vector<std::size_t> ReadHeading(CsvReader& reader, const ado::Recordset& rows) {
    std::vector<CsvField> names;
    if (!reader.Next(names)) {
        RequireNoError(reader);
        FailInput(reader.Place() + ": there is no heading row.");
    }
    std::vector<std::size_t> fields;
    for (const CsvField& name : names) {
        fields.push_back(rows.FieldIndex(name.value_or("")));
        if (std::find(fields.begin(), fields.end() - 1, fields.back()) != fields.end() - 1) {
            FailInput(reader.Place() + ": the heading row names the column \"" + *name +
                      "\" twice.");
        }
    }
    return fields;
}

std::size_t LoadRows(ado::Recordset& rows, CsvReader& reader,
                     const std::vector<std::size_t>& fields, std::FILE* err) {
    Progress progress(err);
    std::vector<CsvField> record;
    while (reader.Next(record)) {
        const auto line = [&] { return reader.Place() + ": "; };
        if (record.size() != fields.size()) {
            FailInput(line() + std::to_string(record.size()) + " values instead of " +
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
            throw ado::AdoError(error.Number(), line() + error.Description());
        }
        progress.Step();
    }
    RequireNoError(reader);
    return progress.Count();
}

}  // namespace

ExitStatus Set(const std::string& file, const std::string& table, const std::string& criteria,
               const std::vector<std::string>& assignments, std::FILE* out, std::FILE* err) {
    std::vector<std::pair<std::size_t, ado::Value>> values;
    const auto prepare = [&](ado::Recordset& rows) {
        for (const std::string& text : assignments) {
            values.push_back(ParseAssignment(rows, text));
            const auto isSame = [&](const auto& value) {
                return value.first == values.back().first;
            };
            if (std::find_if(values.begin(), values.end(), isSame) != values.end() - 1) {
                FailInput("\"" + text + "\" names its column a second time.");
            }
        }
    };
    const auto run = [&](ado::Recordset& rows) {
        rows.SetFilter(criteria);
        // Counted first: a change may put a row to another place of an index.
        const std::size_t count = rows.RecordCount();
        for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) {
            for (const auto& [field, value] : values) rows.Set(field, value);
            rows.Update();
        }
        return count;
    };
    return Edit(file, table, out, err, {prepare, run});
}

ExitStatus Delete(const std::string& file, const std::string& table, const std::string& criteria,
                  std::FILE* out, std::FILE* err) {
    const auto run = [&](ado::Recordset& rows) {
        rows.SetFilter(criteria);
        const std::size_t count = rows.RecordCount();
        for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) rows.Delete();
        return count;
    };
    return Edit(file, table, out, err, {[](ado::Recordset&) {}, run});
}

ExitStatus Load(const std::string& file, const std::string& table, const std::string& csv,
                Encoding encoding, std::FILE* out, std::FILE* err) {
    InputFile in;
    if (const jet::Status status = in.Open(csv); !status.IsOk()) {
        std::fprintf(err, "kvs: %s\n", status.Text().c_str());
        return kFailure;
    }
    CsvReader reader(in, encoding);
    std::vector<std::size_t> fields;
    const auto prepare = [&](ado::Recordset& rows) {
        CollectInput(in, encoding);
        fields = ReadHeading(reader, rows);
    };
    const auto run = [&](ado::Recordset& rows) { return LoadRows(rows, reader, fields, err); };
    return Edit(file, table, out, err, {prepare, run});
}

}  // namespace tools
