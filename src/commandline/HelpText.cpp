#include <algorithm>

#include "commandline/CommandLine.h"

namespace commandline {
namespace {

constexpr std::size_t kWidth = 88;  // characters of a line
constexpr std::size_t kTextAt = 29;

/// `text` broken into lines that begin at `column`; the cursor is at the end of `out`.
void AppendWrapped(std::string& out, std::string_view text, std::size_t column) {
    std::size_t used = column;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (used > column && used + 1 + end > kWidth) {
            out += '\n' + std::string(column, ' ');
            used = column;
        } else if (used > column) {
            out += ' ';
            ++used;
        }
        out += text.substr(0, end);
        used += end;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    out += '\n';
}

/// One row: what is typed, and what it does beside it, or below when there is no room.
void AppendRow(std::string& out, const std::string& typed, std::string_view help,
               std::size_t column) {
    out += typed;
    const bool fits = typed.size() < column;
    out += fits ? std::string(column - typed.size(), ' ') : '\n' + std::string(column, ' ');
    AppendWrapped(out, help, column);
}

std::string Typed(const Option& option) {
    std::string typed = option.letter != '\0' ? std::string{'-', option.letter} + ", " : "";
    typed += "--" + std::string(option.name);
    if (!option.value.empty()) typed += ' ' + std::string(option.value);
    return typed;
}

}  // namespace

std::string HelpText(const Program& program) {
    std::string text = "Usage: " + std::string(program.name) + ' ' + std::string(program.usage) +
                       '\n' + std::string(program.about) + '\n';
    if (!program.commands.empty()) text += "\nCommands:\n";
    for (const Command& command : program.commands) {
        std::string typed = "  " + std::string(command.name);
        if (!command.words.empty()) typed += ' ' + std::string(command.words);
        AppendRow(text, typed, command.help, kTextAt);
        for (const Option& option : command.options) {
            AppendRow(text, "    " + Typed(option), option.help, kTextAt + 2);
        }
    }
    text += "\nOptions:\n";
    for (const Option& option : AllOptions(program)) {
        AppendRow(text, "  " + Typed(option), option.help, kTextAt);
    }
    text += '\n';
    AppendWrapped(text, program.closing, 0);
    return text;
}

}  // namespace commandline
