#include "jet/page/PageCache.h"

#include <map>
#include <random>

#include "JetTesting.h"
#include "TestDisk.h"

namespace jet {
namespace {

/// Counts reads, and can be changed as another program would.
class CountingFile final : public File {
public:
    explicit CountingFile(std::size_t pages) : content_(pages * kPageSizeJet4) {
        for (std::size_t i = 0; i < pages; ++i) Mark(i, static_cast<unsigned char>(i));
    }

    void Mark(std::size_t page, unsigned char mark) {
        content_[page * kPageSizeJet4] = std::byte{mark};
        ++changes_;
    }

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        ++reads;
        std::copy_n(content_.begin() + static_cast<std::ptrdiff_t>(offset), into.size(),
                    into.begin());
        return into.size();
    }
    Result<FileStamp> Stamp() const override {
        return FileStamp{content_.size(), changes_, changes_, true};
    }

    mutable int reads = 0;

private:
    std::vector<std::byte> content_;
    std::int64_t changes_ = 0;
};

int MarkOf(PageCache& cache, std::uint32_t page) {
    return static_cast<int>(Must(cache.Read(PageNo{page})).Bytes()[0]);
}

TEST(PageCacheTest, KeepsThePagesUsedLastWithinItsSize) {
    CountingFile file(10);
    PageCache cache(file, 3 * kPageSizeJet4);
    ASSERT_OK(cache.Revalidate());
    file.reads = 0;
    for (const std::uint32_t page : {1U, 2U, 3U, 1U, 4U, 1U, 3U}) {
        EXPECT_EQ(MarkOf(cache, page), static_cast<int>(page));
    }
    EXPECT_EQ(file.reads, 4) << "only page 2 had to go";
    MarkOf(cache, 2);
    EXPECT_EQ(file.reads, 5);
    EXPECT_EQ(StatusOf(cache.Read(PageNo{10})).Code(), StatusCode::Corrupt);
}

TEST(PageCacheTest, SeesWhatAnotherProgramHasChanged) {
    CountingFile file(4);
    PageCache cache(file, 8 * kPageSizeJet4);
    ASSERT_OK(cache.Revalidate());
    const PageRef held = Must(cache.Read(PageNo{2}));
    const std::uint64_t generation = cache.Generation();
    ASSERT_OK(cache.Revalidate());
    EXPECT_EQ(cache.Generation(), generation);
    file.Mark(2, 77);
    ASSERT_OK(cache.Revalidate());
    EXPECT_NE(cache.Generation(), generation);
    EXPECT_EQ(MarkOf(cache, 2), 77);
    EXPECT_EQ(static_cast<int>(held.Bytes()[0]), 2) << "a page in use must not change";
}

// A transaction of any size, with room for a few of its pages, against a plain map.
TEST(PageCacheTest, ALargeTransactionKeepsWhatMemoryIsTooSmallFor) {
    const unsigned start = std::random_device{}();
    SCOPED_TRACE(start);
    std::mt19937 random(start);
    TestDisk disk;
    std::vector<std::byte> content(40 * kPageSizeJet4);
    disk.Put("file", content);
    auto file = Must(disk.Open("file", OpenMode::ReadWrite));
    PageCache cache(*file, 6 * kPageSizeJet4);
    cache.SetSpill([&] { return disk.CreateDraft("file"); }, 8 * kPageSizeJet4);
    ASSERT_OK(cache.Revalidate());
    const auto anyPage = [&] { return static_cast<std::uint32_t>(random() % cache.PageCount()); };
    for (const bool isCommitted : {false, true}) {
        std::map<std::uint32_t, int> model;
        for (std::uint32_t page = 0; page < 40; ++page) model[page] = 0;
        cache.Begin();
        for (int step = 0; step < 300; ++step) {
            cache.BeginStep();
            const auto before = model;
            for (std::size_t i = 0; i < 1 + random() % 12; ++i) {
                std::uint32_t page = anyPage();
                if (random() % 8 == 0) page = Raw(Must(cache.AddPage()));
                const int mark = static_cast<int>(random() % 255) + 1;
                Must(cache.Edit(PageNo{page}))[0] = static_cast<std::byte>(mark);
                model[page] = mark;
            }
            if (random() % 4 == 0) {
                cache.UndoStep();
                model = before;
            }
            ASSERT_EQ(cache.PageCount(), model.size());
            for (int i = 0; i < 5; ++i) {
                const std::uint32_t page = anyPage();
                ASSERT_EQ(MarkOf(cache, page), model.at(page)) << "step " << step;
            }
        }
        for (const auto& [page, mark] : model) ASSERT_EQ(MarkOf(cache, page), mark);
        if (isCommitted) ASSERT_OK(cache.WriteChanges());
        cache.End(isCommitted);
        for (std::uint32_t page = 0; page < cache.PageCount(); ++page) {
            const int mark = isCommitted ? model.at(page) : 0;
            ASSERT_EQ(static_cast<int>(disk.Content("file")[page * kPageSizeJet4]), mark);
            ASSERT_EQ(MarkOf(cache, page), mark) << (isCommitted ? "committed" : "rolled back");
        }
        EXPECT_EQ(cache.PageCount(), isCommitted ? model.size() : 40U);
    }
}

/// Another program writes the pages for a while, and is seen to, or seems to be stuck.
class BusyLocks final : public Locks {
public:
    BusyLocks(CountingFile& file, int rounds, bool isAtWork)
        : file_(file), rounds_(rounds), isAtWork_(isAtWork) {}
    Status LockWriter(std::chrono::milliseconds) override { return {}; }
    void UnlockWriter() override {}
    Status LockPagesShared(std::chrono::milliseconds) override {
        if (--rounds_ < 0) return {};
        if (isAtWork_) file_.Mark(1, 1);
        return {StatusCode::Busy, "busy"};
    }
    Status LockPages(std::span<const PageNo>, std::chrono::milliseconds) override { return {}; }
    void UnlockPages() override {}
    Status LetWriterFirst(std::chrono::milliseconds) override { return {}; }
    int User() const override { return 1; }
    std::vector<std::string> OtherUsers() override { return {}; }
    Status LockAlone() override { return {}; }

private:
    CountingFile& file_;
    int rounds_;
    bool isAtWork_;
};

TEST(PageCacheTest, AReaderWaitsForAWriterThatIsAtWork) {
    for (const bool isAtWork : {true, false}) {
        CountingFile file(4);
        BusyLocks locks(file, 20, isAtWork);
        PageCache cache(file, 8 * kPageSizeJet4);
        cache.SetGuard({&locks, [] { return false; }, [] { return Result<bool>(false); }});
        EXPECT_EQ(ReadScope(cache).GetStatus().Code(),
                  isAtWork ? StatusCode::Ok : StatusCode::Busy);
    }
}

}  // namespace
}  // namespace jet
