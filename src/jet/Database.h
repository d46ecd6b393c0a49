#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/Check.h"
#include "jet/Disk.h"
#include "jet/File.h"
#include "jet/Table.h"
#include "jet/write/Recovery.h"

namespace jet {

class Journal;
struct TableSpec;

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

    /// Opens a file that other programs may have open too, as a user among them: see Locks. First
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
    /// The order of writes is that of Journal. When it fails, nothing of the transaction is left;
    /// what is done although something failed is a success, with a notice.
    /// Busy when another program goes on reading, or holds a page that has to be written.
    Status Commit();
    Status Rollback();
    /// How long this program waits for others before it gives up with Busy.
    struct Waits {
        std::chrono::milliseconds writer{5'000};   // for the end of another's transaction
        std::chrono::milliseconds commit{30'000};  // for who may be reading the whole of a big file
    };
    void SetWaits(const Waits& waits) { waits_ = waits; }
    /// Lets `observer` hear of all changes of rows from now on; null: nobody. Borrowed.
    void Observe(RowObserver* observer) { context_.observer = observer; }
    [[nodiscard]] bool InTransaction() const { return depth_ > 0; }

    [[nodiscard]] jet::Format FileFormat() const { return context_.format; }
    /// While it is there, every table shows the same committed state: for several rows that are one
    /// answer. See ReadScope for its cost to others. No transaction begins or ends meanwhile.
    [[nodiscard]] ReadScope Hold() { return ReadScope(cache_, ReadScope::Length::Long); }
    /// Runs `action` while no other program writes the file.
    Status WhileQuiet(const std::function<Status(File&)>& action);
    /// Computer names of the other programs that have the file open.
    [[nodiscard]] std::vector<std::string> OtherUsers() const;
    [[nodiscard]] bool IsWritable() const { return mode_ == OpenMode::ReadWrite; }
    /// What the user should know about the file since the last call, a sentence each: left-over
    /// journals, things of other people where files of the engine belong, and why a file that has
    /// been opened for writing can only be read. No failures.
    [[nodiscard]] std::vector<std::string> TakeNotices() { return std::exchange(notices_, {}); }
    /// True when the file asks its users for a password. Its content is readable all the same.
    [[nodiscard]] bool HasPassword() const { return hasPassword_; }

    /// All tables in the order of the catalog. Rows of the catalog that cannot be read are left
    /// out and reported in `damage` when it is given.
    [[nodiscard]] Result<std::vector<CatalogEntry>> Tables(std::vector<Status>* damage = nullptr);

    /// Names compare without case. NotFound when there is no such table.
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(std::string_view name);
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(const CatalogEntry& entry);

private:
    friend class Compaction;
    friend class Repairing;
    friend Status CreateTable(Database& database, const TableSpec& wanted);
    Database(std::unique_ptr<File> file, std::size_t cacheBytes);
    Status ReadHeader();
    Status Join(Disk& disk, const std::string& path, OpenMode mode);
    void Notify(std::string notice);
    Status TellWhetherWritable();
    [[nodiscard]] Result<bool> Recover();
    [[nodiscard]] Result<Recovery::Outcome> RollBackJournal();
    [[nodiscard]] Result<PageState> PrepareToWrite();
    Status RenewKnownTables();
    Status RemoveLeftOvers(const std::vector<std::uint32_t>& maps);
    Status WriteTransaction();
    Status WriteJournalled(Journal& journal);
    void EndTransaction(bool committed);

    std::unique_ptr<File> file_;
    PageCache cache_;
    CodePage codePage_;
    FileContext context_;
    bool hasPassword_ = false;

    // Null for a file that nobody else uses.
    Disk* disk_ = nullptr;
    std::string path_;
    OpenMode mode_ = OpenMode::Read;
    std::unique_ptr<Locks> locks_;
    std::optional<Recovery> recovery_;
    std::vector<std::string> notices_;  // not taken yet
    std::vector<std::string> told_;     // all so far
    Waits waits_;
    int depth_ = 0;               // of joined transactions
    bool isRolledBack_ = false;   // inside an outer transaction that is still to end
    bool pagesAreSound_ = false;  // has been checked, before the first transaction
    Status broken_;               // why nothing more can be written until the file is opened again

    /// What the catalog and the definitions say, as of one generation of the page cache. Forgotten
    /// when a transaction begins, and not kept inside one.
    struct KnownTables {
        std::uint64_t generation = 0;  // 0: none
        std::vector<CatalogEntry> entries;
        std::vector<Status> damage;  // rows of the catalog that could not be read
        std::map<PageNo, std::shared_ptr<const TableDef>> definitions;
    };
    KnownTables known_;
};

}  // namespace jet
