#include <charconv>
#include <cstdint>

#include "ado/AdoError.h"
#include "project/CreateProject.h"
#include "tools/Commands.h"
#include "tools/Messages.h"

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
    if (const std::string wrong = project::WrongLanguages(languages); !wrong.empty()) {
        std::fprintf(err, "kvs: new: %s\n", wrong.c_str());
        return kUsage;
    }
    try {
        project::CreateProject(file, languages);
        return kSuccess;
    } catch (const ado::AdoError& error) {
        return Fail(file, error, err);
    }
}

}  // namespace tools
