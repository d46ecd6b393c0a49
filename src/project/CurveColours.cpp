#include "project/CurveColours.h"

#include <algorithm>

#include "project/Rows.h"

namespace project {
namespace {

/// The hues of the colour selector's palette, the plain ones first; its greys make no curves, and
/// its palest row is hard to see on paper.
constexpr std::array<std::int32_t, CurveColours::kCount> kPalette = {
    0x0000FF, 0x00A5FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000, 0xFF00FF,   // plain
    0x0000C0, 0x0064C8, 0x00A0A0, 0x00A000, 0xA0A000, 0xCC6400, 0x800080,   // dark
    0x000080, 0x004080, 0x006060, 0x006000, 0x606000, 0x800000, 0x500050};  // very dark

}  // namespace

CurveColours::CurveColours(Rows& rows, std::int32_t archiveId) {
    if (!rows.SeekTrendsOf(archiveId)) return;
    for (ado::Recordset& trends = rows.Trends(); !trends.IsEOF(); trends.MoveNext()) Add(trends);
}

std::int32_t CurveColours::Next() const {
    const auto fewest = std::min_element(trends_.begin(), trends_.end());
    return kPalette.at(static_cast<std::size_t>(fewest - trends_.begin()));
}

void CurveColours::Add(const ado::Recordset& trends) {
    const auto& fields = trends.Fields();
    const auto field = std::find_if(fields.begin(), fields.end(), [](const ado::Field& each) {
        return each.name == "VLineColor" && IsNumber(each.type);
    });
    if (field == fields.end()) return;
    const ado::Value colour = trends.Get(static_cast<std::size_t>(field - fields.begin()));
    const auto known = std::find(kPalette.begin(), kPalette.end(), ado::ToLong(colour, -1));
    if (known != kPalette.end()) ++trends_.at(static_cast<std::size_t>(known - kPalette.begin()));
}

}  // namespace project
