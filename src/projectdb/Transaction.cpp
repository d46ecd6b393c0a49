#include "projectdb/Transaction.h"

#include <cstdio>

#include "ado/AdoError.h"

namespace projectdb {

Transaction::Transaction(ado::Connection& connection) : connection_(connection) {
    connection_.BeginTrans();
}

Transaction::~Transaction() {
    if (!isOpen_) return;
    try {
        connection_.RollbackTrans();
    } catch (const ado::AdoError& error) {
        // The failure that leads here is the one to be told.
        std::fprintf(stderr, "A change could not be taken back: %s\n", error.what());
    }
}

void Transaction::Commit() {
    isOpen_ = false;
    connection_.CommitTrans();
}

}  // namespace projectdb
