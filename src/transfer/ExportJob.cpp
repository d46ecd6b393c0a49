#include "transfer/ExportJob.h"

#include <system_error>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "exchange/Workbook.h"
#include "paths/NewFile.h"
#include "project/Schema.h"
#include "projectdb/Text.h"

namespace transfer {
namespace {

using exchange::SheetKind;

/// The user has thought better of it.
struct Cancelled {};
std::size_t RowsIn(ado::Connection& connection) {
    std::size_t rows = 0;
    for (const std::string_view table : {project::kArchiveTable, project::kTrendTable}) {
        ado::Recordset all;
        all.Open(table, connection, ado::CommandType::Table);
        rows += all.RecordCount();
    }
    return rows;
}

}  // namespace

/// Counts the rows on their way, and ends it when it is cancelled.
class ExportJob::Counted final : public exchange::SheetWriter {
public:
    Counted(ExportJob& job, exchange::SheetWriter& writer) : job_(job), writer_(writer) {}

    void Begin(const exchange::Sheet& sheet, const words::Language& language) override {
        writer_.Begin(sheet, language);
    }
    void Row(std::span<const exchange::Cell> cells) override {
        if (job_.isCancelled_) throw Cancelled();
        writer_.Row(cells);
        ++job_.rows_;
    }

private:
    ExportJob& job_;
    exchange::SheetWriter& writer_;
};

ExportJob::~ExportJob() {
    Cancel();
    wait();
}

void ExportJob::run() {
    try {
        Write();
    } catch (const Cancelled&) {
        return;
    } catch (...) {
        failure_ = projectdb::Failure::Current();
    }
}

void ExportJob::Write() {
    const std::string name = projectdb::ToUtf8(wish_.file);
    const auto require = [&](const std::error_code& error) {
        if (!error) return;
        throw ado::AdoError(ado::ErrorNumber::kUnspecified,
                            '"' + name + "\" cannot be written: " + error.message() + '.',
                            {paths::NewFile::CauseOf(error), name});
    };
    paths::NewFile file;
    require(file.Open(name));
    WriteSheets([&](std::string_view piece) {
        if (isCancelled_) throw Cancelled();
        if (!file.Write(piece)) require(file.Error());
    });
    if (isCancelled_) throw Cancelled();
    require(file.TakeName());
    isWritten_ = true;
}

void ExportJob::WriteSheets(const std::function<void(std::string_view)>& put) {
    ado::Connection connection;
    connection.OpenSnapshot("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + source_ +
                            ";Mode=Read|Share Deny None;");
    all_ = RowsIn(connection);
    const words::Language& language = *wish_.language;
    if (!wish_.isWorkbook) {
        exchange::CsvSheetWriter writer(wish_.form, put);
        Counted counted(*this, writer);
        return exchange::Export(connection, wish_.kind, wish_.selection, language, counted);
    }
    exchange::WorkbookSheets writer(language);
    Counted counted(*this, writer);
    for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
        exchange::Export(connection, kind, wish_.selection, language, counted);
    }
    writer.Finish(put);
}

}  // namespace transfer
