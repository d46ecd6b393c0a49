#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Disk.h"
#include "jet/File.h"
#include "jet/RowObserver.h"
#include "jet/Table.h"

namespace jet {

/// A table that the catalog lists.
struct CatalogEntry {
    std::string name;  // UTF-8
    PageNo page{};
    bool isUserTable = false;  // false: one of the system's own
};

/// An open database file. Not thread-safe.
///
/// Everything is read from the file when it is asked for, through one page cache; the file is
/// never read whole. When another program changes the file, the next operation sees it.
class Database {
public:
    static constexpr std::size_t kDefaultCache = std::size_t{16} << 20;  // bytes

    struct Rep;  // the library's own
    explicit Database(std::unique_ptr<Rep> rep);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Opens a file that other programs may have open too, as a user among them. First
    /// puts back what a program that died has left. Fails, and has changed nothing, for what is no
    /// Jet 3 or Jet 4 file, for an encrypted one and for one that is too short to hold a catalog.
    /// `disk` is borrowed and must outlive the database. The messages do not name the file.
    [[nodiscard]] static Result<std::unique_ptr<Database>> Open(
        Disk& disk, const std::string& path, OpenMode mode, std::size_t cacheBytes = kDefaultCache);
    /// For reading, from the system's files.
    [[nodiscard]] static Result<std::unique_ptr<Database>> Open(
        const std::string& path, std::size_t cacheBytes = kDefaultCache);
    /// For reading a file that nobody else uses.
    [[nodiscard]] static Result<std::unique_ptr<Database>> Open(
        std::unique_ptr<File> file, std::size_t cacheBytes = kDefaultCache);

    // A transaction joins changes to one: all of them are in the file, or none. Begin inside a
    // transaction joins it, and only the outermost Commit writes; a Rollback takes everything
    // back, and the outer Commit then fails.
    /// Busy when another program does not end its transaction in time; Corrupt when it is not sure
    /// to whom each page of the file belongs, since writing would damage more.
    Status Begin();
    /// When it fails, nothing of the transaction is left;
    /// what is done although something failed is a success, with a notice.
    /// Busy when another program goes on reading, or holds a page that has to be written.
    Status Commit();
    Status Rollback();
    /// How long this program waits for others before it gives up with Busy.
    struct Waits {
        std::chrono::milliseconds writer{5'000};   // for the end of another's transaction
        std::chrono::milliseconds commit{30'000};  // for who may be reading the whole of a big file
    };
    void SetWaits(const Waits& waits);
    /// Lets `observer` hear of all changes of rows from now on; null: nobody. Borrowed.
    void Observe(RowObserver* observer);
    [[nodiscard]] bool InTransaction() const;
    /// As long as it is the same number, nobody has changed the file, this program included. Asks
    /// the file; shortly after a change the number may be a new one for nothing.
    [[nodiscard]] Result<std::uint64_t> ContentNumber();

    [[nodiscard]] Format FileFormat() const;
    /// While it is there, every table shows the same committed state: for several rows that are one
    /// answer. See ReadScope for its cost to others. No transaction begins or ends meanwhile.
    [[nodiscard]] ReadScope Hold();
    /// Whether somebody waits for that scope's end to write his changes.
    [[nodiscard]] bool IsWriterWaiting() const;
    /// Runs `action` while no other program writes the file.
    Status WhileQuiet(const std::function<Status(File&)>& action);
    /// Computer names of the other programs that have the file open.
    [[nodiscard]] std::vector<std::string> OtherUsers() const;
    /// False when it is known that every change would be refused: by how the file was opened, by
    /// its version, or by the reason that a notice tells, until a change has been possible.
    [[nodiscard]] bool IsWritable() const;
    /// What the user should know about the file since the last call, a sentence each: left-over
    /// journals, things of other people where files of the engine belong, and why a file that has
    /// been opened for writing can only be read. No failures.
    [[nodiscard]] std::vector<std::string> TakeNotices();
    /// True when the file asks its users for a password. Its content is readable all the same.
    [[nodiscard]] bool HasPassword() const;

    /// All tables in the order of the catalog. Rows of the catalog that cannot be read are left
    /// out and reported in `damage` when it is given.
    [[nodiscard]] Result<std::vector<CatalogEntry>> Tables(std::vector<Status>* damage = nullptr);

    /// Names compare without case. NotFound when there is no such table.
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(std::string_view name);
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(const CatalogEntry& entry);

private:
    friend struct Inside;
    std::unique_ptr<Rep> rep_;
};

}  // namespace jet
