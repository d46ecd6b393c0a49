#pragma once

#include <QString>
#include <string>
#include <string_view>

/// The one place where texts of the recordsets (UTF-8 names, UTF-16 values) and of the interface
/// become each other.
namespace projectdb {

[[nodiscard]] inline QString ToQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
[[nodiscard]] inline QString ToQString(std::u16string_view text) {
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}
[[nodiscard]] inline std::string ToUtf8(QStringView text) {
    const QByteArray bytes = text.toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}
[[nodiscard]] inline std::u16string ToUtf16(QStringView text) {
    return {text.utf16(), static_cast<std::size_t>(text.size())};
}

}  // namespace projectdb
