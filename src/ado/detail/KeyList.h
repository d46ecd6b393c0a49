#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "ado/detail/RowSet.h"

namespace ado {

/// The keys of a recordset's rows by their positions. Where keys are taken out a gap stays, which
/// the next one taken out moves to its place: who deletes row after row does not move all the
/// others each time.
class KeyList {
public:
    [[nodiscard]] std::size_t Size() const { return keys_.size() - gapSize_; }
    /// REQUIRES: position < Size().
    [[nodiscard]] RowKey operator[](std::size_t position) const {
        return keys_[position < gap_ ? position : position + gapSize_];
    }

    void Append(RowKey key) { keys_.push_back(key); }
    /// REQUIRES: position < Size().
    void Erase(std::size_t position) {
        MoveGap(position);
        ++gapSize_;
    }
    void Clear() {
        keys_.clear();
        gap_ = 0;
        gapSize_ = 0;
    }

private:
    void MoveGap(std::size_t to) {
        const auto at = [&](std::size_t i) {
            return keys_.begin() + static_cast<std::ptrdiff_t>(i);
        };
        if (to < gap_) {
            std::move_backward(at(to), at(gap_), at(gap_ + gapSize_));
        } else if (gapSize_ > 0) {
            std::move(at(gap_ + gapSize_), at(to + gapSize_), at(gap_));
        }
        gap_ = to;
    }

    std::vector<RowKey> keys_;
    std::size_t gap_ = 0;      // its position
    std::size_t gapSize_ = 0;  // keys in it, which count no more
};

}  // namespace ado
