#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <sstream>

#include "editor/CommandTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;

using Row = std::map<std::string, std::string>;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

std::map<std::int32_t, Row> RowsOf(const Content& content, const std::string& table) {
    std::map<std::int32_t, Row> rows;
    for (const std::string& line : content.at(table)) {
        Row row;
        for (const std::string& field : Split(line, '|')) {
            row[field.substr(0, field.find('='))] = field.substr(field.find('=') + 1);
        }
        rows[std::stoi(row["ID"])] = row;
    }
    return rows;
}

/// What every program on a project relies on, and no database looks after.
void ExpectWhole(const Content& content) {
    const auto archives = RowsOf(content, "TchrArchives");
    const auto trends = RowsOf(content, "TchrTrends");
    auto groups = RowsOf(content, "TidxGroups");
    auto texts = RowsOf(content, "TidxTexts");
    std::map<std::string, std::string> groupOf;  // by archive
    std::erase_if(groups, [&](const auto& entry) {
        const Row& group = entry.second;
        const bool isArchives = group.at("Type") == "-2" && group.at("Parameter") != "0";
        if (!isArchives) return true;
        EXPECT_TRUE(groupOf.emplace(group.at("Parameter"), group.at("ID")).second);
        return false;
    });
    EXPECT_EQ(groups.size(), archives.size());
    const auto expectText = [&](const Row& owner, const std::string& name,
                                const std::string& archive) {
        const auto text = texts.find(std::stoi(owner.at("TextID")));
        ASSERT_NE(text, texts.end()) << name;
        EXPECT_EQ(text->second.at("ParentID"), groupOf[archive]) << name;
        EXPECT_EQ(text->second.at("Name"), name);
        texts.erase(text);
    };
    std::set<std::string> names;
    for (const auto& [id, archive] : archives) {
        EXPECT_TRUE(names.insert(archive.at("Name")).second) << archive.at("Name");
        expectText(archive, "arch" + archive.at("Name"), std::to_string(id));
    }
    for (const auto& [id, trend] : trends) {
        EXPECT_TRUE(archives.contains(std::stoi(trend.at("ArchiveID"))));
        EXPECT_TRUE(names.insert(trend.at("ArchiveID") + "/" + trend.at("Name")).second);
        expectText(trend, "Idx" + trend.at("Name"), trend.at("ArchiveID"));
    }
    EXPECT_THAT(texts, testing::IsEmpty()) << "texts of nobody";
}

/// A table as mdbtools reads it, in the form of Content; empty where they are not installed.
std::vector<std::string> ReadWithMdbTools(const std::string& path, const std::string& table) {
    const std::string command = "mdb-export -Q -d '|' '" + path + "' " + table + " 2>/dev/null";
    std::string output;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::array<char, 4096> buffer{};
    for (std::size_t n = 0;
         pipe && (n = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0;) {
        output.append(buffer.data(), n);
    }
    const std::vector<std::string> lines = Split(output, '\n');
    std::map<std::int32_t, std::string> rows;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> names = Split(lines[0], '|');
        const std::vector<std::string> values = Split(lines[i], '|');
        std::string& row = rows[std::stoi(values[0])];
        for (std::size_t j = 0; j < values.size(); ++j) {
            if (values[j].empty()) continue;
            const bool isBoolean = names[j] == "Delete" || names[j] == "Rename";
            const std::string value =
                !isBoolean ? values[j] : std::string(values[j] == "0" ? "False" : "True");
            row += (row.empty() ? "" : "|") + names[j] + "=" + value;
        }
    }
    std::vector<std::string> sorted;
    for (auto& [id, row] : rows) sorted.push_back(std::move(row));
    return sorted;
}

/// A row without what mdbtools tell differently: empty texts, which they show as Null, and from
/// there on the fractions, which they write with more digits than are needed.
std::string Comparable(const std::string& row) {
    std::string kept;
    for (const std::string& field : Split(row.substr(0, row.find("|Factor")), '|')) {
        if (!field.ends_with('=')) kept += field + '|';
    }
    return kept;
}

class DayOfWorkTest : public CommandTest {
protected:
    std::vector<std::int32_t> Ids(ADOArchiv::Command table, const std::string& filter = "") {
        projectdb::ProjectRows rows(Environment());
        std::vector<std::int32_t> ids;
        rows[table].SetFilter(filter);
        for (; !rows[table].IsEOF(); rows[table].MoveNext()) {
            ids.push_back(ado::ToLong(rows[table].Get("ID")));
        }
        return ids;
    }
    /// A few of them, in any order.
    std::vector<std::int32_t> Some(std::vector<std::int32_t> ids) {
        std::shuffle(ids.begin(), ids.end(), random_);
        ids.resize(std::min<std::size_t>(ids.size(), 1 + random_() % 4));
        return ids;
    }
    void Rename(std::int32_t archive) {
        const auto edit = [&](ado::Recordset& archives, ado::Recordset&) {
            archives.Set("Name", projectdb::ToUtf16(u"Behälter %1"_s.arg(++renamed_)));
            return true;
        };
        EXPECT_TRUE(archives_.Edit(archive, edit));
    }
    void RunOneCommand() {
        const std::vector<std::int32_t> archives = Ids(ADOArchiv::Command::Archives);
        const auto kind = archives.empty() ? 0 : random_() % 9;
        const std::int32_t archive = archives.empty() ? 0 : archives[random_() % archives.size()];
        if (kind <= 1) {
            archives_.New(u"L1031"_s);
            return;
        }
        OpenArchive(archive);
        const auto trends =
            Ids(ADOArchiv::Command::Trends, "ArchiveID = " + std::to_string(archive));
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
        ExpectWhole(after);
        for (const auto& [table, rows] : before) {
            const bool isOurs = table.starts_with("Tchr") || table.starts_with("Tidx");
            EXPECT_TRUE(isOurs || after.at(table) == rows) << table;
        }
        project_.CloseDatabase();
        EXPECT_THAT(ErrorsIn(path_), testing::IsEmpty());
        for (const char* table : {"TchrArchives", "TidxGroups", "TidxTexts", "TchrTrends"}) {
            std::vector<std::string> theirs = ReadWithMdbTools(path_, table);
            if (theirs.empty()) continue;
            std::vector<std::string> ours = after.at(table);
            for (auto* rows : {&theirs, &ours}) {
                for (std::string& row : *rows) row = Comparable(row);
            }
            ASSERT_EQ(theirs.size(), ours.size()) << table;
            for (std::size_t i = 0; i < ours.size(); ++i) EXPECT_EQ(theirs[i], ours[i]) << table;
        }
    }

    std::mt19937 random_{20240611};
    int renamed_ = 0;
};

TEST_F(DayOfWorkTest, LeavesTheBreweryWhole) {
    OpenBrewery();
    ExpectWhole(Read());
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
