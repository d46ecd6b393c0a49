#include "projectfile/ProjectTables.h"

#include <string>

namespace projectfile {
namespace {

using enum jet::ColumnType;

constexpr std::size_t kLongestText = 255;  // UTF-16 units

struct Field {
    const char* name;
    jet::ColumnType type;
    std::size_t length = 0;  // texts, in UTF-16 units
};

constexpr Field kArchives[] = {{"Name", Text, 80},       {"TextID", Long},
                               {"Type", Integer},        {"FileName", Text, 255},
                               {"FilePath", Text, 255},  {"RedundancyFilePath", Text, 255},
                               {"SampleMode", Integer},  {"Trigger", Text, 255},
                               {"ScanTime", Long},       {"MaxSamples", Long},
                               {"NewFile", Text, 255},   {"XVar", Text, 255},
                               {"StartStop", Text, 255}, {"Reset", Text, 255},
                               {"CacheSize", Long},      {"AuthorizationLevel", Integer},
                               {"Comment", Text, 255},   {"MaxFiles", Long},
                               {"MaxSizeKb", Long},      {"ParamNames", Text, 255}};

constexpr Field kTrends[] = {{"Name", Text, 80},
                             {"ArchiveID", Long},
                             {"TextID", Long},
                             {"TrendVar", Text, 255},
                             {"Maximum", Text, 64},
                             {"Minimum", Text, 64},
                             {"SurrogateMax", Text, 64},
                             {"SurrogateMin", Text, 64},
                             {"ErrorValue", Text, 64},
                             {"Hysteresis", Text, 64},
                             {"HysteresisMode", Integer},
                             {"Factor", Double},
                             {"Offset", Double},
                             {"Filter", Integer},
                             {"FilterDepth", Long},
                             {"Unit", Text, 32},
                             {"VMax", Double},
                             {"VMin", Double},
                             {"VUpper", Double},
                             {"VLower", Double},
                             {"VLineColor", Long},
                             {"VLineWidth", Integer},
                             {"VLineStyle", Integer},
                             {"VUpperColor", Long},
                             {"VLowerColor", Long},
                             {"VConfig", Integer},
                             {"VDrawMode", Integer},
                             {"VMaxSamples", Long},
                             {"VUnitID", Long},
                             {"Comment", Text, 255}};

constexpr Field kTexts[] = {{"ParentID", Long}, {"Name", Text, 100}, {"ParamNames", Text, 255}};

constexpr Field kGroups[] = {{"ParentID", Long},  {"Name", Text, 100}, {"Type", Integer},
                             {"Parameter", Long}, {"Delete", Boolean}, {"Rename", Boolean}};

constexpr Field kStructs[] = {{"Name", Text, 64}, {"Comment", Text, 255}};

constexpr Field kVars[] = {{"StructID", Long},
                           {"Name", Text, 128},
                           {"DataType", Text, 16},
                           {"Unit", Text, 16},
                           {"Comment", Text, 255}};

constexpr Field kLanguages[] = {{"LCID", Long}, {"kbLayout", Text, 16}, {"Font", Text, 64}};

struct TableForm {
    const char* name;
    std::span<const Field> fields;  // behind the AutoNumber "ID", the key of every table
    const char* indexed = nullptr;  // a field by which rows are looked up
    bool hasLanguages = false;      // a text field for each language behind the others
};
constexpr TableForm kTables[] = {
    {"TchrArchives", kArchives},
    {"TchrTrends", kTrends, "ArchiveID"},
    {"TidxTexts", kTexts, "ParentID", true},
    {kGroupsTable, kGroups},
    {"TpdbStructs", kStructs},
    {"TpdbVars", kVars},
    {kLanguagesTable, kLanguages},
};

}  // namespace

std::vector<jet::TableSpec> ProjectTables(std::span<const std::uint32_t> lcids) {
    using Kind = jet::IndexSpec::Kind;
    std::vector<jet::TableSpec> tables;
    for (const TableForm& form : kTables) {
        jet::TableSpec& table = tables.emplace_back();
        table.name = form.name;
        table.columns.push_back({.name = "ID", .isAutoNumber = true});
        for (const Field& field : form.fields) {
            table.columns.push_back({field.name, field.type, field.length});
        }
        if (form.hasLanguages) {
            for (const std::uint32_t lcid : lcids) {
                table.columns.push_back({"L" + std::to_string(lcid), Text, kLongestText});
            }
        }
        table.indexes.push_back({"PrimaryKey", Kind::PrimaryKey, {{"ID"}}});
        if (form.indexed != nullptr) {
            table.indexes.push_back({form.indexed, Kind::Plain, {{form.indexed}}});
        }
    }
    return tables;
}

}  // namespace projectfile
