#pragma once

#include <optional>
#include <QFont>
#include <QWidget>

#include "settings/InitValue.h"

/// The properties that every form, control and font has under a name, a unit or codes of its own,
/// other than Qt's. Names compare without case.
namespace LateBound {

/// Left, Top, Width, Height (twips), Visible, WindowState (0 normal, 1 minimised, 2 maximised).
[[nodiscard]] bool IsStandard(QStringView name);
[[nodiscard]] bool PutStandard(QWidget& widget, QStringView name, const InitValue& value);
[[nodiscard]] std::optional<InitValue> GetStandard(const QWidget& widget, QStringView name);

/// Name, Size (points), Bold, Italic, Underline, Strikethrough, Weight (400 normal, 700 bold) and
/// Charset, which has no effect: reading gives `present`.
[[nodiscard]] bool PutFont(QFont& font, QStringView name, const InitValue& value);
[[nodiscard]] std::optional<InitValue> GetFont(const QFont& font, QStringView name,
                                               const InitValue& present);

}  // namespace LateBound
