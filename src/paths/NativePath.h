#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Paths of projects are kept in every string as the studio writes them: with backslashes, and
/// with drive letters where they come from another station. Only at the moment a file is opened do
/// they become a native path. Everything here is UTF-8.
namespace paths {

/// The native path for a path in either form.
///
/// A path without a backslash and without a drive letter is native already. Otherwise backslashes
/// become slashes, and a drive letter becomes what the environment variable KV_DRIVE_<letter>
/// names, or the root when it is not set. A part that does not exist as it is written but exists
/// once in other capitals is taken in those capitals, and blanks and dots at the end of a part do
/// not count, as on the station that wrote it. Where the system takes such paths itself, they are
/// native as they are.
[[nodiscard]] std::string ToNative(std::string_view path);

/// The form with backslashes of a native path. A backslash inside a native name cannot be
/// expressed: the path is then returned unchanged.
[[nodiscard]] std::string ToProject(std::string_view nativePath);

/// A native path as the standard library takes it, and back. By itself the library would read bytes
/// as the locale has them.
[[nodiscard]] std::filesystem::path FileOf(std::string_view nativePath);
[[nodiscard]] std::string TextOf(const std::filesystem::path& file);

}  // namespace paths
