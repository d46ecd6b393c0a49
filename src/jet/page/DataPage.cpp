#include "jet/page/DataPage.h"

#include "jet/page/Bytes.h"

namespace jet {
namespace {

// A row number is a byte. So many slots fit a page of either size.
constexpr int kMostSlots = 255;
constexpr std::uint16_t kOffsetMask = 0x1FFF;
constexpr std::uint16_t kMovedFlag = 0x4000;
constexpr std::uint16_t kTargetFlag = 0x8000;

std::size_t SlotTable(Format format) {
    return format == Format::Jet4 ? 14 : 10;
}

}  // namespace

std::string RowText(RowId row) {
    return PageText(row.page) + " row " + std::to_string(row.row);
}

Result<DataPage> DataPage::Open(PageRef page, Format format) {
    DataPage view;
    const Bytes bytes = page.Bytes();
    if (LoadU8(bytes, 0) != 0x01) {
        return Status::Corrupt(PageText(page.Number()) + " is not a data page (type " +
                               std::to_string(LoadU8(bytes, 0)) + ")");
    }
    view.slotCount_ = LoadU16(bytes, SlotTable(format) - 2);
    if (view.slotCount_ > kMostSlots) {
        return Status::Corrupt(PageText(page.Number()) + " claims " +
                               std::to_string(view.slotCount_) + " rows");
    }
    view.page_ = std::move(page);
    view.format_ = format;
    return view;
}

std::uint32_t DataPage::Owner() const {
    return LoadU32(page_.Bytes(), 4);
}

std::uint32_t DataPage::Stamp() const {
    return format_ == Format::Jet4 ? LoadU32(page_.Bytes(), 8) : 0;
}

Result<Slot> DataPage::At(int row) const {
    const Bytes bytes = page_.Bytes();
    const std::size_t table = SlotTable(format_);
    const auto entry = [&](int i) {
        return LoadU16(bytes, table + 2 * static_cast<std::size_t>(i));
    };
    const std::uint16_t value = entry(row);
    Slot slot;
    slot.isDeleted = (value & (kMovedFlag | kTargetFlag)) == (kMovedFlag | kTargetFlag);
    if (slot.isDeleted) return slot;
    slot.isMoved = (value & kMovedFlag) != 0;
    slot.isTarget = (value & kTargetFlag) != 0;
    const std::size_t start = value & kOffsetMask;
    const std::size_t end = row == 0 ? bytes.size() : std::size_t{entry(row - 1)} & kOffsetMask;
    const std::size_t lowest = table + 2 * static_cast<std::size_t>(slotCount_);
    if (start < lowest || start > end || end > bytes.size()) {
        return Status::Corrupt(PageText(page_.Number()) + " row " + std::to_string(row) +
                               " has impossible offsets (" + std::to_string(start) + " to " +
                               std::to_string(end) + ")");
    }
    slot.bytes = bytes.subspan(start, end - start);
    return slot;
}

}  // namespace jet
