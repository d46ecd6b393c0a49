#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"
#include "project/Check.h"

/// What can be done about findings of the check without asking for values.
namespace project {

/// Safe: nothing is lost, and what is recorded stays what it is. ToBeLookedAt: it does away with
/// the finding, and whether that is what is meant only people know.
enum class CureKind { None, Safe, ToBeLookedAt };

[[nodiscard]] CureKind CureOf(const Finding& finding);

/// One thing that a cure does with a row.
struct CureStep {
    enum class Kind {
        Set,       // the field gets another value
        AddText,   // the archive or trend gets a text: its name, in all languages of the project
        CopyText,  // it gets a text of its own, a copy of the one that it has
        AddGroup,  // the archive gets a group of texts; 0: the project, the one above all
        Remove,    // the row goes; of a trend with its text
    };
    Kind kind{};
    std::string_view table{};  // of the schema
    std::int32_t id = 0;
    std::string column{};  // Set
    ado::Value was{};      // Set
    ado::Value is{};       // Set
};

/// What is done about one finding.
struct PlannedCure {
    std::size_t finding = 0;  // position
    CureKind kind{};
    std::vector<CureStep> steps{};
};

/// The cures of those findings that have one and are still as they were found; nothing is written.
/// Those of one set fit each other. Throws ado::AdoError. `connection` is borrowed and open.
[[nodiscard]] std::vector<PlannedCure> PlanCures(ado::Connection& connection,
                                                 std::span<const Finding> findings);

/// Does all of it as one transaction. False: a row has become another since it was planned, and
/// nothing is written. Throws ado::AdoError; nothing is written then.
[[nodiscard]] bool ApplyCures(ado::Connection& connection, std::span<const PlannedCure> cures);

}  // namespace project
