#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "reasons/Reason.h"

namespace projectfile {

/// How the making of a project ended.
struct [[nodiscard]] Outcome {
    enum class Kind {
        Made,
        BadLanguages,  // nothing was tried
        Exists,        // there is something of this name already
        Failed,        // the disk is full, ...
    };
    Kind kind = Kind::Made;
    std::string text = {};  // why there is no project: UTF-8, English, does not name the file
    reasons::Reason reason = {};
};

/// Makes a new project file, empty but for the group above all archives' groups, with texts in the
/// languages `lcids`: Windows locale ids, 1 to 0xFFFFF, 1 to 251 different ones, in the order in
/// which the project shall list them.
///
/// `path` is UTF-8, with slashes or as projects write paths (see paths::ToNative). A file that is
/// there already is never touched, and after a failure there is none. The new file is durable.
Outcome CreateProject(const std::string& path, std::span<const std::uint32_t> lcids);

}  // namespace projectfile
