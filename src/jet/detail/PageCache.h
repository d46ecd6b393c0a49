#pragma once

#include <array>
#include <list>
#include <memory>
#include <unordered_map>

#include "jet/File.h"
#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// A page in memory. Holding one keeps its bytes alive and unchanged, whatever the cache drops.
class PageRef {
public:
    using Image = std::array<std::byte, kMaxPageSize>;

    PageRef() = default;
    PageRef(PageNo number, std::shared_ptr<const Image> image, std::size_t size)
        : number_(number), size_(size), image_(std::move(image)) {}

    [[nodiscard]] PageNo Number() const { return number_; }
    [[nodiscard]] jet::Bytes Bytes() const { return {image_->data(), size_}; }
    [[nodiscard]] explicit operator bool() const { return image_ != nullptr; }

private:
    PageNo number_{};
    std::size_t size_ = 0;
    std::shared_ptr<const Image> image_;
};

/// The pages of one file that were read last, at most `capacity` bytes of them.
class PageCache {
public:
    /// `file` is borrowed and must outlive the cache.
    PageCache(const File& file, std::size_t capacity);

    /// Pages are of the size for Jet 4 until the header has told otherwise. Forgets every page.
    void SetFormat(Format format);
    [[nodiscard]] std::size_t PageSize() const { return pageSize_; }

    /// Corrupt when the page lies behind the end of the file.
    [[nodiscard]] Result<PageRef> Read(PageNo page);

    /// The same for a page that is read in passing, as in a scan: it does not push other pages
    /// out of the cache.
    [[nodiscard]] Result<PageRef> ReadOnce(PageNo page);

    /// Asks the file whether another program has changed it since the last call, and forgets all
    /// pages when it has. Generation() is then a new number.
    Status Revalidate();
    [[nodiscard]] std::uint64_t Generation() const { return generation_; }

    /// Whole pages in the file at the last Revalidate().
    [[nodiscard]] std::uint32_t PageCount() const { return pageCount_; }

private:
    struct Entry {
        PageNo page;
        std::shared_ptr<const PageRef::Image> image;
    };
    using Entries = std::list<Entry>;

    /// The cached image of a page, null when there is none.
    [[nodiscard]] std::shared_ptr<const PageRef::Image> Cached(PageNo page);
    Status ReadInto(PageNo page, PageRef::Image& image) const;

    const File& file_;
    std::size_t capacity_;  // bytes
    std::size_t pageSize_ = kPageSizeJet4;
    std::uint32_t pageCount_ = 0;
    std::uint64_t generation_ = 0;
    FileStamp stamp_;
    Entries entries_;  // the last used in front
    std::unordered_map<std::uint32_t, Entries::iterator> index_;
    std::shared_ptr<PageRef::Image> passing_;  // of the last ReadOnce, for the next one
};

}  // namespace jet
