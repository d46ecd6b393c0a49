#include <getopt.h>

#include <array>
#include <string_view>
#include <vector>

#include "tools/Commands.h"

namespace tools {
namespace {

constexpr const char* kHelp =
    "Usage: kvs COMMAND [OPTION]... FILE [ARGUMENT]...\n"
    "Reads project files (.kvs) and other Jet 3 and Jet 4 databases.\n"
    "\n"
    "Commands:\n"
    "  tables FILE                a line for each table: name, tab, number of rows\n"
    "  dump FILE TABLE            all rows of a table\n"
    "    --format csv|json          CSV after RFC 4180 (default) or JSON\n"
    "  check FILE                 a line for each fault of the file (Jet 4)\n"
    "  load FILE TABLE CSV        append the rows of a CSV file as dump writes it; - = standard "
    "input\n"
    "  set FILE TABLE CRITERIA COLUMN=VALUE...\n"
    "                             change all rows that meet the criteria, such as \"ID = 7\"; a "
    "VALUE\n"
    "                             is as in CSV: nothing is Null, \"\" an empty text\n"
    "  delete FILE TABLE CRITERIA delete all rows that meet the criteria; \"\" = all rows\n"
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

ExitStatus RunCommand(const std::vector<std::string>& words, const std::string& format,
                      std::FILE* out, std::FILE* err) {
    if (words.empty()) return WrongUsage("a command is missing", err);
    const std::string& command = words[0];
    if (command == "tables") {
        if (!format.empty()) return WrongUsage("tables: --format is for dump", err);
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
        return Load(words[1], words[2], words[3], out, err);
    }
    if (command == "set") {
        if (words.size() < 5) {
            return WrongUsage("set: FILE, TABLE, CRITERIA and COLUMN=VALUE are needed", err);
        }
        return Set(words[1], words[2], words[3], {words.begin() + 4, words.end()}, out, err);
    }
    if (command == "delete") {
        if (words.size() != 4) {
            return WrongUsage("delete: FILE, TABLE and CRITERIA are needed", err);
        }
        return Delete(words[1], words[2], words[3], out, err);
    }
    if (command == "check") {
        if (!format.empty()) return WrongUsage("check: --format is for dump", err);
        if (words.size() != 2) return WrongUsage("check: one FILE is needed", err);
        return Check(words[1], out, err);
    }
    return WrongUsage("unknown command '" + command + "'", err);
}

}  // namespace

ExitStatus Run(int argc, char** argv, std::FILE* out, std::FILE* err) {
    static constexpr std::array<option, 4> kOptions = {{{"help", no_argument, nullptr, 'h'},
                                                        {"version", no_argument, nullptr, 'V'},
                                                        {"format", required_argument, nullptr, 'f'},
                                                        {nullptr, 0, nullptr, 0}}};
    std::string format;
    optind = 1;
    opterr = 0;
    int found = 0;
    while ((found = getopt_long(argc, argv, "hV", kOptions.data(), nullptr)) != -1) {
        if (found == 'h') return Show(kHelp, out);
        if (found == 'V') return Show("kvs " KV_VERSION "\n", out);
        if (found == '?')
            return WrongUsage(
                std::string("unknown or incomplete option '") + argv[optind - 1] + "'", err);
        format = optarg;
    }
    return RunCommand({argv + optind, argv + argc}, format, out, err);
}

}  // namespace tools
