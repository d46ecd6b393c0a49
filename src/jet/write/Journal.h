#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/Disk.h"
#include "jet/page/Bytes.h"
#include "jet/Types.h"

namespace jet {

/// Rollback journal: what the pages that one transaction changes were before. It lies beside the
/// database under its name with "-journal" behind it.
///
/// Integers little-endian:
///   +0   8     "KVJRNL02"
///   +8   u32   page size, bytes: 4096
///   +12  u32   number of records
///   +16  u64   size of the database before the transaction, bytes
///   +24  u64   its size after it
///   +32  u64   checksum of bytes 0..31
///   +40        the records, in ascending order of their pages; the first is of page 0, on which
///              each transaction counts itself
/// Record:
///   +0   u32   page number
///   +4   u32   0
///   +8   u64   checksum of the page number and of all that follows
///   +16  8xu64 checksums of the page's new content, one for each 512 bytes
///   +80  u8[]  old page image
///
/// The order that makes a power cut harmless:
///   1. write the journal whole into a file without a name, sync it, give it its name durably
///   2. write the pages to the database, sync it
///   3. remove the journal, durably: this is the commit
/// A journal that has its name is therefore whole, and belongs to a database each of whose named
/// pages is old, new, or in each 512 bytes one of them. Any other is doubtful: it is damaged, or
/// somebody has put another file in the database's place, and nothing of it is ever put back.
/// Its name is given and taken away while the pages are locked: who holds that lock, even shared,
/// and sees a journal, sees one whose program has died.
///
/// An earlier form, "KVJRNL01", is still put back. It had no size after, its head's checksum at
/// +24, no checksums of new content, its image at +16; and it had its name while it was written.
class Journal {
public:
    [[nodiscard]] static std::string PathFor(const std::string& database) {
        return database + kSuffix;
    }
    /// The database whose journal is at `path`; empty when it is no path of a journal.
    [[nodiscard]] static std::string DatabaseOf(const std::string& path);

    /// What a transaction is about to write.
    struct Change {
        std::span<const PageNo> pages;  // ascending; the first is page 0
        std::uint64_t sizeBefore = 0;   // bytes
        std::uint64_t sizeAfter = 0;
        /// The new content of a page; valid until the next call.
        std::function<Result<Bytes>(PageNo)> newContent;
    };
    /// The first half of step 1: the journal of a change to `file`, the database at `database`,
    /// which still holds the old content.
    [[nodiscard]] static Result<Journal> Prepare(Disk& disk, const std::string& database,
                                                 const File& file, const Change& change);
    /// Its second half. Duplicate when there is something of the journal's name.
    Status Publish();
    /// Step 3. `isGone` tells whether it has no name any longer, also when making that durable has
    /// failed.
    Status Remove(bool& isGone);

    /// The journal at `path`, to be judged. NotFound when there is nothing; Conflict when there is
    /// something that nobody who may write the database has left there; otherwise what lies there
    /// cannot be opened or is no file.
    [[nodiscard]] static Result<Journal> Open(Disk& disk, const std::string& path,
                                              const std::string& database);

    enum class Verdict {
        Untouched,    // the database is as it was before the transaction
        Interrupted,  // some of the transaction is in it, and can be taken back
        Doubtful,     // it is not this database's, or damaged
    };
    /// Compares it with the database. `reason` is for a doubtful one.
    [[nodiscard]] Result<Verdict> Judge(const File& file, std::string& reason) const;

    /// Makes the database what it was, and syncs it. Safe to repeat.
    /// REQUIRES: it has been prepared here, or been judged to be Interrupted.
    Status PutBack(File& file) const;

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    static constexpr const char* kSuffix = "-journal";
    struct Head {
        bool isFirstForm = false;
        std::uint32_t records = 0;
        std::uint64_t sizeBefore = 0;
        std::uint64_t sizeAfter = 0;  // of the first form: not known, 0
        [[nodiscard]] std::size_t HeadSize() const;
        [[nodiscard]] std::size_t RecordHead() const;
    };
    struct Record {
        PageNo page{};
        Bytes newSums;  // empty in the first form
        Bytes image;
    };
    Journal(Disk& disk, std::string path, std::unique_ptr<File> file)
        : disk_(&disk), path_(std::move(path)), file_(std::move(file)) {}
    [[nodiscard]] Result<bool> ReadHead(Head& head) const;
    [[nodiscard]] Result<bool> ReadRecord(const Head& head, std::uint32_t index,
                                          std::vector<std::byte>& buffer, Record& record) const;

    Disk* disk_;
    std::string path_;
    std::unique_ptr<File> file_;
};

}  // namespace jet
