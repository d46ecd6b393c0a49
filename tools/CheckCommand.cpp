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
        return output.Error().empty();
    };
    auto opened = jet::OpenFile(paths::ToNative(file));
    const jet::Status status = opened.IsOk() ? jet::Check(**opened, print) : opened.GetStatus();
    if (!status.IsOk()) messages.Report(status);
    const ExitStatus exit = messages.Finish(output);
    return hasErrors ? kFailure : exit;
}

}  // namespace tools
