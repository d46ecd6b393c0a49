#include "jet/row/RowView.h"

#include "jet/page/Bytes.h"

namespace jet {
namespace {

std::size_t CountSize(Format format) {
    return format == Format::Jet4 ? 2 : 1;
}

Status Broken(const char* what) {
    return Status::Corrupt(std::string("the row's ") + what);
}

}  // namespace

Result<RowView> RowView::Parse(Format format, const TableDef& def, Bytes row) {
    RowView view;
    view.format_ = format;
    view.row_ = row;
    const std::size_t unit = CountSize(format);
    if (row.size() < unit) return Broken("length is too small");
    view.columnCount_ = unit == 2 ? LoadU16(row, 0) : LoadU8(row, 0);
    const std::size_t maskSize = (view.columnCount_ + 7) / 8;
    if (row.size() < unit + maskSize) return Broken("null mask does not fit");
    view.mask_ = row.size() - maskSize;
    view.tableEnd_ = view.mask_;
    if (def.variableColumnCount == 0) return view;

    if (view.mask_ < 2 * unit) return Broken("offset table does not fit");
    view.variableCount_ = unit == 2 ? LoadU16(row, view.mask_ - 2) : LoadU8(row, view.mask_ - 1);
    if (format == Format::Jet3) view.allJumps_ = (row.size() - 1) / 256;
    const std::size_t tableSize = unit * (view.variableCount_ + 2) + view.allJumps_;
    if (view.mask_ < unit + tableSize) return Broken("offset table does not fit");
    view.tableEnd_ = view.mask_ - tableSize;
    // The last jump is a filler when the offsets need one fewer.
    view.jumps_ = view.allJumps_;
    if (view.jumps_ > 0 && view.tableEnd_ / 256 < view.jumps_) --view.jumps_;
    return view;
}

std::size_t RowView::VariableOffset(std::size_t index) const {
    if (format_ == Format::Jet4) return LoadU16(row_, mask_ - 4 - 2 * index);
    std::size_t offset = LoadU8(row_, mask_ - 2 - allJumps_ - index);
    for (std::size_t i = 0; i < jumps_; ++i) {
        if (LoadU8(row_, mask_ - 2 - i) <= index) offset += 256;
    }
    return offset;
}

bool RowView::Locate(const Column& column, Bytes& bytes) const {
    if (column.IsFixed()) {
        const std::size_t start = CountSize(format_) + column.fixedOffset;
        if (start + column.length > tableEnd_) return false;
        bytes = row_.subspan(start, column.length);
        return true;
    }
    if (column.variableIndex >= variableCount_) {
        bytes = {};
        return true;
    }
    const std::size_t start = VariableOffset(column.variableIndex);
    const std::size_t end = VariableOffset(std::size_t{column.variableIndex} + 1);
    if (start > end || end > tableEnd_ || start < CountSize(format_)) return false;
    bytes = row_.subspan(start, end - start);
    return true;
}

Result<Bytes> RowView::ValueBytes(const Column& column) const {
    Bytes bytes;
    if (Locate(column, bytes)) return bytes;
    return Broken(column.IsFixed() ? "fixed area is too short" : "offsets contradict each other");
}

}  // namespace jet
