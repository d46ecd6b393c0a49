#include "ado/FileCheck.h"

#include "ado/detail/ProviderError.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "paths/NativePath.h"

namespace ado {

FileCheck CheckFile(const std::string& path) {
    FileCheck found;
    const auto note = [&](const jet::Finding& finding) {
        const bool isError = finding.severity == jet::Finding::Severity::Error;
        (isError ? found.errors : found.warnings).push_back(finding.text);
        return true;
    };
    const std::string native = paths::ToNative(path);
    auto database = jet::Database::Open(native);
    if (database.IsOk()) {
        Check((*database)->WhileQuiet([&](jet::File& file) { return jet::Check(file, note); }),
              path);
        return found;
    }
    // What is too damaged to be opened can still be looked through.
    auto file = jet::OpenFile(native);
    if (!file.IsOk()) {
        ThrowNotOpened(file.GetStatus(), path,
                       "\"" + path + "\": " + file.GetStatus().Text() + ".");
    }
    Check(jet::Check(**file, note), path);
    return found;
}

}  // namespace ado
