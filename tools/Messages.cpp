#include "tools/Messages.h"

#include "paths/NativePath.h"

namespace tools {

void Messages::Report(const jet::Status& status) {
    if (++count_ <= kMost) {
        std::fprintf(stream_, "kvs: %s: %s\n", file_.c_str(), status.Text().c_str());
    }
}

ExitStatus Messages::Finish(TextBuffer& out) {
    out.Flush();
    if (!out.Error().empty()) {
        std::fprintf(stream_, "kvs: writing failed: %s\n", out.Error().c_str());
        return kFailure;
    }
    if (count_ > kMost) {
        std::fprintf(stream_, "kvs: %s: %d more messages\n", file_.c_str(), count_ - kMost);
    }
    return count_ == 0 ? kSuccess : kFailure;
}

jet::Result<std::unique_ptr<jet::Database>> OpenFile(const std::string& file) {
    return jet::Database::Open(paths::ToNative(file));
}

}  // namespace tools
