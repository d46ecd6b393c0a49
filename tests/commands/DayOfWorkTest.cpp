#include <random>

#include "commands/CommandTesting.h"
#include "support/ProjectInOrder.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class DayOfWorkTest : public CommandTest {
protected:
    static std::vector<std::int32_t> Ids(ado::Recordset& rows, const std::string& filter = "") {
        std::vector<std::int32_t> ids;
        rows.SetFilter(filter);
        for (; !rows.IsEOF(); rows.MoveNext()) ids.push_back(ado::ToLong(rows.Get("ID")));
        return ids;
    }
    /// A few of them, in any order.
    std::vector<std::int32_t> Some(std::vector<std::int32_t> ids) {
        std::shuffle(ids.begin(), ids.end(), random_);
        ids.resize(std::min<std::size_t>(ids.size(), 1 + random_() % 4));
        return ids;
    }
    void Rename(std::int32_t archive) {
        const auto edit = [&](ado::Recordset& archives, ado::Recordset&, const auto& save) {
            archives.Set("Name", projectdb::ToUtf16(u"Behälter %1"_s.arg(++renamed_)));
            save();
            return true;
        };
        EXPECT_TRUE(archives_.Edit(archive, edit));
    }
    void RunOneCommand() {
        projectdb::ProjectRows rows(Environment());
        const std::vector<std::int32_t> archives = Ids(rows.Archives());
        const auto kind = archives.empty() ? 0 : random_() % 9;
        const std::int32_t archive = archives.empty() ? 0 : archives[random_() % archives.size()];
        if (kind <= 1) {
            archives_.New(u"L1031"_s);
            return;
        }
        OpenArchive(archive);
        const auto trends = Ids(rows.Trends(), "ArchiveID = " + std::to_string(archive));
        if (kind <= 4 || trends.empty()) {
            trends_.New();
        } else if (kind == 5) {
            Rename(archive);
        } else if (kind == 6) {
            std::ignore = copies_.DuplicateArchive(archive, {});
        } else if (kind == 7) {
            std::ignore = copies_.DuplicateTrends(Some(trends), {});
        } else if (random_() % 2 == 0) {
            EXPECT_TRUE(trends_.Delete(Some(trends), {}, {}));
        } else {
            EXPECT_TRUE(archives_.Delete(project_.currentNodeKey, {}, {}));
        }
    }
    void Work() {
        const Content before = Read();
        for (int i = 0; i < 60; ++i) RunOneCommand();
        const Content after = Read();
        ExpectInOrder(after);
        for (const auto& [table, rows] : before) {
            const bool isOurs = table.starts_with("Tchr") || table.starts_with("Tidx");
            EXPECT_TRUE(isOurs || after.at(table) == rows) << table;
        }
        project_.CloseDatabase();
        EXPECT_THAT(ErrorsIn(path_), testing::IsEmpty());
        ExpectSameForMdbTools(path_, after);
    }

    std::mt19937 random_{20240611};
    int renamed_ = 0;
};

TEST_F(DayOfWorkTest, LeavesTheBreweryWhole) {
    OpenBrewery();
    ExpectInOrder(Read());
    Work();
}

TEST_F(DayOfWorkTest, LeavesANewProjectWhole) {
    OpenNew();
    Work();
}

TEST_F(DayOfWorkTest, LeavesAnEmptyProjectWhole) {
    OpenEmpty();
    Work();
}

}  // namespace
