#include "project/Transaction.h"

#include <cstdio>
#include <exception>

#include "ado/AdoError.h"

namespace project {

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

void CommitWhatIsDone(ado::Connection& connection, const std::function<bool()>& steps,
                      const std::function<void()>& undone) {
    std::exception_ptr failure;
    bool wanted = true;
    try {
        Transaction transaction(connection);
        try {
            wanted = steps();
        } catch (...) {
            failure = std::current_exception();
        }
        if (wanted) transaction.Commit();
    } catch (...) {
        if (undone) undone();
        if (!failure) throw;  // else the first one is to be told
    }
    if (!wanted && undone) undone();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace project
