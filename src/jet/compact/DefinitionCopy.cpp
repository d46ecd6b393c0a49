#include "jet/compact/DefinitionCopy.h"

#include <array>

#include "jet/catalog/TableDefReader.h"
#include "jet/catalog/TableDefWriter.h"
#include "jet/page/Bytes.h"

namespace jet::compact {
namespace {

// Offsets and sizes in the stream; see TableDefImage and TableDefWriter.cpp.
constexpr std::size_t kRowCount = 0x10;
constexpr std::size_t kLastAutoNumber = 0x14;
constexpr std::size_t kColumnCount = 0x2D;
constexpr std::size_t kLogicalCount = 0x2F;
constexpr std::size_t kRealCount = 0x33;
constexpr std::size_t kOwnedMap = 0x37;
constexpr std::size_t kFreeMap = 0x3B;
constexpr std::size_t kFixedPart = 0x3F;
constexpr std::size_t kCounterSize = 12;
constexpr std::size_t kDistinctKeys = 4;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kRealSize = 52;
constexpr std::size_t kRealMap = 34;
constexpr std::size_t kRealRoot = 38;
constexpr std::size_t kLogicalSize = 28;
// In a logical index.
constexpr std::size_t kSide = 12;
constexpr std::size_t kPartner = 13;
constexpr std::size_t kOtherTable = 17;
constexpr std::size_t kUpdates = 21;
constexpr std::size_t kDeletes = 22;
constexpr std::size_t kRole = 23;
constexpr std::byte kNoRelationship{4};  // in kUpdates and kDeletes
constexpr std::size_t kLongValueSize = 10;
constexpr std::uint16_t kEnd = 0xFFFF;

}  // namespace

Result<DefinitionCopy> DefinitionCopy::Load(PageCache& cache, PageNo first) {
    std::vector<std::byte> stream;
    JET_ASSIGN(stream, ReadTableDefStream(cache, Format::Jet4, first));
    DefinitionCopy copy(std::move(stream));
    JET_TRY(copy.Locate().In("the table definition on " + PageText(first)));
    return copy;
}

Status DefinitionCopy::Locate() {
    std::size_t at = kFixedPart;
    const auto skip = [&](std::size_t count, std::size_t size) {
        const std::size_t begin = at;
        at += count * size;
        return begin;
    };
    const auto skipNames = [&](std::size_t count) {
        for (; count > 0 && at + 2 <= stream_.size(); --count) at += 2 + LoadU16(stream_, at);
    };
    // Counts are small: the definition has been read before.
    realCount_ = LoadU32(stream_, kRealCount);
    logicalCount_ = LoadU32(stream_, kLogicalCount);
    skip(realCount_, kCounterSize);
    const std::size_t columns = LoadU16(stream_, kColumnCount);
    skip(columns, kColumnSize);
    skipNames(columns);
    realIndexes_ = skip(realCount_, kRealSize);
    logicalIndexes_ = skip(logicalCount_, kLogicalSize);
    skipNames(logicalCount_);
    longValues_ = at;
    for (; at + 2 <= stream_.size() && LoadU16(stream_, at) != kEnd; at += kLongValueSize) {
        ++longValueCount_;
    }
    return at + 2 <= stream_.size() ? Status() : Status::Corrupt("it is cut short");
}

std::size_t DefinitionCopy::PageCount() const {
    return TableDefImage(stream_).PageCount();
}

void DefinitionCopy::SetRowCount(std::size_t count) {
    StoreU32(stream_, kRowCount, count);
}

void DefinitionCopy::SetLastAutoNumber(std::uint32_t number) {
    StoreU32(stream_, kLastAutoNumber, number);
}

void DefinitionCopy::SetOwnedMap(std::uint32_t pointer) {
    StoreU32(stream_, kOwnedMap, pointer);
}

void DefinitionCopy::SetFreeMap(std::uint32_t pointer) {
    StoreU32(stream_, kFreeMap, pointer);
}

void DefinitionCopy::SetIndex(std::size_t index, std::uint32_t map, PageNo root,
                              std::uint32_t distinctKeys) {
    StoreU32(stream_, kFixedPart + kCounterSize * index + kDistinctKeys, distinctKeys);
    StoreU32(stream_, realIndexes_ + kRealSize * index + kRealMap, map);
    StoreU32(stream_, realIndexes_ + kRealSize * index + kRealRoot, Raw(root));
}

void DefinitionCopy::SetLongValueMaps(std::uint16_t column, std::uint32_t owned,
                                      std::uint32_t free) {
    for (std::size_t i = 0; i < longValueCount_; ++i) {
        const std::size_t at = longValues_ + kLongValueSize * i;
        if (LoadU16(stream_, at) != column) continue;
        StoreU32(stream_, at + 2, owned);
        StoreU32(stream_, at + 6, free);
    }
}

void DefinitionCopy::MakeOrdinary(std::size_t logicalIndex) {
    const auto block =
        MutableBytes(stream_).subspan(logicalIndexes_ + kLogicalSize * logicalIndex, kLogicalSize);
    block[kSide] = block[kRole] = std::byte{0};
    StoreU32(block, kPartner, 0xFFFFFFFF);
    StoreU32(block, kOtherTable, 0);
    block[kUpdates] = block[kDeletes] = kNoRelationship;
}

void DefinitionCopy::MoveOtherTables(const TableMoves& moves) {
    for (std::size_t i = 0; i < logicalCount_; ++i) {
        const std::size_t at = logicalIndexes_ + kLogicalSize * i + kOtherTable;
        const auto move = moves.find(LoadU32(stream_, at));
        if (move != moves.end()) StoreU32(stream_, at, move->second);
    }
}

Status DefinitionCopy::Save(Draft& draft, std::span<const PageNo> pages) const {
    const TableDefImage image(stream_);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        std::array<std::byte, kPageSizeJet4> page{};
        image.Save(i, i + 1 < pages.size() ? pages[i + 1] : PageNo{}, page);
        JET_TRY(draft.Write(pages[i], page));
    }
    return {};
}

}  // namespace jet::compact
