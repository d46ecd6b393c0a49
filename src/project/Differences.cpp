#include "project/Differences.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "ado/Recordset.h"
#include "project/Changes.h"
#include "project/compare/TableCompare.h"
#include "project/Schema.h"

namespace project {
namespace {

/// The project's own tables first; others as the file has them.
std::vector<std::string> InOrder(std::vector<std::string> names) {
    const auto place = [](const std::string& name) {
        return std::ranges::find(Tables(), name, &Table::name) - Tables().begin();
    };
    std::ranges::stable_sort(names, {}, place);
    return names;
}

/// Looks up what rows of one project are called.
class NameReader {
public:
    explicit NameReader(ado::Connection& connection) : connection_(connection) {}

    void Read(std::string_view table, const ado::Value& id, RowNames& names) {
        const auto* number = std::get_if<std::int32_t>(&id);
        if (number == nullptr) return;
        const auto [at, isNew] = names.try_emplace({std::string(table), *number});
        if (!isNew) return;
        ado::Recordset* rows = Opened(at->first.first);
        if (rows != nullptr) rows->SetFilter("ID = " + std::to_string(*number));
        if (rows != nullptr && !rows->IsEOF()) {
            at->second = ado::ToText(rows->Get("Name"));
        } else {
            names.erase(at);
        }
    }

private:
    /// Null when there is no such table.
    ado::Recordset* Opened(const std::string& table) {
        const auto [at, isNew] = tables_.try_emplace(table);
        if (isNew && std::ranges::count(connection_.TableNames(), table) > 0) {
            at->second = std::make_unique<ado::Recordset>();
            at->second->Open(table, connection_, ado::CommandType::Table);
        }
        return at->second.get();
    }

    ado::Connection& connection_;
    std::map<std::string, std::unique_ptr<ado::Recordset>> tables_;
};

/// What a row names: always the archives and groups, of which there are few, others where the
/// change is about them.
void ReadNames(const ado::RowChange& row, const std::vector<ado::Value>& side, NameReader& reader,
               RowNames& names) {
    if (side.empty()) return;
    for (std::size_t i = 0; i < side.size(); ++i) {
        const std::string& column = (*row.columns)[i];
        const std::string_view target = TargetOf(row, column);
        if (target.empty() || column == kKeyColumn) continue;
        const bool hasChanged =
            !row.before.empty() && !row.after.empty() && !IsSame(row.before[i], row.after[i]);
        if (hasChanged || target == kArchiveTable || target == kGroupTable) {
            reader.Read(target, side[i], names);
        }
    }
}

/// All rows of a table, in the order of their IDs.
void AddRows(ado::Connection& project, const std::string& table, bool isNew,
             std::vector<ado::RowChange>& found) {
    ado::Recordset rows;
    rows.Open(table, project, ado::CommandType::Table);
    std::vector<std::string> names;
    for (const ado::Field& field : rows.Fields()) names.push_back(field.name);
    if (std::ranges::count(names, kKeyColumn) > 0) rows.SetSort(kKeyColumn);
    const auto columns = std::make_shared<const std::vector<std::string>>(std::move(names));
    for (; !rows.IsEOF(); rows.MoveNext()) {
        ado::RowChange& row = found.emplace_back();
        row.table = table;
        row.columns = columns;
        std::vector<ado::Value>& values = isNew ? row.after : row.before;
        for (std::size_t i = 0; i < columns->size(); ++i) values.push_back(rows.Get(i));
    }
}

}  // namespace

bool IsSame(const ado::Value& a, const ado::Value& b) {
    if (a == b) return true;
    const auto isNoNumber = [](const ado::Value& value) {
        const auto* number = std::get_if<double>(&value);
        const auto* single = std::get_if<float>(&value);
        return (number != nullptr && std::isnan(*number)) ||
               (single != nullptr && std::isnan(*single));
    };
    return a.index() == b.index() && isNoNumber(a) && isNoNumber(b);
}

Differences Compare(ado::Connection& before, ado::Connection& after,
                    const std::function<bool(std::size_t rows)>& goOn) {
    constexpr std::size_t kPortion = 512;  // rows
    std::size_t looked = 0;
    const auto look = [&] {
        if (++looked % kPortion == 0 && goOn && !goOn(looked)) throw CompareStopped();
    };
    const ado::OneState earlier(before);
    const ado::OneState later(after);
    Differences found;
    const std::vector<std::string> others = after.TableNames();
    for (const std::string& table : InOrder(before.TableNames())) {
        if (std::ranges::count(others, table) == 0) {
            found.tables.push_back({TableDifference::Kind::TableGone, table, {}});
        } else {
            TableCompare(before, after, table, look).Run(found);
        }
    }
    const std::vector<std::string> known = before.TableNames();
    for (const std::string& table : InOrder(others)) {
        if (std::ranges::count(known, table) > 0) continue;
        found.tables.push_back({TableDifference::Kind::TableNew, table, {}});
    }
    NameReader names(before);
    NameReader laterNames(after);
    for (const ado::RowChange& row : found.rows) {
        ReadNames(row, row.before, names, found.before);
        ReadNames(row, row.after, laterNames, found.after);
    }
    return found;
}

Differences CompareWithNothing(ado::Connection& project, bool isNew) {
    const ado::OneState state(project);
    Differences found;
    for (const std::string& table : InOrder(project.TableNames())) {
        AddRows(project, table, isNew, found.rows);
    }
    NameReader names(project);
    for (const ado::RowChange& row : found.rows) {
        ReadNames(row, row.Known(), names, isNew ? found.after : found.before);
    }
    return found;
}

}  // namespace project
