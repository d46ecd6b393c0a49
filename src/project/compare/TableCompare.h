#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ado/Recordset.h"
#include "project/Differences.h"

namespace project {

/// A table of two projects, row by row.
class TableCompare {
public:
    /// Both have the table. The connections are borrowed. `look` is called for each row.
    TableCompare(ado::Connection& before, ado::Connection& after, const std::string& table,
                 std::function<void()> look);

    /// Adds what differs.
    void Run(Differences& found);

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    /// The table in one of the projects.
    struct Side {
        ado::Recordset rows;
        std::vector<std::size_t> fields;  // by column of both; kNone: it has no such column
    };
    using Rows = std::vector<ado::RowChange>;

    void JoinColumns(Differences& found);
    [[nodiscard]] bool HasNumbers() const;
    [[nodiscard]] bool CompareByNumber(Rows& found);
    void CompareAsSets(Rows& found);
    void AddRest(Side& side, std::map<std::size_t, std::ptrdiff_t>& counts, Rows& found);

    [[nodiscard]] static ado::Value ValueOf(const Side& side, std::size_t column);
    [[nodiscard]] std::vector<ado::Value> ValuesOf(const Side& side) const;
    [[nodiscard]] bool HoldTheSame() const;
    [[nodiscard]] ado::RowChange Change(const Side* before, const Side* after) const;

    std::string table_;
    std::function<void()> look_;
    std::array<Side, 2> sides_;
    std::shared_ptr<const std::vector<std::string>> columns_;  // of both
};

}  // namespace project
