#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The rules of the project check, each fact about them once.
namespace project {

/// How much a finding matters, from least to most. Off: it is not looked for.
enum class Severity { Off, Note, Warning, Error };

enum class Rule {
    ArchiveWithoutGroup,
    ArchiveWithSeveralGroups,
    ArchiveWithoutText,
    NameEmpty,
    NameDouble,
    CodeUnknown,
    VariableMissing,
    VariableUnknown,
    ScanTimeMissing,
    FileMissing,
    FileShared,
    PathInvalid,
    Unlimited,
    TrendWithoutArchive,
    TrendWithoutText,
    RangeInverted,
    FactorZero,
    HysteresisIncomplete,
    TextShared,
    TextWithoutOwner,
    TextMissing,
    GroupWithoutArchive,
    RootGroupMissing,
    LengthLimit,
};

struct RuleInfo {
    Rule rule;
    std::string_view id;  // stored beside projects and read by other programs: never another one
    Severity severity;    // where the project sets none
};

/// In the order of Rule.
[[nodiscard]] std::span<const RuleInfo> Rules();
[[nodiscard]] const RuleInfo& InfoOf(Rule rule);
/// Null when there is no rule of that id.
[[nodiscard]] const RuleInfo* FindRule(std::string_view id);

/// What texts call a rule, after its id: "ArchiveWithoutGroup". "RuleMeaning." before it is the key
/// of what the rule means, "RuleAdvice." of what to do; see FindingText.h for what is said of a
/// row.
[[nodiscard]] std::string TextKeyOf(Rule rule);

/// "off", "note", "warning", "error".
[[nodiscard]] std::string_view SeverityName(Severity severity);
[[nodiscard]] std::optional<Severity> FindSeverity(std::string_view name);

/// The severity of each rule.
class Severities {
public:
    Severities();  // the rules' own

    [[nodiscard]] Severity operator[](Rule rule) const { return of_.at(Index(rule)); }
    void Set(Rule rule, Severity severity) { of_.at(Index(rule)) = severity; }

private:
    static constexpr std::size_t kCount = static_cast<std::size_t>(Rule::LengthLimit) + 1;
    [[nodiscard]] static std::size_t Index(Rule rule) { return static_cast<std::size_t>(rule); }

    std::array<Severity, kCount> of_{};
};

}  // namespace project
