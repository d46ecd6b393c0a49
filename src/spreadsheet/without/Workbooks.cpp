#include "spreadsheet/WorkbookReader.h"
#include "spreadsheet/WorkbookWriter.h"

// Where the libraries for workbooks are not there, both say so.

namespace spreadsheet {
namespace {

const Fault kUnavailable{.kind = Fault::Kind::Unavailable};

}  // namespace

struct WorkbookReader::Book {};
struct WorkbookWriter::Book {};

WorkbookReader::WorkbookReader() = default;
WorkbookReader::~WorkbookReader() = default;

bool WorkbookReader::Open(std::string /*bytes*/) {
    return false;
}

std::span<const SheetInfo> WorkbookReader::Sheets() const {
    return {};
}

void WorkbookReader::Begin(std::size_t /*sheet*/) {}

bool WorkbookReader::Next(Row& /*row*/) {
    return false;
}

const Fault& WorkbookReader::GetFault() const {
    return kUnavailable;
}

bool LooksLikeWorkbook(std::string_view bytes) {
    return bytes.starts_with("PK\3\4");
}

WorkbookWriter::WorkbookWriter(std::string /*listName*/, Notice /*fixedColumns*/) {}
WorkbookWriter::~WorkbookWriter() = default;

bool WorkbookWriter::BeginSheet(const std::string& /*name*/,
                                std::span<const ColumnLook> /*columns*/,
                                std::size_t /*frozenColumns*/) {
    return false;
}

bool WorkbookWriter::Write(std::span<const Cell> /*cells*/) {
    return false;
}

bool WorkbookWriter::Finish(const std::function<void(std::string_view)>& /*put*/) {
    return false;
}

const Fault& WorkbookWriter::GetFault() const {
    return kUnavailable;
}

}  // namespace spreadsheet
