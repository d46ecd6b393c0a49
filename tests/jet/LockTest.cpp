#include <array>
#include <filesystem>

#include "jet/Disk.h"
#include "jet/disk/SharedFile.h"
#include "JetTesting.h"
#include "support/NewFolder.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kNoWait{0};

// Where the locks lie: on the database, and on the lock file beside it.
constexpr std::uint64_t kWriter = 0x100000000;
constexpr std::uint64_t kPages = 0x100000001;
constexpr std::uint64_t kPresence = 0x100000002;
constexpr std::uint64_t kTurn = 0x100000003;
constexpr std::uint64_t PageLock(std::uint32_t page) {
    return 0x20000000 + 512 * std::uint64_t{page} + 1;
}

std::unique_ptr<SharedFile> Peek(const std::string& path) {
    return Must(SharedFile::Open(path, OpenMode::ReadWrite));
}

/// What one program has of a project, and another one that is in its way.
class LockTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-jet");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
        locks_ = Join();
    }
    void TearDown() override {
        locks_.reset();
        fs::remove_all(folder_);
    }

    [[nodiscard]] std::unique_ptr<Locks> Join() const {
        return Must(SystemDisk().OpenLocks(path_, OpenMode::ReadWrite));
    }
    [[nodiscard]] std::string LockFile() const { return (folder_ / "project.ldb").string(); }

    fs::path folder_;
    std::string path_;
    std::unique_ptr<Locks> locks_;
};

TEST_F(LockTest, PagesThatCannotAllBeLockedAreAllFreeAgain) {
    const std::array<PageNo, 2> pages = {PageNo{3}, PageNo{9}};
    const struct {
        const char* name;
        const std::string file;
        std::uint64_t at;
        bool isShared;
    } obstacles[] = {
        {"another program's lock on a page", LockFile(), PageLock(9), false},
        {"somebody who reads", path_, kPages, true},
        {"a writer in front", path_, kTurn, false},
    };
    for (const auto& obstacle : obstacles) {
        SCOPED_TRACE(obstacle.name);
        {
            const auto other = Peek(obstacle.file);
            ASSERT_OK(obstacle.isShared ? other->Shared(obstacle.at, 1)
                                        : other->Exclusive(obstacle.at, 1));
            EXPECT_EQ(locks_->LockPages(pages, kNoWait).Code(), StatusCode::Busy);
        }
        for (const std::uint64_t at : {kWriter, kPages, kTurn}) {
            EXPECT_FALSE(Peek(path_)->IsHeldByOthers(at, 1)) << at - kWriter;
        }
        for (const PageNo page : pages) {
            EXPECT_FALSE(Peek(LockFile())->IsHeldByOthers(PageLock(Raw(page)), 0x100));
        }
        ASSERT_OK(locks_->LockPages(pages, kNoWait));
        EXPECT_TRUE(Peek(LockFile())->IsHeldByOthers(PageLock(9), 0x100));
        locks_->UnlockPages();
        EXPECT_FALSE(Peek(LockFile())->IsHeldByOthers(PageLock(9), 0x100));
        EXPECT_FALSE(Peek(path_)->IsHeldByOthers(kPages, 1));
    }
}

// Who wanted to be alone and could not be stays one user among others.
TEST_F(LockTest, WhoCannotBeAloneKeepsNobodyOut) {
    {
        auto second = Join();
        EXPECT_EQ(locks_->LockAlone().Code(), StatusCode::Busy);
        EXPECT_EQ(second->LockAlone().Code(), StatusCode::Busy);
    }
    {
        // A program that has no slot, since it may not write the lock file.
        const auto reader = Peek(path_);
        ASSERT_OK(reader->Shared(kPresence, 1));
        EXPECT_EQ(locks_->LockAlone().Code(), StatusCode::Busy);
    }
    {
        auto third = Join();
        EXPECT_NE(third->User(), locks_->User());
        EXPECT_THAT(third->OtherUsers(), testing::SizeIs(1)) << "its own slot it keeps";
    }
    ASSERT_OK(locks_->LockAlone());
    EXPECT_EQ(Peek(path_)->Shared(kPresence, 1).Code(), StatusCode::Busy);
}

// The slot goes with the program, and the next one takes it.
TEST_F(LockTest, AUserWhoHasGoneLeavesHisSlot) {
    auto second = Join();
    const int slot = locks_->User();
    EXPECT_NE(second->User(), slot);
    locks_.reset();
    EXPECT_THAT(second->OtherUsers(), testing::IsEmpty());
    EXPECT_EQ(Join()->User(), slot);
}

}  // namespace
}  // namespace jet
