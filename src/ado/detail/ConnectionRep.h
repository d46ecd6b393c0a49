#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/detail/ChangeCollector.h"
#include "jet/Database.h"

namespace ado {

struct Connection::Rep {
    jet::Database* database = nullptr;   // null while closed
    std::unique_ptr<jet::Database> own;  // null while it is somebody else's
    std::string source;                  // as the connection string gave it
    std::vector<Recordset*> recordsets;  // open ones, the oldest first
    ChangeListener listener;             // may be empty
    ChangeCollector changes;             // for the listener

    /// Opens the connection on a database that outlives it.
    void Borrow(jet::Database& opened, const std::string& openedSource) {
        database = &opened;
        source = openedSource;
        Observe();
    }

    /// Lets the database tell of changes exactly while somebody listens.
    void Observe() {
        if (database != nullptr) database->Observe(listener ? &changes : nullptr);
    }
    /// Tells the listener what has been committed. REQUIRES: behind a commit.
    void TellChanges() {
        if (!listener || database->InTransaction()) return;
        std::vector<RowChange> committed = changes.TakeCommitted();
        if (!committed.empty()) listener(std::move(committed));
    }
};

}  // namespace ado
