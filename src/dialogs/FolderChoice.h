#pragma once

#include <optional>
#include <QString>

#include "dialogs/DialogServices.h"

/// Stands for the folder of the project in a stored path.
inline constexpr QStringView kProjectDir = u"<ProjectDir>";

/// Lets the user choose a folder, beginning at the one that the field names (in the form with
/// backslashes, perhaps with kProjectDir), under a title. Returns the text for the field: a folder
/// inside the project begins with kProjectDir, so that the project can move. Nothing when the user
/// gives up.
[[nodiscard]] std::optional<QString> ChooseFolder(const DialogServices& services, QWidget* owner,
                                                  const QString& title, const QString& fieldText);
