#include "tools/Spool.h"

#include <algorithm>
#include <cerrno>
#include <span>
#include <system_error>

#include "jet/UnnamedFile.h"

namespace tools {
namespace {

constexpr std::uint64_t kBlock = 256 << 10;  // bytes read back at once

}  // namespace

Spool::Spool(std::FILE* stream) : stream_(stream), writer_([this] { Write(); }) {}

Spool::~Spool() {
    Finish();
}

bool Spool::Put(std::string text) {
    const std::lock_guard lock(mutex_);
    if (hasFailed_) return false;
    const bool fits = inMemory_ + text.size() <= kMostInMemory;
    if (fits && spillBegin_ == spillEnd_) {
        inMemory_ += text.size();
        blocks_.push_back(std::move(text));
    } else if (jet::Status status = Spill(text); !status.IsOk()) {
        hasFailed_ = true;
        error_ = status.Text();
    }
    changed_.notify_one();
    return !hasFailed_;
}

jet::Status Spool::Spill(const std::string& text) {
    if (!spill_) {
        JET_ASSIGN(spill_, jet::OpenUnnamedFile());
    }
    JET_TRY(spill_->Write(spillEnd_, std::as_bytes(std::span(text))));
    spillEnd_ += text.size();
    return {};
}

/// REQUIRES: HasMore().
jet::Result<std::string> Spool::TakeBlock() {
    std::string text;
    if (!blocks_.empty()) {
        text = std::move(blocks_.front());
        blocks_.pop_front();
        inMemory_ -= text.size();
        return text;
    }
    text.resize(std::min(kBlock, spillEnd_ - spillBegin_));
    std::size_t count = 0;
    JET_ASSIGN(count, spill_->Read(spillBegin_, std::as_writable_bytes(std::span(text))));
    if (count != text.size()) return jet::Status::Corrupt("the temporary file is cut short");
    spillBegin_ += count;
    if (spillBegin_ == spillEnd_) {
        spillBegin_ = spillEnd_ = 0;
        JET_TRY(spill_->Resize(0));
    }
    return text;
}

void Spool::Write() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return hasFailed_ || isEnded_ || HasMore(); });
        if (hasFailed_ || !HasMore()) return;
        const jet::Result<std::string> block = TakeBlock();
        if (!block.IsOk()) {
            hasFailed_ = true;
            error_ = block.GetStatus().Text();
            return;
        }
        lock.unlock();
        const bool isWritten =
            std::fwrite(block->data(), 1, block->size(), stream_) == block->size() &&
            std::fflush(stream_) == 0;
        const int error = errno;
        lock.lock();
        if (isWritten) continue;
        hasFailed_ = true;
        isClosedByReader_ = error == EPIPE;
        if (!isClosedByReader_) error_ = std::generic_category().message(error);
        return;
    }
}

void Spool::Finish() {
    {
        const std::lock_guard lock(mutex_);
        isEnded_ = true;
        changed_.notify_one();
    }
    if (writer_.joinable()) writer_.join();
}

}  // namespace tools
