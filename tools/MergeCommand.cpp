#include <filesystem>
#include <tuple>

#include "ado/AdoError.h"
#include "ado/FileCheck.h"
#include "jet/Database.h"
#include "paths/NativePath.h"
#include "project/Merge.h"
#include "tools/Commands.h"
#include "tools/MergeText.h"
#include "tools/Messages.h"

namespace tools {
namespace {

/// "project.kvs" -> "project-merge.kvs", beside it.
std::string DraftName(const std::string& path) {
    const std::filesystem::path file = paths::FileOf(path);
    return paths::TextOf(file.parent_path() / file.stem()) + "-merge" +
           paths::TextOf(file.extension());
}

jet::Status CopyTo(jet::File& copy, const jet::File& file) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    std::vector<std::byte> piece(kPiece);
    for (std::uint64_t at = 0;;) {
        std::size_t count = 0;
        JET_ASSIGN(count, file.Read(at, piece));
        if (count == 0) return {};
        JET_TRY(copy.Write(at, std::span(piece).first(count)));
        at += count;
    }
}

/// The result while it is made: a copy of a project under a name of its own, which goes unless it
/// takes its place.
class Draft {
public:
    Draft(std::string mine, std::string result)
        : mine_(std::move(mine)), result_(std::move(result)), path_(DraftName(result_)) {}
    ~Draft() {
        if (isThere_) std::ignore = jet::SystemDisk().Remove(path_);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }

    jet::Status Make() {
        std::error_code error;
        replaces_ =
            std::filesystem::equivalent(paths::FileOf(mine_), paths::FileOf(result_), error);
        if (!replaces_ &&
            std::filesystem::exists(std::filesystem::symlink_status(paths::FileOf(result_)))) {
            return {jet::StatusCode::Duplicate,
                    "there is something called \"" + result_ + "\" already"};
        }
        const auto mode = replaces_ ? jet::OpenMode::ReadWrite : jet::OpenMode::Read;
        JET_ASSIGN(project_, jet::Database::Open(jet::SystemDisk(), mine_, mode));
        // Until the result has its place nobody may change what it is made of.
        if (replaces_) {
            JET_TRY(RequireAlone());
            JET_TRY(project_->Begin());
        }
        return project_->WhileQuiet([&](const jet::File& file) -> jet::Status {
            std::unique_ptr<jet::File> copy;
            JET_ASSIGN(copy, replaces_ ? jet::SystemDisk().CreateLike(path_, mine_)
                                       : jet::SystemDisk().Create(path_));
            isThere_ = true;
            JET_TRY(CopyTo(*copy, file));
            return copy->Sync();
        });
    }
    jet::Status Publish() {
        if (replaces_) {
            JET_TRY(RequireAlone());
            JET_TRY(jet::SystemDisk().Replace(path_, result_));
            std::ignore = project_->Rollback();  // of nothing
        } else {
            JET_TRY(jet::SystemDisk().GiveName(path_, result_));
        }
        isThere_ = false;
        return {};
    }

private:
    jet::Status RequireAlone() {
        if (project_->OtherUsers().empty()) return {};
        return {jet::StatusCode::Busy, "another program has it open; close it there first"};
    }

    std::string mine_;
    std::string result_;
    std::string path_;
    std::unique_ptr<jet::Database> project_;
    bool replaces_ = false;
    bool isThere_ = false;
};

/// What git gives where the sides have no common base.
bool IsEmptyFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(paths::FileOf(path), error) &&
           std::filesystem::file_size(paths::FileOf(path), error) == 0;
}

void Open(ado::Connection& connection, const std::string& file, std::FILE* err) {
    Messages messages(err, file);
    Connect(connection, file, messages);
}

project::Merged MergeInto(const std::string& draft, const MergeFiles& files, std::FILE* err) {
    ado::Connection base;
    ado::Connection mine;
    ado::Connection theirs;
    const bool hasBase = !IsEmptyFile(paths::ToNative(files.base));
    if (hasBase) Open(base, files.base, err);
    Open(mine, draft, err);
    Open(theirs, files.theirs, err);
    return project::Merge(hasBase ? &base : nullptr, mine, theirs);
}

ExitStatus Refuse(const std::string& file, const std::string& why, std::FILE* err) {
    std::fprintf(err, "kvs: %s: %s; nothing has been written\n", file.c_str(), why.c_str());
    return kTrouble;
}

}  // namespace

ExitStatus Merge(const MergeFiles& files, TextFormat format, std::FILE* out, std::FILE* err) {
    Draft draft(paths::ToNative(files.mine), paths::ToNative(files.result));
    if (jet::Status status = draft.Make(); !status.IsOk()) {
        return Refuse(status.Code() == jet::StatusCode::Duplicate ? files.result : files.mine,
                      status.Text(), err);
    }
    project::Merged merged;
    try {
        merged = MergeInto(draft.Path(), files, err);
        const ado::FileCheck found = ado::CheckFile(draft.Path());
        if (!found.errors.empty()) {
            return Refuse(files.result, "the result is not sound: " + found.errors.front(), err);
        }
    } catch (const ado::AdoError& error) {
        return Refuse(files.result, error.Description(), err);
    }
    if (jet::Status status = draft.Publish(); !status.IsOk()) {
        return Refuse(files.result, status.Text(), err);
    }
    TextBuffer output(out);
    if (format == TextFormat::Json) {
        AppendJson(merged, output);
    } else {
        AppendMerged(merged, output);
    }
    if (Messages(err, files.result).Finish(output) != kSuccess) return kTrouble;
    return merged.conflicts.empty() ? kSuccess : kDiffers;
}

}  // namespace tools
