#include <getopt.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "tools/Commands.h"

namespace tools {
namespace {

constexpr const char* kHelp =
    "Usage: kvs COMMAND [OPTION]... FILE [ARGUMENT]...\n"
    "Works on project files (.kvs) and other Jet 3 and Jet 4 databases.\n"
    "\n"
    "Commands:\n"
    "  new FILE                   make an empty project; FILE must not be there\n"
    "    --lcid N                   a language of its texts, such as 1031; once for each language\n"
    "                               (default: 1031 and 1033)\n"
    "  tables FILE                a line for each table: name, tab, number of rows\n"
    "  dump FILE TABLE            all rows of a table\n"
    "    --format csv|json          CSV after RFC 4180 (default) or JSON\n"
    "  check FILE                 a line for each fault of the file (Jet 4)\n"
    "  compact FILE               rewrite the file without the room that nothing uses (Jet 4);\n"
    "                             refused while other programs have it open\n"
    "  repair FILE                write what can be read of a damaged file into a new one (Jet 4) "
    "with\n"
    "                             maps, indexes and counters made anew; FILE is left alone\n"
    "    --to NEW                   the new file, which must not be there (default: beside FILE,\n"
    "                               its name with -repaired)\n"
    "  load FILE TABLE CSV        append the rows of a CSV file as dump writes it; - = standard "
    "input\n"
    "    --encoding utf-8|windows-1252\n"
    "                             how its characters are stored (default: utf-8)\n"
    "  set FILE TABLE CRITERIA COLUMN=VALUE...\n"
    "                             change all rows that meet the criteria, such as \"ID = 7\"; a "
    "VALUE\n"
    "                             is as in CSV: nothing is Null, \"\" an empty text or binary\n"
    "  delete FILE TABLE CRITERIA delete all rows that meet the criteria; \"\" = all rows\n"
    "    --dry-run                  load, set, delete: say what would be changed, and change "
    "nothing\n"
    "\n"
    "Options:\n"
    "  -h, --help                 show this text\n"
    "  -V, --version              show the version\n"
    "\n"
    "Exit status: 0 done, 1 failed (messages on standard error), 2 wrong usage.\n"
    "What can be read of a damaged file is written. A value that cannot be read stands there as\n"
    "Null, or as far as it could be read; the messages name the place, and the status is 1.\n";

ExitStatus Show(const char* text, std::FILE* out) {
    return std::fputs(text, out) >= 0 && std::fflush(out) == 0 ? kSuccess : kFailure;
}

ExitStatus WrongUsage(const std::string& what, std::FILE* err) {
    std::fprintf(err, "kvs: %s\nTry 'kvs --help'.\n", what.c_str());
    return kUsage;
}

struct Options {
    std::string format;
    std::string encoding;
    std::vector<std::string> lcids;
    std::string to;
    bool isDryRun = false;
};

/// What is wrong when an option is given to a command that has no use for it; empty when nothing
/// is.
std::string Misplaced(const std::string& command, const Options& options) {
    struct Use {
        bool isGiven;
        const char* option;
        std::vector<std::string> commands;
    };
    const Use uses[] = {
        {!options.format.empty(), "--format is for dump", {"dump"}},
        {!options.encoding.empty(), "--encoding is for load", {"load"}},
        {!options.lcids.empty(), "--lcid is for new", {"new"}},
        {!options.to.empty(), "--to is for repair", {"repair"}},
        {options.isDryRun, "--dry-run is for load, set and delete", {"load", "set", "delete"}},
    };
    for (const Use& use : uses) {
        const bool isHere =
            std::find(use.commands.begin(), use.commands.end(), command) != use.commands.end();
        if (use.isGiven && !isHere) return command + ": " + use.option;
    }
    return {};
}

ExitStatus RunCommand(const std::vector<std::string>& words, const Options& options, std::FILE* out,
                      std::FILE* err) {
    if (words.empty()) return WrongUsage("a command is missing", err);
    const std::string& command = words[0];
    const std::string& format = options.format;
    if (const std::string what = Misplaced(command, options); !what.empty()) {
        return WrongUsage(what, err);
    }
    const Mode mode = options.isDryRun ? Mode::DryRun : Mode::Change;
    if (command == "new") {
        if (words.size() != 2) return WrongUsage("new: one FILE is needed", err);
        return New(words[1], options.lcids, err);
    }
    if (command == "tables") {
        if (words.size() != 2) return WrongUsage("tables: one FILE is needed", err);
        return Tables(words[1], out, err);
    }
    if (command == "dump") {
        if (words.size() != 3) return WrongUsage("dump: FILE and TABLE are needed", err);
        if (!format.empty() && format != "csv" && format != "json") {
            return WrongUsage("dump: unknown format '" + format + "'", err);
        }
        return Dump(words[1], words[2], format == "json" ? DumpFormat::Json : DumpFormat::Csv, out,
                    err);
    }
    if (command == "load") {
        if (words.size() != 4) return WrongUsage("load: FILE, TABLE and CSV are needed", err);
        const auto encoding = EncodingOf(options.encoding.empty() ? "utf-8" : options.encoding);
        if (!encoding) {
            return WrongUsage("load: unknown encoding '" + options.encoding +
                                  "'; there are utf-8 and windows-1252",
                              err);
        }
        return Load(words[1], words[2], words[3], *encoding, mode, out, err);
    }
    if (command == "set") {
        if (words.size() < 5) {
            return WrongUsage("set: FILE, TABLE, CRITERIA and COLUMN=VALUE are needed", err);
        }
        return Set(words[1], words[2], words[3], {words.begin() + 4, words.end()}, mode, out, err);
    }
    if (command == "delete") {
        if (words.size() != 4) {
            return WrongUsage("delete: FILE, TABLE and CRITERIA are needed", err);
        }
        return Delete(words[1], words[2], words[3], mode, out, err);
    }
    if (command == "check") {
        if (words.size() != 2) return WrongUsage("check: one FILE is needed", err);
        return Check(words[1], out, err);
    }
    if (command == "compact") {
        if (words.size() != 2) return WrongUsage("compact: one FILE is needed", err);
        return Compact(words[1], out, err);
    }
    if (command == "repair") {
        if (words.size() != 2) return WrongUsage("repair: one FILE is needed", err);
        return Repair(words[1], options.to, out, err);
    }
    return WrongUsage("unknown command '" + command + "'", err);
}

}  // namespace

ExitStatus Run(int argc, char** argv, std::FILE* out, std::FILE* err) {
    static constexpr std::array<option, 8> kOptions = {
        {{"help", no_argument, nullptr, 'h'},
         {"version", no_argument, nullptr, 'V'},
         {"format", required_argument, nullptr, 'f'},
         {"encoding", required_argument, nullptr, 'e'},
         {"lcid", required_argument, nullptr, 'l'},
         {"to", required_argument, nullptr, 't'},
         {"dry-run", no_argument, nullptr, 'n'},
         {nullptr, 0, nullptr, 0}}};
    Options options;
    optind = 1;
    opterr = 0;
    int found = 0;
    while ((found = getopt_long(argc, argv, "hV", kOptions.data(), nullptr)) != -1) {
        if (found == 'h') return Show(kHelp, out);
        if (found == 'V') return Show("kvs " KV_VERSION "\n", out);
        if (found == '?')
            return WrongUsage(
                std::string("unknown or incomplete option '") + argv[optind - 1] + "'", err);
        if (found == 'f') options.format = optarg;
        if (found == 'e') options.encoding = optarg;
        if (found == 't') options.to = optarg;
        if (found == 'n') options.isDryRun = true;
        if (found == 'l') options.lcids.emplace_back(optarg);
    }
    return RunCommand({argv + optind, argv + argc}, options, out, err);
}

}  // namespace tools
