#include "jet/detail/PageCache.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "jet/detail/Bytes.h"
#include "jet/detail/GlobalMap.h"

namespace jet {
namespace {

// A commit holds the pages for as long as its writes and one sync take.
constexpr std::chrono::milliseconds kReadWait{10'000};
// One that waits to commit may have to wait for a reader of a big file before.
constexpr std::chrono::milliseconds kTurnWait{60'000};

}  // namespace

PageCache::PageCache(File& file, std::size_t capacity) : file_(file), capacity_(capacity) {}

std::uint32_t PageCache::PagesInFile() const {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(stamp_.size / pageSize_, 0x00FFFFFF));
}

void PageCache::SetFormat(Format format) {
    pageSize_ = jet::PageSize(format);
    pageCount_ = PagesInFile();
    entries_.clear();
    index_.clear();
}

Status PageCache::Revalidate() {
    // Nobody else may write while this program does.
    if (inTransaction_) return {};
    FileStamp stamp;
    JET_ASSIGN(stamp, file_.Stamp());
    // What was read under a stamp that was not settled is read once more when it is.
    const bool isSure = stamp.isSettled && stamp_.isSettled;
    if (generation_ != 0 && stamp == stamp_ && isSure) return {};
    Head head;
    JET_ASSIGN(head, ReadHead());
    if (generation_ != 0 && head.identity != head_.identity) {
        return {StatusCode::Conflict, "another database has taken its place; open it again"};
    }
    // While the stamp is so young that a further change may have left the same one, all pages are
    // read again. That somebody has changed something is certain only with another stamp or word.
    if (generation_ == 0 || !(stamp == stamp_) || head.commits != head_.commits) ++changes_;
    head_ = std::move(head);
    stamp_ = stamp;
    ++generation_;
    pageCount_ = PagesInFile();
    entries_.clear();
    index_.clear();
    return {};
}

Status PageCache::BeginRead() {
    if (readers_ > 0 || inTransaction_ || locks_ == nullptr) {
        JET_TRY(readers_ > 0 ? Status() : Revalidate());
        ++readers_;
        return {};
    }
    constexpr int kRounds = 3;
    for (int round = 0; round < kRounds; ++round) {
        JET_TRY(locks_->LockPagesShared(kReadWait));
        const std::uint64_t generation = generation_;
        Status status = Revalidate();
        if (status.IsOk() && generation == generation_) {
            ++readers_;
            return {};
        }
        locks_->UnlockPages();
        JET_TRY(status);
        // Somebody has changed the file, and may have died while doing so.
        bool putBack = false;
        JET_ASSIGN(putBack, recover_());
        if (putBack) continue;
        JET_TRY(locks_->LockPagesShared(kReadWait));
        if (status = Revalidate(); !status.IsOk()) {
            locks_->UnlockPages();
            return status;
        }
        ++readers_;
        return {};
    }
    return {StatusCode::Busy, "programs that die while they write leave no time to read"};
}

Status PageCache::BeginLongRead() {
    const bool isOuter = readers_ == 0 && !inTransaction_;
    if (isOuter && locks_ != nullptr) JET_TRY(locks_->LetWriterFirst(kTurnWait));
    return BeginRead();
}

void PageCache::EndRead() {
    if (--readers_ == 0 && !inTransaction_ && locks_ != nullptr) locks_->UnlockPages();
}

Result<PageCache::Head> PageCache::ReadHead() const {
    std::vector<std::byte> page(pageSize_);
    std::size_t count = 0;
    JET_ASSIGN(count, file_.Read(0, page));
    page.resize(count);
    const auto part = [&](std::size_t begin, std::size_t size) {
        begin = std::min(begin, page.size());
        const auto first = page.begin() + static_cast<std::ptrdiff_t>(begin);
        return std::vector<std::byte>(
            first, first + static_cast<std::ptrdiff_t>(std::min(size, page.size() - begin)));
    };
    const bool isJet3 = pageSize_ == kPageSizeJet3;
    return Head{part(0, kIdentity), part(isJet3 ? kCommitsJet3 : kCommits, kCommitsSize)};
}

std::shared_ptr<const PageRef::Image> PageCache::Cached(PageNo page) {
    if (const auto changed = changed_.find(Raw(page)); changed != changed_.end()) {
        return changed->second;
    }
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
    Remember(page, image);
    return PageRef(page, std::move(image), pageSize_);
}

void PageCache::Remember(PageNo page, std::shared_ptr<const PageRef::Image> image) {
    while (!entries_.empty() && (entries_.size() + 1) * pageSize_ > capacity_) {
        index_.erase(Raw(entries_.back().page));
        entries_.pop_back();
    }
    entries_.push_front({page, std::move(image)});
    index_[Raw(page)] = entries_.begin();
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

void PageCache::Begin() {
    inTransaction_ = true;
    BeginStep();
}

void PageCache::BeginStep() {
    stepBefore_.clear();
    stepPageCount_ = pageCount_;
}

void PageCache::UndoStep() {
    for (auto& [page, image] : stepBefore_) {
        if (image != nullptr) {
            changed_[page] = std::move(image);
        } else {
            changed_.erase(page);
            before_.erase(page);
        }
    }
    pageCount_ = stepPageCount_;
    stepBefore_.clear();
}

Result<std::span<std::byte>> PageCache::Edit(PageNo page) {
    auto changed = changed_.find(Raw(page));
    if (!stepBefore_.contains(Raw(page))) {
        // The image that readers, and UndoStep, may still hold stays as it is.
        auto copy = std::make_shared_for_overwrite<PageRef::Image>();
        PageRef current;
        JET_ASSIGN(current, Read(page));
        std::memcpy(copy->data(), current.Bytes().data(), pageSize_);
        if (changed == changed_.end()) {
            stepBefore_.emplace(Raw(page), nullptr);
            before_.emplace(Raw(page), current.Shared());
            changed = changed_.emplace(Raw(page), std::move(copy)).first;
        } else {
            stepBefore_.emplace(Raw(page), std::exchange(changed->second, std::move(copy)));
        }
    } else if (changed->second.use_count() > 1) {
        changed->second = std::make_shared<PageRef::Image>(*changed->second);
    }
    return std::span(changed->second->data(), pageSize_);
}

Result<PageNo> PageCache::AddPage() {
    if (pageCount_ >= kMostPages) {
        return Status(StatusCode::Full, "the file cannot grow beyond 2 GB; compact it");
    }
    const PageNo page{pageCount_++};
    stepBefore_.emplace(Raw(page), nullptr);
    changed_[Raw(page)] = std::make_shared<PageRef::Image>();
    return page;
}

std::vector<PageNo> PageCache::ChangedPages() const {
    std::vector<PageNo> pages;
    for (const auto& [page, image] : changed_) pages.push_back(PageNo{page});
    return pages;
}

Status PageCache::WriteChanges() {
    for (const auto& [page, image] : changed_) {
        JET_TRY(file_.Write(std::uint64_t{page} * pageSize_, {image->data(), pageSize_})
                    .In(PageText(PageNo{page})));
    }
    return file_.Sync();
}

Status PageCache::CountCommit(int user) {
    std::span<std::byte> page;
    JET_ASSIGN(page, Edit(PageNo{0}));
    const std::size_t at = kCommits + 2 * static_cast<std::size_t>(user);
    // Nothing at all would look like a change that was not ended.
    const auto next = static_cast<std::uint16_t>(LoadU16(page, at) + 1);
    StoreU16(page, at, next == 0 ? 1 : next);
    return {};
}

Status PageCache::WriteBack() {
    for (const auto& [page, image] : before_) {
        JET_TRY(file_.Write(std::uint64_t{page} * pageSize_, {image->data(), pageSize_}));
    }
    JET_TRY(file_.Resize(stamp_.size));
    return file_.Sync();
}

Status PageCache::End(bool committed) {
    for (auto& [page, image] : changed_) {
        if (const auto old = index_.find(page); old != index_.end()) {
            entries_.erase(old->second);
            index_.erase(old);
        }
        if (committed) Remember(PageNo{page}, std::move(image));
    }
    changed_.clear();
    before_.clear();
    stepBefore_.clear();
    inTransaction_ = false;
    if (!committed) {
        // The file may have kept its stamp, but the pages that were to be added are not there.
        pageCount_ = PagesInFile();
        return Revalidate();
    }
    JET_ASSIGN(stamp_, file_.Stamp());
    JET_ASSIGN(head_, ReadHead());
    return {};
}

}  // namespace jet
