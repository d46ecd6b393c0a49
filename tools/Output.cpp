#include "tools/Output.h"

#include <cerrno>
#include <system_error>

namespace tools {

bool Output::Flush() {
    if (error_.empty()) {
        const bool written =
            std::fwrite(buffer_.data(), 1, buffer_.size(), stream_) == buffer_.size() &&
            std::fflush(stream_) == 0;
        if (!written) error_ = std::generic_category().message(errno);
    }
    buffer_.clear();
    return error_.empty();
}

}  // namespace tools
