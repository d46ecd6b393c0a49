#include "jet/UnnamedFile.h"

#include <span>
#include <vector>

namespace jet {

Result<std::unique_ptr<File>> CopyToUnnamedFile(const File& file) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    std::unique_ptr<File> copy;
    JET_ASSIGN(copy, OpenUnnamedFile());
    std::vector<std::byte> piece(kPiece);
    for (std::uint64_t at = 0;;) {
        std::size_t count = 0;
        JET_ASSIGN(count, file.Read(at, piece));
        if (count == 0) return copy;
        JET_TRY(copy->Write(at, std::span(piece).first(count)));
        at += count;
    }
}

}  // namespace jet
