#include "ado/AdoError.h"
#include "project/Differences.h"
#include "tools/Commands.h"
#include "tools/DiffText.h"
#include "tools/Messages.h"

namespace tools {
namespace {

void Open(ado::Connection& connection, const std::string& file, std::FILE* err) {
    Messages messages(err, file);
    Connect(connection, file, messages);
}

/// How git names a file that one side does not have.
bool IsNothing(const std::string& file) {
    return file == "/dev/null";
}

project::Differences CompareOpened(ado::Connection& before, ado::Connection& after) {
    const bool isNew = before.State() == ado::ObjectState::Closed;
    const bool isGone = after.State() == ado::ObjectState::Closed;
    if (isNew && isGone) return {};
    if (isNew || isGone) return project::CompareWithNothing(isNew ? after : before, isNew);
    return project::Compare(before, after);
}

}  // namespace

ExitStatus Diff(const std::string& before, const std::string& after, const DiffWish& wish,
                std::FILE* out, std::FILE* err) {
    project::Differences differences;
    const std::string* file = &before;  // of which a failure tells that names none
    try {
        ado::Connection earlier;
        if (!IsNothing(before)) Open(earlier, before, err);
        file = &after;
        ado::Connection later;
        if (!IsNothing(after)) Open(later, after, err);
        differences = CompareOpened(earlier, later);
    } catch (const ado::AdoError& error) {
        if (error.Description().starts_with('"' + before + '"')) file = &before;
        Fail(*file, error, err);
        return kTrouble;
    }
    TextBuffer output(out);
    if (wish.format == TextFormat::Json) {
        AppendJson(differences, output);
    } else {
        AppendDifferences(differences, *wish.language, output);
    }
    if (Messages(err, after).Finish(output) != kSuccess) return kTrouble;
    return differences.IsEmpty() ? kSuccess : kDiffers;
}

}  // namespace tools
