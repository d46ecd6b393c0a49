#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "csv/Source.h"
#include "jet/File.h"
#include "jet/Status.h"

namespace tools {

/// A file, a pipe or standard input, which may be slow, or wait for somebody. It is read to its end
/// first; nobody has to wait for it afterwards.
class InputFile final : public csv::Source {
public:
    InputFile() = default;
    ~InputFile() override;

    /// "-" is standard input. The messages name the file.
    jet::Status Open(const std::string& name);
    /// Reads all of it, into memory or, beyond kMostInMemory, a temporary file. To be called once.
    jet::Status Collect();

    /// The first bytes of what has been collected: all of it up to kMostInMemory.
    [[nodiscard]] std::string_view Beginning() const { return memory_; }
    /// The next bytes of what has been collected.
    [[nodiscard]] std::string_view Next() override;
    [[nodiscard]] const std::string& Error() const override { return error_; }
    [[nodiscard]] const std::string& Name() const override { return name_; }

    static constexpr std::size_t kMostInMemory = std::size_t{16} << 20;  // bytes

private:
    [[nodiscard]] jet::Result<std::size_t> ReadOn(std::string& into) const;

    std::FILE* stream_ = nullptr;  // borrowed where it is standard input
    std::string name_ = "standard input";
    std::uint64_t at_ = 0;              // offset of the next byte
    std::string memory_;                // the first of it
    std::unique_ptr<jet::File> spill_;  // the rest; null: none
    std::string block_;
    std::string error_;
};

}  // namespace tools
