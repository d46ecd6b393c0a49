#include "project/CreateProject.h"

#include <set>

#include "project/Names.h"
#include "project/Rows.h"
#include "project/Schema.h"

namespace project {
namespace {

constexpr std::uint32_t kHighestLcid = 0xFFFFF;  // 4 bits sort order, 16 bits language
constexpr std::size_t kMostLanguages = 251;      // with four other columns the most of a table

}  // namespace

std::string WrongLanguages(std::span<const std::uint32_t> lcids) {
    if (lcids.empty()) return "a project needs a language";
    if (lcids.size() > kMostLanguages) {
        return "a project has at most " + std::to_string(kMostLanguages) + " languages";
    }
    std::set<std::uint32_t> seen;
    for (const std::uint32_t lcid : lcids) {
        const std::string name = "the language id " + std::to_string(lcid);
        if (lcid == 0 || lcid > kHighestLcid) {
            return name + " is not between 1 and " + std::to_string(kHighestLcid);
        }
        if (!seen.insert(lcid).second) return name + " is there twice";
    }
    return {};
}

std::vector<ado::NewTable> ProjectTables(std::span<const std::uint32_t> lcids) {
    const std::string key(kKeyColumn);
    std::vector<ado::NewTable> tables;
    for (const Table& known : Tables()) {
        ado::NewTable& table = tables.emplace_back();
        table.name = known.name;
        table.columns.push_back({.name = key, .isAutoNumber = true});
        for (const Column& column : known.columns) {
            table.columns.push_back({std::string(column.name), column.type, column.length});
        }
        if (known.hasLanguages) {
            for (const std::uint32_t lcid : lcids) {
                table.columns.push_back(
                    {LanguageColumn(lcid), ado::DataType::VarWChar, kLanguageTextLength});
            }
        }
        table.indexes.push_back({"PrimaryKey", key, ado::NewIndex::Kind::PrimaryKey});
        if (!known.indexed.empty()) {
            table.indexes.push_back({std::string(known.indexed), std::string(known.indexed)});
        }
    }
    return tables;
}

void CreateProject(const std::string& path, std::span<const std::uint32_t> lcids) {
    ado::CreateFile(path, ProjectTables(lcids), [&](ado::Connection& connection) {
        Rows rows(connection);
        // Without it the group of the first archive would become it, and go with that archive.
        rows.AddGroup(0, kRootGroupName);
        for (const std::uint32_t lcid : lcids) rows.AddLanguage(lcid);
    });
}

}  // namespace project
