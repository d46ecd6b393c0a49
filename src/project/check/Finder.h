#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "project/Check.h"
#include "project/check/TableScan.h"

namespace project {

/// Where and under what name a finding is told.
struct FoundAt {
    std::string_view table;
    std::int32_t id = 0;
    std::u16string_view name{};
    std::u16string_view archive{};
};

/// A row that names a text.
struct TextOwner {
    std::int32_t text = 0;
    bool isTrend = false;
    std::int32_t id = 0;
    [[nodiscard]] auto operator<=>(const TextOwner&) const = default;
};

/// A group of texts of archives' trends.
struct TextGroup {
    std::int32_t id = 0;
    std::int32_t parent = 0;
    std::int32_t archive = 0;
    std::u16string name;
};

/// What the check knows of the project while it goes from table to table, and what it has found.
struct Finder {
    const Severities& severities;
    const std::function<bool()>& goOn;  // see CheckProject
    CheckResult result{};

    std::vector<std::int32_t> textKeys{};                         // ascending
    std::unordered_map<std::int32_t, std::u16string> archives{};  // names by ID
    std::vector<TextGroup> groups{};                              // by ID
    bool hasGroups = false;                                       // there is a table of them
    bool hasTexts = false;
    std::unordered_set<std::u16string> variables{};  // folded
    bool isVariableLeft = false;  // one is named that has not been looked up, for want of a list
    std::vector<std::string> languages{};  // columns of texts
    std::vector<TextOwner> owners{};

    [[nodiscard]] bool Looks(Rule rule) const { return severities[rule] != Severity::Off; }
    void Add(Rule rule, const FoundAt& at, std::string_view column,
             std::vector<Finding::Value> values = {}, std::vector<FoundRow> others = {});
    /// Goes through a table.
    void Run(const TableScan& scan, std::string_view table,
             const std::function<void(const ScannedRow& row)>& look);

    /// Texts that fill their columns.
    void CheckLengths(const TableScan& scan, const ScannedRow& row, const FoundAt& at,
                      const std::vector<FoundRow>& others = {});
    /// What columns hold that is not in their lists, and variables that are not there.
    void CheckKnownColumns(const TableScan& scan, const ScannedRow& row, const FoundAt& at);
    /// The row's TextID; adds the row to the owners.
    void CheckText(Rule rule, ScanPlace place, const ScannedRow& row, const FoundAt& at);
};

/// Rows of one scope by their names: finds those that have the same.
class NameList {
public:
    struct Entry {
        std::int32_t scope = 0;
        std::u16string folded;
        std::int32_t id = 0;
        std::u16string name;
        [[nodiscard]] auto operator<=>(const Entry&) const = default;
    };
    void Add(std::int32_t scope, std::int32_t id, std::u16string_view name);
    /// `each` gets a row and the IDs of the others with its name.
    void ForEachDouble(const std::function<void(const Entry& entry,
                                                const std::vector<std::int32_t>& others)>& each);

private:
    std::vector<Entry> entries_;
};

/// The first few of these rows of a table.
[[nodiscard]] std::vector<FoundRow> SomeOf(std::string_view table,
                                           const std::vector<std::int32_t>& ids);
/// As many other rows as a finding names.
inline constexpr std::size_t kMostOthers = 5;
/// "34, 56"
[[nodiscard]] std::u16string ListOf(const std::vector<std::int32_t>& numbers);
[[nodiscard]] std::u16string DigitsOf(std::optional<std::int32_t> number);

/// The columns of texts in the languages that the project lists; in all where it lists none.
[[nodiscard]] std::vector<std::string> LanguagesOf(ado::Connection& connection,
                                                   const TableScan& texts);

// The steps of the check, in their order: each needs what those before it have read.
void ReadFacts(ado::Connection& connection, Finder& finder);
void CheckArchives(ado::Connection& connection, Finder& finder);
void CheckGroups(Finder& finder);
void CheckTrends(ado::Connection& connection, Finder& finder);
void CheckTexts(ado::Connection& connection, Finder& finder);

}  // namespace project
