#pragma once

#include <array>
#include <map>
#include <memory>
#include <vector>

#include "jet/File.h"
#include "jet/page/Bytes.h"
#include "jet/Types.h"

namespace jet::repair {

/// A Jet 4 file with some pages changed and some added, which nobody else sees: what a repair knows
/// better than the file is put in its place, so that the file can be read in the usual way. Borrows
/// the file, which must not change.
class MendedFile final : public File {
public:
    using Image = std::array<std::byte, kPageSizeJet4>;
    using Images = std::map<std::uint32_t, Image>;  // by page

    /// `pageCount`: whole pages of the file; what is behind them is not read.
    MendedFile(const File& file, std::uint32_t pageCount, std::shared_ptr<const Images> changed)
        : file_(file), pageCount_(pageCount), changed_(std::move(changed)) {}

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override;
    Result<FileStamp> Stamp() const override;

private:
    [[nodiscard]] std::uint64_t Size() const;

    const File& file_;
    std::uint32_t pageCount_;
    std::shared_ptr<const Images> changed_;
};

}  // namespace jet::repair
