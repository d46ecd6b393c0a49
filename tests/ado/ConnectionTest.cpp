#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "AdoTesting.h"
#include "support/NewFolder.h"

namespace ado {
namespace {

namespace fs = std::filesystem;

class ConnectionTest : public testing::Test {
protected:
    void SetUp() override { folder_ = NewFolder("kv-ado"); }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Write(const std::string& name, const std::string& content) {
        const fs::path path = folder_ / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }
    std::string CopyWith(const std::string& name, std::streamoff offset, const std::string& bytes) {
        const fs::path path = folder_ / name;
        fs::copy_file(TestData("Leer.kvs"), path);
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(offset);
        file << bytes;
        return path.string();
    }

    fs::path folder_;
    Connection connection_;
};

TEST_F(ConnectionTest, OpensByNativeAndByProjectPath) {
    fs::create_directory(folder_ / "Anlage;Nord");
    fs::copy_file(TestData("Leer.kvs"), folder_ / "Anlage;Nord" / "Plant.kvs");
    const std::string native = (folder_ / "Anlage;Nord" / "Plant.kvs").string();
    std::string project = native;
    std::replace(project.begin(), project.end(), '/', '\\');
    std::string otherCase = project;
    otherCase.replace(otherCase.find("Plant"), 5, "PLANT");
    ::setenv("KV_DRIVE_P", folder_.c_str(), 1);
    const std::string onDrive = "P:\\Anlage;Nord\\Plant.kvs";
    for (const std::string& path :
         {native, native + "  ", project, otherCase, onDrive, onDrive + " "}) {
        SCOPED_TRACE(path);
        connection_.Open(ConnectionString(path), "", "", -1);
        EXPECT_EQ(connection_.State(), ObjectState::Open);
        EXPECT_EQ(connection_.DataSource(), path);
        EXPECT_THAT(connection_.TableNames(), testing::Contains("TchrArchives"));
        connection_.Close();
        EXPECT_EQ(connection_.State(), ObjectState::Closed);
    }
}

TEST_F(ConnectionTest, RefusesWhatIsNoProjectFileAndNamesTheCause) {
    fs::copy_file(TestData("Leer.kvs"), folder_ / "cut.kvs");
    fs::resize_file(folder_ / "cut.kvs", 6000);
    const std::string pipe = (folder_ / "pipe.kvs").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string denied = CopyWith("denied.kvs", 0, "");
    fs::permissions(denied, fs::perms::none);
    struct Case {
        std::string path;
        const char* cause;
        reasons::Cause reason;
    };
    using reasons::Cause;
    std::vector<Case> cases = {
        {(folder_ / "none.kvs").string(), "Could not find file", Cause::FileMissing},
        {folder_.string(), "folder", Cause::NotAProject},
        {Write("empty.kvs", ""), "empty", Cause::NotAProject},
        {Write("short.kvs", std::string(100, '\0')), "too short", Cause::NotAProject},
        {(folder_ / "cut.kvs").string(), "cut short", Cause::NotAProject},
        {Write("text.kvs", std::string(8192, 'x')), "not a Jet database", Cause::NotAProject},
        {pipe, "not a regular file", Cause::NotAProject},
        {CopyWith("later.kvs", 0x14, "\x02"), "later version", Cause::Unsupported},
        {CopyWith("crypt.kvs", 0x3E, "\x01\x02\x03\x04"), "encrypted", Cause::Unsupported},
    };
    // The administrator may read everything.
    if (::geteuid() != 0) cases.push_back({denied, "denied", Cause::FileUnreadable});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        try {
            connection_.Open(ConnectionString(c.path));
            ADD_FAILURE() << "opened";
        } catch (const AdoError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::kUnspecified);
            EXPECT_THAT(error.Description(), testing::HasSubstr(c.cause));
            EXPECT_THAT(error.Description(), testing::HasSubstr(c.path));
            EXPECT_THAT(error.Description(), testing::Not(testing::HasSubstr("looked for")));
            EXPECT_EQ(error.Reason().cause, c.reason);
            EXPECT_EQ(error.Reason().file, c.path);
        }
        EXPECT_EQ(connection_.State(), ObjectState::Closed);
    }
    const std::string locked = CopyWith("password.kvs", 0x42, "abcd");
    EXPECT_EQ(ErrorOf([&] { connection_.Open(ConnectionString(locked)); }),
              ErrorNumber::kNotAuthorised);
    EXPECT_EQ(connection_.State(), ObjectState::Closed);
}

TEST_F(ConnectionTest, RefusesBadConnectionStringsAndWrongStates) {
    const auto open = [&](const std::string& text) {
        return ErrorOf([&] { connection_.Open(text); });
    };
    const std::string empty = TestData("Leer.kvs");
    EXPECT_EQ(open("Provider=Other;Data Source=" + empty), ErrorNumber::kProviderNotFound);
    EXPECT_EQ(open("Data Source=" + empty), ErrorNumber::kProviderNotFound);
    EXPECT_EQ(open("Provider=Microsoft.Jet.OLEDB.4.0;"), ErrorNumber::kInvalidArgument);
    EXPECT_EQ(open("nonsense"), ErrorNumber::kInvalidArgument);
    EXPECT_EQ(ErrorOf([&] { connection_.Close(); }), ErrorNumber::kObjectClosed);
    connection_.Open(ConnectionString(empty));
    EXPECT_EQ(open(ConnectionString(empty)), ErrorNumber::kObjectOpen);
}

TEST_F(ConnectionTest, ClosingClosesTheRecordsets) {
    connection_.Open(ConnectionString(TestData("Leer.kvs")));
    Recordset first;
    first.Open("TchrArchives", connection_, CommandType::Table);
    {
        Recordset second;
        second.Open("TidxTexts", connection_, CommandType::Table);
        EXPECT_THAT(connection_.OpenRecordsets(), testing::ElementsAre(&first, &second));
    }
    EXPECT_THAT(connection_.OpenRecordsets(), testing::ElementsAre(&first));
    first.AddNew();
    connection_.Close();
    EXPECT_EQ(first.State(), ObjectState::Closed) << "what was being edited is dropped";
    EXPECT_EQ(ErrorOf([&] { std::ignore = first.IsEOF(); }), ErrorNumber::kObjectClosed);
    EXPECT_EQ(ErrorOf([&] { first.Open("TidxTexts", connection_, CommandType::Table); }),
              ErrorNumber::kObjectClosed);
}

}  // namespace
}  // namespace ado
