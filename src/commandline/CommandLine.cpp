#include "commandline/CommandLine.h"

#include <getopt.h>
#include <strings.h>

#include <algorithm>
#include <optional>

namespace commandline {
namespace {

constexpr std::string_view kRepeated = "...";

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parts;
}

/// "a", "a and b", "a, b and c".
std::string Listed(const std::vector<std::string_view>& parts) {
    std::string list;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) list += i + 1 == parts.size() ? " and " : ", ";
        list += parts[i];
    }
    return list;
}

/// What is wrong with the number of words; empty when nothing is.
std::string WrongWords(std::string_view pattern, std::size_t count) {
    std::vector<std::string_view> needed;
    bool isEndless = false;
    std::size_t most = 0;
    for (std::string_view word : Split(pattern, ' ')) {
        ++most;
        isEndless = word.find(kRepeated) != std::string_view::npos;
        if (word.front() != '[') {
            needed.push_back(word.substr(0, word.size() - (isEndless ? kRepeated.size() : 0)));
        }
    }
    if (count >= needed.size() && (isEndless || count <= most)) return {};
    if (most == 0) return "no word may follow";
    if (needed.empty()) return "more than one " + std::string(pattern) + " is given";
    if (needed.size() == 1 && most == 1 && !isEndless) {
        return "one " + std::string(needed[0]) + " is needed";
    }
    return Listed(needed) + (needed.size() == 1 ? " is needed" : " are needed");
}

/// The program's options and those of all its commands, each name once.
std::vector<Option> Known(const Program& program) {
    std::vector<Option> known = AllOptions(program);
    for (const Command& command : program.commands) {
        for (const Option& option : command.options) {
            const auto isSame = [&](const Option& other) { return other.name == option.name; };
            if (std::none_of(known.begin(), known.end(), isSame)) known.push_back(option);
        }
    }
    return known;
}

/// A value as the table has it; nullopt when it is none of the choices.
std::optional<std::string> ChoiceOf(const Option& option, const std::string& value) {
    const std::vector<std::string_view> choices = Choices(option);
    if (choices.empty()) return value;
    for (const std::string_view choice : choices) {
        const std::string known(choice);
        if (::strcasecmp(known.c_str(), value.c_str()) == 0) return known;
    }
    return std::nullopt;
}

std::string UnknownChoice(const Option& option, const std::string& value) {
    return "unknown " + std::string(option.name) + " '" + value + "'; there are " +
           Listed(Choices(option));
}

/// What is wrong with an option at this command; empty when nothing is.
std::string WrongOption(const Program& program, const Command& command, std::string_view name,
                        const std::string& value) {
    const auto isIt = [&](const Option& option) { return option.name == name; };
    const auto own = std::find_if(command.options.begin(), command.options.end(), isIt);
    if (own != command.options.end()) {
        return ChoiceOf(*own, value) ? std::string() : UnknownChoice(*own, value);
    }
    if (std::any_of(program.options.begin(), program.options.end(), isIt)) return {};
    std::vector<std::string_view> users;
    for (const Command& other : program.commands) {
        if (std::any_of(other.options.begin(), other.options.end(), isIt)) {
            users.push_back(other.name);
        }
    }
    return "--" + std::string(name) + " is for " + Listed(users);
}

/// Fills in the command and says what is wrong with it; empty when nothing is.
std::string FindCommand(const Program& program, Call& call) {
    if (program.commands.empty()) return WrongWords(program.words, call.words.size());
    if (call.words.empty()) return "a command is missing";
    const auto isIt = [&](const Command& command) { return command.name == call.words[0]; };
    const auto found = std::find_if(program.commands.begin(), program.commands.end(), isIt);
    if (found == program.commands.end()) return "unknown command '" + call.words[0] + "'";
    call.command = static_cast<std::size_t>(found - program.commands.begin());
    call.words.erase(call.words.begin());
    std::string what = WrongWords(found->words, call.words.size());
    for (auto& [name, value] : call.options) {
        if (what.empty()) what = WrongOption(program, *found, name, value);
        for (const Option& option : found->options) {
            if (option.name == name) value = ChoiceOf(option, value).value_or(value);
        }
    }
    return what.empty() ? what : std::string(found->name) + ": " + what;
}

}  // namespace

bool Call::Has(std::string_view option) const {
    return std::any_of(options.begin(), options.end(),
                       [&](const auto& given) { return given.first == option; });
}

std::string Call::Value(std::string_view option) const {
    const std::vector<std::string> values = Values(option);
    return values.empty() ? std::string() : values.back();
}

std::vector<std::string> Call::Values(std::string_view option) const {
    std::vector<std::string> values;
    for (const auto& [name, value] : options) {
        if (name == option) values.push_back(value);
    }
    return values;
}

std::vector<std::string_view> Choices(const Option& option) {
    return option.value.find('|') == std::string_view::npos ? std::vector<std::string_view>()
                                                            : Split(option.value, '|');
}

std::vector<Option> AllOptions(const Program& program) {
    std::vector<Option> all = program.options;
    all.push_back({"completion", "bash|zsh|fish", "print what the shell reads to complete words"});
    all.push_back({"help", "", "show this text", 'h'});
    all.push_back({"version", "", "show the version", 'V'});
    return all;
}

std::variant<Call, Answer, Mistake> Parse(const Program& program, int argc, char** argv) {
    const std::vector<Option> known = Known(program);
    std::vector<std::string> names;  // ended by a zero, as getopt_long wants them
    for (const Option& option : known) names.emplace_back(option.name);
    constexpr int kFirst = 256;  // beyond every letter
    std::string letters;
    std::vector<option> rows;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const bool hasValue = !known[i].value.empty();
        rows.push_back({names[i].c_str(), hasValue ? required_argument : no_argument, nullptr,
                        kFirst + static_cast<int>(i)});
        if (known[i].letter == '\0') continue;
        letters += known[i].letter;
        if (hasValue) letters += ':';
    }
    rows.push_back({nullptr, 0, nullptr, 0});

    Call call;
    optind = 0;  // from the beginning, whatever was parsed before
    opterr = 0;
    int found = 0;
    while ((found = getopt_long(argc, argv, letters.c_str(), rows.data(), nullptr)) != -1) {
        if (found == '?') {
            // Of several letters in one word, the word is not passed yet.
            const bool isLetter = optopt > 0 && optopt < kFirst;
            const std::string word = isLetter ? std::string{'-', static_cast<char>(optopt)}
                                              : std::string(argv[optind - 1]);
            return Mistake{"unknown or incomplete option '" + word + "'"};
        }
        const auto row = std::find_if(known.begin(), known.end(), [&](const Option& option) {
            return found == option.letter || found == kFirst + (&option - known.data());
        });
        const std::string value = optarg != nullptr ? optarg : "";
        if (row->name == "help") return Answer{HelpText(program)};
        if (row->name == "version") {
            return Answer{std::string(program.name) + ' ' + std::string(program.version) + '\n'};
        }
        if (row->name == "completion") {
            const auto shell = ChoiceOf(*row, value);
            if (!shell) return Mistake{UnknownChoice(*row, value)};
            return Answer{Completion(program, *shell)};
        }
        call.options.emplace_back(row->name, value);
    }
    call.words.assign(argv + optind, argv + argc);
    if (std::string what = FindCommand(program, call); !what.empty()) return Mistake{what};
    return call;
}

}  // namespace commandline
