#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/CreateProject.h"
#include "project/Rows.h"
#include "project/Schema.h"
#include "support/NewFolder.h"

namespace project {

/// A value that a row gets.
struct Cell {
    std::string_view table;
    std::int32_t id;
    const char* column;
    ado::Value value;

    Cell(std::string_view inTable, std::int32_t inRow, const char* inColumn, ado::Value to)
        : table(inTable), id(inRow), column(inColumn), value(std::move(to)) {}
    Cell(std::string_view inTable, std::int32_t inRow, const char* inColumn, const char16_t* to)
        : Cell(inTable, inRow, inColumn, std::u16string(to)) {}
    Cell(std::string_view inTable, std::int32_t inRow, const char* inColumn, int to)
        : Cell(inTable, inRow, inColumn, ado::Value(to)) {}
};
inline std::ostream& operator<<(std::ostream& out, const Cell& cell) {
    return out << cell.table << '/' << cell.id << '/' << cell.column;
}

/// A new project with German and English texts that goes with the test, open for changes.
struct TestProject {
    TestProject() {
        CreateProject(path, std::vector<std::uint32_t>{1031, 1033});
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path +
                        ";Mode=Read|Write|Share Deny None;");
    }
    ~TestProject() {
        connection.Close();
        std::filesystem::remove_all(folder);
    }
    TestProject(const TestProject&) = delete;
    TestProject& operator=(const TestProject&) = delete;

    /// Archives 1 "Öfen" and 2 "Walze" with groups 2 and 3 and texts 1 and 2; trends 1 "A" and 2
    /// "B" of the first one, with texts 3 and 4; a list of variables.
    void AddInOrder() {
        Rows rows(connection);
        const auto set = [](ado::Recordset& row, const char* column, const char16_t* value) {
            row.Set(column, std::u16string(value));
        };
        for (const char16_t* name : {u"Öfen", u"Walze"}) {
            const std::int32_t id = rows.AddArchive(name);
            rows.AddArchiveText(rows.AddGroup(id, name), name, "L1031");
            set(rows.Texts(), "L1033", u"text");
            rows.Texts().Update();
        }
        for (const char16_t* name : {u"A", u"B"}) {
            NewTrend trend;
            trend.name = name;
            trend.values = {{"TrendVar", std::u16string(u"Pump.Speed")}};
            trend.texts = {{"L1031", std::u16string(name)}, {"L1033", std::u16string(name)}};
            rows.AddTrend(1, trend);
            rows.AddTrendText(2, trend);
        }
        ado::Recordset variables;
        variables.Open(kVariableTable, connection, ado::CommandType::Table);
        variables.AddNew();
        set(variables, "Name", u"Pump.Speed");
        variables.Update();
    }

    void Set(const std::vector<Cell>& cells) {
        for (const Cell& cell : cells) {
            ado::Recordset rows;
            rows.Open(cell.table, connection, ado::CommandType::Table);
            rows.SetFilter("ID = " + std::to_string(cell.id));
            rows.Set(cell.column, cell.value);
            rows.Update();
        }
    }

    void DeleteAll(std::string_view table) {
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        for (; !rows.IsEOF(); rows.MoveNext()) rows.Delete();
    }

    const std::string folder = NewFolder("kvproject").string();
    const std::string path = folder + "/plant.kvs";
    ado::Connection connection;
};

}  // namespace project
