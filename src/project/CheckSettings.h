#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "project/Check.h"

/// What a project has decided on the findings of its check: severities, and findings that somebody
/// has looked at and leaves as they are. They stand beside the project, in a text file that people
/// read and version control joins.
namespace project {

/// A finding that is accepted, or a whole rule. All texts are UTF-8.
struct Acceptance {
    std::string rule;
    std::string place;        // "TchrTrends/228/Maximum"; empty: every finding of the rule
    std::string fingerprint;  // of the finding: with other values it is another one
    std::string message;      // for people
    std::string reason;
    std::string by;
    std::string until;  // the last day, "2027-01-31"; empty: for ever
};

/// Findings beside what is decided on them.
struct Judgement {
    struct Accepted {
        Finding finding;
        Acceptance why;
    };
    std::vector<Finding> open;
    std::vector<Accepted> accepted;
    std::vector<Acceptance> expired;  // their findings are open again
    std::vector<Acceptance> unused;   // they fit nothing any more
};

class CheckSettings {
public:
    /// Where the settings of a project stand: beside its file, links resolved, with its name and
    /// "-lint" behind. `project` is native.
    [[nodiscard]] static std::string FileOf(const std::string& project);
    /// Reads them; none when there is no such file. `path` is native. Throws ado::AdoError, which
    /// names the line, for what is not understood: nothing is passed over.
    [[nodiscard]] static CheckSettings Load(const std::string& path);
    [[nodiscard]] static CheckSettings Parse(std::string_view text, const std::string& path);

    [[nodiscard]] const project::Severities& Severities() const { return severities_; }
    [[nodiscard]] const std::vector<Acceptance>& Accepted() const { return accepted_; }
    /// `today` in the form of Acceptance::until.
    [[nodiscard]] Judgement Judge(const std::vector<Finding>& findings,
                                  const std::string& today) const;

private:
    friend class SettingsReader;
    project::Severities severities_;
    std::vector<Acceptance> accepted_;
};

/// Adds acceptances to the file, which is made where there is none; what stands in it stays. It is
/// whole at any moment: written anew, synced and renamed. Throws ado::AdoError.
void AddAcceptances(const std::string& path, const std::vector<Acceptance>& acceptances);

/// Whether a text is a day as Acceptance::until has it.
[[nodiscard]] bool IsDay(std::string_view text);

}  // namespace project
