#include "project/CheckRules.h"

#include <algorithm>
#include <iterator>

namespace project {
namespace {

using enum Rule;
using enum Severity;

constexpr RuleInfo kRules[] = {
    {ArchiveWithoutGroup, "archive-without-group", Error,
     "An archive has no group for the texts of its trends.",
     "Give it one; it stands below the root group and has the archive's name.",
     "has no text group"},
    {ArchiveWithSeveralGroups, "archive-with-several-groups", Warning,
     "Several text groups belong to one archive, and nobody can tell which one is its own.",
     "Keep one of them, with the texts of all, and delete the others.",
     "has several text groups: {1}"},
    {ArchiveWithoutText, "archive-without-text", Warning,
     "An archive names no text that it is shown under, or one that is not there.",
     "Give it a text.", "names the text {1}, which is not there", "has no text"},
    {NameEmpty, "name-empty", Error, "An archive or a trend has no name.", "Give it a name.",
     "has no name"},
    {NameDouble, "name-double", Error,
     "Two archives, or two trends of one archive, have the same name; capitals and small letters "
     "are not told apart.",
     "Rename one of them.", "has the same name as {2}"},
    {CodeUnknown, "code-unknown", Error,
     "A setting that is chosen from a list holds a number that the list does not have.",
     "Choose a setting in the dialog.", "holds the code {1} in {c1}, which has no meaning"},
    {VariableMissing, "variable-missing", Error,
     "A variable is not named although recording needs it: a trend's own, the trigger, the X "
     "variable or the trigger of a new file.",
     "Choose the variable, or another sample mode.", "needs a variable in {c1}"},
    {VariableUnknown, "variable-unknown", Error,
     "A setting names a variable that the project's list of variables does not have. A project "
     "without such a list is not checked for it.",
     "Choose another variable, or add it to the project.",
     "names the variable \"{1}\" in {c1}, which the project does not have"},
    {ScanTimeMissing, "scan-time-missing", Error,
     "An archive that is sampled by time or by cycles has no scan time.", "Set the scan time.",
     "needs a scan time, which is {1}", "needs a scan time"},
    {FileMissing, "file-missing", Error, "An archive on disk has no file name.",
     "Give it a file name.", "is stored on disk and has no file name"},
    {FileShared, "file-shared", Error, "Several archives write the same file.",
     "Give each archive a file name or a folder of its own.", "writes the file {1}, as does {2}"},
    {PathInvalid, "path-invalid", Error,
     "What is stored as the folder or the name of a file can be none: it is empty, holds forbidden "
     "characters, or begins neither at <ProjectDir> nor at a drive or computer.",
     "Choose the folder, or <ProjectDir>.",
     "holds \"{1}\" in {c1}, which is no place that files can be written to",
     "writes files and has an empty {c1}"},
    {Unlimited, "unlimited", Warning,
     "An archive that goes on in new files limits neither their number nor their size: the disk "
     "fills up.",
     "Set a number of files or a size.", "limits neither the number nor the size of its files"},
    {TrendWithoutArchive, "trend-without-archive", Error,
     "A trend belongs to an archive that is not there: it is recorded and shown nowhere.",
     "Delete it, or assign it to an archive.", "belongs to archive {1}, which is not there",
     "belongs to no archive"},
    {TrendWithoutText, "trend-without-text", Error,
     "A trend names no text, or one that is not there: the editor does not show it.",
     "Give it a text.", "names the text {1}, which is not there", "has no text"},
    {RangeInverted, "range-inverted", Error,
     "The lower end of a range lies above its upper end: of the recorded values, of the display or "
     "of the tolerance.",
     "Exchange the two, or set the right ones.", "has the {c1} {1}, which lies above the {c2} {2}"},
    {FactorZero, "factor-zero", Warning,
     "The factor by which values are multiplied is 0: the offset is all that is recorded.",
     "Set the factor, 1 for values as they come.", "has the factor 0"},
    {HysteresisIncomplete, "hysteresis-incomplete", Warning,
     "A trend has a hysteresis mode without an amount, or an amount without a mode that uses it.",
     "Set both, or neither.", "has the hysteresis {1}, and a mode that does not use it",
     "has the hysteresis mode {2}, and no amount for it"},
    {TextShared, "text-shared", Warning,
     "Several archives or trends have one text, so that who edits one edits all.",
     "Give each a text of its own.", "belongs to several: {1}"},
    {TextWithoutOwner, "text-without-owner", Note,
     "A text in a group of trends belongs to no archive and no trend.",
     "Delete it, unless another program needs it.", "belongs to no archive and no trend"},
    {TextMissing, "text-missing", Warning,
     "An archive or a trend has no text in one of the project's languages.", "Write the text.",
     "is empty in {c1}"},
    {GroupWithoutArchive, "group-without-archive", Warning,
     "A group of trends' texts belongs to an archive that is not there.", "Delete it.",
     "belongs to archive {1}, which is not there"},
    {RootGroupMissing, "root-group-missing", Warning,
     "There is no group above all archives' groups: the group of the first archive would take its "
     "place, and go with that archive.",
     "Make the group.", "has no root group"},
    {LengthLimit, "length-limit", Note,
     "A name or a text is as long as its column can hold; its end may have been cut off.",
     "Look at its end, and shorten it.", "has all {2} characters in {c1} that fit there"},
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
