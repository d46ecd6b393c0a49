#include "ado/CreateFile.h"

#include <exception>

#include "ado/detail/ConnectionRep.h"
#include "ado/detail/Convert.h"
#include "ado/detail/ProviderError.h"
#include "jet/CreateDatabase.h"
#include "jet/CreateTable.h"
#include "paths/NativePath.h"

namespace ado {
namespace {

jet::IndexSpec::Kind KindOf(NewIndex::Kind kind) {
    switch (kind) {
        case NewIndex::Kind::PrimaryKey:
            return jet::IndexSpec::Kind::PrimaryKey;
        case NewIndex::Kind::Unique:
            return jet::IndexSpec::Kind::Unique;
        case NewIndex::Kind::Plain:
            break;
    }
    return jet::IndexSpec::Kind::Plain;
}

jet::TableSpec Described(const NewTable& table) {
    jet::TableSpec described;
    described.name = table.name;
    for (const NewColumn& column : table.columns) {
        described.columns.push_back({.name = column.name,
                                     .type = ColumnTypeOf(column.type),
                                     .length = static_cast<std::size_t>(column.length),
                                     .isAutoNumber = column.isAutoNumber});
    }
    for (const NewIndex& index : table.indexes) {
        described.indexes.push_back({index.name, KindOf(index.kind), {{index.column}}});
    }
    return described;
}

}  // namespace

void CreateFile(const std::string& path, const std::vector<NewTable>& tables,
                const std::function<void(Connection&)>& fill) {
    std::exception_ptr thrown;  // nothing is thrown through the engine
    const auto fillNew = [&](jet::Database& database) -> jet::Status {
        for (const NewTable& table : tables) {
            JET_TRY(jet::CreateTable(database, Described(table)));
        }
        try {
            Connection connection;
            connection.rep_->Borrow(database, path);
            if (fill) fill(connection);
            return {};
        } catch (...) {
            thrown = std::current_exception();
            return {jet::StatusCode::BadArgument, "the first rows cannot be stored"};
        }
    };
    const jet::Status status =
        jet::CreateDatabase(jet::SystemDisk(), paths::ToNative(path), fillNew);
    if (thrown) std::rethrow_exception(thrown);
    if (!status.IsOk()) ThrowNotMade(status, path);
}

}  // namespace ado
