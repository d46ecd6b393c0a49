#include "project/CheckRules.h"

#include <algorithm>
#include <iterator>

namespace project {
namespace {

using enum Rule;
using enum Severity;

constexpr RuleInfo kRules[] = {
    {ArchiveWithoutGroup, "archive-without-group", Error},
    {ArchiveWithSeveralGroups, "archive-with-several-groups", Warning},
    {ArchiveWithoutText, "archive-without-text", Warning},
    {NameEmpty, "name-empty", Error},
    {NameDouble, "name-double", Error},
    {CodeUnknown, "code-unknown", Error},
    {VariableMissing, "variable-missing", Error},
    {VariableUnknown, "variable-unknown", Error},
    {ScanTimeMissing, "scan-time-missing", Error},
    {FileMissing, "file-missing", Error},
    {FileShared, "file-shared", Error},
    {PathInvalid, "path-invalid", Error},
    {Unlimited, "unlimited", Warning},
    {TrendWithoutArchive, "trend-without-archive", Error},
    {TrendWithoutText, "trend-without-text", Error},
    {RangeInverted, "range-inverted", Error},
    {FactorZero, "factor-zero", Warning},
    {HysteresisIncomplete, "hysteresis-incomplete", Warning},
    {TextShared, "text-shared", Warning},
    {TextWithoutOwner, "text-without-owner", Note},
    {TextMissing, "text-missing", Warning},
    {GroupWithoutArchive, "group-without-archive", Warning},
    {RootGroupMissing, "root-group-missing", Warning},
    {LengthLimit, "length-limit", Note},
};
static_assert(std::size(kRules) == static_cast<std::size_t>(LengthLimit) + 1);

constexpr std::string_view kSeverities[] = {"off", "note", "warning", "error"};

}  // namespace

std::span<const RuleInfo> Rules() {
    return kRules;
}

const RuleInfo& InfoOf(Rule rule) {
    return kRules[static_cast<std::size_t>(rule)];
}

const RuleInfo* FindRule(std::string_view id) {
    const auto* found = std::find_if(std::begin(kRules), std::end(kRules),
                                     [&](const RuleInfo& rule) { return rule.id == id; });
    return found == std::end(kRules) ? nullptr : found;
}

std::string TextKeyOf(Rule rule) {
    std::string key;
    bool isFirst = true;  // letter of a word
    for (const char c : InfoOf(rule).id) {
        if (c != '-') key += static_cast<char>(isFirst ? c - 'a' + 'A' : c);
        isFirst = c == '-';
    }
    return key;
}

std::string_view SeverityName(Severity severity) {
    return kSeverities[static_cast<std::size_t>(severity)];
}

std::optional<Severity> FindSeverity(std::string_view name) {
    const auto* found = std::find(std::begin(kSeverities), std::end(kSeverities), name);
    if (found == std::end(kSeverities)) return std::nullopt;
    return static_cast<Severity>(found - std::begin(kSeverities));
}

Severities::Severities() {
    for (const RuleInfo& rule : kRules) Set(rule.rule, rule.severity);
}

}  // namespace project
