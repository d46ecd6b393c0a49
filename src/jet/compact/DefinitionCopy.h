#pragma once

#include <span>
#include <vector>

#include "jet/compact/Draft.h"
#include "jet/page/PageCache.h"

namespace jet::compact {

/// The definition of a table as it is stored, of which only places and counters are changed.
class DefinitionCopy {
public:
    [[nodiscard]] static Result<DefinitionCopy> Load(PageCache& cache, PageNo first);

    [[nodiscard]] std::size_t PageCount() const;

    void SetRowCount(std::size_t count);
    void SetLastAutoNumber(std::uint32_t number);
    void SetOwnedMap(std::uint32_t pointer);
    void SetFreeMap(std::uint32_t pointer);
    // By the position in TableDef::realIndexes.
    void SetIndex(std::size_t index, std::uint32_t map, PageNo root, std::uint32_t distinctKeys);
    /// The maps of a memo or OLE column, by its number.
    void SetLongValueMaps(std::uint16_t column, std::uint32_t owned, std::uint32_t free);
    /// Takes the role in a relationship from an index, by its position in
    /// TableDef::logicalIndexes.
    void MakeOrdinary(std::size_t logicalIndex);
    /// Relationships name the other table by its page.
    void MoveOtherTables(const TableMoves& moves);

    /// `pages` are PageCount() pages.
    Status Save(Draft& draft, std::span<const PageNo> pages) const;

private:
    explicit DefinitionCopy(std::vector<std::byte> stream) : stream_(std::move(stream)) {}
    Status Locate();

    std::vector<std::byte> stream_;
    // Offsets of the lists and numbers of their elements.
    std::size_t realIndexes_ = 0, realCount_ = 0;
    std::size_t logicalIndexes_ = 0, logicalCount_ = 0;
    std::size_t longValues_ = 0, longValueCount_ = 0;
};

}  // namespace jet::compact
