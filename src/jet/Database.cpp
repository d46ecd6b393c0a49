#include "jet/Database.h"

#include <utility>

#include "jet/catalog/CatalogReader.h"
#include "jet/open/DatabaseRep.h"
#include "jet/open/TableRep.h"

namespace jet {

Database::Database(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
Database::~Database() = default;

Result<std::unique_ptr<Database>> Database::Open(const std::string& path, std::size_t cacheBytes) {
    return Open(SystemDisk(), path, OpenMode::Read, cacheBytes);
}

Result<std::unique_ptr<Database>> Database::Open(Disk& disk, const std::string& path, OpenMode mode,
                                                 std::size_t cacheBytes) {
    std::string real;
    JET_ASSIGN(real, disk.Resolve(path));
    constexpr int kTries = 3;
    for (int i = 1;; ++i) {
        std::unique_ptr<File> file;
        JET_ASSIGN(file, disk.Open(real, mode));
        // Before it is known to be a database, nothing is put beside it.
        std::unique_ptr<Database> database;
        JET_ASSIGN(database, Open(std::move(file), cacheBytes));
        Status status = Inside::Of(*database).Join(disk, real, mode);
        if (status.IsOk()) return database;
        // Somebody may just have put another file in its place.
        if (status.Code() != StatusCode::Conflict || i == kTries) return status;
    }
}

Result<std::unique_ptr<Database>> Database::Open(std::unique_ptr<File> file,
                                                 std::size_t cacheBytes) {
    auto rep = std::make_unique<Rep>(std::move(file), cacheBytes);
    JET_TRY(rep->ReadHeader());
    return std::make_unique<Database>(std::move(rep));
}

Status Database::Begin() {
    return rep_->Begin();
}

Status Database::Commit() {
    return rep_->Commit();
}

Status Database::Rollback() {
    return rep_->Rollback();
}

void Database::SetWaits(const Waits& waits) {
    rep_->waits = waits;
}

void Database::Observe(RowObserver* observer) {
    rep_->context.observer = observer;
}

bool Database::InTransaction() const {
    return rep_->depth > 0;
}

Result<std::uint64_t> Database::ContentNumber() {
    const ReadScope scope(rep_->cache);
    JET_TRY(scope.GetStatus());
    return rep_->cache.Generation() + rep_->commits;  // neither ever gets smaller
}

Format Database::FileFormat() const {
    return rep_->context.format;
}

ReadScope Database::Hold() {
    return ReadScope(rep_->cache, ReadScope::Length::Long);
}

bool Database::IsWriterWaiting() const {
    return rep_->locks && rep_->locks->IsWriterWaiting();
}

Status Database::WhileQuiet(const std::function<Status(File&)>& action) {
    const ReadScope scope = Hold();
    JET_TRY(scope.GetStatus());
    return action(*rep_->file);
}

std::vector<std::string> Database::OtherUsers() const {
    return rep_->locks ? rep_->locks->OtherUsers() : std::vector<std::string>();
}

bool Database::IsWritable() const {
    return rep_->mode == OpenMode::ReadWrite && rep_->context.format == Format::Jet4 &&
           !rep_->canOnlyBeRead;
}

std::vector<std::string> Database::TakeNotices() {
    return std::exchange(rep_->notices, {});
}

bool Database::HasPassword() const {
    return rep_->hasPassword;
}

Result<std::vector<CatalogEntry>> Database::Tables(std::vector<Status>* damage) {
    return ReadCatalog(rep_->context, damage);
}

Result<std::unique_ptr<Table>> Database::OpenTable(const CatalogEntry& entry) {
    return OpenTableAt(rep_->context, entry.page, entry.name, entry.isUserTable);
}

Result<std::unique_ptr<Table>> Database::OpenTable(std::string_view name) {
    const ReadScope scope(rep_->cache);
    JET_TRY(scope.GetStatus());
    JET_TRY(rep_->RenewKnownTables());
    Rep::KnownTables& known = rep_->known;
    for (const CatalogEntry& entry : known.entries) {
        if (!SameName(entry.name, name)) continue;
        std::shared_ptr<const TableDef>& def = known.definitions[entry.page];
        if (def) return OpenKnownTable(rep_->context, entry.name, def, entry.isUserTable);
        Result<std::unique_ptr<Table>> table = OpenTable(entry);
        if (table.IsOk()) def = Inside::Of(**table).def;
        return table;
    }
    std::string text = "there is no table \"" + std::string(name) + "\"";
    if (!known.damage.empty()) {
        text += "; the catalog is damaged: " + known.damage.front().Text();
    }
    return Status::NotFound(text);
}

}  // namespace jet
