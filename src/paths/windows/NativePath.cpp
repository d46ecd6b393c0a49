#include "paths/NativePath.h"

namespace paths {

// Here both forms are native, drive letters included, and no capitals are told apart.
std::string ToNative(std::string_view path) {
    return std::string(path);
}

}  // namespace paths
