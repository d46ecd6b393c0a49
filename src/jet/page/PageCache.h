#pragma once

#include <array>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "jet/File.h"
#include "jet/Locks.h"
#include "jet/page/ReadScopeRep.h"
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
    [[nodiscard]] const std::shared_ptr<const Image>& Shared() const { return image_; }

private:
    PageNo number_{};
    std::size_t size_ = 0;
    std::shared_ptr<const Image> image_;
};

/// The pages of one file that were read last, at most `capacity` bytes of them, and the pages that
/// a transaction has changed and not yet committed.
///
/// A transaction keeps its changed pages to itself until it is committed; the file is not touched
/// before, and holds the old ones. Those that memory is too small for go to a file without a name.
/// Inside it a step can be taken back: from BeginStep() on, so that a change that fails
/// half way leaves nothing behind in a transaction that goes on.
class PageCache final : public ReadScope::Rep {
public:
    static constexpr std::size_t kDefaultChanges = std::size_t{64} << 20;  // bytes

    /// `file` is borrowed and must outlive the cache.
    PageCache(File& file, std::size_t capacity);

    /// Pages are of the size for Jet 4 until the header has told otherwise. Forgets every page.
    void SetFormat(Format format);
    [[nodiscard]] std::size_t PageSize() const { return pageSize_; }

    /// Corrupt when the page lies behind the end of the file.
    [[nodiscard]] Result<PageRef> Read(PageNo page);

    /// The same for a page that is read in passing, as in a scan: it does not push other pages
    /// out of the cache. Its memory is used again by the next such call unless somebody holds it.
    [[nodiscard]] Result<PageRef> ReadOnce(PageNo page);

    /// What keeps other programs' commits out while something is read.
    struct Guard {
        Locks* locks = nullptr;  // borrowed; null: nobody else uses the file
        /// Asked under a lock when another program has changed the file: whether one may have died
        /// and left something.
        std::function<bool()> isLeftOver;
        /// Then called without a lock. True: look again. False: what is there does not matter.
        std::function<Result<bool>()> recover;
    };
    void SetGuard(Guard guard) { guard_ = std::move(guard); }
    /// Changed pages beyond so many bytes go to the file that `make` makes. Without one they all
    /// stay in memory.
    void SetSpill(std::function<Result<std::unique_ptr<File>>()> make,
                  std::size_t bytes = kDefaultChanges) {
        makeSpill_ = std::move(make);
        changesInMemory_ = bytes;
    }
    Status BeginRead(ReadScope::Length length) override;
    void EndRead() override;
    [[nodiscard]] bool IsBeingRead() const { return readers_ > 0; }

    /// Asks the file whether another program has changed it since the last call, and forgets all
    /// pages when it may have. Generation() is then a new number. Conflict when it is another
    /// file now.
    Status Revalidate();
    [[nodiscard]] std::uint64_t Generation() const { return generation_; }
    /// A new number only when somebody certainly has changed the file.
    [[nodiscard]] std::uint64_t Changes() const { return changes_; }

    /// Whole pages in the file at the last Revalidate().
    [[nodiscard]] std::uint32_t PageCount() const { return pageCount_; }

    [[nodiscard]] bool InTransaction() const { return inTransaction_; }
    /// REQUIRES: !InTransaction().
    void Begin();

    // REQUIRES for the rest: InTransaction().
    void BeginStep();
    void UndoStep();
    /// The page's bytes to be changed; they stay valid until the next BeginStep or the end of the
    /// transaction. PageRefs of the page that somebody holds keep the old bytes.
    [[nodiscard]] Result<std::span<std::byte>> Edit(PageNo page);
    /// Adds a page of zeros at the end of the file and returns its number.
    [[nodiscard]] Result<PageNo> AddPage();

    [[nodiscard]] std::vector<PageNo> ChangedPages() const;
    [[nodiscard]] bool HasChanges() const { return !changed_.empty(); }
    /// Bytes of the file before the transaction.
    [[nodiscard]] std::uint64_t SizeBefore() const { return stamp_.size; }
    /// Advances the commit word of a user (1..255) on page 0, so that others notice the change.
    Status CountCommit(int user);
    /// Writes the changed pages and syncs the file. When it fails the file may hold some of them.
    Status WriteChanges();
    /// Bytes of the file when they have been written.
    [[nodiscard]] std::uint64_t SizeAfter() const;
    /// Ends the transaction: `committed` keeps the changed pages, otherwise they are dropped. A
    /// failure to see what the file is now is told by the next reading.
    void End(bool committed);

private:
    struct Entry {
        PageNo page;
        std::shared_ptr<const PageRef::Image> image;
    };
    using Entries = std::list<Entry>;

    /// Whole pages in the file as of stamp_.
    [[nodiscard]] std::uint32_t PagesInFile() const;
    /// The cached image of a page, null when there is none.
    [[nodiscard]] std::shared_ptr<const PageRef::Image> Cached(PageNo page);
    /// What of page 0 tells which database it is and whether somebody has committed.
    struct Head {
        std::vector<std::byte> identity;  // version, dates, language, password: never changes
        std::vector<std::byte> commits;   // a word a user, advanced with every commit
    };
    [[nodiscard]] Result<Head> ReadHead() const;
    Status WaitForPages();
    void Forget(std::uint32_t page);
    void Remember(PageNo page, std::shared_ptr<const PageRef::Image> image);
    Status ReadInto(PageNo page, PageRef::Image& image) const;

    struct Changed {
        std::shared_ptr<PageRef::Image> image;  // null: in the spill file, at its place in the file
        bool isUsed = true;                     // since pages were last spilled
    };
    /// Makes room for one more changed page.
    Status SpillSome();
    Status Spill(std::uint32_t page, Changed& changed);

    File& file_;
    std::size_t capacity_;  // bytes
    std::size_t pageSize_ = kPageSizeJet4;
    std::uint32_t pageCount_ = 0;
    std::uint64_t generation_ = 0;
    std::uint64_t changes_ = 0;
    FileStamp stamp_;
    static constexpr std::size_t kIdentity = 0x98;  // bytes from the beginning
    static constexpr std::size_t kCommits = 0xE00;  // offset
    static constexpr std::size_t kCommitsJet3 = 0x600;
    static constexpr std::size_t kCommitsSize = 512;  // bytes
    Head head_;
    Entries entries_;  // the last used in front
    std::unordered_map<std::uint32_t, Entries::iterator> index_;
    std::shared_ptr<PageRef::Image> passing_;  // of the last ReadOnce, for the next one

    Guard guard_;
    int readers_ = 0;         // nested scopes
    bool hasLooked_ = false;  // for what a program may have left, since the file was opened

    bool inTransaction_ = false;
    std::map<std::uint32_t, Changed> changed_;
    /// Pages that this step has changed, as they were; null: not changed before it. They stay in
    /// memory, since somebody may be writing into them.
    std::map<std::uint32_t, std::shared_ptr<PageRef::Image>> stepBefore_;
    std::size_t inMemory_ = 0;  // changed pages
    std::function<Result<std::unique_ptr<File>>()> makeSpill_;
    std::size_t changesInMemory_ = kDefaultChanges;
    std::size_t spillAt_ = 0;  // changed pages in memory; 0: as many as may be there
    std::unique_ptr<File> spill_;
    std::uint32_t stepPageCount_ = 0;
};

}  // namespace jet
