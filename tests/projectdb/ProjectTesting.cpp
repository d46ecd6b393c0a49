#include "projectdb/ProjectTesting.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "jet/Check.h"
#include "project/CreateProject.h"
#include "projectdb/Text.h"

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::uint32_t, 2> kLanguages = {1031, 1033};

std::string ConnectionString(const std::string& path) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path +
           ";Mode=Read|Write|Share Deny None;";
}

std::string TextOf(const ado::Value& value) {
    if (const auto* bytes = std::get_if<ado::Binary>(&value)) {
        std::string text = "bytes";
        for (const std::byte b : *bytes) text += ' ' + std::to_string(std::to_integer<int>(b));
        return text;
    }
    return projectdb::ToUtf8(projectdb::ToQString(ado::ToText(value)));
}

std::vector<std::string> ReadTable(ado::Connection& connection, const std::string& table) {
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    std::vector<std::string> lines;
    for (; !rows.IsEOF(); rows.MoveNext()) {
        std::string& line = lines.emplace_back();
        for (std::size_t i = 0; i < rows.Fields().size(); ++i) {
            const ado::Value value = rows.Get(i);
            if (ado::IsNull(value)) continue;
            line += (line.empty() ? "" : "|") + rows.Fields()[i].name + "=" + TextOf(value);
        }
    }
    return lines;
}

std::string BeginOfRow(std::int32_t id) {
    return "ID=" + std::to_string(id) + "|";
}

std::vector<std::string>::iterator Find(std::vector<std::string>& rows, const std::string& begin) {
    return std::find_if(rows.begin(), rows.end(),
                        [&](const std::string& row) { return row.starts_with(begin); });
}

}  // namespace

Content ReadContent(const std::string& path) {
    ado::Connection connection;
    connection.Open(ConnectionString(path));
    Content content;
    for (const std::string& table : connection.TableNames()) {
        content[table] = ReadTable(connection, table);
    }
    return content;
}

std::vector<std::string> ErrorsIn(const std::string& path, const std::string& expected) {
    std::vector<std::string> errors;
    const auto file = jet::OpenFile(path);
    if (!file.IsOk()) return {file.GetStatus().Text()};
    const jet::Status status = jet::Check(**file, [&](const jet::Finding& finding) {
        const auto holds = [&](const std::string& text) {
            return !text.empty() && finding.text.find(text) != std::string::npos;
        };
        const bool isUsual = holds("different keys and has") ||
                             holds("is deleted and still takes") || holds(expected);
        if (finding.severity == jet::Finding::Severity::Error || !isUsual) {
            errors.push_back(finding.text);
        }
        return true;
    });
    if (!status.IsOk()) errors.push_back(status.Text());
    return errors;
}

std::int32_t ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ado::AdoError& error) {
        EXPECT_FALSE(error.Description().empty());
        return error.Number();
    }
    return 0;
}

void FakeWindow::TrendsReloaded() {
    ado::Recordset& rows = project_.Environment().Recordset(ADOArchiv::Command::tabTrends);
    trends.clear();
    if (rows.IsEOF()) return;
    for (rows.MoveFirst(); !rows.IsEOF(); rows.MoveNext()) trends += projectdb::NameOf(rows);
    rows.MoveFirst();
}

ProjectTest::~ProjectTest() {
    if (path_.empty()) return;
    if (project_.environment) {
        for (const ado::Recordset* rows : Environment().Connection().OpenRecordsets()) {
            EXPECT_EQ(rows->EditMode(), ado::EditMode::None);
        }
        project_.CloseDatabase();
    }
    EXPECT_THAT(ErrorsIn(path_, expectedWarning_), testing::IsEmpty());
}

void ProjectTest::Open() {
    Environment().OpenConnection(projectdb::ToQString(path_));
    project_.currentNodeKey = QStringLiteral("ARC0");
}

void ProjectTest::OpenCopy(const std::string& source) {
    path_ = projectdb::ToUtf8(folder_.filePath(QStringLiteral("Projekt.kvs")));
    fs::copy_file(source, path_);
    fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
    Open();
}

void ProjectTest::OpenNew() {
    path_ = projectdb::ToUtf8(folder_.filePath(QStringLiteral("Projekt.kvs")));
    project::CreateProject(path_, kLanguages);
    Open();
}

void ProjectTest::OpenAltered(const std::function<void(ado::NewTable&)>& change) {
    path_ = projectdb::ToUtf8(folder_.filePath(QStringLiteral("Projekt.kvs")));
    std::vector<ado::NewTable> tables = project::ProjectTables(kLanguages);
    for (ado::NewTable& table : tables) change(table);
    ado::CreateFile(path_, tables);
    Open();
}

std::int32_t ProjectTest::Insert(const std::string& table,
                                 const std::map<std::string, ado::Value>& fields) {
    ado::Connection connection;
    connection.Open(ConnectionString(path_));
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    rows.AddNew();
    for (const auto& [name, value] : fields) rows.Set(name, value);
    rows.Update();
    return ado::ToLong(rows.Get("ID"));
}

void ProjectTest::InsertForeignGroup(std::int32_t archiveId) {
    Insert("TidxGroups", {{"Name", std::u16string(u"Fremd")},
                          {"ParentID", std::int32_t{0}},
                          {"Type", std::int32_t{-5}},
                          {"Parameter", archiveId}});
}

void Erase(std::vector<std::string>& rows, const std::set<std::int32_t>& ids) {
    for (const std::int32_t id : ids) {
        const auto row = Find(rows, BeginOfRow(id));
        if (row == rows.end()) {
            ADD_FAILURE() << "there is no row " << id;
        } else {
            rows.erase(row);
        }
    }
}

void Put(std::vector<std::string>& rows, const std::string& row) {
    const auto place = Find(rows, row.substr(0, row.find('|') + 1));
    if (place == rows.end()) {
        rows.push_back(row);
    } else {
        *place = row;
    }
}

std::string RowOf(const std::vector<std::string>& rows, std::int32_t id) {
    std::vector<std::string> copy = rows;
    const auto row = Find(copy, BeginOfRow(id));
    return row == copy.end() ? std::string() : *row;
}

std::string Replaced(std::string row, const std::string& from, const std::string& to) {
    const std::size_t at = row.find(from);
    if (at == std::string::npos) {
        ADD_FAILURE() << row << " does not hold " << from;
        return row;
    }
    return row.replace(at, from.size(), to);
}
