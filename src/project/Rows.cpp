#include "project/Rows.h"

#include <algorithm>
#include <cstdio>

#include "project/Names.h"

namespace project {
namespace {

constexpr std::string_view kOfArchives = " AND Type = -2";
constexpr std::string_view kColour = "VLineColor";
// Typeface in 32 characters, then size, style and weight in fields of four.
constexpr std::u16string_view kFont =
    u"Arial                             8   0   0   0   0   0 400";

bool Seek(ado::Recordset& rows, std::string_view column, std::int32_t id) {
    rows.SetFilter(std::string(column) + std::to_string(id));
    return !rows.IsEOF();
}

int LengthOfName(const ado::Recordset& rows) {
    return rows.Fields()[rows.FieldIndex("Name")].definedSize;
}

void Assign(ado::Recordset& row, const Values& values, const NewTrend& trend) {
    for (const auto& [column, value] : values) {
        if (trend.assigning) trend.assigning(column);
        row.Set(column, value);
    }
    if (trend.assigning) trend.assigning({});
}

/// A table whose colours are of another type, or that has none, does without.
void AssignColour(ado::Recordset& row, std::int32_t colour) {
    if (!HasField(row, kColour)) return;
    const std::size_t field = row.FieldIndex(kColour);
    if (IsNumber(row.Fields()[field].type)) row.Set(field, colour);
}

}  // namespace

ado::Recordset& Rows::Opened(ado::Recordset& rows, std::string_view table) {
    if (rows.State() == ado::ObjectState::Closed) {
        rows.Open(table, connection_, ado::CommandType::Table);
    }
    return rows;
}

bool Rows::SeekArchive(std::int32_t id) {
    return Seek(Archives(), "ID = ", id);
}

bool Rows::SeekTrend(std::int32_t id) {
    return Seek(Trends(), "ID = ", id);
}

bool Rows::SeekText(std::int32_t id) {
    return Seek(Texts(), "ID=", id);
}

bool Rows::SeekTextOf(const ado::Recordset& owner) {
    const auto text = NumberOf(owner, "TextID");
    return text && SeekText(*text);
}

bool Rows::SeekGroup(std::int32_t archiveId) {
    Groups().SetFilter("Parameter= " + std::to_string(archiveId) + std::string(kOfArchives));
    return Groups().RecordCount() == 1;
}

bool Rows::SeekTrendsOf(std::int32_t archiveId) {
    return Seek(Trends(), "ArchiveID = ", archiveId);
}

/// Looks in rows of its own: the current archive stays.
bool Rows::IsArchive(std::int32_t id) {
    ado::Recordset archives;
    return Seek(Opened(archives, kArchiveTable), "ID = ", id);
}

std::int32_t Rows::RootGroup() {
    ado::Recordset& groups = Groups();
    groups.SetFilter("ParentID = 0" + std::string(kOfArchives));
    for (; !groups.IsEOF(); groups.MoveNext()) {
        const std::int32_t archive = NumberOf(groups, "Parameter").value_or(0);
        if (archive == 0 || !IsArchive(archive)) return NumberOf(groups, "ID").value_or(0);
    }
    return 0;
}

std::int32_t Rows::GroupOfTrends(std::int32_t archiveId) {
    return SeekGroup(archiveId) ? ado::ToLong(Groups().Get("ID")) : RootGroup();
}

std::int32_t Rows::AddArchive(std::u16string_view name) {
    ado::Recordset& archives = Archives();
    const EditScope scope(archives);
    archives.AddNew();
    AssignDefaults(archives, ArchiveColumns());
    archives.Set("Name", std::u16string(kPlaceholder));
    archives.Update();
    archives.Set("Name", std::u16string(name));
    if (HasField(archives, "FileName")) {
        const std::size_t field = archives.FieldIndex("FileName");
        const std::u16string file = FileNameOf(name);
        const ado::Field& column = archives.Fields()[field];
        const bool fits = column.type == ado::DataType::LongVarWChar ||
                          file.size() <= static_cast<std::size_t>(column.definedSize);
        if (IsText(column.type) && fits) archives.Set(field, file);
    }
    archives.Update();
    return ado::ToLong(archives.Get("ID"));
}

std::int32_t Rows::AddGroup(std::int32_t archiveId, std::u16string_view name) {
    const std::int32_t root = RootGroup();
    ado::Recordset& groups = Groups();
    const EditScope scope(groups);
    groups.AddNew();
    groups.Set("ParentID", root);
    groups.Set("Name", std::u16string(name));
    groups.Set("Type", kArchiveGroup);
    groups.Set("Delete", false);
    groups.Set("Rename", false);
    groups.Set("Parameter", archiveId);
    groups.Update();
    return ado::ToLong(groups.Get("ID"));
}

std::int32_t Rows::AddArchiveText(std::int32_t group, std::u16string_view archiveName,
                                  std::string_view languageColumn) {
    ado::Recordset& texts = Texts();
    const EditScope scope(texts);
    texts.AddNew();
    texts.Set("ParentID", group);
    texts.Set("Name", ArchiveTextName(archiveName));
    if (HasField(texts, languageColumn)) texts.Set(languageColumn, std::u16string(archiveName));
    texts.Update();
    const std::int32_t id = ado::ToLong(texts.Get("ID"));
    const EditScope archiveScope(Archives());
    Archives().Set("TextID", id);
    Archives().Update();
    return id;
}

std::int32_t Rows::AddTrend(std::int32_t archiveId, const NewTrend& trend) {
    ado::Recordset& trends = Trends();
    trends.SetFilter("");
    const EditScope scope(trends);
    trends.AddNew();
    trends.Set("ArchiveID", archiveId);
    Assign(trends, {{"Name", trend.name.empty() ? std::u16string(kPlaceholder) : trend.name}},
           trend);
    AssignDefaults(trends, TrendColumns());
    AssignColour(trends, trend.colour);
    Assign(trends, trend.values, trend);
    trends.Update();
    const std::int32_t id = ado::ToLong(trends.Get("ID"));
    if (trend.name.empty()) {
        trends.Set("Name", NewTrendName(id, trend.isInUse));
        trends.Update();
    }
    return id;
}

std::int32_t Rows::AddTrendText(std::int32_t group, const NewTrend& trend) {
    ado::Recordset& texts = Texts();
    const EditScope textScope(texts);
    texts.AddNew();
    texts.Set("ParentID", group);
    texts.Set("Name", TrendTextName(NameOf(Trends())));
    Assign(texts, trend.texts, trend);
    texts.Update();
    const std::int32_t id = ado::ToLong(texts.Get("ID"));
    const EditScope trendScope(Trends());
    Trends().Set("TextID", id);
    Trends().Update();
    return id;
}

void Rows::AddLanguage(std::uint32_t lcid) {
    char layout[9];
    std::snprintf(layout, sizeof layout, "%08X", static_cast<unsigned>(lcid));
    ado::Recordset languages;
    languages.Open(kLanguageTable, connection_, ado::CommandType::Table);
    languages.AddNew();
    languages.Set("LCID", static_cast<std::int32_t>(lcid));
    languages.Set("kbLayout", std::u16string(layout, layout + 8));
    languages.Set("Font", std::u16string(kFont));
    languages.Update();
}

void Rows::NameGroupAndText(std::int32_t archiveId) {
    const std::u16string name = NameOf(Archives());
    if (SeekGroup(archiveId)) {
        const EditScope scope(Groups());
        Groups().Set("Name", name);
        Groups().Update();
    }
    if (SeekTextOf(Archives())) {
        Texts().Set("Name", ArchiveTextName(name));
        Texts().Update();
    }
}

int Rows::LongestArchiveName() {
    return std::min(LengthOfName(Archives()), LengthOfName(Texts()) - kArchiveTextPrefix);
}

int Rows::LongestTrendName() {
    return std::min(LengthOfName(Trends()), LengthOfName(Texts()) - kTrendTextPrefix);
}

void Rows::BeginRemoving() {
    // Asked of all of them first: a failure in the middle leaves removed what is removed.
    for (const ado::Recordset* table : {&Archives(), &Groups(), &Texts(), &Trends()}) {
        table->RequireWritable();
    }
    // Rows that cannot be read name no text.
    const auto texts = [](const ado::Recordset& owners) {
        return owners.NumbersOf(owners.FieldIndex("TextID"));
    };
    std::vector<std::int32_t> named = texts(Trends());
    const std::vector<std::int32_t> archives = texts(Archives());
    named.insert(named.end(), archives.begin(), archives.end());
    std::sort(named.begin(), named.end());
    sharedTexts_.clear();
    for (std::size_t i = 1; i < named.size(); ++i) {
        if (named[i] == named[i - 1]) ++sharedTexts_.try_emplace(named[i], 1).first->second;
    }
}

bool Rows::RemoveArchive(std::int32_t id) {
    if (!SeekArchive(id)) return false;
    if (SeekGroup(id)) Groups().Delete();
    RemoveTextOf(Archives());
    Archives().Delete();
    return true;
}

bool Rows::RemoveTrend(std::int32_t id) {
    if (!SeekTrend(id)) return false;
    RemoveTextOf(Trends());
    Trends().Delete();
    return true;
}

void Rows::RemoveTextOf(const ado::Recordset& owner) {
    const auto text = NumberOf(owner, "TextID");
    if (!text) return;
    const auto shared = sharedTexts_.find(*text);
    if (shared != sharedTexts_.end() && --shared->second > 0) return;
    if (SeekText(*text)) Texts().Delete();
}

std::optional<std::int32_t> NumberOf(const ado::Recordset& rows, std::string_view field) {
    const ado::Value value = rows.Get(field);
    if (ado::IsNull(value)) return std::nullopt;
    return ado::ToLong(value);
}

std::u16string NameOf(const ado::Recordset& rows) {
    return ado::ToText(rows.Get("Name"));
}

void RenameTrendText(ado::Recordset& trend, std::u16string_view oldName,
                     std::u16string_view newName) {
    for (std::size_t i = 0; i < trend.Fields().size(); ++i) {
        const ado::Field& field = trend.Fields()[i];
        if (field.baseTable != kTextTable || field.baseColumn != "Name") continue;
        const std::u16string name = TrendTextName(newName);
        const bool fits = name.size() <= static_cast<std::size_t>(field.definedSize);
        if (fits && ado::ToText(trend.Get(i)) == TrendTextName(oldName)) trend.Set(i, name);
    }
}

bool HasField(const ado::Recordset& rows, std::string_view field) {
    return std::any_of(rows.Fields().begin(), rows.Fields().end(),
                       [&](const ado::Field& f) { return f.name == field; });
}

}  // namespace project
