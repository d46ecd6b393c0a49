#include <filesystem>
#include <optional>

#include "jet/Repair.h"
#include "paths/NativePath.h"
#include "tools/Commands.h"
#include "tools/System.h"

namespace tools {
namespace {

constexpr std::uint64_t kMostMessages = 1000;

/// "project.kvs" -> "project-repaired.kvs", beside it.
std::string RepairedName(const std::string& path) {
    const std::filesystem::path old = paths::FileOf(path);
    return paths::TextOf(old.parent_path() / old.stem()) + "-repaired" +
           paths::TextOf(old.extension());
}

}  // namespace

ExitStatus Repair(const std::string& file, const std::string& to, std::FILE* out, std::FILE* err) {
    const std::string from = paths::ToNative(file);
    const std::string target = to.empty() ? RepairedName(from) : paths::ToNative(to);
    // Where the old file's permissions cannot be had, nobody else shall read the new one.
    std::optional<PrivateFiles> isPrivate(std::in_place);
    std::uint64_t count = 0;
    const auto sums = jet::Repair(jet::SystemDisk(), from, target, [&](const std::string& loss) {
        if (++count > kMostMessages) return;
        std::fprintf(err, "kvs: %s: not saved: %s\n", file.c_str(), loss.c_str());
    });
    isPrivate.reset();
    if (!sums.IsOk()) {
        std::fprintf(err, "kvs: %s: %s\n", file.c_str(), sums.GetStatus().Text().c_str());
        return kFailure;
    }
    if (count > kMostMessages) {
        std::fprintf(err, "kvs: %s: %ju more messages\n", file.c_str(),
                     static_cast<std::uintmax_t>(count - kMostMessages));
    }
    std::fprintf(out, "%s: %ju tables, %ju rows\n", target.c_str(),
                 static_cast<std::uintmax_t>(sums->tables),
                 static_cast<std::uintmax_t>(sums->rows));
    return std::fflush(out) == 0 && count == 0 ? kSuccess : kFailure;
}

}  // namespace tools
