#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// What a program takes on its command line, as a table: parsing, the text of --help and the
/// completions of the shells come out of the same rows.
namespace commandline {

/// `name` is without its dashes. `value` is what follows the option: "N", or a choice "csv|json";
/// empty: nothing does. An option of several commands has a `value` in all or none of
/// them, and the same letter.
struct Option {
    std::string_view name;
    std::string_view value;
    std::string_view help;
    char letter = '\0';  // -o; none
};

/// `words` are what follows the command, "FILE TABLE": "[X]" may be missing, "X..." may be several.
/// The first of `help` up to a semicolon is what shells show.
struct Command {
    std::string_view name;
    std::string_view words;
    std::string_view help;
    std::vector<Option> options = {};
};

/// `usage` is what follows the name in the first line of the help, `about` the line below and
/// `closing` its last paragraph. A program without commands takes `words`. The options --help,
/// --version and --completion are every program's.
struct Program {
    std::string_view name;
    std::string_view version;
    std::string_view usage;
    std::string_view about;
    std::string_view closing;
    std::string_view words = {};
    std::vector<Option> options = {};
    std::vector<Command> commands = {};
};

/// A command line that says what to do.
struct Call {
    std::size_t command = 0;         // index of the program's command
    std::vector<std::string> words;  // behind the command
    std::vector<std::pair<std::string_view, std::string>> options;  // in their order

    [[nodiscard]] bool Has(std::string_view option) const;
    /// Of the last one that is given; empty: none is. One of a choice is as the table has it.
    [[nodiscard]] std::string Value(std::string_view option) const;
    [[nodiscard]] std::vector<std::string> Values(std::string_view option) const;
};

/// What --help, --version and --completion ask for, to be printed.
struct Answer {
    std::string text;
};

/// What is wrong, in a few words without an end: "dump: FILE and TABLE are needed".
struct Mistake {
    std::string text;
};

/// Options may stand anywhere, and be cut short as long as they are clear; nothing behind "--" is
/// one. argv[0] is the program. Changes the order in `argv`.
[[nodiscard]] std::variant<Call, Answer, Mistake> Parse(const Program& program, int argc,
                                                        char** argv);

[[nodiscard]] std::string HelpText(const Program& program);
/// What bash, zsh or fish reads to complete the program's words; `shell` is one of these.
[[nodiscard]] std::string Completion(const Program& program, std::string_view shell);

/// The choices of an option; none when its value is free.
[[nodiscard]] std::vector<std::string_view> Choices(const Option& option);
/// The program's own options with those that every program has.
[[nodiscard]] std::vector<Option> AllOptions(const Program& program);

}  // namespace commandline
