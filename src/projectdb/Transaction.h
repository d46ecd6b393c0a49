#pragma once

#include "ado/Connection.h"

namespace projectdb {

/// Joins the changes of a scope to one. What has not been committed when the scope is left is
/// taken back.
class Transaction {
public:
    /// Begins it. Throws ado::AdoError, and the scope is not entered, when the file is read only or
    /// another program does not end its own transaction in time. `connection` is borrowed.
    explicit Transaction(ado::Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// When it fails nothing of the transaction is in the file.
    void Commit();

private:
    ado::Connection& connection_;
    bool isOpen_ = true;
};

}  // namespace projectdb
