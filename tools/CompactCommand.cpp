#include "jet/Compact.h"
#include "paths/NativePath.h"
#include "tools/Commands.h"
#include "tools/Messages.h"

namespace tools {

ExitStatus Compact(const std::string& file, std::FILE* out, std::FILE* err) {
    const auto sizes = jet::Compact(jet::SystemDisk(), paths::ToNative(file));
    if (!sizes.IsOk()) {
        std::fprintf(err, "kvs: %s: %s\n", file.c_str(), sizes.GetStatus().Text().c_str());
        return kFailure;
    }
    Messages(err, file).Warn(sizes->notices);
    constexpr unsigned kKilobyte = 1024;
    std::fprintf(out, "%ju KB before, %ju KB after\n",
                 static_cast<std::uintmax_t>(sizes->before / kKilobyte),
                 static_cast<std::uintmax_t>(sizes->after / kKilobyte));
    return std::fflush(out) == 0 ? kSuccess : kFailure;
}

}  // namespace tools
