#include "jet/check/DataPageCheck.h"

#include "jet/page/Bytes.h"

namespace jet::check {
namespace {

constexpr std::size_t kFree = 2;
constexpr std::size_t kSlotCount = 12;
constexpr std::size_t kSlots = 14;
constexpr std::size_t kMostSlots = 255;  // row numbers are bytes
constexpr unsigned kOffsetMask = 0x1FFF;
constexpr unsigned kDeleted = 0xC000;

}  // namespace

bool CheckPacking(Reporter& report, const std::string& name, Bytes bytes) {
    const std::size_t count = LoadU16(bytes, kSlotCount);
    if (count > kMostSlots) {
        report.Error(Subject::Pages, name + ": has " + std::to_string(count) +
                                         " row slots, more than can be addressed");
    }
    const std::size_t tableEnd = kSlots + 2 * count;
    std::size_t lowest = bytes.size();
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned slot = LoadU16(bytes, kSlots + 2 * i);
        const std::size_t start = slot & kOffsetMask;
        if (start > lowest || start < tableEnd) {
            report.Error(Subject::Pages, name + " row " + std::to_string(i) +
                                             ": begins at the impossible offset " +
                                             std::to_string(start));
            return false;
        }
        if ((slot & kDeleted) == kDeleted && start < lowest) {
            report.Warn(Subject::Pages, name + " row " + std::to_string(i) +
                                            ": is deleted and still takes " +
                                            std::to_string(lowest - start) + " bytes");
        }
        lowest = start;
    }
    const std::size_t free = LoadU16(bytes, kFree);
    if (free != lowest - tableEnd) {
        report.Error(Subject::Pages, name + ": states " + std::to_string(free) +
                                         " free bytes instead of " +
                                         std::to_string(lowest - tableEnd));
    }
    return true;
}

}  // namespace jet::check
