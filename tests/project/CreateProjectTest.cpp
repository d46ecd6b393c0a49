#include "project/CreateProject.h"

#include <filesystem>
#include <fstream>
#include <numeric>
#include <optional>
#include <random>
#include <tuple>

#include "ado/AdoError.h"
#include "jet/Check.h"
#include "jet/TableWriter.h"
#include "JetTesting.h"
#include "project/Rows.h"
#include "project/Schema.h"
#include "support/NewFolder.h"

namespace project {
namespace {

using jet::Must;
using testing::ElementsAre;
using testing::IsEmpty;

class CreateProjectTest : public testing::Test {
protected:
    ~CreateProjectTest() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    /// Errors and warnings.
    [[nodiscard]] std::vector<std::string> Findings() const {
        std::vector<std::string> texts;
        auto file = Must(jet::OpenFile(project_));
        const jet::Status status = jet::Check(*file, [&](const jet::Finding& finding) {
            texts.push_back(finding.text);
            return true;
        });
        if (!status.IsOk()) texts.push_back(status.Text());
        return texts;
    }

    const std::string folder_ = NewFolder("create").string();
    const std::string project_ = folder_ + "/plant.kvs";
};

/// User tables without the one that belongs to another editor.
std::vector<std::string> TablesOf(jet::Database& database) {
    std::vector<std::string> names;
    for (const jet::CatalogEntry& entry : Must(database.Tables())) {
        if (entry.isUserTable && entry.name != "TalmClasses") names.push_back(entry.name);
    }
    return names;
}

/// Names, flags and columns of the indexes, by the order of their trees.
std::vector<std::tuple<std::string, int, std::vector<jet::IndexColumn>>> IndexesOf(
    const jet::TableDef& def) {
    std::vector<std::tuple<std::string, int, std::vector<jet::IndexColumn>>> indexes;
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        for (const jet::LogicalIndex& index : def.logicalIndexes) {
            if (index.real != i) continue;
            indexes.emplace_back(index.name, def.realIndexes[i].flags, def.realIndexes[i].columns);
        }
    }
    return indexes;
}

TEST_F(CreateProjectTest, IsLaidOutAsProjectsOfTheStudio) {
    const std::uint32_t lcids[] = {1031, 1033};
    CreateProject(project_, lcids);
    EXPECT_THAT(Findings(), IsEmpty());
    EXPECT_THAT(Files(), ElementsAre("plant.kvs"));

    auto made = Must(jet::Database::Open(project_));
    auto sample = Must(jet::Database::Open(jet::TestData("Leer.kvs")));
    ASSERT_EQ(TablesOf(*made), TablesOf(*sample));
    for (const std::string& name : TablesOf(*made)) {
        SCOPED_TRACE(name);
        const auto ours = Must(made->OpenTable(name));
        const auto theirs = Must(sample->OpenTable(name));
        EXPECT_EQ(ours->Definition().columns, theirs->Definition().columns);
        EXPECT_EQ(IndexesOf(ours->Definition()), IndexesOf(theirs->Definition()));
        EXPECT_EQ(ours->Definition().PrimaryKey(), theirs->Definition().PrimaryKey());
        const auto rows = AllRows(*ours);
        if (name == project::kGroupTable) {
            // The sample lacks it; the first archive's group would become the root of the others.
            ASSERT_EQ(rows.size(), 1U);
            const jet::Value root[] = {1, 0, std::u16string(u"Archive"), -2, 0, false, false};
            for (std::size_t i = 0; i < std::size(root); ++i) {
                EXPECT_EQ(Must(rows[0].Get(i)), root[i]) << i;
            }
            continue;
        }
        const auto theirRows = AllRows(*theirs);
        ASSERT_EQ(rows.size(), theirRows.size());  // only the languages have any
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t column = 0; column < 4; ++column) {
                EXPECT_EQ(Must(rows[i].Get(column)), Must(theirRows[i].Get(column)));
            }
        }
    }
}

TEST_F(CreateProjectTest, TakesRowsInAsManyLanguagesAsThereMayBe) {
    std::vector<std::uint32_t> lcids(251);
    std::iota(lcids.begin(), lcids.end(), 0xFFFFFU - 250);
    CreateProject(project_, lcids);
    EXPECT_THAT(Findings(), IsEmpty());
    auto database =
        Must(jet::Database::Open(jet::SystemDisk(), project_, jet::OpenMode::ReadWrite));
    auto table = Must(database->OpenTable("TidxTexts"));
    ASSERT_EQ(table->Definition().columns.size(), 255U);
    EXPECT_EQ(table->Definition().columns.back().name, "L1048575");
    std::mt19937 random(3);
    ASSERT_OK(database->Begin());
    for (int i = 0; i < 300; ++i) {
        const std::u16string name = u"Idx" + jet::ToUtf16(std::to_string(random()));
        std::vector<jet::Assignment> row = {{1, static_cast<std::int32_t>(random() % 9)},
                                            {2, name}};
        for (std::size_t column = 4; column < 255; column += 1 + random() % 40) {
            row.push_back({column, name});
        }
        ASSERT_OK(jet::TableWriter(*table).Insert(row));
    }
    ASSERT_OK(database->Commit());
    EXPECT_THAT(Findings(), IsEmpty());
}

/// Why no project is made; nothing when one is.
std::optional<reasons::Cause> Refusal(const std::string& path) {
    const std::uint32_t german[] = {1031};
    try {
        CreateProject(path, german);
        return std::nullopt;
    } catch (const ado::AdoError& error) {
        EXPECT_EQ(error.Reason().file, path);
        return error.Reason().cause;
    }
}

TEST_F(CreateProjectTest, RefusesWhatCannotBeAndLeavesNothing) {
    std::vector<std::uint32_t> tooMany(252);
    std::iota(tooMany.begin(), tooMany.end(), 1);
    for (const auto& lcids : std::vector<std::vector<std::uint32_t>>{
             {}, {0}, {1031, 0x100000}, {1031, 1033, 1031}, tooMany}) {
        EXPECT_NE(WrongLanguages(lcids), "");
    }
    using reasons::Cause;
    EXPECT_EQ(Refusal(folder_ + "/missing/plant.kvs"), Cause::PathUnusable);
    EXPECT_EQ(Refusal(folder_), Cause::FileExists);
    EXPECT_THAT(Files(), IsEmpty());

    std::ofstream(project_) << "mine";
    EXPECT_EQ(Refusal(project_), Cause::FileExists);
    EXPECT_EQ(std::filesystem::file_size(project_), 4U);
    EXPECT_THAT(Files(), ElementsAre("plant.kvs"));
}

TEST_F(CreateProjectTest, WhenItsRowsCannotBeStoredThereIsNoFile) {
    std::vector<ado::NewTable> tables = ProjectTables(std::vector<std::uint32_t>{1031});
    const auto fill = [](ado::Connection& connection) { Rows(connection).AddLanguage(1031); };
    std::erase_if(tables, [](const auto& table) { return table.name == kLanguageTable; });
    EXPECT_THROW(ado::CreateFile(project_, tables, fill), ado::AdoError);
    EXPECT_THAT(Files(), IsEmpty());
}

}  // namespace
}  // namespace project
