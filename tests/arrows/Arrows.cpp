#include "arrows/Arrows.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace arrows {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

bool LiesBelow(const fs::path& file, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first ==
           folder.end();
}

/// What a file includes; an include in angle brackets may be the system's.
struct Include {
    std::string path;
    bool isOurs;
};

std::vector<Include> IncludesOf(const fs::path& file) {
    constexpr std::string_view kWord = "#include ";
    std::vector<Include> includes;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with(kWord) || line.size() < kWord.size() + 2) continue;
        const bool isOurs = line[kWord.size()] == '"';
        const auto end = line.find(isOurs ? '"' : '>', kWord.size() + 1);
        if (end == std::string::npos) continue;
        includes.push_back({line.substr(kWord.size() + 1, end - kWord.size() - 1), isOurs});
    }
    return includes;
}

/// What Qt's generators write lies in the build's folder.
bool IsGenerated(const std::string& include) {
    return include.starts_with("ui_") || include.ends_with(".moc");
}

/// The project's file that an include means; empty when there is none.
fs::path FileOf(const std::string& include, const fs::path& from, const fs::path& root) {
    for (const fs::path& folder : {from.parent_path(), root / "src", root, root / "include"}) {
        const fs::path file = (folder / include).lexically_normal();
        if (fs::exists(file)) return file;
    }
    return {};
}

/// The target itself, those it is joined to, and what these hand on.
std::set<std::string> Reach(const Targets& targets, const std::string& name) {
    std::set<std::string> reach{name};
    std::vector<std::string> open(targets.at(name).joined.begin(), targets.at(name).joined.end());
    while (!open.empty()) {
        const std::string next = open.back();
        open.pop_back();
        if (!reach.insert(next).second) continue;
        const auto found = targets.find(next);
        if (found == targets.end()) continue;
        open.insert(open.end(), found->second.handedOn.begin(), found->second.handedOn.end());
    }
    return reach;
}

class Checker {
public:
    Checker(const Targets& targets, const fs::path& root) : targets_(targets), root_(root) {
        for (const auto& [name, target] : targets)
            for (const fs::path& file : target.files) owner_[file] = name;
    }

    void Check(const std::string& name, const std::vector<fs::path>& files) {
        const std::set<std::string> reach = Reach(targets_, name);
        std::set<std::string> used;
        for (const fs::path& file : files)
            for (const Include& include : IncludesOf(file))
                if (!IsGenerated(include.path)) CheckInclude(name, reach, file, include, used);
        for (const std::string& joined : targets_.at(name).joined) {
            const auto found = targets_.find(joined);
            if (found != targets_.end() && !found->second.files.empty() && !used.contains(joined))
                wrong.push_back(name + " is joined to " + joined + " and includes nothing of it");
        }
    }

    std::vector<std::string> wrong;

private:
    void CheckInclude(const std::string& name, const std::set<std::string>& reach,
                      const fs::path& file, const Include& include, std::set<std::string>& used) {
        const fs::path header = FileOf(include.path, file, root_);
        if (header.empty() && !include.isOurs) return;
        const std::string where =
            fs::relative(file, root_).string() + ": \"" + include.path + "\" ";
        const auto owner = owner_.find(header);
        if (owner == owner_.end()) {
            wrong.push_back(where + "belongs to no target");
            return;
        }
        used.insert(owner->second);
        if (!reach.contains(owner->second))
            wrong.push_back(where + "belongs to " + owner->second + ", to which " + name +
                            " is not joined");
        const fs::path library = LibraryWithin(header);
        if (library.empty()) return;
        if (!LiesBelow(file, library)) wrong.push_back(where + "is for its own folder only");
        if (file.parent_path() == library && file.extension() == ".h")
            wrong.push_back(where + "is no part of what others may include");
    }

    /// The folder of src whose inside the header is; empty when it is not in a folder's folder.
    [[nodiscard]] fs::path LibraryWithin(const fs::path& header) const {
        const fs::path within = header.lexically_relative(root_ / "src");
        const auto parts = std::distance(within.begin(), within.end());
        const bool isInside = parts > 2 && *within.begin() != "..";
        return isInside ? root_ / "src" / *within.begin() : fs::path();
    }

    const Targets& targets_;
    fs::path root_;
    std::map<fs::path, std::string> owner_;
};

}  // namespace

Targets Read(const fs::path& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error("cannot read " + file.string());
    Targets targets;
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> parts = Split(line, '|');
        parts.resize(4);
        Target& target = targets[parts[0]];
        for (const std::string& path : Split(parts[1], ';')) target.files.emplace_back(path);
        for (const std::string& name : Split(parts[2], ';')) target.joined.insert(name);
        for (const std::string& name : Split(parts[3], ';')) target.handedOn.insert(name);
    }
    return targets;
}

std::vector<std::string> Wrong(const Targets& targets, const fs::path& root,
                               const std::vector<std::string>& folders) {
    Checker checker(targets, root);
    for (const auto& [name, target] : targets) {
        std::vector<fs::path> files;  // what is generated lies elsewhere
        std::ranges::copy_if(target.files, std::back_inserter(files), [&](const fs::path& file) {
            return std::ranges::any_of(
                folders, [&](const std::string& folder) { return LiesBelow(file, root / folder); });
        });
        if (!files.empty()) checker.Check(name, files);
    }
    return checker.wrong;
}

}  // namespace arrows
