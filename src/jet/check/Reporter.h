#pragma once

#include <array>
#include <string>

#include "jet/Check.h"

namespace jet::check {

/// What a finding is about. Findings are limited for each on its own, so that thousands about one
/// do not hide the others.
enum class Subject {
    File,
    Catalog,
    Definitions,
    Columns,
    Maps,
    Pages,
    Rows,
    LongValues,
    Indexes,
    Counters
};
inline constexpr std::size_t kSubjects = 10;

/// Hands findings over, up to the limit of each subject, and counts the rest.
class Reporter {
public:
    /// `sink` is borrowed.
    Reporter(const FindingSink& sink, std::size_t mostPerSubject)
        : sink_(sink), most_(mostPerSubject) {}

    void Error(Subject subject, std::string text) {
        Report(Finding::Severity::Error, subject, std::move(text));
    }
    void Warn(Subject subject, std::string text) {
        Report(Finding::Severity::Warning, subject, std::move(text));
    }
    /// True when further errors about the subject would only be counted.
    [[nodiscard]] bool IsFull(Subject subject) const;
    /// True when the receiver wants no more. Loops over pages and rows end then.
    [[nodiscard]] bool IsStopped() const { return stopped_; }
    /// Text of the first error about a subject; empty when there was none.
    [[nodiscard]] const std::string& FirstError(Subject subject) const {
        return firstErrors_[static_cast<std::size_t>(subject)];
    }
    /// Findings are dropped while set: for reading a second time what has been reported.
    void SetQuiet(bool quiet) { quiet_ = quiet; }
    /// Tells how many findings were only counted.
    void Finish();

private:
    using Counts = std::array<std::size_t, kSubjects>;

    void Report(Finding::Severity severity, Subject subject, std::string text);
    void Send(Finding::Severity severity, std::string text);

    const FindingSink& sink_;
    std::size_t most_;
    std::array<Counts, 2> counts_{};  // by severity
    std::array<std::string, kSubjects> firstErrors_;
    bool stopped_ = false;
    bool quiet_ = false;
};

}  // namespace jet::check
