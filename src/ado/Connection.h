#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ado/RowChange.h"

namespace jet {
class Database;
}

namespace ado {

class Recordset;
struct NewTable;

/// State of a connection or recordset.
enum class ObjectState : int { Closed = 0, Open = 1 };

/// One connection to a project file. Not thread-safe. Errors are AdoError throughout.
///
/// Recordsets are opened on a connection and borrow it: a connection must outlive them, or they
/// must be closed before it goes. Closing the connection closes them.
class Connection {
public:
    Connection();
    ~Connection();  // closes
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Opens the file that the connection string names: properties "Name=value" separated by ";",
    /// of which "Provider" must be Microsoft.Jet.OLEDB.4.0 and "Data Source" the file, and "Mode"
    /// is taken as it is. The path may be a native one or one with backslashes and a drive
    /// letter, and may itself contain ";". User name and password are empty for a project file;
    /// `options` is the provider's own and ignored. The connection stays closed when it fails.
    void Open(std::string_view connectionString, std::string_view userId = {},
              std::string_view password = {}, int options = -1);
    /// As Open, for reading the state that the file has now, however long that takes: it is copied
    /// to a temporary file, and nobody else's changes are seen any more.
    void OpenSnapshot(std::string_view connectionString);
    void Close();  // fails when it is closed already, like every operation below but State

    // Changes between BeginTrans and CommitTrans are in the file all or not at all. A transaction
    // inside another joins it; its rollback takes the whole back, and the outer one can then only
    // be rolled back. Without one every Update and Delete is a transaction of its own.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    /// Who hears of every row that is changed through this connection from now on, whoever changes
    /// it, whichever file is open; an empty one: nobody, and nothing is collected.
    void SetChangeListener(ChangeListener listener);

    [[nodiscard]] ObjectState State() const noexcept;
    /// False for a file that can only be looked at: its rights, its version or its damage allow no
    /// more. Every change fails then.
    [[nodiscard]] bool IsWritable() const;
    /// As long as it is the same number, nobody has changed the file, this program included.
    [[nodiscard]] std::uint64_t ContentNumber();
    /// Whether somebody waits to write his changes, such as for the end of a OneState: who reads
    /// for nobody's sake gives way. Another connection of this program may be the one.
    [[nodiscard]] bool IsWriterWaiting() const;
    /// The data source as the connection string gave it; empty while closed.
    [[nodiscard]] const std::string& DataSource() const noexcept;
    /// What the user should know about the file since the last call, a sentence each; see
    /// jet::Database. No failures.
    [[nodiscard]] std::vector<std::string> TakeNotices();
    /// Names of the user tables, in the order of the catalog.
    [[nodiscard]] std::vector<std::string> TableNames() const;
    /// The recordsets that are open on this connection, in the order in which they were opened.
    [[nodiscard]] std::vector<Recordset*> OpenRecordsets() const;

private:
    friend class Recordset;
    friend class OneState;
    friend void CreateFile(const std::string& path, const std::vector<NewTable>& tables,
                           const std::function<void(Connection&)>& fill);
    struct Rep;
    void TakeDatabase(std::unique_ptr<jet::Database> database, const std::string& source);

    std::unique_ptr<Rep> rep_;
};

/// While it is there, everything that is read through the connection is of one committed state, and
/// other programs wait with their changes: for rows that make up one answer, read at one go. No
/// change through the connection begins or ends meanwhile. Throws AdoError when another program
/// does not end its change in time.
class OneState {
public:
    /// `connection` is open, and borrowed.
    explicit OneState(const Connection& connection);
    /// Of the connection on which a recordset is open.
    explicit OneState(const Recordset& rows);
    ~OneState();
    OneState(const OneState&) = delete;
    OneState& operator=(const OneState&) = delete;

private:
    struct Rep;
    std::unique_ptr<Rep> rep_;
};

}  // namespace ado
