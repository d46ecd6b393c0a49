#include "jet/compact/RowPacker.h"

#include <algorithm>

namespace jet::compact {
namespace {

// A page with less room than this is not worth trying again.
constexpr std::size_t kWorthTrying = 64;

}  // namespace

Result<DataPageEditor> RowPacker::Open() {
    return DataPageEditor::Open(image_, page_);
}

Result<RowId> RowPacker::Append(Bytes row) {
    if (isOpen_) {
        Result<DataPageEditor> editor = Open();
        if (!editor.IsOk()) return editor.GetStatus();
        if (editor->Fits(row.size())) {
            return RowId{page_, static_cast<std::uint8_t>(editor->Append(row, 0))};
        }
        JET_TRY(Finish());
    }
    JET_ASSIGN(page_, draft_.Take());
    DataPageEditor::Format(image_, owner_);
    Result<DataPageEditor> editor = Open();
    if (!editor.IsOk()) return editor.GetStatus();
    if (!editor->Fits(row.size())) {
        return Status::Corrupt("a row of " + std::to_string(row.size()) + " bytes fits no page");
    }
    isOpen_ = true;
    pages_.push_back(page_);
    return RowId{page_, static_cast<std::uint8_t>(editor->Append(row, 0))};
}

Status RowPacker::AppendAlone(PageNo page, std::uint32_t stamp, Bytes row) {
    std::array<std::byte, kPageSizeJet4> image{};
    DataPageEditor::Format(image, owner_);
    StoreU32(image, 8, stamp);
    Result<DataPageEditor> editor = DataPageEditor::Open(image, page);
    if (!editor.IsOk()) return editor.GetStatus();
    if (!editor->Fits(row.size())) {
        return Status::Corrupt("a piece of " + std::to_string(row.size()) + " bytes fits no page");
    }
    editor->Append(row, 0);
    // The page being filled may have been taken before this one or after it.
    pages_.insert(std::upper_bound(pages_.begin(), pages_.end(), page), page);
    return draft_.Write(page, image);
}

Status RowPacker::Finish() {
    if (!isOpen_) return {};
    isOpen_ = false;
    Result<DataPageEditor> editor = Open();
    if (!editor.IsOk()) return editor.GetStatus();
    if (editor->Free() >= kWorthTrying && editor->SlotCount() < DataPageEditor::kMostSlots) {
        withRoom_.push_back(page_);
    }
    return draft_.Write(page_, image_);
}

}  // namespace jet::compact
