#include "exchange/SheetRows.h"

#include "project/Rows.h"

namespace exchange {

using Role = SheetColumn::Role;

ArchiveNames::ArchiveNames(ado::Connection& connection) {
    ado::Recordset rows;
    rows.Open(project::kArchiveTable, connection, ado::CommandType::Table);
    for (; !rows.IsEOF(); rows.MoveNext()) {
        const std::int32_t id = ado::ToLong(rows.Get("ID"));
        const std::u16string& name = names_[id] = project::NameOf(rows);
        ids_[name].push_back(id);
    }
}

void ArchiveNames::AddFormer(const ArchiveNames& former) {
    former_ = former.names_;
    for (const auto& [name, ids] : former.ids_) {
        const auto [entry, isFree] = ids_.try_emplace(name);
        if (!isFree) continue;
        for (const std::int32_t id : ids) {
            if (names_.contains(id)) entry->second.push_back(id);
        }
    }
}

bool ArchiveNames::IsNameOf(std::int32_t id, std::u16string_view name) const {
    const auto has = [&](const auto& names) {
        const auto found = names.find(id);
        return found != names.end() && found->second == name;
    };
    return has(names_) || has(former_);
}

const std::u16string* ArchiveNames::Find(std::int32_t id) const {
    const auto found = names_.find(id);
    return found != names_.end() ? &found->second : nullptr;
}

const std::vector<std::int32_t>& ArchiveNames::Named(const std::u16string& name) const {
    const auto found = ids_.find(name);
    return found != ids_.end() ? found->second : none_;
}

SheetRows::SheetRows(ado::Connection& connection, const Sheet& sheet, const ArchiveNames& archives,
                     Order order)
    : sheet_(sheet), archives_(archives) {
    rows_.Open(TableOf(sheet.Kind()), connection, ado::CommandType::Table);
    const bool isTrends = sheet.Kind() == SheetKind::Trends;
    if (isTrends && order == Order::Archive) rows_.SetSort("ArchiveID, ID");
    textId_ = rows_.FieldIndex("TextID");
    archiveId_ = rows_.FieldIndex(isTrends ? "ArchiveID" : "ID");
    name_ = rows_.FieldIndex("Name");
    std::size_t texts = 0;
    for (const SheetColumn& column : sheet.Columns()) {
        places_.push_back(column.role == Role::Text ? texts++
                                                    : rows_.FieldIndex(column.field.name));
    }
    ReadTexts(connection);
}

void SheetRows::ReadTexts(ado::Connection& connection) {
    ado::Recordset texts;
    texts.Open(project::kTextTable, connection, ado::CommandType::Table);
    std::vector<std::size_t> fields;
    for (const SheetColumn& column : sheet_.Columns()) {
        if (column.role == Role::Text) fields.push_back(texts.FieldIndex(column.field.name));
    }
    if (fields.empty()) return;
    const std::size_t id = texts.FieldIndex("ID");
    for (; !texts.IsEOF(); texts.MoveNext()) {
        std::vector<ado::Value>& values = texts_[ado::ToLong(texts.Get(id))];
        values.reserve(fields.size());
        for (const std::size_t field : fields) values.push_back(texts.Get(field));
    }
}

bool SheetRows::Next() {
    if (!isBefore_) rows_.MoveNext();
    isBefore_ = false;
    if (rows_.IsEOF()) return false;
    const ado::Value text = rows_.Get(textId_);
    const auto found = ado::IsNull(text) ? texts_.end() : texts_.find(ado::ToLong(text));
    text_ = found != texts_.end() ? &found->second : nullptr;
    return true;
}

void SheetRows::Restart() {
    if (!rows_.IsBOF() || !rows_.IsEOF()) rows_.MoveFirst();
    isBefore_ = true;
}

std::int32_t SheetRows::Id() const {
    return ado::ToLong(rows_.Get(places_.front()));
}

std::optional<std::int32_t> SheetRows::Archive() const {
    const ado::Value id = rows_.Get(archiveId_);
    if (ado::IsNull(id) || archives_.Find(ado::ToLong(id)) == nullptr) return std::nullopt;
    return ado::ToLong(id);
}

std::u16string SheetRows::Name() const {
    return ado::ToText(rows_.Get(name_));
}

ado::Value SheetRows::Get(std::size_t column) const {
    switch (sheet_.Columns()[column].role) {
        case Role::Text:
            return text_ != nullptr ? (*text_)[places_[column]] : ado::Value();
        case Role::Archive: {
            const auto id = Archive();
            return id ? ado::Value(*archives_.Find(*id)) : ado::Value();
        }
        default:
            return rows_.Get(places_[column]);
    }
}

}  // namespace exchange
