#include "project/CheckSettings.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <tuple>

#include "ado/AdoError.h"
#include "paths/NativePath.h"
#include "paths/NewFile.h"

namespace project {
namespace {

constexpr std::string_view kSeveritySection = "[severity]";
constexpr std::string_view kAcceptedSection = "[accepted]";
constexpr std::string_view kHeading =
    "# What is decided on the findings of kvs lint. In [severity] a rule gets another one, such "
    "as\n"
    "# \"unlimited = note\" or \"off\". Each [accepted] leaves a finding as it is, or all of a "
    "rule\n"
    "# that has no place; with other values in its row it is another finding.\n";

/// The fields of an acceptance, in the order in which they are written.
struct FieldOf {
    std::string_view name;
    std::string Acceptance::*field;
};
constexpr FieldOf kFields[] = {
    {"rule", &Acceptance::rule},       {"place", &Acceptance::place},
    {"finding", &Acceptance::message}, {"fingerprint", &Acceptance::fingerprint},
    {"reason", &Acceptance::reason},   {"by", &Acceptance::by},
    {"until", &Acceptance::until},
};

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// One line, whatever has been typed.
std::string Joined(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

std::string TextOf(const Acceptance& acceptance) {
    std::string text = "\n" + std::string(kAcceptedSection) + "\n";
    for (const FieldOf& field : kFields) {
        const std::string& value = acceptance.*field.field;
        if (!value.empty()) text += std::string(field.name) + " = " + Joined(value) + "\n";
    }
    return text;
}

[[noreturn]] void Fail(const std::string& path, const std::string& what) {
    throw ado::AdoError(ado::ErrorNumber::kUnspecified, "\"" + path + "\": " + what);
}

[[noreturn]] void FailSystem(const std::string& path, const char* what,
                             const std::error_code& error) {
    Fail(path, std::string("it cannot be ") + what + ": " + error.message() + '.');
}

/// Empty when there is no such file.
std::string Contents(const std::string& path) {
    const std::filesystem::path name = paths::FileOf(path);
    std::ifstream file(name, std::ios::binary);
    if (!file && !std::filesystem::exists(name)) return {};
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file) FailSystem(path, "read", {errno, std::generic_category()});
    return text;
}

void WriteWhole(const std::string& path, std::string_view text) {
    paths::NewFile file;
    std::error_code error = file.Open(path);
    if (!error) error = file.Write(text) ? file.TakeName() : file.Error();
    if (error) FailSystem(path, "written", error);
}

}  // namespace

/// Reads the file line by line.
class SettingsReader {
public:
    SettingsReader(CheckSettings& settings, const std::string& path)
        : settings_(settings), path_(path) {}

    void Read(std::string_view text) {
        if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            ++line_;
            ReadLine(Trimmed(text.substr(0, end)));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        EndSection();
    }

private:
    enum class Section { None, Severity, Accepted };

    [[noreturn]] void FailLine(const std::string& what) const {
        Fail(path_, "line " + std::to_string(line_) + ": " + what);
    }

    void ReadLine(std::string_view line) {
        if (line.empty() || line.front() == '#') return;
        if (line.front() == '[') {
            EndSection();
            if (line == kSeveritySection) {
                section_ = Section::Severity;
            } else if (line == kAcceptedSection) {
                section_ = Section::Accepted;
                settings_.accepted_.emplace_back();
            } else {
                FailLine("there is no section " + std::string(line) + ".");
            }
            return;
        }
        const std::size_t equals = line.find('=');
        if (equals == line.npos) FailLine("\"" + std::string(line) + "\" is not NAME = VALUE.");
        const std::string_view name = Trimmed(line.substr(0, equals));
        const std::string_view value = Trimmed(line.substr(equals + 1));
        switch (section_) {
            case Section::None:
                FailLine("a section, [severity] or [accepted], has to stand before it.");
            case Section::Severity:
                return ReadSeverity(name, value);
            case Section::Accepted:
                return ReadField(name, value);
        }
    }

    void ReadSeverity(std::string_view name, std::string_view value) {
        const RuleInfo* rule = FindRule(name);
        if (rule == nullptr) FailLine("there is no rule " + std::string(name) + ".");
        const auto severity = FindSeverity(value);
        if (!severity) {
            FailLine("\"" + std::string(value) + "\" is none of off, note, warning and error.");
        }
        settings_.severities_.Set(rule->rule, *severity);
    }

    void ReadField(std::string_view name, std::string_view value) {
        const auto* field = std::find_if(std::begin(kFields), std::end(kFields),
                                         [&](const FieldOf& f) { return f.name == name; });
        if (field == std::end(kFields)) FailLine("there is no " + std::string(name) + " here.");
        settings_.accepted_.back().*field->field = value;
    }

    /// What lacks something is refused where it ends.
    void EndSection() {
        if (section_ != Section::Accepted) return;
        const Acceptance& acceptance = settings_.accepted_.back();
        if (FindRule(acceptance.rule) == nullptr) {
            FailLine("there is no rule \"" + acceptance.rule + "\" to be accepted.");
        }
        if (acceptance.reason.empty()) FailLine("what is accepted above has no reason.");
        if (acceptance.place.empty() != acceptance.fingerprint.empty()) {
            FailLine("what is accepted above needs both place and fingerprint, or neither.");
        }
        if (!acceptance.until.empty() && !IsDay(acceptance.until)) {
            FailLine("\"" + acceptance.until + "\" is no day such as 2027-01-31.");
        }
    }

    CheckSettings& settings_;
    const std::string& path_;
    Section section_ = Section::None;
    std::size_t line_ = 0;
};

std::string CheckSettings::FileOf(const std::string& project) {
    std::error_code none;
    const auto real = std::filesystem::canonical(paths::FileOf(project), none);
    return (none ? project : paths::TextOf(real)) + "-lint";
}

CheckSettings CheckSettings::Parse(std::string_view text, const std::string& path) {
    CheckSettings settings;
    SettingsReader(settings, path).Read(text);
    return settings;
}

CheckSettings CheckSettings::Load(const std::string& path) {
    return Parse(Contents(path), path);
}

Judgement CheckSettings::Judge(const std::vector<Finding>& findings,
                               const std::string& today) const {
    Judgement judgement;
    std::vector<bool> isUsed(accepted_.size());
    const auto isExpired = [&](const Acceptance& acceptance) {
        return !acceptance.until.empty() && acceptance.until < today;
    };
    for (const Finding& finding : findings) {
        const std::string_view rule = InfoOf(finding.rule).id;
        std::optional<std::size_t> why;
        for (std::size_t i = 0; i < accepted_.size() && !why; ++i) {
            const Acceptance& each = accepted_[i];
            if (each.rule != rule) continue;
            if (!each.place.empty() &&
                (each.place != PlaceOf(finding) || each.fingerprint != FingerprintOf(finding))) {
                continue;
            }
            isUsed[i] = true;
            if (!isExpired(each)) why = i;
        }
        if (why) {
            judgement.accepted.push_back({finding, accepted_[*why]});
        } else {
            judgement.open.push_back(finding);
        }
    }
    for (std::size_t i = 0; i < accepted_.size(); ++i) {
        if (!isUsed[i]) {
            judgement.unused.push_back(accepted_[i]);
        } else if (isExpired(accepted_[i])) {
            judgement.expired.push_back(accepted_[i]);
        }
    }
    return judgement;
}

void AddAcceptances(const std::string& path, const std::vector<Acceptance>& acceptances) {
    std::string text = Contents(path);
    if (text.empty()) text = kHeading;
    if (text.back() != '\n') text += '\n';
    for (const Acceptance& acceptance : acceptances) text += TextOf(acceptance);
    std::ignore = CheckSettings::Parse(text, path);  // what could not be read is not written
    WriteWhole(path, text);
}

bool IsDay(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00";
    if (text.size() != kForm.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (kForm[i] == '-' ? text[i] != '-' : !isDigit) return false;
    }
    const int month = (text[5] - '0') * 10 + text[6] - '0';
    const int day = (text[8] - '0') * 10 + text[9] - '0';
    return month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

}  // namespace project
