#include <algorithm>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "project/Check.h"
#include "tools/Commands.h"
#include "tools/FindingWriter.h"
#include "tools/Messages.h"

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

}  // namespace

ExitStatus Lint(const std::string& file, const LintOptions& options, std::FILE* out,
                std::FILE* err) {
    project::Severities severities;
    if (!ChooseRules(options.rules, severities, err)) return kUsage;
    project::CheckResult result;
    try {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
                        ";Mode=Read|Share Deny None;");
        Messages(err, file).Warn(connection.TakeNotices());
        result = project::CheckProject(connection, severities);
    } catch (const ado::AdoError& error) {
        return Fail(file, error, err);
    }
    TextBuffer output(out);
    WriteFindings(options.format, file, result.findings, output);
    Messages messages(err, file);
    const ExitStatus written = messages.Finish(output);
    TellWhatIsNotKnown(file, result, err);
    const auto isGrave = [&](const project::Finding& finding) {
        return finding.severity >= options.failOn;
    };
    const bool hasFailed = std::any_of(result.findings.begin(), result.findings.end(), isGrave) ||
                           !result.unread.empty();
    return hasFailed ? kFailure : written;
}

}  // namespace tools
