#include "project/check/Finder.h"

#include <algorithm>
#include <tuple>

#include "ado/Value.h"
#include "project/FieldText.h"
#include "project/Number.h"

namespace project {
namespace {

/// The variable that a column names; empty where it names none.
std::u16string_view VariableIn(const Column& column, std::u16string_view text) {
    switch (column.kind) {
        case Kind::Variable:
            return text;
        case Kind::Limit:
            return ReadNumber(text).whole ? std::u16string_view() : text;
        case Kind::FileEvent:
            return FindClockEvent(text) ? std::u16string_view() : text;
        default:
            return {};
    }
}

}  // namespace

void Finder::Add(Rule rule, const FoundAt& at, std::string_view column,
                 std::vector<Finding::Value> values, std::vector<FoundRow> others) {
    if (!Looks(rule)) return;
    result.findings.push_back({rule, severities[rule], at.table, at.id, std::string(column),
                               std::move(values), std::u16string(at.name),
                               std::u16string(at.archive), std::move(others)});
}

void Finder::Run(const TableScan& scan, std::string_view table,
                 const std::function<void(const ScannedRow& row)>& look) {
    constexpr unsigned kBetweenQuestions = 256;  // rows
    unsigned count = 0;
    const std::size_t unread = scan.Run([&](const ScannedRow& row) {
        if (goOn && ++count % kBetweenQuestions == 0 && !goOn()) throw CheckStopped();
        look(row);
    });
    if (unread > 0) result.unread.emplace_back(table, unread);
}

void Finder::CheckLengths(const TableScan& scan, const ScannedRow& row, const FoundAt& at,
                          const std::vector<FoundRow>& others) {
    for (std::size_t place = 1; place < scan.Columns().size(); ++place) {
        const ScannedColumn& column = scan.Columns()[place];
        if (column.limit == 0) continue;
        const auto* text = std::get_if<std::u16string>(&row.At(place));
        if (text == nullptr || text->size() < column.limit) continue;
        Add(Rule::LengthLimit, at, column.name,
            {{column.name, *text}, {"", DigitsOf(static_cast<std::int32_t>(column.limit))}},
            others);
    }
}

void Finder::CheckKnownColumns(const TableScan& scan, const ScannedRow& row, const FoundAt& at) {
    for (std::size_t place = 1; place < scan.Columns().size(); ++place) {
        const Column* known = scan.Columns()[place].known;
        if (known == nullptr) continue;
        if (known->kind == Kind::Listed && !IsSound(*known, row.At(place))) {
            Add(Rule::CodeUnknown, at, known->name,
                {{std::string(known->name), ValueText(row.At(place))}});
        }
        const std::u16string_view variable = VariableIn(*known, row.Text(place));
        if (variable.empty() || variables.contains(ado::FoldName(variable))) continue;
        if (variables.empty()) {
            isVariableLeft = true;
            continue;
        }
        Add(Rule::VariableUnknown, at, known->name,
            {{std::string(known->name), std::u16string(variable)}});
    }
}

void Finder::CheckText(Rule rule, ScanPlace place, const ScannedRow& row, const FoundAt& at) {
    if (!place || !hasTexts) return;
    const std::optional<std::int32_t> text = row.Long(place);
    if (text && std::binary_search(textKeys.begin(), textKeys.end(), *text)) {
        owners.push_back({*text, at.table == kTrendTable, at.id});
    } else {
        Add(rule, at, "TextID", {{"TextID", DigitsOf(text)}});
    }
}

void NameList::Add(std::int32_t scope, std::int32_t id, std::u16string_view name) {
    entries_.push_back({scope, ado::FoldName(name), id, std::u16string(name)});
}

void NameList::ForEachDouble(
    const std::function<void(const Entry& entry, const std::vector<std::int32_t>& others)>& each) {
    std::sort(entries_.begin(), entries_.end());
    const auto isSame = [](const Entry& a, const Entry& b) {
        return std::tie(a.scope, a.folded) == std::tie(b.scope, b.folded);
    };
    for (auto begin = entries_.begin(); begin != entries_.end();) {
        const auto end = std::find_if_not(
            begin, entries_.end(), [&](const Entry& entry) { return isSame(*begin, entry); });
        for (auto entry = begin; end - begin > 1 && entry != end; ++entry) {
            std::vector<std::int32_t> others;
            for (auto other = begin; other != end; ++other) {
                if (other != entry) others.push_back(other->id);
            }
            each(*entry, others);
        }
        begin = end;
    }
}

std::vector<FoundRow> SomeOf(std::string_view table, const std::vector<std::int32_t>& ids) {
    std::vector<FoundRow> rows;
    for (std::size_t i = 0; i < std::min(ids.size(), kMostOthers); ++i) {
        rows.push_back({table, ids[i]});
    }
    return rows;
}

std::u16string ListOf(const std::vector<std::int32_t>& numbers) {
    std::u16string list;
    for (const std::int32_t number : numbers) {
        if (!list.empty()) list += u", ";
        list += DigitsOf(number);
    }
    return list;
}

std::u16string DigitsOf(std::optional<std::int32_t> number) {
    if (!number) return {};
    const std::string digits = std::to_string(*number);
    return {digits.begin(), digits.end()};
}

}  // namespace project
