#include "support/ProjectInOrder.h"

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>

namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

bool IsOfArchive(const FieldsOfRow& group) {
    return FieldOf(group, "Type") == "-2" && FieldOf(group, "Parameter") != "0";
}

/// A table in the form of Content; empty where mdbtools are not installed.
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
        const bool isEmpty = field.ends_with('=') || field.ends_with(std::string("=\0", 2));
        if (!isEmpty) kept += field + '|';
    }
    return kept;
}

}  // namespace

std::map<std::int32_t, FieldsOfRow> RowsOf(const Content& content, const std::string& table) {
    std::map<std::int32_t, FieldsOfRow> rows;
    for (const std::string& line : content.at(table)) {
        FieldsOfRow row;
        for (const std::string& field : Split(line, '|')) {
            row[field.substr(0, field.find('='))] = field.substr(field.find('=') + 1);
        }
        rows[std::stoi(row["ID"])] = row;
    }
    return rows;
}

std::string FieldOf(const FieldsOfRow& row, const std::string& field) {
    const auto found = row.find(field);
    return found == row.end() || found->second == std::string(1, '\0') ? "" : found->second;
}

void ExpectInOrder(const Content& content, const KeptTextNames& kept) {
    const auto archives = RowsOf(content, "TchrArchives");
    const auto trends = RowsOf(content, "TchrTrends");
    const auto groups = RowsOf(content, "TidxGroups");
    auto texts = RowsOf(content, "TidxTexts");
    std::map<std::string, std::string> groupOf;  // by archive
    for (const auto& [id, group] : groups) {
        if (!IsOfArchive(group)) continue;
        const std::string owner = FieldOf(group, "Parameter");
        EXPECT_TRUE(groupOf.emplace(owner, std::to_string(id)).second) << "two of " << owner;
        const auto archive = archives.find(std::stoi(owner));
        ASSERT_NE(archive, archives.end()) << "group of nobody: " << FieldOf(group, "Name");
        EXPECT_EQ(FieldOf(group, "Name"), FieldOf(archive->second, "Name"));
        EXPECT_EQ(FieldOf(group, "Delete"), "False");
        EXPECT_EQ(FieldOf(group, "Rename"), "False");
    }
    EXPECT_EQ(groupOf.size(), archives.size());
    const auto expectText = [&](const FieldsOfRow& owner, const std::string& name,
                                const std::string& archive) {
        const auto text = texts.find(std::stoi(FieldOf(owner, "TextID")));
        ASSERT_NE(text, texts.end()) << name;
        EXPECT_EQ(FieldOf(text->second, "ParentID"), groupOf[archive]) << name;
        EXPECT_EQ(FieldOf(text->second, "Name"), name);
        texts.erase(text);
    };
    std::set<std::string> names;
    for (const auto& [id, archive] : archives) {
        const std::string name = FieldOf(archive, "Name");
        EXPECT_TRUE(names.insert(name).second) << name;
        expectText(archive, "arch" + name, std::to_string(id));
    }
    for (const auto& [id, trend] : trends) {
        const std::string archive = FieldOf(trend, "ArchiveID");
        const std::string name = FieldOf(trend, "Name");
        EXPECT_TRUE(archives.contains(std::stoi(archive))) << name;
        EXPECT_TRUE(names.insert(archive + "/" + name).second) << name;
        expectText(trend, kept.contains(id) ? kept.at(id) : "Idx" + name, archive);
    }
    EXPECT_THAT(texts, testing::IsEmpty()) << "texts of nobody";
}

void ExpectSameForMdbTools(const std::string& path, const Content& content) {
    for (const char* table : {"TchrArchives", "TidxGroups", "TidxTexts", "TchrTrends"}) {
        std::vector<std::string> theirs = ReadWithMdbTools(path, table);
        if (theirs.empty()) continue;
        std::vector<std::string> ours = content.at(table);
        for (auto* rows : {&theirs, &ours}) {
            for (std::string& row : *rows) row = Comparable(row);
        }
        ASSERT_EQ(theirs.size(), ours.size()) << table;
        for (std::size_t i = 0; i < ours.size(); ++i) EXPECT_EQ(theirs[i], ours[i]) << table;
    }
}
