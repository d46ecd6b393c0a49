#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "csv/Reader.h"
#include "exchange/InputRows.h"

namespace transfer {

/// What stands in a file, CSV or a workbook, that is to be imported.
struct ImportFile {
    std::vector<exchange::InputRows> sheets{};  // open: headings may be assigned
    QStringList passedOver{};                   // names of sheets that hold something else
};

/// A file that is not in the encoding that is said of it.
struct BadEncoding {
    csv::BadByte place;
};

/// Reads all of it; `encoding` is that of CSV. Throws BadEncoding, exchange::GivenUp, and
/// ado::AdoError for all else.
[[nodiscard]] ImportFile ReadImportFile(ado::Connection& connection, const QString& name,
                                        csv::Encoding encoding, const exchange::GoOn& goOn);

}  // namespace transfer
