#include "jet/check/Reporter.h"

namespace jet::check {
namespace {

constexpr std::array<const char*, kSubjects> kSubjectNames = {
    "the file", "the catalog", "table definitions", "columns", "usage maps",
    "pages",    "rows",        "long values",       "indexes", "counters"};

/// Names come from the file; a finding stays one line whatever they hold.
void MakeOneLine(std::string& text) {
    for (char& c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x20 || code == 0x7F) c = '?';
    }
}

}  // namespace

bool Reporter::IsFull(Subject subject) const {
    return counts_[static_cast<std::size_t>(Finding::Severity::Error)]
                  [static_cast<std::size_t>(subject)] >= most_;
}

void Reporter::Report(Finding::Severity severity, Subject subject, std::string text) {
    if (quiet_ || stopped_) return;
    std::string& first = firstErrors_[static_cast<std::size_t>(subject)];
    if (severity == Finding::Severity::Error && first.empty()) first = text;
    std::size_t& count =
        counts_[static_cast<std::size_t>(severity)][static_cast<std::size_t>(subject)];
    if (++count <= most_) Send(severity, std::move(text));
}

void Reporter::Send(Finding::Severity severity, std::string text) {
    MakeOneLine(text);
    stopped_ = !sink_({severity, std::move(text)});
}

void Reporter::Finish() {
    for (const auto severity : {Finding::Severity::Error, Finding::Severity::Warning}) {
        for (std::size_t i = 0; i < kSubjects; ++i) {
            const std::size_t count = counts_[static_cast<std::size_t>(severity)][i];
            if (count <= most_ || stopped_) continue;
            Send(severity, std::to_string(count - most_) + " more findings about " +
                               std::string(kSubjectNames[i]));
        }
    }
}

}  // namespace jet::check
