#include "spreadsheet/Fault.h"

namespace spreadsheet {

std::string Fault::Text() const {
    const std::string place = "Sheet \"" + sheet + "\", cell " + cell;
    const std::string why = detail.empty() ? "" : " (" + detail + ")";
    switch (kind) {
        case Kind::NoWorkbook:
            return "This is no workbook of the format .xlsx" + why;
        case Kind::Protected:
            return "The workbook is protected by a password, or in the older format .xls; save it "
                   "as .xlsx without a password";
        case Kind::Damaged:
            return "The workbook is damaged: \"" + part + "\" cannot be read" + why;
        case Kind::BadCell:
            return place + ": the cell is damaged" + why;
        case Kind::TooLarge:
            return "The workbook unpacks to more than a workbook of its size can hold: \"" + part +
                   "\"";
        case Kind::TooManyRows:
            return "Sheet \"" + sheet + "\" has more rows than workbooks have room for";
        case Kind::TooLongText:
            return place + ": the text is longer than cells have room for";
        case Kind::NotWritten:
            return "The workbook cannot be made with temporary files in \"" + part +
                   "\": " + error.message() + why;
        case Kind::Unavailable:
            return "This program has been built without workbooks (.xlsx); use CSV";
        default:
            return {};
    }
}

}  // namespace spreadsheet
