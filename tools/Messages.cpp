#include "tools/Messages.h"

#include "paths/NativePath.h"

namespace tools {
namespace {

/// The file is named once, in front, as in all other messages.
std::string WithoutName(const std::string& file, const std::string& text) {
    const std::string named = '"' + file + "\": ";
    return text.starts_with(named) ? text.substr(named.size()) : text;
}

}  // namespace

void Messages::Report(const jet::Status& status) {
    Report(status.Text());
}

void Messages::Report(const ado::AdoError& error) {
    Report(WithoutName(file_, error.Description()));
}

void Messages::Report(const std::string& text) {
    if (++count_ <= kMost) texts_.push_back(text);
}

void Messages::Warn(const std::vector<std::string>& notices) {
    for (const std::string& notice : notices) {
        std::fprintf(stream_, "kvs: %s: warning: %s\n", file_.c_str(), notice.c_str());
    }
}

ExitStatus Messages::Finish(TextBuffer& out) {
    out.Finish();
    for (const std::string& text : texts_) {
        std::fprintf(stream_, "kvs: %s: %s\n", file_.c_str(), text.c_str());
    }
    if (count_ > kMost) {
        std::fprintf(stream_, "kvs: %s: %zu more messages\n", file_.c_str(), count_ - kMost);
    }
    if (!out.Error().empty()) {
        std::fprintf(stream_, "kvs: %s\n", out.Error().c_str());
    }
    return count_ == 0 && !out.HasFailed() ? kSuccess : kFailure;
}

ExitStatus Fail(const std::string& file, const ado::AdoError& error, std::FILE* err) {
    const std::string text = WithoutName(file, error.Description());
    std::fprintf(err, "kvs: %s: %s\n", file.c_str(), text.c_str());
    return kFailure;
}

void Connect(ado::Connection& connection, const std::string& file, Messages& messages) {
    Connect(connection, file);
    messages.Warn(connection.TakeNotices());
}

void Connect(ado::Connection& connection, const std::string& file) {
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file + ";");
}

jet::Result<std::unique_ptr<jet::Database>> OpenFile(const std::string& file) {
    return jet::Database::Open(paths::ToNative(file));
}

}  // namespace tools
