#include "tools/InputFile.h"

#include <cerrno>
#include <span>

#include "jet/UnnamedFile.h"
#include "paths/NewFile.h"

namespace tools {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;  // bytes

}  // namespace

InputFile::~InputFile() {
    if (stream_ != nullptr && stream_ != stdin) std::fclose(stream_);
}

jet::Status InputFile::Open(const std::string& name) {
    stream_ = stdin;
    if (name == "-") return {};
    name_ = "\"" + name + "\"";
    stream_ = paths::OpenStream(name, 'r');
    if (stream_ != nullptr) return {};
    return jet::Status::FromErrno(errno, name_ + " cannot be opened");
}

/// Fills `into`, or as much of it as there is; what does not fit comes with the next call.
jet::Result<std::size_t> InputFile::ReadOn(std::string& into) const {
    const std::size_t count = std::fread(into.data(), 1, into.size(), stream_);
    if (count > 0 || std::ferror(stream_) == 0) return count;
    return jet::Status::FromErrno(errno, name_ + " cannot be read");
}

jet::Status InputFile::Collect() {
    std::uint64_t spilled = 0;
    block_.resize(kBlock);
    for (;;) {
        std::size_t count = 0;
        JET_ASSIGN(count, ReadOn(block_));
        if (count == 0) return {};
        const std::string_view bytes(block_.data(), count);
        if (spilled == 0 && memory_.size() + count <= kMostInMemory) {
            memory_ += bytes;
            continue;
        }
        if (!spill_) {
            JET_ASSIGN(spill_, jet::OpenUnnamedFile());
        }
        JET_TRY(spill_->Write(spilled, std::as_bytes(std::span(bytes))));
        spilled += count;
    }
}

std::string_view InputFile::Next() {
    if (at_ < memory_.size()) {
        const std::string_view rest = std::string_view(memory_).substr(at_);
        at_ = memory_.size();
        return rest;
    }
    if (!spill_ || !error_.empty()) return {};
    block_.resize(kBlock);
    const jet::Result<std::size_t> count =
        spill_->Read(at_ - memory_.size(), std::as_writable_bytes(std::span(block_)));
    if (!count.IsOk()) {
        error_ = count.GetStatus().Text();
        return {};
    }
    at_ += *count;
    return {block_.data(), *count};
}

}  // namespace tools
