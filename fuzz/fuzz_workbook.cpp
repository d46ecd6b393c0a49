// Reads all sheets of a workbook with any content, as a file and as the rows of one whose archive
// is whole: a changed byte of a packed part would end at its checksum. Nothing may crash, hang or
// take memory beyond a few rows.

#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

#include "../tests/spreadsheet/Archive.h"
#include "spreadsheet/WorkbookReader.h"

namespace {

void ReadEverything(std::string bytes) {
    spreadsheet::WorkbookReader reader;
    if (!reader.Open(std::move(bytes))) return;
    for (std::size_t i = 0; i < reader.Sheets().size(); ++i) {
        reader.Begin(i);
        for (spreadsheet::Row row; reader.Next(row);) {
        }
        if (reader.GetFault()) return;
    }
}

}  // namespace

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first byte says which part the rest is.
    static const char* const kParts[] = {"",
                                         "xl/sheets/s.xml",
                                         "xl/texts.xml",
                                         "xl/styles.xml",
                                         "xl/workbook.xml",
                                         "xl/_rels/workbook.xml.rels",
                                         "_rels/.rels"};
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::size_t part = size == 0 ? 0 : std::size_t{data[0]} - '0';
    if (part == 0 || part >= std::size(kParts)) {
        ReadEverything(text);
        return 0;
    }
    spreadsheet::Parts parts =
        spreadsheet::WorkbookWith("<row r='1'><c r='A1' t='s'><v>1</v></c></row>");
    parts[kParts[part]] = text.substr(1);
    ReadEverything(spreadsheet::Zipped(parts));
    return 0;
}
