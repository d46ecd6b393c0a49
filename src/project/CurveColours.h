#pragma once

#include <array>
#include <cstdint>

#include "ado/Recordset.h"

namespace project {

class Rows;

/// The colours of an archive's curves, for the choice of one that tells a new curve from the
/// others.
class CurveColours {
public:
    /// Counts the colours of the archive's trends. Moves the trends of `rows`.
    CurveColours(Rows& rows, std::int32_t archiveId);

    /// The first colour of the palette that no trend has; when all are taken, the first of those
    /// that the fewest have. 0x00BBGGRR.
    [[nodiscard]] std::int32_t Next() const;
    /// The current row of `trends` is a further trend.
    void Add(const ado::Recordset& trends);

    /// How many colours there are to choose from.
    static constexpr std::size_t kCount = 21;

private:
    std::array<int, kCount> trends_{};  // that have the colour
};

}  // namespace project
