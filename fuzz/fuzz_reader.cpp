// Reads everything that can be read of a file with any content: all tables, rows, values, long
// values and indexes. Nothing may crash, hang or take memory beyond the page cache and a row.

#include "../tests/jet/Harvest.h"

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    auto file = std::make_unique<jet::MemoryFile>(std::vector(bytes.begin(), bytes.end()));
    auto database = jet::Database::Open(std::move(file), 16 * jet::kPageSizeJet4);
    if (database.IsOk()) jet::ReadEverything(**database);
    return 0;
}
