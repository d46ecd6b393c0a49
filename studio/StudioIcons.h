#pragma once

#include <QIcon>

namespace studio {

[[nodiscard]] QIcon StudioIcon();
[[nodiscard]] QIcon ProjectIcon();

}  // namespace studio
