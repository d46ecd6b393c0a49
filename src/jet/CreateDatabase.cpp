#include "jet/CreateDatabase.h"

#include <array>
#include <tuple>

#include "jet/catalog/CatalogWriter.h"
#include "jet/catalog/SystemTables.h"
#include "jet/catalog/TableDefWriter.h"
#include "jet/disk/SystemName.h"
#include "jet/index/IndexNode.h"
#include "jet/page/FileHeader.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/Journal.h"
#include "jet/write/NewUsageMap.h"

namespace jet {
namespace {

constexpr std::size_t kPage = kPageSizeJet4;
// Header, global maps, definitions, usage maps and index roots; the rows come behind them.
constexpr std::size_t kPagesWithoutRows = 14;
constexpr PageNo kGlobalMaps{1};

using Image = std::vector<std::byte>;

MutableBytes PageOf(Image& image, PageNo page) {
    return MutableBytes(image).subspan(kPage * Raw(page), kPage);
}

/// In the first map a set bit is a free page, also behind the end of the file; the second one is
/// always empty.
void FormatGlobalMaps(MutableBytes page) {
    DataPageEditor::Format(page, Raw(kGlobalMaps));
    auto row = NewUsageMapRow({});
    for (std::size_t bit = kPagesWithoutRows; bit < 8 * (row.size() - 5); ++bit) {
        row[5 + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
    }
    Result<DataPageEditor> editor = DataPageEditor::Open(page, kGlobalMaps);
    editor->Append(row, 0);
    editor->Append(NewUsageMapRow({}), 0);
}

/// A database whose catalog has no rows yet.
Image EmptyImage(const SecurityIds& ids) {
    Image image(kPage * kPagesWithoutRows);
    FileHeader::MakeNew(PageOf(image, PageNo{0}), ids.created);
    FormatGlobalMaps(PageOf(image, kGlobalMaps));
    const MutableBytes maps = PageOf(image, kSystemMapsPage);
    DataPageEditor::Format(maps, 0);
    for (SystemTable& table : SystemTables()) {
        // The maps of all four fit their page.
        std::ignore = MakeMaps(table.def, [&](std::optional<PageNo> held) -> Result<std::uint32_t> {
            Result<DataPageEditor> editor = DataPageEditor::Open(maps, kSystemMapsPage);
            const std::size_t slot = editor->Append(NewUsageMapRow(held), 0);
            return RowId{kSystemMapsPage, static_cast<std::uint8_t>(slot)}.Pointer();
        });
        TableDefImage(table.def).Save(0, PageNo{0}, PageOf(image, table.def.page));
        for (const RealIndex& index : table.def.realIndexes) {
            IndexNode(true).Save(PageOf(image, index.root), table.def.page);
        }
    }
    return image;
}

Status AddRows(CatalogWriter& catalog, const SecurityIds& ids) {
    using Object = CatalogWriter::Object;
    using Type = CatalogWriter::Type;
    constexpr std::uint32_t kSystem = 0x80000000;
    constexpr std::int32_t kTables = CatalogWriter::kTables;
    constexpr std::int32_t kDatabases = CatalogWriter::kDatabases;
    constexpr std::int32_t kRelationships = CatalogWriter::kRelationships;
    constexpr std::int32_t kThis = CatalogWriter::kThisDatabase;
    constexpr std::int32_t kRoot = CatalogWriter::kRoot;
    const std::array containers = {
        Object{kTables, kRoot, "Tables", Type::Container, ids.engine, kSystem},
        Object{kDatabases, kRoot, "Databases", Type::Container, ids.engine, kSystem},
        Object{kRelationships, kRoot, "Relationships", Type::Container, ids.engine, kSystem},
        Object{kThis, kDatabases, "MSysDb", Type::Database, ids.admin, kSystem}};
    for (const Object& object : containers) JET_TRY(catalog.Add(object));
    for (const SystemTable& table : SystemTables()) {
        const auto id = static_cast<std::int32_t>(Raw(table.def.page));
        JET_TRY(catalog.Add(Object{id, kTables, table.name, Type::Table, ids.engine, kSystem}));
    }
    const CatalogWriter::Ace aces[] = {{2, ids.admin, 0x00060000},
                                       {3, ids.admin, 0x00060000},
                                       {4, ids.admin, 0x00060000},
                                       {5, ids.admin, 0x000E0000},
                                       {kTables, ids.creator, 0x000F00FE, true},
                                       {kTables, ids.admin, 0x00060001},
                                       {kRelationships, ids.creator, 0x000F00FE, true},
                                       {kRelationships, ids.admin, 0x00060001},
                                       {kDatabases, ids.admin, 0x00060000},
                                       {kThis, ids.admin, 0x0006000E},
                                       {kThis, ids.users, 0x0000000E},
                                       {4, ids.users, 0x00000014},
                                       {5, ids.users, 0x00000014},
                                       {2, ids.users, 0x00000014},
                                       {kTables, ids.users, 0x000FFEFF, true},
                                       {kRelationships, ids.users, 0x000FFFFF, true}};
    for (const CatalogWriter::Ace& ace : aces) JET_TRY(catalog.Add(ace));
    return {};
}

/// A whole new database. Its catalog is written as that of any other, only in memory.
Result<Image> NewImage() {
    const SecurityIds ids = NewFileSecurity();
    MemoryFile file(EmptyImage(ids));
    PageCache cache(file, 64 * kPage);
    cache.SetFormat(Format::Jet4);
    JET_TRY(cache.Revalidate());
    cache.Begin();
    const FileContext context{cache, Format::Jet4, nullptr};
    CatalogWriter catalog;
    JET_ASSIGN(catalog, CatalogWriter::Open(context));
    JET_TRY(AddRows(catalog, ids));
    Image image;
    for (std::uint32_t page = 0; page < cache.PageCount(); ++page) {
        PageRef ref;
        JET_ASSIGN(ref, cache.Read(PageNo{page}));
        image.insert(image.end(), ref.Bytes().begin(), ref.Bytes().end());
    }
    return image;
}

Status WriteNew(Disk& disk, const std::string& path, Bytes image) {
    std::unique_ptr<File> file;
    JET_ASSIGN(file, disk.Create(path));
    JET_TRY(file->Write(0, image));
    return file->Sync();
}

Status Fill(Disk& disk, const std::string& path, const std::function<Status(Database&)>& fill) {
    std::unique_ptr<Database> database;
    JET_ASSIGN(database, Database::Open(disk, path, OpenMode::ReadWrite));
    JET_TRY(database->Begin());
    if (Status status = fill(*database); !status.IsOk()) {
        // The file is thrown away anyway.
        if (database->InTransaction()) std::ignore = database->Rollback();
        return status;
    }
    return database->Commit();
}

/// Fails when there is anything at `path`. The journal of a database that has been removed may lie
/// there; whoever opens the new one sets it aside.
Status RequireNothing(Disk& disk, const std::string& path) {
    const auto present = disk.Open(path, OpenMode::Read);
    if (!present.IsOk() && present.GetStatus().Code() == StatusCode::NotFound) return {};
    return {StatusCode::Duplicate, "there is something of this name already"};
}

}  // namespace

Status CreateDatabase(Disk& disk, const std::string& path,
                      const std::function<Status(Database&)>& fill) {
    JET_TRY(RequireNothing(disk, path));
    Image image;
    JET_ASSIGN(image, NewImage());
    const std::string draft = path + ".new" + std::to_string(ProcessNumber());
    Status status = WriteNew(disk, draft, image);
    if (status.IsOk() && fill) status = Fill(disk, draft, fill);
    if (status.IsOk()) status = disk.GiveName(draft, path);
    if (!status.IsOk()) {
        // The failure to be told is the first one.
        std::ignore = disk.Remove(Journal::PathFor(draft));
        std::ignore = disk.Remove(draft);
    }
    return status;
}

}  // namespace jet
