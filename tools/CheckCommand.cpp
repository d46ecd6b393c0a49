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
    jet::Status writable;
    const auto check = [&](jet::File& checked) {
        const jet::Status done = jet::Check(checked, print);
        if (done.IsOk() && hasErrors) writable = jet::CheckWritable(checked);
        return done;
    };
    if (auto database = OpenFile(file); database.IsOk()) {
        messages.Warn((*database)->TakeNotices());
        status = (*database)->WhileQuiet([&](jet::File& f) { return check(f); });
    } else if (auto plain = jet::OpenFile(paths::ToNative(file)); plain.IsOk()) {
        // What cannot be opened as a database can still be told to be none.
        status = check(**plain);
    } else {
        status = plain.GetStatus();
    }
    if (!status.IsOk()) messages.Report(status);
    if (hasErrors) {
        const std::string refused =
            writable.IsOk() ? "" : "it cannot be written: " + writable.Text() + "; ";
        std::fprintf(err, "kvs: %s: %skvs repair writes what can be read into a new file\n",
                     file.c_str(), refused.c_str());
    }
    const ExitStatus exit = messages.Finish(output);
    return hasErrors ? kFailure : exit;
}

}  // namespace tools
