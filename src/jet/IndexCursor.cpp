#include "jet/IndexCursor.h"

#include "jet/open/IndexCursorRep.h"

namespace jet {

IndexCursor::IndexCursor(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
IndexCursor::IndexCursor(IndexCursor&&) noexcept = default;
IndexCursor& IndexCursor::operator=(IndexCursor&&) noexcept = default;
IndexCursor::~IndexCursor() = default;

Result<bool> IndexCursor::Next() {
    Result<bool> found = rep_->entries.Next();
    return found.IsOk() ? std::move(found) : rep_->table.Named(found.GetStatus());
}

const std::string& IndexCursor::Key() const {
    return rep_->entries.Key();
}

RowId IndexCursor::Row() const {
    return rep_->entries.Row();
}

}  // namespace jet
