#pragma once

#include <functional>

#include "ado/Connection.h"

namespace project {

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

/// Runs `steps` as one transaction that is committed even when one of them throws: the steps before
/// it stay done. Then throws on what the step has thrown, or what the commit has. When `steps`
/// gives false all of it is taken back. `undone` is called when nothing of the steps is in the
/// file.
void CommitWhatIsDone(ado::Connection& connection, const std::function<bool()>& steps,
                      const std::function<void()>& undone = {});

}  // namespace project
