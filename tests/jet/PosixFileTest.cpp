#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "jet/Compact.h"
#include "jet/CreateDatabase.h"
#include "JetTesting.h"
#include "support/NewFolder.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

/// What only some systems have of files: owners, permissions and links.
class PosixFileTest : public testing::Test {
protected:
    void SetUp() override { fs::copy_file(Example("Brauerei.kvs"), path_); }
    void TearDown() override { fs::remove_all(folder_); }

    [[nodiscard]] std::size_t FileCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
    }

    const fs::path folder_ = NewFolder("kv-jet");
    const std::string path_ = (folder_ / "project.kvs").string();
};

TEST_F(PosixFileTest, WhatIsCompactedKeepsItsPermissions) {
    ASSERT_EQ(::chmod(path_.c_str(), 0640), 0);
    struct stat before {};
    ASSERT_EQ(::stat(path_.c_str(), &before), 0);
    ASSERT_OK(Compact(SystemDisk(), path_));
    struct stat after {};
    ASSERT_EQ(::stat(path_.c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_LT(after.st_size, before.st_size);
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(PosixFileTest, ALinkIsNotCompacted) {
    const std::string link = (folder_ / "link.kvs").string();
    fs::create_symlink(path_, link);
    EXPECT_EQ(StatusOf(Compact(SystemDisk(), link)).Code(), StatusCode::Unsupported);
    EXPECT_TRUE(fs::is_symlink(link));
    // A name is taken also by what leads nowhere.
    const std::string nowhere = (folder_ / "nowhere.kvs").string();
    fs::create_symlink("missing", nowhere);
    EXPECT_EQ(CreateDatabase(SystemDisk(), nowhere).Code(), StatusCode::Duplicate);
    EXPECT_TRUE(fs::is_symlink(nowhere));
    fs::remove(nowhere);
    EXPECT_EQ(FileCount(), 2U);
}

}  // namespace
}  // namespace jet
