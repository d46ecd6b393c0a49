#pragma once

#include <QString>

namespace platform {
class Registry;
}

/// Where the open project is.
namespace MKVSGlobalEditors {

/// Turns what the host calls the project, its name or the path of its file, into that path: a text
/// that ends in ".kvs" (in any case, blanks behind it do not count) stays as it is, a name is
/// looked up in the registry. A name that is not known there still gives a path, which opening
/// will not find.
///
/// False, with `projectPath` as it was, when it is empty or the registry cannot be read; the latter
/// is shown.
[[nodiscard]] bool ReadCurrentProject(platform::Registry& registry, QString& projectPath);

}  // namespace MKVSGlobalEditors
