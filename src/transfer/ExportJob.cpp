#include "transfer/ExportJob.h"

#include <QSaveFile>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "exchange/Workbook.h"
#include "project/Schema.h"

namespace transfer {
namespace {

using exchange::SheetKind;

/// The user has thought better of it.
struct Cancelled {};
/// The file does not take what is written.
struct FileFault {};

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
    } catch (const FileFault&) {
        return;
    } catch (...) {
        failure_ = projectdb::Failure::Current();
    }
}

void ExportJob::Write() {
    QSaveFile file(wish_.file);
    const auto require = [&](bool isDone) {
        if (isDone) return;
        fileError_ = file.errorString();
        throw FileFault();
    };
    require(file.open(QIODevice::WriteOnly));
    WriteSheets([&](std::string_view piece) {
        if (isCancelled_) throw Cancelled();
        const auto size = static_cast<qint64>(piece.size());
        require(file.write(piece.data(), size) == size);
    });
    if (isCancelled_) throw Cancelled();
    // Committing alone does not tell that the last bytes, still in memory, find no room.
    require(file.flush() && file.commit());
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
