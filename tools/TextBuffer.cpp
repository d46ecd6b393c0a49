#include "tools/TextBuffer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "tools/System.h"

namespace tools {

TextBuffer::TextBuffer(std::FILE* stream, std::string name)
    : stream_(stream),
      name_(std::move(name)),
      spool_(IsFile(stream) ? nullptr : std::make_unique<Spool>(stream)),
      block_(std::make_unique_for_overwrite<char[]>(kBlock)),
      end_(block_.get()),
      limit_(end_ + kBlock) {}

std::string NotWritten(const std::string& name, const std::string& why) {
    return (name.empty() ? "writing failed: " : '"' + name + "\" cannot be written: ") + why;
}

void TextBuffer::Append(std::string_view text) {
    while (!text.empty()) {
        if (end_ == limit_) Flush();
        const std::size_t size = std::min(text.size(), static_cast<std::size_t>(limit_ - end_));
        std::memcpy(end_, text.data(), size);
        end_ += size;
        text.remove_prefix(size);
    }
}

void TextBuffer::Flush() {
    const auto size = static_cast<std::size_t>(end_ - block_.get());
    end_ = block_.get();
    if (hasFailed_ || size == 0) return;
    if (spool_) {
        hasFailed_ = !spool_->Put(std::string(block_.get(), size));
    } else if (std::fwrite(block_.get(), 1, size, stream_) != size || std::fflush(stream_) != 0) {
        hasFailed_ = true;
        error_ = NotWritten(name_, std::generic_category().message(errno));
    }
}

void TextBuffer::Finish() {
    Flush();
    if (!spool_) return;
    spool_->Finish();
    if (!spool_->Error().empty()) error_ = NotWritten(name_, spool_->Error());
    hasFailed_ = !error_.empty() || spool_->IsClosedByReader();
}

}  // namespace tools
