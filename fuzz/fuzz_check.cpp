// Checks a file with any content. It must come to an end and stay inside its memory, whatever
// pages, rows and trees refer to each other.

#include <span>
#include <tuple>
#include <vector>

#include "jet/Check.h"
#include "jet/Types.h"

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    jet::MemoryFile file({bytes.begin(), bytes.end()});
    jet::CheckOptions options;
    options.cacheBytes = 16 * jet::kPageSizeJet4;
    std::ignore = jet::Check(
        file, [](const jet::Finding&) { return true; }, options);
    return 0;
}
