#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "jet/page/Bytes.h"
#include "jet/Status.h"
#include "jet/TableDef.h"

namespace jet {

/// Gives the columns of a new table their numbers, in the order in which they stand, and their
/// places in a row.
void LayOutColumns(TableDef& def);

/// Has a row made for each usage map of a new table and enters its pointer. `makeMap` gets the page
/// that the new map holds, none for an empty one, and returns the pointer.
/// REQUIRES: the indexes have their root pages.
Status MakeMaps(TableDef& def,
                const std::function<Result<std::uint32_t>(std::optional<PageNo>)>& makeMap);

/// The stored form of a new table's definition (Jet 4): one stream of bytes, cut into pages.
///
///   0x08 u32 length         0x29 u16 columns ever       0x33 u32 real indexes
///   0x0C u32 1625           0x2B u16 variable ones      0x37 u32 map of the table's pages
///   0x18 u32 1              0x2D u16 columns            0x3B u32 map of those with room
///   0x28 u8  kind           0x2F u32 logical indexes    0x3F lists, see TableDefWriter.cpp
/// The first page begins with the stream's head; each further one has a head of eight bytes:
/// 02 01, free bytes less 8 (u16), next page (u32).
class TableDefImage {
public:
    explicit TableDefImage(const TableDef& def);
    /// Of a definition that has been read as such a stream.
    explicit TableDefImage(std::vector<std::byte> stream) : stream_(std::move(stream)) {}

    [[nodiscard]] std::size_t Length() const { return stream_.size(); }
    /// Depends on the names and the numbers of columns and indexes only.
    [[nodiscard]] std::size_t PageCount() const;
    /// Writes the page at position `i` whole; `next` is the one behind it, 0 for the last.
    void Save(std::size_t i, PageNo next, MutableBytes page) const;

private:
    using Columns = std::vector<const Column*>;  // in the order in which they are stored

    void AppendHead(const TableDef& def);
    void AppendColumns(const Columns& columns, bool isSystem);
    void AppendRealIndexes(const TableDef& def);
    void AppendLogicalIndexes(const TableDef& def);
    void AppendLongValueMaps(const Columns& columns);
    void AppendName(const std::string& name);
    [[nodiscard]] MutableBytes Grow(std::size_t size);

    std::vector<std::byte> stream_;
};

}  // namespace jet
