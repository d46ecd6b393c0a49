#include <algorithm>
#include <ctime>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "paths/NativePath.h"
#include "project/CheckSettings.h"
#include "project/Cure.h"
#include "project/FieldText.h"
#include "tools/Commands.h"
#include "tools/FindingWriter.h"
#include "tools/Messages.h"
#include "tools/System.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using project::Severity;

/// "a,b": these rules alone; "-a,-b": all but these. What is no rule is told of and gives false.
bool ChooseRules(const std::string& list, project::Severities& severities, std::FILE* err) {
    if (list.empty()) return true;
    const bool isExclusion = list.front() == '-';
    std::vector<project::Rule> chosen;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        std::string id = list.substr(begin, end - begin);
        if (isExclusion && id.starts_with('-')) id.erase(0, 1);
        const project::RuleInfo* rule = project::FindRule(id);
        if (rule == nullptr) {
            std::fprintf(err, "kvs: lint: there is no rule '%s'; the rules are", id.c_str());
            for (const project::RuleInfo& each : project::Rules()) {
                std::fprintf(err, " %s", std::string(each.id).c_str());
            }
            std::fputc('\n', err);
            return false;
        }
        chosen.push_back(rule->rule);
        begin = end + 1;
    }
    for (const project::RuleInfo& rule : project::Rules()) {
        const bool isNamed = std::find(chosen.begin(), chosen.end(), rule.rule) != chosen.end();
        if (isNamed == isExclusion) severities.Set(rule.rule, Severity::Off);
    }
    return true;
}

void TellWhatIsNotKnown(const std::string& file, const project::CheckResult& result,
                        std::FILE* err) {
    for (const project::Rule rule : result.notChecked) {
        const std::string id(project::InfoOf(rule).id);
        std::fprintf(err, "kvs: %s: not checked: %s: the project has no list of variables\n",
                     file.c_str(), id.c_str());
    }
    for (const auto& [table, rows] : result.unread) {
        std::fprintf(err,
                     "kvs: %s: %zu %s of %s cannot be read and %s not checked; see kvs check\n",
                     file.c_str(), rows, rows == 1 ? "row" : "rows", std::string(table).c_str(),
                     rows == 1 ? "is" : "are");
    }
}

std::string Today() {
    const std::time_t now = std::time(nullptr);
    std::tm day{};
    ::localtime_r(&now, &day);
    char text[16];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d", &day)};
}

std::string NameOf(const project::Acceptance& acceptance) {
    return acceptance.rule + (acceptance.place.empty() ? "" : " at " + acceptance.place);
}

void TellOfAcceptances(const std::string& file, const project::Judgement& judgement,
                       const project::Severities& severities, std::FILE* err) {
    for (const project::Acceptance& each : judgement.expired) {
        std::fprintf(err, "kvs: %s: accepted until %s: %s (%s)\n", file.c_str(), each.until.c_str(),
                     NameOf(each).c_str(), each.reason.c_str());
    }
    for (const project::Acceptance& each : judgement.unused) {
        // Of a rule that is not looked for, nobody knows.
        if (severities[project::FindRule(each.rule)->rule] == Severity::Off) continue;
        std::fprintf(err, "kvs: %s: accepted, and found no longer with these values: %s (%s)\n",
                     file.c_str(), NameOf(each).c_str(), each.reason.c_str());
    }
}

/// What is wrong with the wish to accept or to cure; empty when nothing is.
std::string WrongWish(const LintOptions& options) {
    const bool isCure = options.cure != LintOptions::Cure::None;
    if (options.isDryRun && !isCure) return "--dry-run is for --cure";
    if (isCure && !options.accept.empty()) return "--cure and --accept do not go together";
    if (isCure && options.format != FindingFormat::Text) return "--cure writes lines";
    if (options.accept.empty()) {
        const bool isLost =
            !options.reason.empty() || !options.by.empty() || !options.until.empty();
        return isLost ? "--reason, --by and --until are for --accept" : "";
    }
    if (options.reason.empty()) return "--accept needs a --reason";
    if (!options.until.empty() && !project::IsDay(options.until)) {
        return "'" + options.until + "' is no day such as 2027-01-31";
    }
    return {};
}

ExitStatus Accept(const std::string& file, const std::string& settingsFile,
                  const LintOptions& options, const project::Judgement& judgement, std::FILE* out,
                  std::FILE* err) {
    project::Acceptance form;
    form.reason = options.reason;
    form.by = !options.by.empty() ? options.by : UserName();
    form.until = options.until;
    std::vector<project::Acceptance> accepted;
    if (project::FindRule(options.accept) != nullptr) {
        form.rule = options.accept;
        accepted.push_back(form);
    }
    for (const project::Finding& finding : judgement.open) {
        const std::string place = project::PlaceOf(finding);
        if (place != options.accept && !place.starts_with(options.accept + '/')) continue;
        form.rule = project::InfoOf(finding.rule).id;
        form.place = place;
        form.fingerprint = project::FingerprintOf(finding);
        form.message = MessageOf(finding);
        accepted.push_back(form);
    }
    if (accepted.empty()) {
        std::fprintf(err, "kvs: %s: '%s' is neither a rule nor the place of an open finding\n",
                     file.c_str(), options.accept.c_str());
        return kFailure;
    }
    project::AddAcceptances(settingsFile, accepted);
    std::fprintf(out, "%zu accepted in %s\n", accepted.size(), settingsFile.c_str());
    return std::fflush(out) == 0 ? kSuccess : kFailure;
}

/// "TchrTrends/269/VMin: 500 -> 10"
std::string TextOf(const project::CureStep& step) {
    using Kind = project::CureStep::Kind;
    const auto value = [](const ado::Value& stored) {
        return ado::IsNull(stored) ? "nothing" : unicode::ToUtf8(project::ValueText(stored));
    };
    project::Finding place;
    place.table = step.table;
    place.id = step.id;
    place.column = step.column;
    const std::string text = project::PlaceOf(place) + ": ";
    switch (step.kind) {
        case Kind::Set:
            return text + value(step.was) + " -> " + value(step.is);
        case Kind::AddText:
            return text + "gets a text";
        case Kind::CopyText:
            return text + "gets a text of its own";
        case Kind::AddGroup:
            return text + (step.id == 0 ? "the root group is made" : "gets a text group");
        case Kind::Remove:
            return text + "is deleted";
    }
    return text;
}

ExitStatus Cure(const std::string& file, const LintOptions& options,
                const project::Judgement& judgement, std::FILE* out, std::FILE* err) {
    std::vector<project::Finding> curable;
    for (const project::Finding& finding : judgement.open) {
        const project::CureKind kind = project::CureOf(finding);
        const bool isWanted =
            kind == project::CureKind::Safe ||
            (kind == project::CureKind::ToBeLookedAt && options.cure == LintOptions::Cure::All);
        if (isWanted) curable.push_back(finding);
    }
    ado::Connection connection;
    Messages messages(err, file);
    Connect(connection, file, messages);
    const std::vector<project::PlannedCure> cures = project::PlanCures(connection, curable);
    if (!options.isDryRun && !project::ApplyCures(connection, cures)) {
        std::fprintf(err, "kvs: %s: another program has changed it meanwhile; nothing is done\n",
                     file.c_str());
        return kFailure;
    }
    TextBuffer output(out);
    for (const project::PlannedCure& cure : cures) {
        const std::string_view rule = project::InfoOf(curable[cure.finding].rule).id;
        for (const project::CureStep& step : cure.steps) {
            output.Append(TextOf(step));
            output.Append(" [" + std::string(rule) + "]\n");
        }
    }
    return Messages(err, file).Finish(output);
}

struct Checked {
    project::CheckResult result;
    project::Judgement judgement;
    project::Severities severities;
};

Checked CheckFile(const std::string& file, const std::string& settingsFile,
                  const project::Severities& chosen, std::FILE* err) {
    const auto settings = project::CheckSettings::Load(settingsFile);
    Checked checked;
    checked.severities = settings.Severities();
    for (const project::RuleInfo& rule : project::Rules()) {
        if (chosen[rule.rule] == Severity::Off) checked.severities.Set(rule.rule, Severity::Off);
    }
    ado::Connection connection;
    Messages messages(err, file);
    Connect(connection, file, messages);
    checked.result = project::CheckProject(connection, checked.severities);
    checked.judgement = settings.Judge(checked.result.findings, Today());
    return checked;
}

}  // namespace

ExitStatus Lint(const std::string& file, const LintOptions& options, std::FILE* out,
                std::FILE* err) {
    project::Severities chosen;
    if (!ChooseRules(options.rules, chosen, err)) return kUsage;
    if (const std::string wrong = WrongWish(options); !wrong.empty()) {
        std::fprintf(err, "kvs: lint: %s\n", wrong.c_str());
        return kUsage;
    }
    const std::string settingsFile = project::CheckSettings::FileOf(paths::ToNative(file));
    try {
        const Checked checked = CheckFile(file, settingsFile, chosen, err);
        const project::Judgement& judgement = checked.judgement;
        if (!options.accept.empty()) {
            return Accept(file, settingsFile, options, judgement, out, err);
        }
        if (options.cure != LintOptions::Cure::None) {
            return Cure(file, options, judgement, out, err);
        }
        TextBuffer output(out);
        WriteFindings(options.format, file, judgement, output);
        const ExitStatus written = Messages(err, file).Finish(output);
        TellWhatIsNotKnown(file, checked.result, err);
        TellOfAcceptances(file, judgement, checked.severities, err);
        const auto isGrave = [&](const project::Finding& finding) {
            return finding.severity >= options.failOn;
        };
        const bool hasFailed = std::any_of(judgement.open.begin(), judgement.open.end(), isGrave) ||
                               !checked.result.unread.empty();
        return hasFailed ? kFailure : written;
    } catch (const ado::AdoError& error) {
        return Fail(file, error, err);
    }
}

}  // namespace tools
