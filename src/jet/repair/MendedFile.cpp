#include "jet/repair/MendedFile.h"

#include <algorithm>

namespace jet::repair {

std::uint64_t MendedFile::Size() const {
    const std::uint32_t behind = changed_->empty() ? 0 : changed_->rbegin()->first + 1;
    return std::uint64_t{std::max(pageCount_, behind)} * kPageSizeJet4;
}

Result<std::size_t> MendedFile::Read(std::uint64_t offset, std::span<std::byte> into) const {
    std::size_t done = 0;
    while (done < into.size() && offset + done < Size()) {
        const std::uint64_t at = offset + done;
        const auto inPage = static_cast<std::size_t>(at % kPageSizeJet4);
        const std::size_t count = std::min(into.size() - done, kPageSizeJet4 - inPage);
        const auto part = into.subspan(done, count);
        const auto changed = changed_->find(static_cast<std::uint32_t>(at / kPageSizeJet4));
        if (changed != changed_->end()) {
            std::copy_n(changed->second.begin() + static_cast<std::ptrdiff_t>(inPage), count,
                        part.begin());
        } else {
            std::size_t read = 0;
            JET_ASSIGN(read, file_.Read(at, part));
            std::fill(part.begin() + static_cast<std::ptrdiff_t>(read), part.end(), std::byte{0});
        }
        done += count;
    }
    return done;
}

Result<FileStamp> MendedFile::Stamp() const {
    FileStamp stamp;
    stamp.size = Size();
    return stamp;
}

}  // namespace jet::repair
