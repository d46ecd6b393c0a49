#include "transfer/ImportFile.h"

#include <QFile>
#include <utility>

#include "ado/AdoError.h"
#include "csv/Source.h"
#include "exchange/CsvSheet.h"
#include "exchange/Workbook.h"
#include "projectdb/Text.h"

namespace transfer {
namespace {

exchange::ReadOptions OpenHeadings(const exchange::GoOn& goOn) {
    return {.isOpen = true, .goOn = goOn};
}

/// Bytes that are in memory.
class Bytes final : public csv::Source {
public:
    Bytes(std::string text, std::string name) : text_(std::move(text)), name_(std::move(name)) {}
    std::string_view Next() override {
        return std::exchange(isRead_, true) ? std::string_view() : std::string_view(text_);
    }
    const std::string& Error() const override { return error_; }
    const std::string& Name() const override { return name_; }

private:
    std::string text_;
    std::string name_;
    std::string error_;
    bool isRead_ = false;
};

[[noreturn]] void Fail(const std::string& why) {
    throw ado::AdoError(ado::ErrorNumber::kInvalidArgument, why);
}

std::string BytesOf(const QString& name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) Fail(projectdb::ToUtf8(file.errorString()));
    std::string bytes = file.readAll().toStdString();
    if (file.error() != QFileDevice::NoError) Fail(projectdb::ToUtf8(file.errorString()));
    return bytes;
}

ImportFile ReadWorkbook(ado::Connection& connection, std::string bytes,
                        const exchange::GoOn& goOn) {
    spreadsheet::WorkbookReader workbook;
    if (!workbook.Open(std::move(bytes))) Fail(workbook.GetFault().Text() + ".");
    auto rows = exchange::ReadWorkbook(connection, workbook, OpenHeadings(goOn));
    ImportFile file{std::move(rows.sheets)};
    for (const std::string& sheet : rows.passedOver) {
        file.passedOver += projectdb::ToQString(sheet);
    }
    return file;
}

}  // namespace

ImportFile ReadImportFile(ado::Connection& connection, const QString& name, csv::Encoding encoding,
                          const exchange::GoOn& goOn) {
    std::string bytes = BytesOf(name);
    if (spreadsheet::LooksLikeWorkbook(bytes)) {
        return ReadWorkbook(connection, std::move(bytes), goOn);
    }
    Bytes source(std::move(bytes), projectdb::ToUtf8(name));
    exchange::CsvInput input(source, {encoding, '\0'});
    ImportFile file;
    try {
        file.sheets.emplace_back(connection, input, OpenHeadings(goOn));
    } catch (const ado::AdoError&) {
        if (input.Bad()) throw BadEncoding{*input.Bad()};
        throw;
    }
    return file;
}

}  // namespace transfer
