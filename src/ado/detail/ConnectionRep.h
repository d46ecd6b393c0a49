#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/detail/ChangeCollector.h"
#include "jet/Database.h"

namespace ado {

struct Connection::Rep {
    std::unique_ptr<jet::Database> database;  // null while closed
    std::string source;                       // as the connection string gave it
    std::vector<Recordset*> recordsets;       // open ones, the oldest first
    ChangeListener listener;                  // may be empty
    ChangeCollector changes;                  // for the listener

    /// Lets the database tell of changes exactly while somebody listens.
    void Observe() {
        if (database) database->Observe(listener ? &changes : nullptr);
    }
    /// Tells the listener what has been committed. REQUIRES: behind a commit.
    void TellChanges() {
        if (!listener || database->InTransaction()) return;
        std::vector<RowChange> committed = changes.TakeCommitted();
        if (!committed.empty()) listener(std::move(committed));
    }
};

}  // namespace ado
