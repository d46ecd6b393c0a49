#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "exchange/InputRows.h"
#include "exchange/Plan.h"
#include "exchange/SheetRows.h"

namespace exchange {

/// What is needed of a stored row to find it.
struct StoredRow {
    std::int32_t id = 0;
    std::optional<std::int32_t> archive;  // of a trend
    std::u16string name;
    std::optional<std::size_t> input;  // the row that comes in for it
};

/// Which stored row each row that comes in means.
class RowMatch {
public:
    /// Reads `rows` from their beginning to their end.
    RowMatch(SheetRows& rows, const ArchiveNames& archives, const InputRows& input, MatchBy by);

    [[nodiscard]] const std::vector<StoredRow>& Stored() const noexcept { return stored_; }
    /// Null for a new row, and for one that has a cause.
    [[nodiscard]] const StoredRow* Of(std::size_t row) const;
    /// Why it cannot be told which row is meant: ambiguous with a cause, refused, or neither.
    struct Doubt {
        PlannedRow::State state = PlannedRow::State::New;
        PlannedRow::Cause cause = PlannedRow::Cause::None;
        std::size_t column = 0;
        std::size_t other = 0;
    };
    [[nodiscard]] const Doubt& DoubtOf(std::size_t row) const { return doubts_[row]; }

private:
    [[nodiscard]] std::u16string KeyOf(const StoredRow& row) const;
    [[nodiscard]] std::optional<std::u16string> KeyOf(std::size_t row) const;
    void ReadStored(SheetRows& rows);
    std::optional<std::size_t> Find(std::size_t row, Doubt& doubt) const;
    std::optional<std::size_t> FindById(std::size_t row, Doubt& doubt) const;
    std::optional<std::size_t> FindByName(std::size_t row, Doubt& doubt) const;
    [[nodiscard]] bool IsOther(std::size_t row, const StoredRow& stored) const;

    const ArchiveNames& archives_;
    const InputRows& input_;
    MatchBy by_;
    bool isTrends_;
    std::size_t name_ = 0;
    std::optional<std::size_t> archive_;  // the column
    std::vector<StoredRow> stored_;
    std::unordered_map<std::int32_t, std::size_t> ids_;
    std::unordered_multimap<std::u16string, std::size_t> keys_;
    std::vector<std::optional<std::size_t>> matches_;  // by row of the input
    std::vector<Doubt> doubts_;
};

}  // namespace exchange
