#include "jet/detail/PageCache.h"

#include <algorithm>

#include "jet/detail/Bytes.h"

namespace jet {

PageCache::PageCache(const File& file, std::size_t capacity) : file_(file), capacity_(capacity) {}

void PageCache::SetFormat(Format format) {
    pageSize_ = jet::PageSize(format);
    pageCount_ =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(stamp_.size / pageSize_, 0x00FFFFFF));
    entries_.clear();
    index_.clear();
}

Status PageCache::Revalidate() {
    FileStamp stamp;
    JET_ASSIGN(stamp, file_.Stamp());
    if (generation_ != 0 && stamp == stamp_) return {};
    stamp_ = stamp;
    ++generation_;
    pageCount_ =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(stamp_.size / pageSize_, 0x00FFFFFF));
    entries_.clear();
    index_.clear();
    return {};
}

Result<PageRef> PageCache::Read(PageNo page) {
    if (const auto found = index_.find(Raw(page)); found != index_.end()) {
        entries_.splice(entries_.begin(), entries_, found->second);
        return PageRef(page, entries_.front().image, pageSize_);
    }
    if (Raw(page) >= pageCount_) {
        return Status::Corrupt(PageText(page) + " lies behind the end of the file (" +
                               std::to_string(pageCount_) + " pages)");
    }
    auto image = std::make_shared_for_overwrite<PageRef::Image>();
    Result<std::size_t> count =
        file_.Read(std::uint64_t{Raw(page)} * pageSize_, std::span(image->data(), pageSize_));
    if (!count.IsOk()) return count.GetStatus().In(PageText(page));
    if (*count != pageSize_) return Status::Corrupt(PageText(page) + " is cut short");

    while (!entries_.empty() && (entries_.size() + 1) * pageSize_ > capacity_) {
        index_.erase(Raw(entries_.back().page));
        entries_.pop_back();
    }
    entries_.push_front({page, image});
    index_[Raw(page)] = entries_.begin();
    return PageRef(page, std::move(image), pageSize_);
}

}  // namespace jet
