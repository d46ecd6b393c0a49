#include "backups/Backups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "ado/Recordset.h"
#include "backups/detail/CopyContent.h"
#include "backups/detail/Swap.h"
#include "jet/File.h"

namespace backups {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = Outcome::Kind;

std::string BytesOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

mode_t ModeOf(const fs::path& file) {
    struct stat info {};
    EXPECT_EQ(::lstat(file.c_str(), &info), 0);
    return info.st_mode & 07777;
}

ino_t NodeOf(const fs::path& file) {
    struct stat info {};
    EXPECT_EQ(::stat(file.c_str(), &info), 0);
    return info.st_ino;
}

/// Files that may grow no further than this, as on a disk that is nearly full.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{bytes, limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit limit_{};
    void (*handler_)(int) = nullptr;
};

class BackupsTest : public testing::Test {
protected:
    BackupsTest() {
        std::string pattern = fs::temp_directory_path() / "backups-XXXXXX";
        root_ = ::mkdtemp(pattern.data());
        fs::create_directory(root_ / "work");
        project_ = root_ / "work" / "Anlage.kvs";
        fs::copy_file(KV_EXAMPLES "/Brauerei.kvs", project_);
    }
    ~BackupsTest() override { fs::remove_all(root_); }

    [[nodiscard]] Backups Of(std::size_t most = 10) const {
        return {project_, {root_ / "state" / "backups", most}};
    }
    /// Changes the project as any program does.
    void Change(const std::string& text) const {
        ado::Connection connection;
        Open(connection);
        ado::Recordset rows;
        rows.Open("TchrArchives", connection, ado::CommandType::Table);
        rows.Set("Comment", std::u16string(text.begin(), text.end()));
        rows.Update();
    }
    void Open(ado::Connection& connection) const {
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project_.string());
    }
    void ExpectNothingLeft() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(root_)) {
            if (entry.is_regular_file()) names.push_back(entry.path().filename());
        }
        for (const std::string& name : names) {
            EXPECT_EQ(fs::path(name).extension(), ".kvs") << name;
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(root_ / "work"), {}), 1);
    }

    fs::path root_;
    fs::path project_;
};

TEST_F(BackupsTest, KeepsTheStateForItsOwnerAlone) {
    const std::string before = BytesOf(project_);
    const Backups backups = Of();
    EXPECT_THAT(backups.List(), IsEmpty());
    const Outcome taken = backups.Take();
    ASSERT_EQ(taken.kind, Kind::Done) << taken.text;
    Change("later");
    const std::vector<Backup> list = backups.List();
    ASSERT_THAT(list, SizeIs(1));
    EXPECT_EQ(list[0].path, taken.backup);
    EXPECT_EQ(list[0].size, before.size());
    EXPECT_EQ(list[0].archives, 14U);
    EXPECT_EQ(list[0].trends, 228U);
    const auto age = std::chrono::system_clock::now() - list[0].taken;
    EXPECT_GE(age, std::chrono::seconds(0));
    EXPECT_LT(age, std::chrono::minutes(10));
    EXPECT_TRUE(Backups::IsSound(list[0]));
    EXPECT_TRUE(BytesOf(taken.backup) == before);
    EXPECT_EQ(ModeOf(taken.backup), 0600U);
    for (fs::path folder = fs::path(taken.backup).parent_path(); folder != root_;
         folder = folder.parent_path()) {
        EXPECT_EQ(ModeOf(folder), 0700U) << folder;
    }
    ExpectNothingLeft();
}

TEST_F(BackupsTest, TakesOnlyWhatIsNotThereAndDropsTheOldest) {
    const Backups backups = Of(3);
    ASSERT_EQ(backups.Take().kind, Kind::Done);
    EXPECT_EQ(backups.Take().kind, Kind::Unchanged);
    // A copy with the same bytes and another time is the same too.
    fs::last_write_time(project_, fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(backups.Take().kind, Kind::Unchanged);
    // Not every program counts its changes on the first page, or lets the file grow.
    std::fstream(project_, std::ios::in | std::ios::out | std::ios::binary).seekp(-1, std::ios::end)
        << 'x';
    EXPECT_EQ(backups.Take().kind, Kind::Done);
    std::vector<std::string> kept = {backups.List().front().path};
    for (const char* text : {"1", "2", "3", "4"}) {
        Change(text);
        const Outcome outcome = backups.Take();
        ASSERT_EQ(outcome.kind, Kind::Done) << outcome.text;
        kept.insert(kept.begin(), outcome.backup);
    }
    std::vector<std::string> listed;
    for (const Backup& backup : backups.List()) listed.push_back(backup.path);
    kept.resize(3);
    EXPECT_EQ(listed, kept);

    // Files of somebody else's in that folder are none, and stay.
    std::ofstream(fs::path(backups.Folder()) / "2000-01-01.kvs") << "mine";
    Change("5");
    EXPECT_EQ(Of(1).Take().kind, Kind::Done);
    EXPECT_THAT(backups.List(), SizeIs(1));
    EXPECT_TRUE(fs::exists(fs::path(backups.Folder()) / "2000-01-01.kvs"));

    // None are taken and none removed.
    Change("6");
    EXPECT_EQ(Of(0).Take().kind, Kind::Unchanged);
    EXPECT_THAT(backups.List(), SizeIs(1));
}

// What a killed program, another clock, or a person has left there.
TEST_F(BackupsTest, FindsItsWayInAFolderThatIsNotAsItLeftIt) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    const fs::path folder = Of().Folder();
    std::ofstream(folder / "unfinished") << "half";
    const std::string strangers[] = {"2000-02-31T00-00-00.000Z.kvs",
                                     "2000-01-01T00-00-00.000Z.kvs.txt"};
    for (const std::string& name : strangers) std::ofstream(folder / name) << "mine";
    const fs::path later = folder / "2999-01-01T00-00-00.000Z.kvs";
    fs::copy_file(project_, later);
    ::chmod(folder.c_str(), 0755);

    Change("now");
    const Outcome taken = Of(2).Take();
    ASSERT_EQ(taken.kind, Kind::Done) << taken.text;
    EXPECT_EQ(ModeOf(folder), 0700U);
    EXPECT_FALSE(fs::exists(folder / "unfinished"));
    for (const std::string& name : strangers) EXPECT_TRUE(fs::exists(folder / name)) << name;
    const std::vector<Backup> list = Of().List();
    ASSERT_THAT(list, SizeIs(2));
    EXPECT_EQ(list[0].path, taken.backup) << "the latest, whatever the clock says";
    EXPECT_EQ(list[1].path, later);
}

TEST_F(BackupsTest, ProjectsOfOneNameAndLinksToOneProject) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    fs::create_directory(root_ / "other");
    const fs::path other = root_ / "other" / "Anlage.kvs";
    fs::copy_file(project_, other);
    EXPECT_NE(Backups(other, {root_ / "state" / "backups"}).Folder(), Of().Folder());
    fs::create_symlink(project_, root_ / "link.kvs");
    EXPECT_EQ(Backups(root_ / "link.kvs", {root_ / "state" / "backups"}).Folder(), Of().Folder());
}

// Of a transaction that goes on there is nothing in it, and it does not wait for its end.
TEST_F(BackupsTest, HoldsOneCommittedState) {
    const std::string before = BytesOf(project_);
    ado::Connection connection;
    Open(connection);
    ado::Recordset rows;
    rows.Open("TchrArchives", connection, ado::CommandType::Table);
    connection.BeginTrans();
    rows.Set("Comment", std::u16string(u"half"));
    rows.Update();
    const Outcome taken = Of().Take();
    ASSERT_EQ(taken.kind, Kind::Done) << taken.text;
    EXPECT_TRUE(BytesOf(taken.backup) == before);
    connection.CommitTrans();
}

TEST_F(BackupsTest, PutsAStateBackAndKeepsTheOneBefore) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    const std::string first = BytesOf(project_);
    for (const char* text : {"1", "2"}) {
        Change(text);
        ASSERT_EQ(Of().Take().kind, Kind::Done);
    }
    Change("wrong");
    const std::string second = BytesOf(project_);
    ::chmod(project_.c_str(), 0664);
    for (const std::size_t most : {std::size_t{2}, std::size_t{1}, std::size_t{0}}) {
        SCOPED_TRACE(most);
        const std::vector<Backup> list = Of().List();
        const bool goesBack = BytesOf(project_) == second;
        const auto wanted = std::find_if(list.begin(), list.end(), [&](const Backup& backup) {
            return BytesOf(backup.path) == (goesBack ? first : second);
        });
        ASSERT_NE(wanted, list.end());
        const Outcome outcome = Of(most).Restore(*wanted);
        ASSERT_EQ(outcome.kind, Kind::Done) << outcome.text;
        EXPECT_TRUE(BytesOf(project_) == (goesBack ? first : second));
        EXPECT_TRUE(BytesOf(outcome.backup) == (goesBack ? second : first));
        EXPECT_EQ(ModeOf(project_), 0664U);
        EXPECT_TRUE(fs::exists(wanted->path)) << "what has been put back stays a backup";
        EXPECT_THAT(Of().List(), SizeIs(most > 0 ? 2 : 3));
        ExpectNothingLeft();
    }
    Change("goes on");
    // Where the present state is a backup already, and where the name of the draft is taken.
    const Outcome taken = Of().Take();
    ASSERT_EQ(taken.kind, Kind::Done);
    const fs::path draft = project_.string() + "-restored";
    std::ofstream(draft) << "mine";
    const Outcome outcome = Of().Restore(Of().List().back());
    ASSERT_EQ(outcome.kind, Kind::Done) << outcome.text;
    EXPECT_EQ(outcome.backup, taken.backup);
    EXPECT_EQ(BytesOf(draft), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(root_ / "work"), {}), 2);
}

// The moment between the look at the project and the change of the file.
TEST_F(BackupsTest, WhatHasComeMeanwhileIsNotReplaced) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    FileMark seen;
    {
        const auto file = OpenToRead(project_);
        ASSERT_TRUE(file.IsOk());
        seen = *FileMark::Of(*file);
    }
    Change("meanwhile");
    const std::string now = BytesOf(project_);
    const auto content = jet::OpenFile(Of().List().front().path);
    ASSERT_TRUE(content.IsOk());
    std::vector<std::string> users;
    const jet::Status status = Swap(project_).Run(**content, seen, users);
    EXPECT_EQ(status.Code(), jet::StatusCode::Conflict) << status.Text();
    EXPECT_TRUE(BytesOf(project_) == now);
    ExpectNothingLeft();
}

TEST_F(BackupsTest, PutsNothingBackWhileOthersHaveTheProjectOpen) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    Change("now");
    const std::string now = BytesOf(project_);
    {
        ado::Connection other;
        Open(other);
        const Outcome outcome = Of().Restore(Of().List().front());
        EXPECT_EQ(outcome.kind, Kind::InUse);
        EXPECT_EQ(outcome.reason.cause, reasons::Cause::FileInUse);
        EXPECT_THAT(outcome.users, SizeIs(1));
        EXPECT_TRUE(BytesOf(project_) == now);
        EXPECT_THAT(Of().List(), SizeIs(1));
    }
    EXPECT_EQ(Of().Restore(Of().List().front()).kind, Kind::Done);
}

TEST_F(BackupsTest, ADamagedProjectIsKeptAsItIsAndReplaced) {
    ASSERT_EQ(Of().Take().kind, Kind::Done);
    const std::string good = BytesOf(project_);
    std::fstream(project_, std::ios::in | std::ios::out | std::ios::binary)
        << std::string(16, '\x7F');
    const std::string bad = BytesOf(project_);
    EXPECT_EQ(Of().Take().kind, Kind::NoProject);
    const Outcome outcome = Of().Restore(Of().List().front());
    ASSERT_EQ(outcome.kind, Kind::Done) << outcome.text;
    EXPECT_TRUE(BytesOf(project_) == good);
    EXPECT_TRUE(BytesOf(outcome.backup) == bad);
    EXPECT_FALSE(Of().List().front().trends);
}

// Whatever fails, the project is as it was, and no backup is lost.
TEST_F(BackupsTest, FailuresLeaveProjectAndBackups) {
    ASSERT_EQ(Of(1).Take().kind, Kind::Done);
    const Backup backup = Of().List().front();
    Change("now");
    const std::string now = BytesOf(project_);
    const ino_t node = NodeOf(project_);
    const auto expectAllThere = [&](const Outcome& outcome, const char* text) {
        SCOPED_TRACE(outcome.text);
        EXPECT_THAT(outcome.text, HasSubstr(text));
        EXPECT_TRUE(BytesOf(project_) == now);
        EXPECT_EQ(NodeOf(project_), node);
        EXPECT_TRUE(fs::exists(backup.path));
        ExpectNothingLeft();
    };
    {
        const SmallDisk disk(100'000);
        const Outcome taken = Of(1).Take();
        EXPECT_EQ(taken.kind, Kind::Failed);
        EXPECT_EQ(taken.reason.cause, reasons::Cause::FileFull);
        expectAllThere(taken, Of().Folder().c_str());
        const Outcome restored = Of(1).Restore(backup);
        EXPECT_EQ(restored.kind, Kind::NotKept);
        expectAllThere(restored, Of().Folder().c_str());
        EXPECT_THAT(Of().List(), SizeIs(1));
    }
    {
        // The present state is there already; what is full is the disk of the project.
        ASSERT_EQ(Of().Take().kind, Kind::Done);
        const SmallDisk disk(100'000);
        const Outcome restored = Of().Restore(backup);
        EXPECT_EQ(restored.kind, Kind::Failed);
        EXPECT_EQ(restored.reason.cause, reasons::Cause::FileFull);
        expectAllThere(restored, project_.c_str());
    }
    {
        fs::create_hard_link(project_, root_ / "second.kvs");
        expectAllThere(Of().Restore(backup), "several names");
        fs::remove(root_ / "second.kvs");
    }
    {
        const fs::path whole = root_ / "whole.kvs";
        fs::rename(backup.path, whole);
        std::ofstream(backup.path) << "no database at all, and nothing else of any kind";
        const Outcome restored = Of().Restore(backup);
        EXPECT_EQ(restored.kind, Kind::Failed);
        EXPECT_EQ(restored.reason.cause, reasons::Cause::NotAProject);
        expectAllThere(restored, backup.path.c_str());
        EXPECT_FALSE(Backups::IsSound(backup));
        fs::rename(whole, backup.path);
    }
    {
        // Where its folder should be there is a file.
        const Backups nowhere(project_, {project_ / "backups"});
        EXPECT_EQ(nowhere.Take().kind, Kind::Failed);
        const Outcome restored = nowhere.Restore(backup);
        EXPECT_EQ(restored.kind, Kind::NotKept);
        expectAllThere(restored, "backups");
    }
    if (::geteuid() != 0) {
        ::chmod(Of().Folder().c_str(), 0500);
        Change("later");
        EXPECT_EQ(Of().Take().kind, Kind::Failed);
    } else {
        ASSERT_EQ(::chown(Of().Folder().c_str(), 1, 1), 0);
        Change("later");
        EXPECT_THAT(Of().Take().text, HasSubstr("belongs to another user"));
    }
}

}  // namespace
}  // namespace backups
