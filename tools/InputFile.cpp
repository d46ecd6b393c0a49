#include "tools/InputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <span>

#include "jet/UnnamedFile.h"

namespace tools {
namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10;  // bytes

}  // namespace

InputFile::~InputFile() {
    if (descriptor_ > STDIN_FILENO) ::close(descriptor_);
}

jet::Status InputFile::Open(const std::string& name) {
    descriptor_ = STDIN_FILENO;
    if (name == "-") return {};
    name_ = "\"" + name + "\"";
    descriptor_ = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ >= 0) return {};
    return jet::Status::FromErrno(errno, name_ + " cannot be opened");
}

/// Fills `into`, or as much of it as there is; what does not fit comes with the next call.
jet::Result<std::size_t> InputFile::ReadOn(std::string& into) const {
    for (;;) {
        const ssize_t count = ::read(descriptor_, into.data(), into.size());
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) {
            return jet::Status::FromErrno(errno, name_ + " cannot be read");
        }
    }
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
