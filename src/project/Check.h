#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ado/Connection.h"
#include "project/CheckRules.h"

/// The check of a whole project: what its rows say that cannot be meant.
namespace project {

/// A row as people know it.
struct FoundRow {
    std::string_view table;  // of the schema
    std::int32_t id = 0;
    std::u16string name{};
    std::u16string archive{};  // the name of a trend's
};

/// Something that a rule has found in a row.
struct Finding {
    /// A value that makes the row a finding, as a text, under the name of its column.
    struct Value {
        std::string column;
        std::u16string text;
        [[nodiscard]] bool operator==(const Value&) const = default;
    };

    Rule rule{};
    Severity severity = Severity::Error;
    std::string_view table;     // of the schema
    std::int32_t id = 0;        // of the row; 0: the table as a whole
    std::string column;         // where the fault is; empty: the row as a whole
    std::vector<Value> values;  // what it hangs on: with others it is another finding
    std::u16string name;        // of the row, for people
    std::u16string archive;     // the name of a trend's, for people
    /// Rows that it is about as well, the first few of them: those with the same name or file, and
    /// whose text it is.
    std::vector<FoundRow> others{};
};

/// "TchrTrends/228/Maximum".
[[nodiscard]] std::string PlaceOf(const Finding& finding);
/// Sixteen hexadecimal digits that are the same as long as rule, row, column and values are,
/// wherever the row lies and whatever it is called.
[[nodiscard]] std::string FingerprintOf(const Finding& finding);

struct CheckResult {
    std::vector<Finding> findings;  // by table, in the order of the schema, ID, and rule
    std::vector<Rule> notChecked;   // the project lacks what they need
    /// Rows that cannot be read, by table. The check knows nothing of them, and what names them
    /// seems to lead nowhere.
    std::vector<std::pair<std::string_view, std::size_t>> unread;
};

/// A check that was told to stop.
class CheckStopped : public std::runtime_error {
public:
    CheckStopped() : std::runtime_error("the check has been stopped") {}
};

/// Looks at all rows, each table once, in one committed state of the file. Throws ado::AdoError
/// when the file has no archives or trends, or cannot be read. `connection` is borrowed and open.
/// `goOn` is asked every few hundred rows, and throws CheckStopped by giving false; may be empty.
[[nodiscard]] CheckResult CheckProject(ado::Connection& connection,
                                       const Severities& severities = {},
                                       const std::function<bool()>& goOn = {});

}  // namespace project
