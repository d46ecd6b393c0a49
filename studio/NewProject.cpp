#include "studio/NewProject.h"

namespace studio {

std::optional<QString> NewProject(QWidget& /*owner*/, const StudioTexts& /*texts*/) {
    return std::nullopt;
}

}  // namespace studio
