#pragma once

#include <optional>
#include <QByteArrayView>
#include <QString>

namespace platform {

/// Text in the system code page of the stations that the project's files come from. Bytes that
/// the code page leaves free stand for the control character of the same number.
[[nodiscard]] QString FromWindows1252(QByteArrayView bytes);

/// nullopt when a character has no place in the code page.
[[nodiscard]] std::optional<QByteArray> ToWindows1252(QStringView text);

}  // namespace platform
