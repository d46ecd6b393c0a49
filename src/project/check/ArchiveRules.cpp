#include <algorithm>
#include <map>

#include "ado/Value.h"
#include "project/check/Finder.h"

namespace project {
namespace {

bool Holds(std::u16string_view text, std::u16string_view characters) {
    return text.find_first_of(characters) != text.npos ||
           std::any_of(text.begin(), text.end(),
                       [](char16_t c) { return c < u' ' || c == u'\x7F'; });
}

bool IsSlash(char16_t c) {
    return c == u'\\' || c == u'/';
}

/// Whether a folder begins where it can be found again, and holds nothing that no folder may.
bool IsFolder(std::u16string_view path) {
    constexpr std::u16string_view kForbidden = u":*?\"<>|";
    if (ado::FoldName(path.substr(0, kProjectFolder.size())) == ado::FoldName(kProjectFolder)) {
        path.remove_prefix(kProjectFolder.size());
        return (path.empty() || IsSlash(path.front())) && !Holds(path, kForbidden);
    }
    const bool hasDrive = path.size() > 2 && path[1] == u':' && IsSlash(path[2]);
    if (hasDrive) path.remove_prefix(2);
    return !path.empty() && IsSlash(path.front()) && !Holds(path, kForbidden);
}

/// Folder and name in the form in which the stations compare them.
std::u16string FileKey(std::u16string_view folder, std::u16string_view name) {
    std::u16string path(folder);
    std::replace(path.begin(), path.end(), u'/', u'\\');
    while (!path.empty() && path.back() == u'\\') path.pop_back();
    path += u'\\';
    path += name;
    return ado::FoldName(path);
}

class ArchiveCheck {
public:
    ArchiveCheck(ado::Connection& connection, Finder& finder)
        : finder_(finder), scan_(connection, TableOf(kArchiveTable)) {
        for (const TextGroup& group : finder.groups) {
            if (group.archive != 0) groupsOf_[group.archive].push_back(group.id);
        }
    }

    void Run() {
        finder_.Run(scan_, kArchiveTable, [&](const ScannedRow& row) { Check(row); });
        names_.ForEachDouble(
            [&](const NameList::Entry& entry, const std::vector<std::int32_t>& others) {
                finder_.Add(Rule::NameDouble, At(entry.id), "Name",
                            {{"Name", entry.name}, {"", u"archive " + ListOf(others)}},
                            SomeOf(kArchiveTable, others));
            });
        for (const auto& [key, users] : files_) TellShared(users);
    }

private:
    struct FileUser {
        std::int32_t id;
        std::string_view column;  // of the folder
        std::u16string path;
    };

    [[nodiscard]] FoundAt At(std::int32_t id) const {
        return {kArchiveTable, id, finder_.archives.at(id)};
    }

    void Check(const ScannedRow& row) {
        const ScanPlace namePlace = scan_.Find("Name");
        const std::u16string_view name = row.Text(namePlace);
        finder_.archives.emplace(row.Id(), name);
        const FoundAt at = At(row.Id());
        if (!name.empty()) {
            names_.Add(0, row.Id(), name);
        } else if (namePlace) {
            finder_.Add(Rule::NameEmpty, at, "Name");
        }
        CheckGroups(at);
        finder_.CheckText(Rule::ArchiveWithoutText, scan_.Find("TextID"), row, at);
        finder_.CheckKnownColumns(scan_, row, at);
        finder_.CheckLengths(scan_, row, at);
        CheckType(row, at);
        CheckSampling(row, at);
        CheckFiles(row, at);
    }

    void CheckGroups(const FoundAt& at) {
        if (!finder_.hasGroups) return;
        const auto groups = groupsOf_.find(at.id);
        if (groups == groupsOf_.end()) {
            finder_.Add(Rule::ArchiveWithoutGroup, at, "");
        } else if (groups->second.size() > 1) {
            finder_.Add(Rule::ArchiveWithSeveralGroups, at, "",
                        {{std::string(kGroupTable), ListOf(groups->second)}});
        }
    }

    /// Of the bits only the kind has a list; bits of other programs are theirs.
    void CheckType(const ScannedRow& row, const FoundAt& at) {
        const auto type = row.Long(scan_.Find("Type"));
        if (!type) return;
        const auto isKind = [&](const Code& code) {
            return code.code == (*type & ArchiveType::kKindMask);
        };
        const bool isKnown = std::any_of(ArchiveKinds().begin(), ArchiveKinds().end(), isKind);
        if (!isKnown) finder_.Add(Rule::CodeUnknown, at, "Type", {{"Type", DigitsOf(type)}});
    }

    void RequireVariable(const ScannedRow& row, const FoundAt& at, std::string_view column) {
        const ScanPlace place = scan_.Find(column);
        if (place && row.Text(place).empty()) {
            finder_.Add(Rule::VariableMissing, at, column, {{std::string(column), u""}});
        }
    }

    void CheckSampling(const ScannedRow& row, const FoundAt& at) {
        const auto mode = row.Long(scan_.Find("SampleMode"));
        if (mode == SampleMode::kOnTrigger) RequireVariable(row, at, "Trigger");
        if (mode == SampleMode::kOnVariable) RequireVariable(row, at, "XVar");
        if (mode != SampleMode::kCycles && mode != SampleMode::kMilliseconds) return;
        const ScanPlace place = scan_.Find("ScanTime");
        const auto time = row.Number(place);
        if (!place || (time && *time > 0)) return;
        finder_.Add(Rule::ScanTimeMissing, at, "ScanTime",
                    {{"ScanTime", DigitsOf(row.Long(place))}});
    }

    void CheckFiles(const ScannedRow& row, const FoundAt& at) {
        const auto type = row.Long(scan_.Find("Type"));
        if (!type || (*type & ArchiveType::kMainMemory) != 0) return;
        if ((*type & ArchiveType::kKindMask) == ArchiveType::kContinuationFile) {
            CheckContinuation(row, at);
        }
        const ScanPlace filePlace = scan_.Find("FileName");
        const std::u16string_view file = row.Text(filePlace);
        if (filePlace && file.empty()) finder_.Add(Rule::FileMissing, at, "FileName");
        if (Holds(file, u"\\/:*?\"<>|")) {
            finder_.Add(Rule::PathInvalid, at, "FileName", {{"FileName", std::u16string(file)}});
        }
        CheckFolder(row, at, "FilePath", file);
        if ((*type & ArchiveType::kRedundancy) != 0) {
            CheckFolder(row, at, "RedundancyFilePath", file);
        }
    }

    void CheckFolder(const ScannedRow& row, const FoundAt& at, std::string_view column,
                     std::u16string_view file) {
        const ScanPlace place = scan_.Find(column);
        if (!place) return;
        const std::u16string_view folder = row.Text(place);
        if (!IsFolder(folder)) {
            finder_.Add(Rule::PathInvalid, at, column,
                        {{std::string(column), std::u16string(folder)}});
        }
        if (file.empty()) return;
        // The redundancy file lies on another computer: the same path there is another file.
        files_[{column, FileKey(folder, file)}].push_back(
            {at.id, column, std::u16string(folder) + u'\\' + std::u16string(file)});
    }

    void CheckContinuation(const ScannedRow& row, const FoundAt& at) {
        const ScanPlace files = scan_.Find("MaxFiles");
        const ScanPlace size = scan_.Find("MaxSizeKb");
        const auto isLimit = [&](ScanPlace place) { return row.Number(place).value_or(0) > 0; };
        if (files && size && !isLimit(files) && !isLimit(size)) {
            finder_.Add(Rule::Unlimited, at, "MaxFiles");
        }
        // Nothing at all means one file for ever; blanks stand for a variable that is not named.
        const ScanPlace event = scan_.Find("NewFile");
        const auto* stored = event ? std::get_if<std::u16string>(&row.At(*event)) : nullptr;
        if (stored != nullptr && stored->find(u' ') != stored->npos && row.Text(event).empty()) {
            finder_.Add(Rule::VariableMissing, at, "NewFile", {{"NewFile", u""}});
        }
    }

    void TellShared(const std::vector<FileUser>& users) {
        for (const FileUser& user : users) {
            std::vector<std::int32_t> others;
            for (const FileUser& other : users) {
                if (other.id != user.id) others.push_back(other.id);
            }
            if (others.empty()) continue;
            const bool isMain = user.column == "FilePath";
            finder_.Add(Rule::FileShared, At(user.id), isMain ? "FileName" : user.column,
                        {{"FileName", user.path}, {"", u"archive " + ListOf(others)}},
                        SomeOf(kArchiveTable, others));
        }
    }

    Finder& finder_;
    TableScan scan_;
    std::unordered_map<std::int32_t, std::vector<std::int32_t>> groupsOf_;
    NameList names_;
    std::map<std::pair<std::string_view, std::u16string>, std::vector<FileUser>> files_;
};

}  // namespace

void CheckArchives(ado::Connection& connection, Finder& finder) {
    ArchiveCheck(connection, finder).Run();
}

void CheckGroups(Finder& finder) {
    if (!finder.hasGroups) return;
    const auto isArchives = [&](const TextGroup& group) {
        return finder.archives.contains(group.archive);
    };
    // A leftover on top stands for the root where there is no other one.
    const TextGroup* root = nullptr;
    for (const TextGroup& group : finder.groups) {
        if (group.parent != 0 || isArchives(group)) continue;
        if (root == nullptr || (root->archive != 0 && group.archive == 0)) root = &group;
    }
    if (root == nullptr) finder.Add(Rule::RootGroupMissing, {kGroupTable}, "");
    for (const TextGroup& group : finder.groups) {
        if (&group == root || group.archive == 0 || isArchives(group)) continue;
        finder.Add(Rule::GroupWithoutArchive, {kGroupTable, group.id, group.name}, "Parameter",
                   {{"Parameter", DigitsOf(group.archive)}});
    }
}

}  // namespace project
