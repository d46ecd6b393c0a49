#pragma once

#include <optional>
#include <QString>

class QWidget;

namespace studio {

class StudioTexts;

/// Whether this version can create project files; the menu entry is disabled while it cannot.
[[nodiscard]] constexpr bool CanCreateProjects() noexcept {
    return false;
}

/// Asks for a new project's file and language and creates it. The native path of the project that
/// is to be opened; nullopt when the user cancelled or it could not be created, which has been
/// reported then.
[[nodiscard]] std::optional<QString> NewProject(QWidget& owner, const StudioTexts& texts);

}  // namespace studio
