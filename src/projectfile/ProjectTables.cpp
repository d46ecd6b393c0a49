#include "projectfile/ProjectTables.h"

#include <string>

#include "project/Schema.h"

namespace projectfile {
namespace {

jet::ColumnType TypeOf(project::Storage storage) {
    switch (storage) {
        case project::Storage::Short:
            return jet::ColumnType::Integer;
        case project::Storage::Long:
            return jet::ColumnType::Long;
        case project::Storage::Double:
            return jet::ColumnType::Double;
        case project::Storage::Flag:
            return jet::ColumnType::Boolean;
        case project::Storage::Text:
            break;
    }
    return jet::ColumnType::Text;
}

}  // namespace

std::vector<jet::TableSpec> ProjectTables(std::span<const std::uint32_t> lcids) {
    using Kind = jet::IndexSpec::Kind;
    const std::string key(project::kKeyColumn);
    std::vector<jet::TableSpec> tables;
    for (const project::Table& known : project::Tables()) {
        jet::TableSpec& table = tables.emplace_back();
        table.name = known.name;
        table.columns.push_back({.name = key, .isAutoNumber = true});
        for (const project::Column& column : known.columns) {
            table.columns.push_back({std::string(column.name), TypeOf(column.storage),
                                     static_cast<std::size_t>(column.length)});
        }
        if (known.hasLanguages) {
            for (const std::uint32_t lcid : lcids) {
                table.columns.push_back({project::LanguageColumn(lcid), jet::ColumnType::Text,
                                         project::kLanguageTextLength});
            }
        }
        table.indexes.push_back({"PrimaryKey", Kind::PrimaryKey, {{key}}});
        if (!known.indexed.empty()) {
            const std::string indexed(known.indexed);
            table.indexes.push_back({indexed, Kind::Plain, {{indexed}}});
        }
    }
    return tables;
}

}  // namespace projectfile
