#include <sstream>

#include "commandline/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Exchange.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using commandline::Call;

/// A command with what it does. The help, the completions of the shells and what is said of a
/// wrong command line come out of these rows.
struct Row {
    commandline::Command usage;
    ExitStatus (*run)(const Call& call, std::FILE* out, std::FILE* err);
};

constexpr commandline::Option kDryRun = {"dry-run", "",
                                         "say what would be changed, and change nothing"};

constexpr commandline::Option kTextFormat = {"format", "text|json", "sentences (default) or JSON"};

TextFormat TextFormatOf(const Call& call) {
    return call.Value("format") == "json" ? TextFormat::Json : TextFormat::Text;
}

Mode ModeOf(const Call& call) {
    return call.Has("dry-run") ? Mode::DryRun : Mode::Change;
}

char SeparatorOf(const std::string& name) {
    return name == "tab" ? '\t' : name == "semicolon" ? ';' : ',';
}

ExitStatus RunDump(const Call& call, std::FILE* out, std::FILE* err) {
    DumpWish wish;
    if (call.Value("format") == "json") wish.format = DumpFormat::Json;
    wish.where = call.Value("where");
    wish.isByKey = call.Value("sort") == "key";
    for (const std::string& names : call.Values("columns")) {
        std::istringstream list(names);
        for (std::string name; std::getline(list, name, ',');) wish.columns.push_back(name);
    }
    return Dump(call.words[0], call.words[1], wish, out, err);
}

ExitStatus RunLoad(const Call& call, std::FILE* out, std::FILE* err) {
    LoadWish wish;
    wish.encoding = csv::EncodingOf(call.Value("encoding")).value_or(csv::Encoding::Utf8);
    if (call.Has("separator")) wish.separator = SeparatorOf(call.Value("separator"));
    wish.key = call.Value("update");
    return Load(call.words[0], call.words[1], call.words[2], wish, ModeOf(call), out, err);
}

ExitStatus RunSet(const Call& call, std::FILE* out, std::FILE* err) {
    return Set(call.words[0], call.words[1], call.words[2],
               {call.words.begin() + 3, call.words.end()}, ModeOf(call), out, err);
}

// What both directions of the exchange with spreadsheets take.
constexpr commandline::Option kSheet = {
    "sheet", "trends|archives",
    "which rows a CSV file holds (default: trends; import: by its headings), or a single sheet of "
    "a workbook"};
constexpr commandline::Option kSeparator = {
    "separator", "comma|semicolon|tab",
    "between the values (default: the locale's; import, load: found out)"};
constexpr commandline::Option kEncoding = {"encoding", "utf-8|windows-1252",
                                           "how its characters are stored (default: utf-8)"};
constexpr commandline::Option kLanguage = {"language", "de|en",
                                           "of headings and words (default: the locale's)"};

exchange::SheetKind SheetOf(const Call& call) {
    const bool isArchives = call.Value("sheet") == "archives";
    return isArchives ? exchange::SheetKind::Archives : exchange::SheetKind::Trends;
}

SheetForm FormOf(const Call& call) {
    SheetForm form = SheetFormOfStation();
    if (call.Has("language")) form.language = words::FindLanguage(call.Value("language"));
    form.isSeparatorGiven = call.Has("separator");
    if (form.isSeparatorGiven) form.csv.separator = SeparatorOf(call.Value("separator"));
    if (call.Has("decimal")) form.csv.decimal = call.Value("decimal") == "comma" ? ',' : '.';
    if (call.Has("bom")) form.csv.hasMark = call.Value("bom") == "yes";
    form.csv.encoding = csv::EncodingOf(call.Value("encoding")).value_or(csv::Encoding::Utf8);
    return form;
}

ExitStatus RunExport(const Call& call, std::FILE* out, std::FILE* err) {
    ExportWish wish;
    wish.archives = call.Values("archives");
    if (call.Has("sheet")) wish.sheet = SheetOf(call);
    wish.form = FormOf(call);
    wish.to = call.Value("output");
    const auto isFormat = [&](const std::string& name) {
        return call.Has("format") ? call.Value("format") == name : wish.to.ends_with("." + name);
    };
    if (isFormat("xlsx")) wish.format = ExchangeFormat::Xlsx;
    if (isFormat("json")) wish.format = ExchangeFormat::Json;
    if (wish.format == ExchangeFormat::Json && !wish.archives.empty()) {
        std::fputs("kvs: export: JSON holds the whole project, --archives is for sheets\n", err);
        return kUsage;
    }
    return Export(call.words[0], wish, out, err);
}

ExitStatus RunImport(const Call& call, std::FILE* out, std::FILE* err) {
    ImportWish wish;
    wish.form = FormOf(call);
    if (call.Has("sheet")) wish.reading.kind = SheetOf(call);
    for (const std::string& choice : call.Values("column")) {
        const std::size_t at = choice.rfind('=');
        if (at == std::string::npos) {
            std::fprintf(err, "kvs: import: --column HEADING=COLUMN, not %s\n", choice.c_str());
            return kUsage;
        }
        wish.reading.columns.push_back(
            {unicode::ToUtf16(choice.substr(0, at)), unicode::ToUtf16(choice.substr(at + 1))});
    }
    const std::string update = call.Value("update");
    if (update == "id") wish.plan.matchBy = exchange::MatchBy::Id;
    if (update == "name") wish.plan.matchBy = exchange::MatchBy::Name;
    wish.plan.deleteMissing = call.Has("delete-missing");
    wish.leavesOut = call.Has("leave-out");
    wish.isDryRun = call.Has("dry-run");
    return Import(call.words[0], call.words[1], wish, out, err);
}

ExitStatus RunLint(const Call& call, std::FILE* out, std::FILE* err) {
    LintOptions options;
    const std::string format = call.Value("format");
    if (format == "json") options.format = FindingFormat::Json;
    if (format == "sarif") options.format = FindingFormat::Sarif;
    if (call.Has("fail-on")) {
        options.failOn = project::FindSeverity(call.Value("fail-on")).value_or(options.failOn);
    }
    options.rules = call.Value("rules");
    options.accept = call.Value("accept");
    options.reason = call.Value("reason");
    options.by = call.Value("by");
    options.until = call.Value("until");
    using Cure = LintOptions::Cure;
    if (call.Has("cure")) options.cure = call.Value("cure") == "all" ? Cure::All : Cure::Safe;
    options.isDryRun = call.Has("dry-run");
    return Lint(call.words[0], options, out, err);
}

ExitStatus RunMerge(const Call& call, std::FILE* out, std::FILE* err) {
    const std::string result = call.Value("output");
    if (result.empty()) {
        std::fprintf(err, "kvs: merge: -o NEW is needed\nTry 'kvs --help'.\n");
        return kUsage;
    }
    return Merge({call.words[0], call.words[1], call.words[2], result}, TextFormatOf(call), out,
                 err);
}

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        {{"new",
          "FILE",
          "make an empty project; FILE must not be there",
          {{"lcid", "N",
            "a language of its texts, such as 1031; once for each language (default: 1031 and "
            "1033)"}}},
         [](const Call& call, std::FILE*, std::FILE* err) {
             return New(call.words[0], call.Values("lcid"), err);
         }},
        {{"tables", "FILE", "a line for each table: name, tab, number of rows"},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Tables(call.words[0], out, err);
         }},
        {{"dump",
          "FILE TABLE",
          "all rows of a table",
          {{"format", "csv|json", "CSV after RFC 4180 (default) or JSON"},
           {"where", "CRITERIA", "only rows that meet them, such as \"ArchiveID = 3\""},
           {"columns", "NAMES", "only these, separated by commas, in this order"},
           {"sort", "stored|key", "by the primary key (default: as the rows are stored)"}}},
         RunDump},
        {{"export",
          "FILE",
          "archives or trends for a spreadsheet, or all of the project as text; its rows, headings "
          "and codes in words",
          {{"archives", "NAME", "only this archive and its trends; once for each archive"},
           {"format", "csv|xlsx|json",
            "CSV, a workbook with a sheet each for archives and trends (not on Windows), or JSON, "
            "a field a line, for comparing (default: as OUT ends, else csv)"},
           {"output", "OUT", "the file that is written (default: standard output)", 'o'},
           kSheet,
           kLanguage,
           kSeparator,
           {"decimal", "comma|point", "in numbers (default: the locale's)"},
           kEncoding,
           {"bom", "yes|no", "the mark of UTF-8 at the beginning (default: yes)"}}},
         RunExport},
        {{"import",
          "FILE INPUT",
          "change a project after a CSV file or a workbook (.xlsx) as export writes it; - is "
          "standard "
          "input; rows are "
          "known by ID, held against archive and name, or else by these",
          {{"update", "id|name", "go by the ID alone, or by archive and name alone"},
           {"delete-missing", "", "delete rows that INPUT does not have"},
           {"leave-out", "", "import the rest where rows are ambiguous or refused"},
           {"column", "HEADING=COLUMN",
            "take a heading of INPUT for this column, or with nothing behind = for none; once for "
            "each heading"},
           kSheet,
           kLanguage,
           kSeparator,
           kEncoding,
           kDryRun}},
         RunImport},
        {{"check", "FILE", "a line for each fault of the file (Jet 4)"},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Check(call.words[0], out, err);
         }},
        {{"lint",
          "FILE",
          "a line for each setting of a project that cannot be meant; what is accepted in "
          "FILE-lint "
          "is left out",
          {{"format", "text|json|sarif", "lines (default), a JSON list, or SARIF 2.1.0"},
           {"fail-on", "note|warning|error",
            "from which severity on the exit status is 1 (default: note)"},
           {"rules", "RULE,...", "look for these rules only; -RULE,...: for all but these"},
           {"accept", "WHAT",
            "leave findings as they are: those at a place such as TchrTrends/228, or all of a "
            "rule"},
           {"reason", "TEXT", "why they are accepted"},
           {"by", "NAME", "who accepts them (default: the user)"},
           {"until", "DAY", "the last day, such as 2027-01-31 (default: for ever)"},
           {"cure", "safe|all",
            "do away with findings, all or none of them, and write what is done: where nothing is "
            "lost, or wherever there is a cure"},
           kDryRun}},
         RunLint},
        {{"compact", "FILE",
          "rewrite the file without the room that nothing uses (Jet 4); refused while other "
          "programs have it open"},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Compact(call.words[0], out, err);
         }},
        {{"repair",
          "FILE",
          "write what can be read of a damaged file into a new one (Jet 4); its maps, indexes and "
          "counters are made anew, and FILE is left alone",
          {{"to", "NEW",
            "the new file, which must not be there (default: beside FILE, its name with "
            "-repaired)"}}},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Repair(call.words[0], call.Value("to"), out, err);
         }},
        {{"load",
          "FILE TABLE CSV",
          "append the rows of a CSV file as dump writes it; - is standard input",
          {kEncoding,
           kSeparator,
           {"update", "KEY",
            "change the rows that have the same value in this column; the others are new"},
           kDryRun}},
         RunLoad},
        {{"set",
          "FILE TABLE CRITERIA COLUMN=VALUE...",
          "change all rows that meet the criteria, such as \"ID = 7\"; a VALUE is as in CSV: "
          "nothing is Null, \"\" an empty text or binary",
          {kDryRun}},
         RunSet},
        {{"delete",
          "FILE TABLE CRITERIA",
          "delete all rows that meet the criteria; \"\" = all rows",
          {kDryRun}},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Delete(call.words[0], call.words[1], call.words[2], ModeOf(call), out, err);
         }},
        {{"diff",
          "A B",
          "how B differs from A: archives, trends, texts and groups by ID, field by field; exit "
          "status 0 the same, 1 different, 2 trouble",
          {kTextFormat, kLanguage}},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return Diff(call.words[0], call.words[1], {TextFormatOf(call), FormOf(call).language},
                         out, err);
         }},
        {{"merge",
          "BASE MINE THEIRS",
          "join what has been changed from BASE to MINE and from BASE to THEIRS, field by field; "
          "exit status 0 without conflicts, 1 with some, which are listed, 2 no result",
          {{"output", "NEW", "the new file; MINE, or a name that is free (needed)", 'o'},
           kTextFormat}},
         RunMerge},
        {{"git-setup", "[DIR]",
          "let git show, compare and merge projects field by field in the repository of DIR "
          "(default: here); not there on Windows"},
         [](const Call& call, std::FILE* out, std::FILE* err) {
             return GitSetup(call.words.empty() ? "" : call.words[0], out, err);
         }},
    };
    return rows;
}

commandline::Program Kvs() {
    commandline::Program program{
        "kvs", KV_VERSION, "COMMAND [OPTION]... FILE [ARGUMENT]...",
        "Works on project files (.kvs) and other Jet 3 and Jet 4 databases.",
        "Exit status: 0 done, 1 failed (messages on standard error), 2 wrong usage. What can be "
        "read of a damaged file is written. A value that cannot be read stands there as Null, or "
        "as far as it could be read; the messages name the place, and the status is 1."};
    for (const Row& row : Rows()) program.commands.push_back(row.usage);
    return program;
}

}  // namespace

ExitStatus Run(int argc, char** argv, std::FILE* out, std::FILE* err) {
    const auto parsed = commandline::Parse(Kvs(), argc, argv);
    if (const auto* mistake = std::get_if<commandline::Mistake>(&parsed)) {
        std::fprintf(err, "kvs: %s\nTry 'kvs --help'.\n", mistake->text.c_str());
        return kUsage;
    }
    if (const auto* answer = std::get_if<commandline::Answer>(&parsed)) {
        const bool isShown = std::fputs(answer->text.c_str(), out) >= 0 && std::fflush(out) == 0;
        return isShown ? kSuccess : kFailure;
    }
    const auto& call = std::get<Call>(parsed);
    return Rows()[call.command].run(call, out, err);
}

}  // namespace tools
