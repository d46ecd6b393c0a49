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

std::shared_ptr<const PageRef::Image> PageCache::Cached(PageNo page) {
    const auto found = index_.find(Raw(page));
    if (found == index_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return entries_.front().image;
}

Status PageCache::ReadInto(PageNo page, PageRef::Image& image) const {
    if (Raw(page) >= pageCount_) {
        return Status::Corrupt(PageText(page) + " lies behind the end of the file (" +
                               std::to_string(pageCount_) + " pages)");
    }
    Result<std::size_t> count =
        file_.Read(std::uint64_t{Raw(page)} * pageSize_, std::span(image.data(), pageSize_));
    if (!count.IsOk()) return count.GetStatus().In(PageText(page));
    if (*count != pageSize_) return Status::Corrupt(PageText(page) + " is cut short");
    return {};
}

Result<PageRef> PageCache::Read(PageNo page) {
    if (auto cached = Cached(page)) return PageRef(page, std::move(cached), pageSize_);
    auto image = std::make_shared_for_overwrite<PageRef::Image>();
    JET_TRY(ReadInto(page, *image));
    while (!entries_.empty() && (entries_.size() + 1) * pageSize_ > capacity_) {
        index_.erase(Raw(entries_.back().page));
        entries_.pop_back();
    }
    entries_.push_front({page, image});
    index_[Raw(page)] = entries_.begin();
    return PageRef(page, std::move(image), pageSize_);
}

Result<PageRef> PageCache::ReadOnce(PageNo page) {
    if (auto cached = Cached(page)) return PageRef(page, std::move(cached), pageSize_);
    // Somebody may still hold the image of the last call.
    if (passing_.use_count() != 1) {
        passing_ = std::make_shared_for_overwrite<PageRef::Image>();
    }
    JET_TRY(ReadInto(page, *passing_));
    return PageRef(page, passing_, pageSize_);
}

}  // namespace jet
