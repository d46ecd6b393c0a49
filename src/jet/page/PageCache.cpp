#include "jet/page/PageCache.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "jet/page/Bytes.h"
#include "jet/page/GlobalMap.h"

namespace jet {
namespace {

// A commit holds the pages for as long as its writes and one sync take. While the file is seen to
// change, its program is at work and is waited for however long that is; the lock of one that dies
// goes with it.
constexpr std::chrono::milliseconds kReadWait{30'000};
// One that waits to commit may have to wait for a reader of a big file before.
constexpr std::chrono::milliseconds kTurnWait{60'000};

constexpr std::size_t kPagesAtOnce = 16;  // neighbours that are written with one call

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

Status PageCache::WaitForPages() {
    FileStamp seen;
    for (;;) {
        Status status = guard_.locks->LockPagesShared(kReadWait);
        if (status.Code() != StatusCode::Busy) return status;
        FileStamp now;
        JET_ASSIGN(now, file_.Stamp());
        if (now == seen) return status;
        seen = now;
    }
}

Status PageCache::BeginRead(ReadScope::Length length) {
    if (readers_ > 0 || inTransaction_ || guard_.locks == nullptr) {
        JET_TRY(readers_ > 0 ? Status() : Revalidate());
        ++readers_;
        return {};
    }
    if (length == ReadScope::Length::Long) JET_TRY(guard_.locks->LetWriterFirst(kTurnWait));
    constexpr int kRounds = 5;
    bool doesNotMatter = false;
    for (int round = 0; round < kRounds; ++round) {
        JET_TRY(WaitForPages());
        const std::uint64_t generation = generation_;
        Status status = Revalidate();
        // Who has changed the file may have died while doing so.
        const bool isNew = generation != generation_ || !hasLooked_;
        if (status.IsOk() && !(isNew && !doesNotMatter && guard_.isLeftOver())) {
            hasLooked_ = true;
            ++readers_;
            return {};
        }
        guard_.locks->UnlockPages();
        JET_TRY(status);
        bool again = false;
        JET_ASSIGN(again, guard_.recover());
        doesNotMatter = !again;
    }
    return {StatusCode::Busy, "programs that die while they write leave no time to read"};
}

void PageCache::EndRead() {
    if (--readers_ == 0 && !inTransaction_ && guard_.locks != nullptr) guard_.locks->UnlockPages();
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
    if (const auto changed = changed_.find(Raw(page));
        changed != changed_.end() && changed->second.image != nullptr) {
        changed->second.isUsed = true;
        return changed->second.image;
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
    // A changed page that is not in memory.
    const bool isSpilled = spill_ != nullptr && changed_.contains(Raw(page));
    const File& file = isSpilled ? *spill_ : file_;
    Result<std::size_t> count =
        file.Read(std::uint64_t{Raw(page)} * pageSize_, std::span(image.data(), pageSize_));
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

void PageCache::Forget(std::uint32_t page) {
    if (const auto old = index_.find(page); old != index_.end()) {
        entries_.erase(old->second);
        index_.erase(old);
    }
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
    spillAt_ = 0;
    BeginStep();
}

void PageCache::BeginStep() {
    stepBefore_.clear();
    stepPageCount_ = pageCount_;
}

void PageCache::UndoStep() {
    for (auto& [page, image] : stepBefore_) {
        if (image != nullptr) {
            changed_[page].image = std::move(image);
        } else {
            changed_.erase(page);
            --inMemory_;
        }
    }
    pageCount_ = stepPageCount_;
    stepBefore_.clear();
}

Status PageCache::Spill(std::uint32_t page, Changed& changed) {
    JET_TRY(spill_->Write(std::uint64_t{page} * pageSize_, {changed.image->data(), pageSize_})
                .In("keeping the changes of a large transaction"));
    changed.image = nullptr;
    --inMemory_;
    // It is what the page was before.
    Forget(page);
    return {};
}

Status PageCache::SpillSome() {
    const std::size_t most = std::max<std::size_t>(1, changesInMemory_ / pageSize_);
    if (makeSpill_ == nullptr || inMemory_ < std::max(most, spillAt_)) return {};
    if (spill_ == nullptr) {
        JET_ASSIGN(spill_, makeSpill_());
    }
    // First those that nobody has asked for lately, then, where these are few, the others.
    for (const bool all : {false, true}) {
        if (inMemory_ <= most / 2) break;
        for (auto& [page, changed] : changed_) {
            if (changed.image == nullptr || stepBefore_.contains(page)) continue;
            if (!all && std::exchange(changed.isUsed, false)) continue;
            JET_TRY(Spill(page, changed));
        }
    }
    // A step that needs more than there may be gets it, without a look at all pages for each.
    spillAt_ = inMemory_ + most / 2;
    return {};
}

Result<std::span<std::byte>> PageCache::Edit(PageNo page) {
    auto changed = changed_.find(Raw(page));
    if (!stepBefore_.contains(Raw(page))) {
        JET_TRY(SpillSome());
        // The image that readers, and UndoStep, may still hold stays as it is.
        auto copy = std::make_shared_for_overwrite<PageRef::Image>();
        PageRef current;
        JET_ASSIGN(current, Read(page));
        std::memcpy(copy->data(), current.Bytes().data(), pageSize_);
        if (changed == changed_.end()) {
            stepBefore_.emplace(Raw(page), nullptr);
            changed = changed_.emplace(Raw(page), Changed{std::move(copy)}).first;
            ++inMemory_;
        } else {
            inMemory_ += changed->second.image == nullptr ? 1 : 0;
            stepBefore_.emplace(Raw(page),
                                std::const_pointer_cast<PageRef::Image>(current.Shared()));
            changed->second = Changed{std::move(copy)};
        }
    } else if (changed->second.image.use_count() > 1) {
        changed->second.image = std::make_shared<PageRef::Image>(*changed->second.image);
    }
    return std::span(changed->second.image->data(), pageSize_);
}

Result<PageNo> PageCache::AddPage() {
    if (pageCount_ >= kMostPages) {
        return Status(StatusCode::Full, "the file cannot grow beyond 2 GB; compact it");
    }
    JET_TRY(SpillSome());
    const PageNo page{pageCount_++};
    stepBefore_.emplace(Raw(page), nullptr);
    changed_[Raw(page)] = Changed{std::make_shared<PageRef::Image>()};
    ++inMemory_;
    return page;
}

std::vector<PageNo> PageCache::ChangedPages() const {
    std::vector<PageNo> pages;
    pages.reserve(changed_.size());
    for (const auto& [page, changed] : changed_) pages.push_back(PageNo{page});
    return pages;
}

Status PageCache::WriteChanges() {
    std::vector<std::byte> run;
    std::uint32_t first = 0;
    const auto write = [&]() -> Status {
        Status status = file_.Write(std::uint64_t{first} * pageSize_, run);
        run.clear();
        return status.In(PageText(PageNo{first}));
    };
    for (const auto& [number, changed] : changed_) {
        const std::size_t count = run.size() / pageSize_;
        if (count > 0 && (number != first + count || count == kPagesAtOnce)) JET_TRY(write());
        if (run.empty()) first = number;
        PageRef page;
        JET_ASSIGN(page, ReadOnce(PageNo{number}));
        run.insert(run.end(), page.Bytes().begin(), page.Bytes().end());
    }
    if (!run.empty()) JET_TRY(write());
    return file_.Sync();
}

std::uint64_t PageCache::SizeAfter() const {
    const std::uint64_t end =
        changed_.empty() ? 0 : (std::uint64_t{changed_.rbegin()->first} + 1) * pageSize_;
    return std::max(stamp_.size, end);
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

void PageCache::End(bool committed) {
    for (auto& [page, changed] : changed_) {
        Forget(page);
        if (committed && changed.image != nullptr) Remember(PageNo{page}, std::move(changed.image));
    }
    changed_.clear();
    stepBefore_.clear();
    inMemory_ = 0;
    spill_ = nullptr;
    inTransaction_ = false;
    pageCount_ = PagesInFile();
    if (!committed) return;
    Result<FileStamp> stamp = file_.Stamp();
    Result<Head> head = ReadHead();
    if (!stamp.IsOk() || !head.IsOk()) return;
    stamp_ = *stamp;
    head_ = std::move(*head);
    pageCount_ = PagesInFile();
}

}  // namespace jet
