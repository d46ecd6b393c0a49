#include "ado/detail/RowSet.h"

#include <algorithm>
#include <utility>

#include "ado/detail/Convert.h"
#include "ado/detail/ProviderError.h"
#include "ado/detail/Query.h"

namespace ado {
namespace {

int DefinedSize(const jet::Column& column) {
    // Texts are stored in units of two bytes.
    return column.type == jet::ColumnType::Text ? column.length / 2 : column.length;
}

}  // namespace

void RowSet::AddTable(jet::Database& database, const std::string& name, std::string alias) {
    auto table = database.OpenTable(name);
    if (!table.IsOk()) {
        if (table.GetStatus().Code() != jet::StatusCode::NotFound) {
            ThrowStatus(table.GetStatus(), file_);
        }
        throw AdoError(ErrorNumber::kTableNotFound,
                       "\"" + file_ + "\": " + table.GetStatus().Text() + ".",
                       {reasons::Cause::TableMissing, file_, name});
    }
    tables_.push_back({std::move(*table), std::move(alias)});
}

void RowSet::AddField(std::size_t table, std::size_t column, std::string name) {
    const jet::Column& def = Table(table).Definition().columns[column];
    fields_.push_back({std::move(name), TypeOf(def), DefinedSize(def), Table(table).Name(),
                       def.name, def.IsAutoNumber()});
    origins_.push_back({table, column});
}

RowSet RowSet::OfTable(jet::Database& database, const std::string& file, std::string_view name) {
    RowSet rows;
    rows.file_ = file;
    rows.AddTable(database, std::string(name), std::string(name));
    const auto& columns = rows.Table(0).Definition().columns;
    for (std::size_t i = 0; i < columns.size(); ++i) rows.AddField(0, i, columns[i].name);
    return rows;
}

std::optional<RowSet::Origin> RowSet::FindColumn(const ColumnRef& ref) const {
    std::optional<Origin> found;
    for (std::size_t table = 0; table < tables_.size(); ++table) {
        const bool fits =
            ref.qualifier.empty() || jet::SameName(ref.qualifier, tables_[table].alias);
        const auto column = fits ? Table(table).Definition().FindColumn(ref.name) : std::nullopt;
        if (!column) continue;
        if (found) {
            throw AdoError(ErrorNumber::kSyntax, "The column \"" + ref.name +
                                                     "\" stands in more than one table of the "
                                                     "query; write its table in front.");
        }
        found = Origin{table, *column};
    }
    return found;
}

RowSet RowSet::OfQuery(jet::Database& database, const std::string& file, std::string_view statement,
                       const std::vector<std::u16string>& parameters) {
    Query query = ParseQuery(statement);
    if (query.sources.size() > kMostTables) {
        throw AdoError(ErrorNumber::kFeatureNotAvailable, "A query joins two tables at most.");
    }
    RowSet rows;
    rows.file_ = file;
    for (Query::Source& source : query.sources) {
        rows.AddTable(database, source.table, std::move(source.alias));
    }
    std::vector<bool> hasAlias;
    for (Query::Item& item : query.items) {
        if (!item.isAll) {
            const auto origin = rows.FindColumn(item.column);
            if (!origin) {
                throw AdoError(ErrorNumber::kParameterMissing,
                               "The query names the column \"" + item.column.name +
                                   "\", which none of its tables has.",
                               {reasons::Cause::ColumnMissing, file, item.column.name});
            }
            const auto& column =
                rows.Table(origin->table).Definition().columns[origin->column].name;
            hasAlias.push_back(!item.alias.empty());
            rows.AddField(origin->table, origin->column, item.alias.empty() ? column : item.alias);
            continue;
        }
        for (std::size_t table = 0; table < rows.tables_.size(); ++table) {
            const std::string& qualifier = item.column.qualifier;
            if (!qualifier.empty() && !jet::SameName(qualifier, rows.tables_[table].alias))
                continue;
            const auto& columns = rows.Table(table).Definition().columns;
            for (std::size_t i = 0; i < columns.size(); ++i) {
                hasAlias.push_back(false);
                rows.AddField(table, i, columns[i].name);
            }
        }
    }
    rows.QualifyDoubles(hasAlias);
    if (query.where == nullptr) return rows;

    std::vector<std::string> names;  // of the parameters, in the order of their first appearance
    ForEachColumn(*query.where, [&](Operand& operand) {
        if (const auto origin = rows.FindColumn(operand.column)) {
            operand.column.table = origin->table;
            operand.column.column = origin->column;
            return;
        }
        const std::string& name = operand.column.name;
        const auto known = std::find_if(names.begin(), names.end(), [&](const std::string& other) {
            return jet::SameName(other, name);
        });
        const auto number = static_cast<std::size_t>(known - names.begin());
        if (known == names.end()) names.push_back(name);
        if (number >= parameters.size()) {
            throw AdoError(ErrorNumber::kParameterMissing,
                           "The query needs a value for the parameter \"" + name + "\".");
        }
        operand.isColumn = false;
        operand.constant = parameters[number];
    });
    rows.where_ = std::move(query.where);
    return rows;
}

void RowSet::QualifyDoubles(const std::vector<bool>& hasAlias) {
    std::vector<bool> isDouble(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        for (std::size_t j = i + 1; j < fields_.size(); ++j) {
            if (!jet::SameName(fields_[i].name, fields_[j].name)) continue;
            isDouble[i] = isDouble[i] || !hasAlias[i];
            isDouble[j] = isDouble[j] || !hasAlias[j];
        }
    }
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (isDouble[i]) fields_[i].name = tables_[origins_[i].table].alias + "." + fields_[i].name;
    }
}

std::size_t RowSet::FieldIndex(std::string_view name) const {
    // Callers write the names as they stand; only then is the slower comparison needed.
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].name == name) return i;
    }
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (jet::SameName(fields_[i].name, name)) return i;
    }
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const std::string& table = tables_[origins_[i].table].alias;
        if (jet::SameName(table + "." + fields_[i].baseColumn, name)) return i;
    }
    throw AdoError(ErrorNumber::kItemNotFound,
                   "There is no column \"" + std::string(name) + "\" in this recordset.",
                   {reasons::Cause::ColumnMissing, file_, std::string(name)});
}

void RowSet::Bind(Expression& expression) const {
    ForEachColumn(expression, [&](Operand& operand) {
        const ColumnRef& ref = operand.column;
        const std::string name = ref.qualifier.empty() ? ref.name : ref.qualifier + "." + ref.name;
        const Origin origin = OriginOf(FieldIndex(name));
        operand.column.table = origin.table;
        operand.column.column = origin.column;
    });
}

bool RowReader::LoadNow(RowKey key) {
    key_.reset();
    const auto known = std::exchange(loadedFirst_, std::nullopt);
    const jet::ReadScope scope = rows_.Table(0).Hold();
    Check(scope.GetStatus(), rows_.File());
    for (std::size_t i = 0; i < rows_.TableCount(); ++i) {
        const auto pointer = static_cast<std::uint32_t>(i == 0 ? key >> 32 : key);
        const jet::RowId row = jet::RowId::FromPointer(pointer);
        if (known == i && current_.at(i).Id() == row) continue;
        if (!Fetch(i, row)) return false;
    }
    key_ = key;
    return true;
}

bool RowReader::LoadOne(std::size_t table, jet::RowId row) {
    Forget();
    if (!Fetch(table, row)) return false;
    loadedFirst_ = table;
    return true;
}

bool RowReader::Fetch(std::size_t table, jet::RowId row) {
    auto fetched = rows_.Table(table).Fetch(row);
    if (!fetched.IsOk()) {
        if (fetched.GetStatus().Code() == jet::StatusCode::NotFound) return false;
        ThrowStatus(fetched.GetStatus(), rows_.File());
    }
    current_.at(table) = std::move(*fetched);
    return true;
}

Value RowReader::Get(std::size_t table, std::size_t column) const {
    jet::Table& source = rows_.Table(table);
    Check(current_.at(table).Read(column, stored_), rows_.File());
    if (std::holds_alternative<jet::LongValue>(stored_)) {
        // Its place may have changed since the row was read, and the row with it.
        const jet::Row now = Check(source.Fetch(current_.at(table).Id()), rows_.File());
        Check(now.Read(column, stored_), rows_.File());
    }
    // What most columns hold.
    if (const auto* text = std::get_if<std::u16string>(&stored_)) return *text;
    if (const auto* number = std::get_if<std::int32_t>(&stored_)) return *number;
    if (const auto* number = std::get_if<double>(&stored_)) return *number;
    if (stored_.index() == 0) return Null{};
    return Check(FromStored(source, stored_), rows_.File());
}

bool RowReader::Holds(const Expression& condition) const {
    return ado::Holds(condition,
                      [this](const ColumnRef& ref) { return Get(ref.table, ref.column); });
}

}  // namespace ado
