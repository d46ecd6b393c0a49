#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "project/Pattern.h"

namespace patterns {

/// What is typed for copies of an archive.
struct ArchivePatterns {
    std::u16string name;  // "Tank {02..12}"
    std::u16string find;  // in the names, variables and texts of the copies; empty: nothing
    std::u16string by;    // "T{02..12}", goes along with the name
};

/// The archive that is copied, and the names that are in use.
struct Original {
    std::vector<std::u16string> trends;  // names
    std::set<std::u16string> names;      // of archives, folded
    std::size_t longestName = 0;         // of an archive, in UTF-16 units
    std::size_t longestTrendName = 0;
};
/// Throws ado::AdoError. Empty when the archive is not there.
[[nodiscard]] std::optional<Original> ReadOriginal(ado::Connection& connection,
                                                   std::int32_t archive);

/// The archives that patterns stand for.
class ArchivePlan {
public:
    void Set(ArchivePatterns patterns, const Original& original);

    struct Fault {
        bool isName = true;  // else what takes the place
        project::PatternFault fault;
    };
    [[nodiscard]] const std::optional<Fault>& Wrong() const noexcept { return wrong_; }
    [[nodiscard]] std::size_t Count() const noexcept { return names_.size(); }
    [[nodiscard]] const std::u16string& Name(std::size_t copy) const { return names_[copy]; }
    /// A text of the original as the copy has it.
    [[nodiscard]] std::u16string TextOf(std::size_t copy, std::u16string text) const;

    enum class Problem { None, NameEmpty, NameDouble, TooLong, TrendsDouble };
    [[nodiscard]] Problem ProblemOf(std::size_t copy) const;
    [[nodiscard]] std::size_t ProblemCount() const noexcept { return problems_.size(); }

private:
    void Check(const Original& original);
    [[nodiscard]] Problem TrendsOf(std::size_t copy, const Original& original) const;

    ArchivePatterns patterns_;
    std::optional<Fault> wrong_;
    std::vector<std::u16string> names_;
    std::vector<std::u16string> by_;
    std::map<std::size_t, Problem> problems_;
};

/// Makes the copies with their trends and texts as one transaction. A copy whose file would be the
/// original's gets one after its own name. `goOn` hears how many archives are made and takes all
/// back with false. Returns their IDs; none when it was given up. Throws ado::AdoError; nothing is
/// made then.
[[nodiscard]] std::vector<std::int32_t> CopyArchives(
    ado::Connection& connection, std::int32_t archive, const ArchivePlan& plan,
    const std::function<bool(std::size_t made)>& goOn = {});

}  // namespace patterns
