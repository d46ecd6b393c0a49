#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/check/PageState.h"
#include "jet/Database.h"
#include "jet/Disk.h"
#include "jet/open/FileContext.h"
#include "jet/open/Inside.h"
#include "jet/write/Journal.h"
#include "jet/write/Recovery.h"

namespace jet {

/// The file with its pages, its locks and the transaction that is going on.
struct Database::Rep {
    Rep(std::unique_ptr<File> opened, std::size_t cacheBytes);

    /// What tells how the rest is to be read.
    Status ReadHeader();
    /// Takes part among the programs that have the file open.
    Status Join(Disk& place, const std::string& name, OpenMode wanted);
    void Notify(std::string notice);

    // See Database.
    Status Begin();
    Status Commit();
    Status Rollback();

    /// REQUIRES: the file's state is held.
    Status RenewKnownTables();

    std::unique_ptr<File> file;
    PageCache cache;
    CodePage codePage;
    FileContext context;
    bool hasPassword = false;

    // Null for a file that nobody else uses.
    Disk* disk = nullptr;
    std::string path;
    OpenMode mode = OpenMode::Read;
    std::unique_ptr<Locks> locks;
    std::optional<Recovery> recovery;
    std::vector<std::string> notices;  // not taken yet
    std::vector<std::string> told;     // all so far
    Waits waits;
    std::uint64_t commits = 0;   // of this program
    int depth = 0;               // of joined transactions
    bool isRolledBack = false;   // inside an outer transaction that is still to end
    bool canOnlyBeRead = false;  // as the last look has found
    bool pagesAreSound = false;  // has been checked, before the first transaction
    Status broken;               // why nothing more can be written until the file is opened again

    /// What the catalog and the definitions say, as of one generation of the page cache. Forgotten
    /// when a transaction begins, and not kept inside one.
    struct KnownTables {
        std::uint64_t generation = 0;  // 0: none
        std::vector<CatalogEntry> entries;
        std::vector<Status> damage;  // rows of the catalog that could not be read
        std::map<PageNo, std::shared_ptr<const TableDef>> definitions;
    };
    KnownTables known;

private:
    Status TellWhetherWritable();
    [[nodiscard]] Result<bool> Recover();
    [[nodiscard]] Result<Recovery::Outcome> RollBackJournal();
    [[nodiscard]] Result<PageState> PrepareToWrite();
    Status RemoveLeftOvers(const std::vector<std::uint32_t>& maps);
    Status WriteTransaction();
    Status WriteJournalled(Journal& journal);
    void EndTransaction(bool committed);
};

}  // namespace jet
