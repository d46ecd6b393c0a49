#include "platform/Windows1252.h"

#include <QStringConverter>

namespace platform {
namespace {

constexpr const char* kCodePage = "windows-1252";  // one of ICU's, which Qt asks

}  // namespace

QString FromWindows1252(QByteArrayView bytes) {
    return QStringDecoder(kCodePage)(bytes);
}

std::optional<QByteArray> ToWindows1252(QStringView text) {
    QStringEncoder encoder(kCodePage);
    const QByteArray bytes = encoder(text);
    return encoder.hasError() ? std::nullopt : std::optional(bytes);
}

}  // namespace platform
