#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "jet/Database.h"
#include "JetTesting.h"

namespace jet {
namespace {

namespace fs = std::filesystem;

/// A project among real files, with whatever lies beside it.
class IdentityTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "kv-jet-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        path_ = (folder_ / "project.kvs").string();
        fs::copy_file(Example("Brauerei.kvs"), path_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    static std::size_t Archives(const std::string& path) {
        auto database = Must(Database::Open(SystemDisk(), path, OpenMode::Read));
        return AllRows(*Must(database->OpenTable("TchrArchives"))).size();
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
        EXPECT_EQ(fs::remove_all(journal), 1U) << "it is not the engine's to remove";
    }
}

}  // namespace
}  // namespace jet
