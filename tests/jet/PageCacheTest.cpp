#include "jet/detail/PageCache.h"

#include "JetTesting.h"

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

}  // namespace
}  // namespace jet
