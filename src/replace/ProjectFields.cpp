#include "replace/ProjectFields.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "project/Rows.h"
#include "project/Schema.h"

namespace replace {
namespace {

std::optional<Kind> KindOf(const project::Column& column) {
    if (column.caption == 0) return std::nullopt;
    if (column.name == "Name") return kNames;
    if (column.name == "Comment") return kComments;
    if (column.name == "Unit") return kUnits;
    const bool namesVariables = column.kind == project::Kind::Variable ||
                                column.kind == project::Kind::Limit ||
                                column.kind == project::Kind::FileEvent;
    return namesVariables ? std::optional<Kind>(kVariables) : std::nullopt;
}

/// Nothing for the characters that some columns store in its place.
std::u16string_view TextIn(const ado::Value& value) {
    const auto* text = std::get_if<std::u16string>(&value);
    if (text == nullptr) return {};
    return text->find_first_not_of(u'\0') == text->npos ? std::u16string_view() : *text;
}

/// A column that is searched: its place among the fields of a scan and what it is.
struct Searched {
    std::size_t place;
    std::uint32_t column;
    const project::Column* known;
};

}  // namespace

void ProjectFields::Read(ado::Connection& connection) {
    *this = {};
    const ado::OneState state(connection);
    ReadOwners(connection, project::kArchiveTable);
    ReadOwners(connection, project::kTrendTable);
    ReadTexts(connection);
    const auto place = [this](const Field& field) {
        const Owner& owner = owners_[field.owner];
        return std::tuple(owner.archive, owner.trend, field.column);
    };
    std::sort(fields_.begin(), fields_.end(),
              [&](const Field& a, const Field& b) { return place(a) < place(b); });
}

/// The archives, or the trends of archives that are there, with what stands in their own rows.
void ProjectFields::ReadOwners(ado::Connection& connection, std::string_view table) {
    const bool isArchives = table == project::kArchiveTable;
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    std::vector<std::size_t> scanned{rows.FieldIndex(project::kKeyColumn),
                                     rows.FieldIndex("TextID"), rows.FieldIndex("Name")};
    constexpr std::size_t kId = 0, kText = 1, kName = 2;
    const std::size_t archiveId = scanned.size();
    if (!isArchives) scanned.push_back(rows.FieldIndex("ArchiveID"));
    std::vector<Searched> searched;
    for (const project::Column& column :
         isArchives ? project::ArchiveColumns() : project::TrendColumns()) {
        const auto kind = KindOf(column);
        if (!kind || !project::HasField(rows, column.name)) continue;
        const std::size_t field = rows.FieldIndex(column.name);
        if (!project::IsText(rows.Fields()[field].type)) continue;
        searched.push_back({scanned.size(), static_cast<std::uint32_t>(columns_.size()), &column});
        columns_.push_back({table, std::string(column.name), *kind, column.caption});
        scanned.push_back(field);
    }
    unreadable_ += rows.Scan(scanned, [&](const std::vector<ado::Value>& values) {
        const std::int32_t id = ado::ToLong(values[kId]);
        Owner owner;
        owner.archive = isArchives ? id : ado::ToLong(values[archiveId]);
        owner.trend = isArchives ? 0 : id;
        if (!isArchives && !archives_.contains(owner.archive)) return;  // nobody can see it
        const auto number = static_cast<std::uint32_t>(owners_.size());
        if (isArchives) archives_.emplace(id, number);
        owner.name = Keep(TextIn(values[kName]));
        owners_.push_back(owner);
        if (const std::int32_t text = ado::ToLong(values[kText]); text != 0) {
            textOwners_.emplace(text, number);
        }
        for (const Searched& each : searched) {
            const bool isSearched = columns_[each.column].kind != kVariables ||
                                    project::NamesVariable(*each.known, TextIn(values[each.place]));
            if (isSearched) Add(number, each.column, id, values[each.place]);
        }
    });
}

void ProjectFields::ReadTexts(ado::Connection& connection) {
    ado::Recordset rows;
    rows.Open(project::kTextTable, connection, ado::CommandType::Table);
    std::vector<std::size_t> scanned{rows.FieldIndex(project::kKeyColumn)};
    const auto first = static_cast<std::uint32_t>(columns_.size());
    for (std::size_t i = 0; i < rows.Fields().size(); ++i) {
        const ado::Field& field = rows.Fields()[i];
        if (!project::IsLanguageColumn(field.name) || !project::IsText(field.type)) continue;
        columns_.push_back({project::kTextTable, field.name, kTexts});
        scanned.push_back(i);
    }
    unreadable_ += rows.Scan(scanned, [&](const std::vector<ado::Value>& values) {
        const std::int32_t id = ado::ToLong(values[0]);
        const auto owner = textOwners_.find(id);
        if (owner == textOwners_.end()) return;  // of other editors
        for (std::size_t i = 1; i < values.size(); ++i) {
            Add(owner->second, first + static_cast<std::uint32_t>(i - 1), id, values[i]);
        }
    });
}

void ProjectFields::Add(std::uint32_t owner, std::uint32_t column, std::int32_t row,
                        const ado::Value& value) {
    const std::u16string_view text = TextIn(value);
    if (text.empty()) return;
    const Text kept = Keep(text);
    fields_.push_back({owner, column, row, kept.at, kept.length});
}

ProjectFields::Text ProjectFields::Keep(std::u16string_view text) {
    const auto at = static_cast<std::uint32_t>(texts_.size());
    texts_.append(text);
    return {at, static_cast<std::uint32_t>(text.size())};
}

QStringView ProjectFields::ArchiveName(const Field& field) const {
    return View(owners_[archives_.at(ArchiveOf(field))].name);
}

QStringView ProjectFields::TrendName(const Field& field) const {
    return TrendOf(field) == 0 ? QStringView() : View(owners_[field.owner].name);
}

}  // namespace replace
