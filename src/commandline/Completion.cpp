#include <algorithm>

#include "commandline/CommandLine.h"

namespace commandline {
namespace {

// Words for which there are no choices are completed as files: that is what most of them are.

std::string Joined(const std::vector<std::string_view>& parts, std::string_view separator) {
    std::string text;
    for (const std::string_view part : parts) {
        if (!text.empty()) text += separator;
        text += part;
    }
    return text;
}

std::vector<std::string_view> CommandNames(const Program& program) {
    std::vector<std::string_view> names;
    for (const Command& command : program.commands) names.push_back(command.name);
    return names;
}

std::string_view Brief(std::string_view help) {
    return help.substr(0, help.find(';'));
}

/// `text` in single quotes; the characters in `special` get a backslash.
std::string Quoted(std::string_view text, std::string_view special, std::string_view quote) {
    std::string quoted;
    for (const char c : text) {
        if (c == '\'') {
            quoted += quote;
            continue;
        }
        if (special.find(c) != std::string_view::npos) quoted += '\\';
        quoted += c;
    }
    return quoted;
}

/// A function of the shell with this name is not in anybody's way.
std::string FunctionName(const Program& program) {
    return "_" + std::string(program.name);
}

std::string Dashed(const std::vector<Option>& options) {
    std::string words;
    for (const Option& option : options) {
        if (!words.empty()) words += ' ';
        words += "--" + std::string(option.name);
    }
    return words;
}

/// A case of bash for each choice; `command` is a pattern.
void AppendBashChoices(std::string& text, std::string_view command,
                       const std::vector<Option>& options) {
    for (const Option& option : options) {
        if (option.value.empty()) continue;
        std::string names = std::string(command) + ",--" + std::string(option.name);
        if (option.letter != '\0') names += '|' + std::string(command) + ",-" + option.letter;
        text += "        " + names + ") words=\"" + Joined(Choices(option), " ") + "\" ;;\n";
    }
}

/// Finds out which word is completed, and the command that it belongs to.
void AppendBashPlace(std::string& text, const Program& program) {
    text +=
        "    local cur=${COMP_WORDS[COMP_CWORD]} at=$((COMP_CWORD - 1))\n"
        "    local words='' command='' i\n"
        "    # --option=value is three words here.\n"
        "    if [[ $cur == = ]]; then\n"
        "        cur=''\n"
        "    elif [[ ${COMP_WORDS[at]} == = ]]; then\n"
        "        at=$((at - 1))\n"
        "    fi\n";
    if (program.commands.empty()) return;
    text +=
        "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
        "        case ${COMP_WORDS[i]} in\n"
        "            " +
        Joined(CommandNames(program), "|") +
        ")\n"
        "                command=${COMP_WORDS[i]}\n"
        "                break\n"
        "                ;;\n"
        "        esac\n"
        "    done\n";
}

std::string BashCompletion(const Program& program) {
    const std::string name(program.name);
    const std::string everywhere = Dashed(AllOptions(program));
    std::string text =
        "# Completes the words of " + name + " in bash.\n" + FunctionName(program) + "() {\n";
    AppendBashPlace(text, program);
    text += "    case $command,${COMP_WORDS[at]} in\n";
    for (const Command& command : program.commands) {
        AppendBashChoices(text, command.name, command.options);
    }
    AppendBashChoices(text, "*", AllOptions(program));
    text +=
        "        *)\n"
        "            case $command,$cur in\n";
    for (const Command& command : program.commands) {
        const std::string own = Dashed(command.options);
        text += "                " + std::string(command.name) + ",-*) words=\"" + own +
                (own.empty() ? "" : " ") + everywhere + "\" ;;\n";
    }
    text += "                ,-*) words=\"" + everywhere + "\" ;;\n";
    if (!program.commands.empty()) {
        text += "                ,*) words=\"" + Joined(CommandNames(program), " ") + "\" ;;\n";
    }
    text +=
        "            esac\n"
        "            ;;\n"
        "    esac\n"
        "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$cur\")\n"
        "}\n";
    return text + "complete -o bashdefault -o default -F " + FunctionName(program) + ' ' + name +
           '\n';
}

std::string ZshOption(const Option& option, std::string_view dashed) {
    std::string row = "'*" + std::string(dashed);
    if (!option.value.empty()) row += dashed.starts_with("--") ? "=" : "+";
    row += '[' + Quoted(Brief(option.help), "[]:\\", "'\\''") + ']';
    if (option.value.empty()) return row + '\'';
    const std::vector<std::string_view> choices = Choices(option);
    row += ':' + std::string(option.name) + ':';
    return row + (choices.empty() ? "_files" : '(' + Joined(choices, " ") + ')') + '\'';
}

void AppendZshOptions(std::string& text, const std::vector<Option>& options,
                      std::string_view indent) {
    for (const Option& option : options) {
        text += std::string(indent) + ZshOption(option, "--" + std::string(option.name)) + " \\\n";
        if (option.letter == '\0') continue;
        text += std::string(indent) + ZshOption(option, std::string{'-', option.letter}) + " \\\n";
    }
}

void AppendZshCommands(std::string& text, const Program& program) {
    text +=
        "    local curcontext=$curcontext state line\n"
        "    local -a commands\n"
        "    _arguments -C -s \\\n";
    AppendZshOptions(text, AllOptions(program), "        ");
    text +=
        "        '1:command:->command' \\\n"
        "        '*::word:->words'\n"
        "    case $state in\n"
        "        command)\n"
        "            commands=(\n";
    for (const Command& command : program.commands) {
        text += "                '" + std::string(command.name) + ':' +
                Quoted(Brief(command.help), ":\\", "'\\''") + "'\n";
    }
    text +=
        "            )\n"
        "            _describe command commands\n"
        "            ;;\n"
        "        words)\n"
        "            case $words[1] in\n";
    for (const Command& command : program.commands) {
        text += "                " + std::string(command.name) +
                ")\n"
                "                    _arguments -s \\\n";
        AppendZshOptions(text, command.options, "                        ");
        text +=
            "                        '*:file:_files'\n"
            "                    ;;\n";
    }
    text +=
        "            esac\n"
        "            ;;\n"
        "    esac\n";
}

std::string ZshCompletion(const Program& program) {
    const std::string name(program.name);
    const std::string function = FunctionName(program);
    std::string text = "#compdef " + name + "\n# Completes the words of " + name + " in zsh.\n" +
                       function + "() {\n";
    if (program.commands.empty()) {
        text += "    _arguments -s \\\n";
        AppendZshOptions(text, AllOptions(program), "        ");
        text += "        '*:file:_files'\n";
    } else {
        AppendZshCommands(text, program);
    }
    // The first call comes through the file itself, by autoload; sourced, it is only made known.
    return text + "}\nif [[ $funcstack[1] == " + function + " ]]; then\n    " + function +
           " \"$@\"\nelse\n    compdef " + function + ' ' + name + "\nfi\n";
}

std::string FishOption(const Program& program, const Option& option, std::string_view condition) {
    std::string row = "complete -c " + std::string(program.name) + std::string(condition) + " -l " +
                      std::string(option.name);
    if (option.letter != '\0') row += std::string(" -s ") + option.letter;
    const std::vector<std::string_view> choices = Choices(option);
    if (!choices.empty()) {
        row += " -x -a '" + Joined(choices, " ") + '\'';
    } else if (!option.value.empty()) {
        row += " -r -F";
    }
    return row + " -d '" + Quoted(Brief(option.help), "\\", "\\'") + "'\n";
}

std::string FishCompletion(const Program& program) {
    const std::string name(program.name);
    std::string text = "# Completes the words of " + name + " in fish.\n";
    for (const Option& option : AllOptions(program)) text += FishOption(program, option, "");
    for (const Command& command : program.commands) {
        text += "complete -c " + name + " -n __fish_use_subcommand -f -a " +
                std::string(command.name) + " -d '" + Quoted(Brief(command.help), "\\", "\\'") +
                "'\n";
        const std::string condition =
            " -n '__fish_seen_subcommand_from " + std::string(command.name) + '\'';
        for (const Option& option : command.options) text += FishOption(program, option, condition);
    }
    return text;
}

}  // namespace

std::string Completion(const Program& program, std::string_view shell) {
    if (shell == "zsh") return ZshCompletion(program);
    if (shell == "fish") return FishCompletion(program);
    return BashCompletion(program);
}

}  // namespace commandline
