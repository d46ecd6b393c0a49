#pragma once

#include <string>

#include "jet/detail/PageCache.h"
#include "jet/Disk.h"

namespace jet {

/// Rollback journal: what the pages that one transaction changes were before. It lies beside the
/// database under its name with "-journal" behind it.
///
/// Integers little-endian:
///   +0   8     "KVJRNL01"
///   +8   u32   page size, bytes
///   +12  u32   number of records
///   +16  u64   size of the database before the transaction, bytes
///   +24  u64   checksum of bytes 0..23
///   +32        the records
/// Record:
///   +0   u32   page number
///   +4   u32   0
///   +8   u64   checksum of the page number and the image
///   +16  u8[]  page image
///
/// The order that makes a power cut harmless:
///   1. write the journal whole, sync it (its name is durable since it was made)
///   2. write the pages to the database, sync it
///   3. remove the journal, durably: this is the commit
/// The database is first touched after step 1. A journal that is short or fails a checksum was
/// therefore never finished, and the database is as it was before; one that is whole is put back.
class Journal {
public:
    using Images = PageCache::Images;

    [[nodiscard]] static std::string PathFor(const std::string& database) {
        return database + "-journal";
    }

    /// Step 1. `before` has the images of the pages by their numbers.
    [[nodiscard]] static Status Write(Disk& disk, const std::string& database, std::size_t pageSize,
                                      std::uint64_t sizeBefore, const Images& before);
    /// Step 3.
    [[nodiscard]] static Status Remove(Disk& disk, const std::string& database);

    /// Puts back what an interrupted transaction has left, if there is a journal; syncs, and
    /// removes it. `file` is the database, open for writing. Safe to repeat. True when the
    /// database was put back.
    [[nodiscard]] static Result<bool> RollBack(Disk& disk, const std::string& database, File& file);
    /// True when there is a journal beside the database.
    [[nodiscard]] static Result<bool> Exists(Disk& disk, const std::string& database);
};

}  // namespace jet
