#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "project/Pattern.h"
#include "project/Rows.h"

namespace patterns {

/// What goes with one entry of a list: every trend that is made with it gets it. As it is typed;
/// empty: as every new trend has it.
struct EntrySettings {
    std::u16string unit;
    std::u16string smallest;
    std::u16string largest;
    std::u16string colour;  // "#RRGGBB"

    [[nodiscard]] bool operator==(const EntrySettings&) const = default;
};

/// What is typed for trends that are to be made.
struct TrendPatterns {
    std::u16string name;  // leads the others
    std::u16string variable;
    std::vector<std::pair<std::string, std::u16string>> texts;  // by language column
    /// By brace of the name and number of its entry.
    std::map<std::pair<std::size_t, std::size_t>, EntrySettings> entries;
};

/// What is known of the archive that gets the trends.
struct Archive {
    std::set<std::u16string> names;  // in use, folded (ado::FoldName)
    std::size_t longestName = 0;     // in UTF-16 units, like all that follow
    std::size_t longestVariable = 0;
    std::size_t longestText = 0;
    std::size_t longestUnit = 0;
};

/// The trends that patterns stand for, as a table that can be corrected: a row for each, with name,
/// variable, a text for each language, unit, smallest and largest value and colour.
class TrendPlan {
public:
    static constexpr std::size_t kName = 0;
    static constexpr std::size_t kVariable = 1;
    static constexpr std::size_t kFirstText = 2;

    /// Corrections stay as long as the pattern of the name is the same.
    void Set(TrendPatterns patterns);
    [[nodiscard]] const TrendPatterns& Patterns() const noexcept { return patterns_; }
    [[nodiscard]] const project::Pattern& Name() const noexcept { return name_; }

    /// The first pattern that cannot be understood: its column, and what is wrong with it.
    struct Fault {
        std::size_t column = 0;
        project::PatternFault fault;
    };
    [[nodiscard]] const std::optional<Fault>& Wrong() const noexcept { return wrong_; }

    [[nodiscard]] std::size_t Rows() const noexcept { return rows_; }
    [[nodiscard]] std::size_t Columns() const noexcept { return kFirstText + texts_.size() + 4; }
    [[nodiscard]] std::size_t UnitColumn() const noexcept { return kFirstText + texts_.size(); }
    [[nodiscard]] std::size_t SmallestColumn() const noexcept { return UnitColumn() + 1; }
    [[nodiscard]] std::size_t LargestColumn() const noexcept { return UnitColumn() + 2; }
    [[nodiscard]] std::size_t ColourColumn() const noexcept { return UnitColumn() + 3; }

    [[nodiscard]] std::u16string Cell(std::size_t row, std::size_t column) const;
    void Correct(std::size_t row, std::size_t column, std::u16string text);
    [[nodiscard]] bool IsCorrected(std::size_t row, std::size_t column) const;
    /// A row that is left out is not made.
    void LeaveOut(std::size_t row, bool out);
    [[nodiscard]] bool IsLeftOut(std::size_t row) const { return leftOut_.contains(row); }

    enum class Problem { None, NameEmpty, NameDouble, TooLong, NoNumber, NoColour };
    /// Finds out what stands against the rows. To be called after each change.
    void Check(const Archive& archive);
    [[nodiscard]] Problem ProblemOf(std::size_t row, std::size_t column) const;
    [[nodiscard]] std::size_t ProblemCount() const noexcept { return problems_.size(); }

    /// How many rows are not left out, and they. REQUIRES: Check has found no problem.
    [[nodiscard]] std::size_t Count() const noexcept { return rows_ - leftOut_.size(); }
    [[nodiscard]] std::vector<project::NewTrend> Trends() const;

private:
    using Place = std::pair<std::size_t, std::size_t>;  // row, column

    [[nodiscard]] std::u16string Planned(std::size_t row, std::size_t column) const;
    [[nodiscard]] Problem ProblemIn(std::size_t column, const std::u16string& text,
                                    const Archive& archive) const;
    void CheckNames(const Archive& archive);

    TrendPatterns patterns_;
    project::Pattern name_;
    project::Pattern variable_;
    std::vector<project::Pattern> texts_;
    std::optional<Fault> wrong_;
    std::size_t rows_ = 0;
    std::map<Place, std::u16string> corrections_;
    std::set<std::size_t> leftOut_;
    std::map<Place, Problem> problems_;
};

/// Makes the trends in an archive, each with its index text, as one transaction.
struct Made {
    bool isDone = false;            // false: nothing has been made
    std::vector<std::int32_t> ids;  // in the order given
    std::size_t taken = 0;          // names that others have given meanwhile
};
/// `goOn` hears how many are made and takes all back with false. Throws ado::AdoError; nothing is
/// made then.
[[nodiscard]] Made MakeTrends(ado::Connection& connection, std::int32_t archive,
                              const std::vector<project::NewTrend>& trends,
                              const std::function<bool(std::size_t made)>& goOn = {});

/// What can be known of an archive before. Throws ado::AdoError.
[[nodiscard]] Archive ReadArchive(ado::Connection& connection, std::int32_t archive);

}  // namespace patterns
