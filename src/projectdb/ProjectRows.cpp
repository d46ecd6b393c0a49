#include "projectdb/ProjectRows.h"

#include <algorithm>
#include <string>

#include "projectdb/Text.h"

namespace projectdb {
namespace {

// TidxGroups.Type of the archives' groups, stored; other editors have others.
constexpr std::int32_t kArchiveGroup = -2;
constexpr std::string_view kOfArchives = " AND Type = -2";

bool Seek(ado::Recordset& rows, std::string_view column, std::int32_t id) {
    rows.SetFilter(std::string(column) + std::to_string(id));
    return !rows.IsEOF();
}

}  // namespace

ado::Recordset& ProjectRows::operator[](ADOArchiv::Command command) {
    ado::Recordset& rows = recordsets_.at(static_cast<std::size_t>(command));
    if (rows.State() == ado::ObjectState::Closed) {
        const ADOArchiv::Definition& definition = ADOArchiv::DefinitionOf(command);
        rows.Open(definition.source, environment_.Connection(), definition.type);
    }
    return rows;
}

bool ProjectRows::SeekArchive(std::int32_t id) {
    return Seek(Archives(), "ID = ", id);
}

bool ProjectRows::SeekTrend(std::int32_t id) {
    return Seek(Trends(), "ID = ", id);
}

bool ProjectRows::SeekText(std::int32_t id) {
    return Seek(Texts(), "ID=", id);
}

bool ProjectRows::SeekTextOf(const ado::Recordset& owner) {
    const auto text = NumberOf(owner, "TextID");
    return text && SeekText(*text);
}

bool ProjectRows::SeekGroup(std::int32_t archiveId) {
    Groups().SetFilter("Parameter= " + std::to_string(archiveId) + std::string(kOfArchives));
    return Groups().RecordCount() == 1;
}

bool ProjectRows::SeekTrendsOf(std::int32_t archiveId) {
    return Seek(Trends(), "ArchiveID = ", archiveId);
}

std::int32_t ProjectRows::RootGroup() {
    Groups().SetFilter("ParentID = 0" + std::string(kOfArchives));
    return Groups().IsEOF() ? 0 : NumberOf(Groups(), "ID").value_or(0);
}

std::int32_t ProjectRows::AddGroup(std::int32_t archiveId, const QString& name) {
    const std::int32_t root = RootGroup();
    ado::Recordset& groups = Groups();
    const EditScope scope(groups);
    groups.AddNew();
    groups.Set("ParentID", root);
    groups.Set("Name", ToUtf16(name));
    groups.Set("Type", kArchiveGroup);
    groups.Set("Delete", false);
    groups.Set("Rename", false);
    groups.Set("Parameter", archiveId);
    groups.Update();
    return ado::ToLong(groups.Get("ID"));
}

std::optional<std::int32_t> NumberOf(const ado::Recordset& rows, std::string_view field) {
    const ado::Value value = rows.Get(field);
    if (ado::IsNull(value)) return std::nullopt;
    return ado::ToLong(value);
}

QString NameOf(const ado::Recordset& rows) {
    return ToQString(ado::ToText(rows.Get("Name")));
}

bool HasField(const ado::Recordset& rows, std::string_view field) {
    return std::any_of(rows.Fields().begin(), rows.Fields().end(),
                       [&](const ado::Field& f) { return f.name == field; });
}

}  // namespace projectdb
