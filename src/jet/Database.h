#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/File.h"
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

    /// Opens for reading and changes nothing. Fails for what is no Jet 3 or Jet 4 file, for an
    /// encrypted one and for one that is too short to hold a catalog.
    [[nodiscard]] static Result<std::unique_ptr<Database>> Open(
        const std::string& path, std::size_t cacheBytes = kDefaultCache);
    [[nodiscard]] static Result<std::unique_ptr<Database>> Open(
        std::unique_ptr<File> file, std::size_t cacheBytes = kDefaultCache);

    [[nodiscard]] jet::Format FileFormat() const { return context_.format; }
    /// True when the file asks its users for a password. Its content is readable all the same.
    [[nodiscard]] bool HasPassword() const { return hasPassword_; }

    /// All tables in the order of the catalog. Rows of the catalog that cannot be read are left
    /// out and reported in `damage` when it is given.
    [[nodiscard]] Result<std::vector<CatalogEntry>> Tables(std::vector<Status>* damage = nullptr);

    /// Names compare without case. NotFound when there is no such table.
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(std::string_view name);
    [[nodiscard]] Result<std::unique_ptr<Table>> OpenTable(const CatalogEntry& entry);

private:
    Database(std::unique_ptr<File> file, std::size_t cacheBytes);
    Status ReadHeader();

    std::unique_ptr<File> file_;
    PageCache cache_;
    CodePage codePage_;
    FileContext context_;
    bool hasPassword_ = false;
};

}  // namespace jet
