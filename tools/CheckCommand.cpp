#include "jet/Check.h"
#include "paths/NativePath.h"
#include "tools/Commands.h"
#include "tools/Messages.h"

namespace tools {

ExitStatus Check(const std::string& file, std::FILE* out, std::FILE* err) {
    Messages messages(err, file);
    TextBuffer output(out);
    bool hasErrors = false;
    const auto print = [&](const jet::Finding& finding) {
        const bool isError = finding.severity == jet::Finding::Severity::Error;
        hasErrors = hasErrors || isError;
        output.Append(isError ? "error: " : "warning: ");
        output.Append(finding.text);
        output.Append('\n');
        return !output.HasFailed();
    };
    jet::Status status;
    if (auto database = OpenFile(file); database.IsOk()) {
        status = (*database)->WhileQuiet([&](jet::File& f) { return jet::Check(f, print); });
    } else if (auto plain = jet::OpenFile(paths::ToNative(file)); plain.IsOk()) {
        // What cannot be opened as a database can still be told to be none.
        status = jet::Check(**plain, print);
    } else {
        status = plain.GetStatus();
    }
    if (!status.IsOk()) messages.Report(status);
    const ExitStatus exit = messages.Finish(output);
    return hasErrors ? kFailure : exit;
}

}  // namespace tools
