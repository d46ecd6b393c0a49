#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"

namespace ado {

/// A column of a table to be made.
struct NewColumn {
    std::string name;  // UTF-8
    DataType type = DataType::Integer;
    int length = 0;  // VarWChar: 1..255 UTF-16 units, VarBinary: 1..510 bytes, others: not used
    bool isAutoNumber = false;  // Integer and Guid, one a table
};

/// An index of one column of a table to be made.
struct NewIndex {
    enum class Kind { Plain, Unique, PrimaryKey };
    std::string name;  // a primary key is called "PrimaryKey" by custom
    std::string column;
    Kind kind = Kind::Plain;
};

/// A table to be made.
struct NewTable {
    std::string name;
    std::vector<NewColumn> columns;  // 1..255
    std::vector<NewIndex> indexes;   // at most 32
};

/// Makes a new file with these tables, and what `fill` puts into them through a connection that is
/// there meanwhile, all in one transaction. `path` is a native one or one with backslashes.
///
/// The file gets its name when it is whole and durable: after a failure, an exception of `fill`
/// included, there is none. Throws AdoError; reasons::Cause::FileExists when there is something of
/// this name already, which is never touched.
void CreateFile(const std::string& path, const std::vector<NewTable>& tables,
                const std::function<void(Connection&)>& fill = {});

}  // namespace ado
