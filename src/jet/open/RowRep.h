#pragma once

#include <memory>

#include "jet/page/DataPage.h"
#include "jet/Row.h"
#include "jet/row/CodePage.h"
#include "jet/row/RowView.h"

namespace jet {

/// Nothing in it changes while somebody else holds it.
struct Row::Rep {
    RowId id;
    std::shared_ptr<const TableDef> def;
    const CodePage* codePage = nullptr;  // null for Jet 4
    DataPage page;                       // keeps the bytes of `view` alive
    RowView view;
};

/// The part of a row's stored bytes that holds a value; empty for Null and for Booleans. Valid as
/// long as the row.
[[nodiscard]] Result<Bytes> StoredValue(const Row& row, std::size_t column);

}  // namespace jet
