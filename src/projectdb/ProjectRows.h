#pragma once

#include <QString>

#include "project/Rows.h"
#include "projectdb/ADOArchiv.h"
#include "projectdb/Text.h"

namespace projectdb {

using project::EditScope;
using project::HasField;
using project::NumberOf;

/// The rows of one operation on the project that is open.
class ProjectRows : public project::Rows {
public:
    /// `environment` is borrowed; its connection is open.
    explicit ProjectRows(ADOArchiv& environment) : Rows(environment.Connection()) {}
};

/// The name of the current row.
[[nodiscard]] inline QString NameOf(const ado::Recordset& rows) {
    return ToQString(project::NameOf(rows));
}

}  // namespace projectdb
