#include <algorithm>

#include "project/check/Finder.h"

namespace project {
namespace {

bool Has(const ado::Connection& connection, std::string_view table) {
    const std::vector<std::string> names = connection.TableNames();
    return std::find(names.begin(), names.end(), table) != names.end();
}

void ReadGroups(ado::Connection& connection, Finder& finder) {
    const TableScan scan(connection, TableOf(kGroupTable));
    const ScanPlace parent = scan.Find("ParentID");
    const ScanPlace name = scan.Find("Name");
    const ScanPlace type = scan.Find("Type");
    const ScanPlace archive = scan.Find("Parameter");
    finder.Run(scan, kGroupTable, [&](const ScannedRow& row) {
        if (row.Long(type) != kArchiveGroup) return;
        finder.groups.push_back({row.Id(), row.Long(parent).value_or(0),
                                 row.Long(archive).value_or(0), std::u16string(row.Text(name))});
    });
    std::sort(finder.groups.begin(), finder.groups.end(),
              [](const TextGroup& a, const TextGroup& b) { return a.id < b.id; });
    finder.hasGroups = true;
}

void ReadVariables(ado::Connection& connection, Finder& finder) {
    if (Has(connection, kVariableTable)) {
        const TableScan scan(connection, TableOf(kVariableTable));
        const ScanPlace name = scan.Find("Name");
        finder.Run(scan, kVariableTable, [&](const ScannedRow& row) {
            finder.variables.insert(ado::FoldName(row.Text(name)));
        });
    }
}

}  // namespace

std::vector<std::string> LanguagesOf(ado::Connection& connection, const TableScan& texts) {
    std::vector<std::string> listed;
    if (Has(connection, kLanguageTable)) {
        const TableScan languages(connection, TableOf(kLanguageTable));
        const ScanPlace lcid = languages.Find("LCID");
        languages.Run([&](const ScannedRow& row) {
            if (const auto number = row.Long(lcid)) listed.push_back(LanguageColumn(*number));
        });
    }
    std::vector<std::string> columns;
    for (const ScannedColumn& column : texts.Columns()) {
        if (!IsLanguageColumn(column.name)) continue;
        const bool isListed = std::find(listed.begin(), listed.end(), column.name) != listed.end();
        if (listed.empty() || isListed) columns.push_back(column.name);
    }
    return columns;
}

void ReadFacts(ado::Connection& connection, Finder& finder) {
    if (Has(connection, kTextTable)) {
        const TableScan texts(connection, TableOf(kTextTable));
        finder.textKeys = texts.Keys();
        finder.hasTexts = true;
        finder.languages = LanguagesOf(connection, texts);
    }
    if (Has(connection, kGroupTable)) ReadGroups(connection, finder);
    if (Has(connection, kVariableTable)) ReadVariables(connection, finder);
}

}  // namespace project
