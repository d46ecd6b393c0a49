#include "projectfile/CreateProject.h"

#include <cstdio>
#include <initializer_list>
#include <set>

#include "jet/CauseOf.h"
#include "jet/CreateDatabase.h"
#include "jet/TableWriter.h"
#include "jet/Unicode.h"
#include "paths/NativePath.h"
#include "project/Schema.h"
#include "projectfile/ProjectTables.h"

namespace projectfile {
namespace {

constexpr std::uint32_t kHighestLcid = 0xFFFFF;  // 4 bits sort order, 16 bits language
constexpr std::size_t kMostLanguages = 251;      // with four other columns the most of a table
// Typeface in 32 characters, then size, style and weight in fields of four.
constexpr const char* kFont = "Arial                             8   0   0   0   0   0 400";

/// Why these cannot be a project's languages; empty when they can.
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

using NamedValues = std::initializer_list<std::pair<const char*, jet::Value>>;

jet::Status AddRow(jet::Table& table, const NamedValues& values) {
    std::vector<jet::Assignment> row;
    for (const auto& [name, value] : values) {
        row.push_back({*table.Definition().FindColumn(name), value});
    }
    return jet::TableWriter(table).Insert(row).GetStatusOrOk();
}

/// The group above those of all archives. Without it the group of the first archive would become
/// it, and go with that archive.
jet::Status AddRootGroup(jet::Database& database) {
    std::unique_ptr<jet::Table> table;
    JET_ASSIGN(table, database.OpenTable(project::kGroupTable));
    return AddRow(*table, {{"ParentID", 0},
                           {"Name", jet::ToUtf16("Archive")},
                           {"Type", project::kArchiveGroup},
                           {"Parameter", 0},
                           {"Delete", false},
                           {"Rename", false}});
}

jet::Status AddLanguages(jet::Database& database, std::span<const std::uint32_t> lcids) {
    std::unique_ptr<jet::Table> table;
    JET_ASSIGN(table, database.OpenTable(project::kLanguageTable));
    for (const std::uint32_t lcid : lcids) {
        char layout[9];
        std::snprintf(layout, sizeof layout, "%08X", static_cast<unsigned>(lcid));
        JET_TRY(AddRow(*table, {{"LCID", static_cast<std::int32_t>(lcid)},
                                {"kbLayout", jet::ToUtf16(layout)},
                                {"Font", jet::ToUtf16(kFont)}}));
    }
    return {};
}

}  // namespace

Outcome CreateProject(const std::string& path, std::span<const std::uint32_t> lcids) {
    if (std::string wrong = WrongLanguages(lcids); !wrong.empty()) {
        return {Outcome::Kind::BadLanguages, std::move(wrong)};
    }
    const auto fill = [&](jet::Database& database) {
        for (const jet::TableSpec& table : ProjectTables(lcids)) {
            JET_TRY(jet::CreateTable(database, table));
        }
        JET_TRY(AddRootGroup(database));
        return AddLanguages(database, lcids);
    };
    const jet::Status status = jet::CreateDatabase(jet::SystemDisk(), paths::ToNative(path), fill);
    if (status.IsOk()) return {};
    if (status.Code() == jet::StatusCode::Duplicate) return {Outcome::Kind::Exists, status.Text()};
    return {Outcome::Kind::Failed, status.Text(), {jet::CauseOfMaking(status.Code()), path}};
}

}  // namespace projectfile
