#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "ado/AdoError.h"
#include "project/CreateProject.h"
#include "project/Rows.h"
#include "tools/Commands.h"
#include "tools/Messages.h"
#include "tools/OutputFile.h"
#include "tools/posix/Program.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

/// Why nothing comes of it, as a message has it.
class Trouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr std::string_view kAttributes = "*.kvs -text diff=kvs merge=kvs";

/// As a shell takes it for one word.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

using Settings = std::vector<std::pair<std::string, std::string>>;

Settings SettingsFor(const std::string& program) {
    const std::string kvs = Quoted(program);
    return {
        {"diff.kvs.textconv", kvs + " export --format json"},
        // git gives seven words, or one for a file with conflicts, and takes the status of files
        // that differ for a failure.
        {"diff.kvs.command", "f() { test $# -lt 7 || { echo \"$1:\"; " + kvs +
                                 " diff \"$2\" \"$5\" || test $? = 1; }; }; f"},
        {"merge.kvs.name", "projects, field by field"},
        {"merge.kvs.driver", kvs + " merge %O %A %B -o %A"},
    };
}

/// git in one folder.
class Git {
public:
    explicit Git(std::string folder) : folder_(std::move(folder)) {}

    [[nodiscard]] ProgramResult Try(std::vector<std::string> words) const {
        words.insert(words.begin(), "git");
        ProgramResult result = RunProgram(folder_, words);
        while (result.output.ends_with('\n')) result.output.pop_back();
        return result;
    }
    std::string Run(const std::vector<std::string>& words) const {
        ProgramResult result = Try(words);
        if (result.status == 0) return std::move(result.output);
        std::string text = "git";
        for (const std::string& word : words) text += " " + word;
        throw Trouble(
            text + " has failed: " + (result.output.empty() ? "it cannot be run" : result.output));
    }
    void Set(const Settings& settings) const {
        for (const auto& [key, value] : settings) Run({"config", "--local", key, value});
    }

private:
    std::string folder_;
};

/// A folder inside the repository, where the user may write in any case.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& parent) : path_(parent + "/kvs-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr) throw Trouble(parent + ": it cannot be written");
    }
    ~ScratchFolder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string path_;
};

void WriteAttributes(const std::string& path) {
    std::string text;
    {
        std::ifstream in(path, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(in), {});
    }
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += std::string(kAttributes) + '\n';
    OutputFile out(nullptr);
    std::string failure = out.Open(path);
    if (failure.empty() && std::fwrite(text.data(), 1, text.size(), out.Stream()) != text.size()) {
        failure = path + ": writing has failed";
    }
    if (failure.empty()) failure = out.Keep();
    if (!failure.empty()) throw Trouble(failure);
}

/// A repository with a project that two people change, in which the settings must do what they are
/// for.
class Proof {
public:
    Proof(std::string folder, const Settings& settings)
        : folder_(std::move(folder)), git_(folder_) {
        git_.Run({"init", "--quiet", "--template="});
        git_.Set(settings);
        git_.Set({{"user.name", "kvs"},
                  {"user.email", "kvs@localhost"},
                  {"commit.gpgsign", "false"},
                  {"core.hooksPath", "/dev/null"}});
        WriteAttributes(folder_ + "/.gitattributes");
    }

    void Run() {
        git_.Run({"checkout", "--quiet", "-b", "mine"});
        const std::uint32_t language = 1033;
        project::CreateProject(Project(), {&language, 1});
        Change([](project::Rows& rows) { rows.AddArchive(u"Archive"); });
        git_.Run({"checkout", "--quiet", "-b", "theirs"});
        Change([](project::Rows& rows) { rows.Archives().Set("ScanTime", 2000); });
        git_.Run({"checkout", "--quiet", "mine"});
        Change([](project::Rows& rows) { rows.Archives().Set("MaxSamples", 5); });
        // What the field is called is a matter of the locale.
        Expect({"diff", "mine~1", "theirs"}, ": 1000 -> 2000");
        Expect({"show", "--no-ext-diff", "theirs"}, "2000");
        git_.Run({"merge", "--quiet", "--no-edit", "theirs"});
        ado::Connection connection;
        Open(connection);
        project::Rows rows(connection);
        if (!rows.SeekArchive(1) || ado::ToLong(rows.Archives().Get("ScanTime")) != 2000 ||
            ado::ToLong(rows.Archives().Get("MaxSamples")) != 5) {
            throw Trouble("a merge by git has lost what one side has done");
        }
    }

private:
    [[nodiscard]] std::string Project() const { return folder_ + "/plant.kvs"; }
    void Open(ado::Connection& connection) const { Connect(connection, Project()); }
    template <typename Work>
    void Change(Work work) {
        {
            ado::Connection connection;
            Open(connection);
            project::Rows rows(connection);
            std::ignore = rows.SeekArchive(1);
            work(rows);
            if (rows.Archives().EditMode() != ado::EditMode::None) rows.Archives().Update();
        }
        git_.Run({"add", "--all"});
        git_.Run({"commit", "--quiet", "-m", "change"});
    }
    void Expect(const std::vector<std::string>& words, const std::string& part) {
        const std::string output = git_.Run(words);
        if (output.find(part) != std::string::npos) return;
        throw Trouble("git " + words.front() + " does not show what has changed:\n" + output);
    }

    std::string folder_;
    Git git_;
};

void SetUp(const std::string& folder, std::FILE* out) {
    const Git git(folder);
    const std::string top = git.Run({"rev-parse", "--show-toplevel"});
    const std::string common = git.Run({"rev-parse", "--path-format=absolute", "--git-common-dir"});
    const Settings settings = SettingsFor(OwnPath());
    {
        const ScratchFolder scratch(common);
        Proof(scratch.Path(), settings).Run();
    }
    const auto isAttributed = [&] {
        const std::string known = Git(top).Run({"check-attr", "diff", "merge", "--", "plant.kvs"});
        return known == "plant.kvs: diff: kvs\nplant.kvs: merge: kvs";
    };
    const bool wasAttributed = isAttributed();
    if (!wasAttributed) WriteAttributes(top + "/.gitattributes");
    if (!isAttributed()) {
        throw Trouble(top +
                      "/.gitattributes: another file of attributes has other drivers for *.kvs");
    }
    git.Set(settings);
    std::fprintf(out, "%s: text view, diff and merge driver for *.kvs are registered and run\n",
                 top.c_str());
    if (!wasAttributed) {
        std::fprintf(out, "%s/.gitattributes has a new line: commit it\n", top.c_str());
    }
}

}  // namespace

ExitStatus GitSetup(const std::string& folder, std::FILE* out, std::FILE* err) {
    std::string why;
    try {
        SetUp(folder.empty() ? "." : folder, out);
        return std::fflush(out) == 0 ? kSuccess : kFailure;
    } catch (const Trouble& trouble) {
        why = trouble.what();
    } catch (const ado::AdoError& error) {
        why = error.Description();
    }
    std::fprintf(err, "kvs: git-setup: %s\n", why.c_str());
    return kFailure;
}

}  // namespace tools
