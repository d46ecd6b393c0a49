#include <charconv>
#include <cstdint>

#include "projectfile/CreateProject.h"
#include "tools/Commands.h"

namespace tools {

ExitStatus New(const std::string& file, const std::vector<std::string>& lcids, std::FILE* err) {
    std::vector<std::uint32_t> languages;
    for (const std::string& text : lcids) {
        const char* end = text.data() + text.size();
        std::uint32_t number = 0;
        const auto [last, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || last != end) {
            std::fprintf(err, "kvs: new: '%s' is not the number of a language\n", text.c_str());
            return kUsage;
        }
        languages.push_back(number);
    }
    if (languages.empty()) languages = {1031, 1033};
    const projectfile::Outcome outcome = projectfile::CreateProject(file, languages);
    switch (outcome.kind) {
        case projectfile::Outcome::Kind::Made:
            return kSuccess;
        case projectfile::Outcome::Kind::BadLanguages:
            std::fprintf(err, "kvs: new: %s\n", outcome.text.c_str());
            return kUsage;
        case projectfile::Outcome::Kind::Exists:
        case projectfile::Outcome::Kind::Failed:
            break;
    }
    std::fprintf(err, "kvs: %s: %s\n", file.c_str(), outcome.text.c_str());
    return kFailure;
}

}  // namespace tools
