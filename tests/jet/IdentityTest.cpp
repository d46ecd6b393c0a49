#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "CrashTesting.h"
#include "jet/Database.h"
#include "jet/page/GlobalMap.h"
#include "support/NewFolder.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

/// A project among real files, with whatever lies beside it.
class IdentityTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = NewFolder("kv-jet");
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    static std::size_t Archives(const std::string& path) {
        auto database = Must(Database::Open(SystemDisk(), path, OpenMode::Read));
        return AllRows(*Must(database->OpenTable("TchrArchives"))).size();
    }

    static std::unique_ptr<Database> Open(const std::string& path,
                                          OpenMode mode = OpenMode::ReadWrite) {
        return Must(Database::Open(SystemDisk(), path, mode));
    }

    static void Write(const std::string& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }
    static std::string Content(const std::string& path) {
        if (fs::is_directory(path)) return "folder";
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Adds an archive in a transaction of its own.
    static Status AddArchive(Database& database) {
        auto table = Must(database.OpenTable("TchrArchives"));
        TableWriter writer(*table);
        JET_TRY(database.Begin());
        const std::array<Assignment, 1> name = {Assignment{1, Value(std::u16string(u"Neu"))}};
        JET_TRY(writer.Insert(name).GetStatusOrOk());
        return database.Commit();
    }

    /// Runs `action` as somebody who may read everything here and write nothing; true when it has
    /// returned true.
    bool AsReader(const std::function<bool()>& action) {
        fs::permissions(path_, fs::perms(0444));
        fs::permissions(folder_, fs::perms(0555));
        const pid_t child = ::fork();
        if (child == 0) {
            constexpr uid_t kNobody = 65534;
            const bool isRoot = ::geteuid() == 0;
            if (isRoot && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(2);
            try {
                ::_exit(action() ? 0 : 1);
            } catch (const std::exception& error) {
                std::fprintf(stderr, "reader: %s\n", error.what());
                ::_exit(3);
            }
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        fs::permissions(folder_, fs::perms(0755));
        fs::permissions(path_, fs::perms(0644));
        return status == 0;
    }

    fs::path folder_;
    std::string path_;
};

TEST_F(IdentityTest, AFileIsReadableWhateverHasTheNameOfItsJournal) {
    const std::size_t count = Archives(path_);
    const std::string journal = path_ + "-journal";
    const std::pair<const char*, std::function<void()>> things[] = {
        {"folder", [&] { fs::create_directory(journal); }},
        {"link to nothing", [&] { fs::create_symlink(folder_ / "nothing", journal); }},
        {"link to itself", [&] { fs::create_symlink(journal, journal); }},
        {"pipe", [&] { EXPECT_EQ(::mkfifo(journal.c_str(), 0600), 0); }},
    };
    // Opened before, it looks for a journal when the file's stamp is young.
    auto open = Must(Database::Open(SystemDisk(), path_, OpenMode::Read));
    for (const auto& [name, make] : things) {
        SCOPED_TRACE(name);
        make();
        fs::last_write_time(path_, fs::file_time_type::clock::now());
        EXPECT_EQ(AllRows(*Must(open->OpenTable("TchrArchives"))).size(), count);
        EXPECT_EQ(Archives(path_), count);
        EXPECT_EQ(fs::remove_all(journal) + fs::remove_all(journal + "-set-aside"), 1U)
            << "it is not the engine's to remove";
    }
}

TEST_F(IdentityTest, WhatHasTheNameOfAJournalIsNamedBeforeAChange) {
    const std::string journal = path_ + "-journal";
    fs::create_directory(journal);
    auto database = Open(path_);
    const auto isNamed =
        testing::AllOf(testing::HasSubstr(journal), testing::HasSubstr("move it away"));
    EXPECT_THAT(database->TakeNotices(), testing::ElementsAre(isNamed));
    const Status status = database->Begin();
    EXPECT_EQ(status.Code(), StatusCode::BadArgument);
    EXPECT_THAT(status.Text(), isNamed);
    fs::remove(journal);
    ASSERT_OK(AddArchive(*database));
}

TEST_F(IdentityTest, OneWriterAndOneReadersLockThroughEveryName) {
    const std::string link = (folder_ / "link.kvs").string();
    const fs::path elsewhere = folder_ / "elsewhere";
    fs::create_directory(elsewhere);
    const std::string hard = (elsewhere / "other.mdb").string();
    fs::create_symlink("project.kvs", link);
    fs::create_hard_link(path_, hard);
    auto first = Open(path_);
    for (const std::string& name : {link, hard}) {
        SCOPED_TRACE(name);
        auto second = Open(name);
        auto locks = Must(SystemDisk().OpenLocks(fs::canonical(name), OpenMode::ReadWrite));
        ASSERT_OK(first->Begin());
        EXPECT_EQ(locks->LockWriter(std::chrono::milliseconds(0)).Code(), StatusCode::Busy);
        ASSERT_OK(first->Rollback());
        const std::size_t count = Archives(name);
        ASSERT_OK(AddArchive(*second));
        EXPECT_EQ(AllRows(*Must(first->OpenTable("TchrArchives"))).size(), count + 1);
        ASSERT_OK(AddArchive(*first));
    }
    first.reset();
    EXPECT_FALSE(fs::exists(folder_ / "link.ldb")) << "a link has no lock file of its own";
}

TEST_F(IdentityTest, WhatIsNoLockFileIsLeftAlone) {
    const std::string lockFile = (folder_ / "project.ldb").string();
    const std::pair<const char*, std::function<void()>> things[] = {
        {"notes", [&] { Write(lockFile, "Meine Notizen"); }},
        {"notes of 64 bytes", [&] { Write(lockFile, std::string(64, 'x')); }},
        {"binary",
         [&] { Write(lockFile, std::string("\x01\0\x02\0", 4) + std::string(60, '\0')); }},
        {"link", [&] { fs::create_symlink(folder_ / "notes", lockFile); }},
        {"folder", [&] { fs::create_directory(lockFile); }},
    };
    Write((folder_ / "notes").string(), "");
    for (const auto& [name, make] : things) {
        SCOPED_TRACE(name);
        make();
        const std::string before = Content(lockFile);
        {
            auto database = Open(path_);
            ASSERT_OK(AddArchive(*database));
            EXPECT_EQ(Open(path_)->Begin().Code(), StatusCode::Ok);
            const std::vector<std::string> notices = database->TakeNotices();
            ASSERT_EQ(notices.size(), 1U);
            EXPECT_THAT(notices[0], testing::HasSubstr("project.ldb"));
        }
        EXPECT_TRUE(fs::exists(fs::symlink_status(lockFile)));
        EXPECT_EQ(Content(lockFile), before);
        fs::remove(lockFile);
    }
    EXPECT_EQ(Content((folder_ / "notes").string()), "");

    // One that a crashed program of any kind has left is used and removed.
    Write(lockFile, std::string("HMI1\0rub\x02ish", 12) + std::string(20, 'x') +
                        std::string("Admin\0\xff", 7) + std::string(25, ' '));
    { ASSERT_OK(AddArchive(*Open(path_))); }
    EXPECT_FALSE(fs::exists(lockFile));
}

TEST_F(IdentityTest, ADatabaseMayBeCalledLikeALockFile) {
    const std::string path = (folder_ / "archive.ldb").string();
    fs::rename(path_, path);
    const std::size_t count = Archives(path);
    { ASSERT_OK(AddArchive(*Open(path))); }
    EXPECT_EQ(Archives(path), count + 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(IdentityTest, TheLockFileHasTheRightsOfTheDatabase) {
    fs::permissions(path_, fs::perms(0660));
    auto database = Open(path_);
    EXPECT_EQ(fs::status(folder_ / "project.ldb").permissions(), fs::perms(0660));
}

// Without a lock of his own he would read while another program writes its pages.
TEST_F(IdentityTest, WhoMayOnlyReadTakesPartInTheLocks) {
    auto writer = Open(path_);
    auto locks = Must(SystemDisk().OpenLocks(path_, OpenMode::ReadWrite));
    EXPECT_TRUE(AsReader([&] {
        auto reader = Must(SystemDisk().OpenLocks(path_, OpenMode::Read));
        return reader->OtherUsers().size() == 2 &&
               reader->LockPagesShared(std::chrono::milliseconds(0)).IsOk() &&
               reader->LockWriter(std::chrono::milliseconds(0)).Code() == StatusCode::Permission &&
               Archives(path_) > 0;
    }));
    ASSERT_OK(locks->LockPages({}, std::chrono::milliseconds(0)));
    EXPECT_TRUE(AsReader([&] {
        auto reader = Must(SystemDisk().OpenLocks(path_, OpenMode::Read));
        return reader->LockPagesShared(std::chrono::milliseconds(0)).Code() == StatusCode::Busy;
    }));
}

/// A commit that was interrupted by a crash, in real files.
class LeftOverTest : public IdentityTest {
protected:
    void SetUp() override {
        IdentityTest::SetUp();
        journal_ = path_ + "-journal";
        // What a program notes on the file when it writes it.
        ASSERT_OK(AddArchive(*Open(path_)));
        Put(path_, TheCrash().Mixture(false));
    }
    /// Keeps the file what it is, and changes its content.
    static void Put(const std::string& path, const Image& image) {
        Write(path, std::string(reinterpret_cast<const char*>(image.data()), image.size()));
    }
    [[nodiscard]] bool IsBefore() const { return ReadWhole(path_) == TheCrash().before; }
    [[nodiscard]] bool IsHalf() const { return ReadWhole(path_) == TheCrash().Mixture(false); }

    std::string journal_;
};

TEST_F(LeftOverTest, TheJournalIsFoundThroughEveryName) {
    if (Must(SystemDisk().Open(path_, OpenMode::Read))->Note().empty()) {
        GTEST_SKIP() << "the file system of the temporary folder keeps no notes on files";
    }
    const fs::path elsewhere = folder_ / "elsewhere";
    fs::create_directory(elsewhere);
    const std::string name = (elsewhere / "other.mdb").string();
    const std::pair<const char*, std::function<void()>> names[] = {
        {"symbolic link", [&] { fs::create_symlink(path_, name); }},
        {"hard link", [&] { fs::create_hard_link(path_, name); }},
        {"renamed", [&] { fs::rename(path_, name); }},
    };
    for (const auto& [what, make] : names) {
        SCOPED_TRACE(what);
        Put(path_, TheCrash().Mixture(false));
        Put(journal_, TheCrash().journal);
        make();
        auto database = Open(name, OpenMode::Read);
        EXPECT_TRUE(ReadWhole(name) == TheCrash().before);
        EXPECT_FALSE(fs::exists(journal_));
        EXPECT_THAT(database->TakeNotices(), testing::IsEmpty());
        database.reset();
        if (!fs::exists(path_)) fs::rename(name, path_);
        fs::remove(name);
    }
}

TEST_F(LeftOverTest, ACopyLeavesTheJournalOfTheOriginal) {
    Put(journal_, TheCrash().journal);
    const std::string copy = (folder_ / "copy.kvs").string();
    Put(copy, TheCrash().backup);
    ASSERT_OK(Must(SystemDisk().Open(copy, OpenMode::ReadWrite))->SetNote(journal_));
    ASSERT_OK(AddArchive(*Open(copy)));
    EXPECT_TRUE(fs::exists(journal_));
    EXPECT_THAT(Open(path_)->TakeNotices(), testing::IsEmpty());
    EXPECT_TRUE(IsBefore());
}

TEST_F(LeftOverTest, NoLinkIsFollowedAndNobodyElseIsTrusted) {
    const std::string real = (folder_ / "real").string();
    Put(real, TheCrash().journal);
    std::vector<std::pair<const char*, std::function<void()>>> plants = {
        {"link", [&] { fs::create_symlink(real, journal_); }},
    };
    if (::geteuid() == 0) {
        plants.emplace_back("another user's", [&] {
            Put(journal_, TheCrash().journal);
            EXPECT_EQ(::chown(journal_.c_str(), 65534, 65534), 0);
        });
    }
    for (const auto& [what, plant] : plants) {
        SCOPED_TRACE(what);
        plant();
        auto database = Open(path_);
        EXPECT_TRUE(IsHalf());
        EXPECT_FALSE(fs::exists(fs::symlink_status(journal_)));
        EXPECT_TRUE(ReadWhole(real) == TheCrash().journal);
        EXPECT_THAT(database->TakeNotices(),
                    testing::Contains(testing::HasSubstr("set-aside")).Times(1));
    }
}

TEST_F(LeftOverTest, WhoMayOnlyReadIsToldWhatHeReads) {
    const auto read = [&]() -> std::vector<std::string> {
        auto database = Open(path_, OpenMode::Read);
        std::ignore = AllRows(*Must(database->OpenTable("TchrArchives")));
        return database->TakeNotices();
    };
    Put(journal_, TheCrash().journal);
    EXPECT_TRUE(AsReader([&] {
        const Status status = StatusOf(Database::Open(SystemDisk(), path_, OpenMode::Read));
        return status.Code() == StatusCode::Permission &&
               status.Text().find("interrupted") != std::string::npos;
    }));
    EXPECT_TRUE(IsHalf());
    Put(path_, TheCrash().before);
    EXPECT_TRUE(AsReader([&] { return read().empty(); })) << "nothing of it is in the file";
    Put(journal_, {});
    EXPECT_TRUE(AsReader([&] { return read().size() == 1; }));
    EXPECT_TRUE(fs::exists(journal_));
}

TEST_F(LeftOverTest, WhatLiesBesideADatabaseHasItsRights) {
    for (const auto rights : {fs::perms(0600), fs::perms(0660), fs::perms(0644)}) {
        fs::permissions(path_, rights);
        {
            auto draft = Must(SystemDisk().CreateDraft(path_));
            ASSERT_OK(SystemDisk().Publish(*draft, journal_));
            EXPECT_EQ(SystemDisk().Publish(*Must(SystemDisk().CreateDraft(path_)), journal_).Code(),
                      StatusCode::Duplicate);
        }
        EXPECT_EQ(fs::status(journal_).permissions(), rights);
        fs::remove(journal_);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1)
        << "a draft without a name leaves nothing";
}

TEST_F(IdentityTest, ManyPagesAreLockedInFewRuns) {
    auto writer = Must(SystemDisk().OpenLocks(path_, OpenMode::ReadWrite));
    auto other = Must(SystemDisk().OpenLocks(path_, OpenMode::ReadWrite));
    constexpr std::chrono::milliseconds kNoWait{0};
    std::vector<PageNo> pages;
    for (std::uint32_t page = 0; page < kMostPages; page += 3) pages.push_back(PageNo{page});
    ASSERT_OK(writer->LockPages(pages, kNoWait));
    for (const std::uint32_t page :
         {0U, 3U, 300'000U, static_cast<std::uint32_t>(3 * pages.size() - 3)}) {
        const std::array<PageNo, 1> one = {PageNo{page}};
        EXPECT_EQ(other->LockPages(one, kNoWait).Code(), StatusCode::Busy) << page;
    }
    writer->UnlockPages();
    ASSERT_OK(other->LockPages(pages, kNoWait));
}

}  // namespace
}  // namespace jet
