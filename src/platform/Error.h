#pragma once

#include <exception>
#include <QString>
#include <utility>

#include "reasons/Reason.h"

namespace platform {

/// Error numbers of this library. The same cause always has the same number.
namespace ErrorNumber {
inline constexpr int kInvalidArgument = 5;
inline constexpr int kDeviceFault = 57;
inline constexpr int kDiskFull = 61;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kPathNotUsable = 75;
inline constexpr int kResourceNotFound = 326;
}  // namespace ErrorNumber

/// What the services of this library throw. `Description` is an English sentence that names the
/// file and the cause; `Reason` is what a message in the user's own language is made of.
class Error final : public std::exception {
public:
    Error(int number, const QString& description, reasons::Reason reason = {})
        : number_(number),
          description_(description),
          utf8_(description.toUtf8()),
          reason_(std::move(reason)) {}

    [[nodiscard]] int Number() const noexcept { return number_; }
    [[nodiscard]] const QString& Description() const noexcept { return description_; }
    [[nodiscard]] const reasons::Reason& Reason() const noexcept { return reason_; }
    [[nodiscard]] const char* what() const noexcept override { return utf8_.constData(); }

private:
    int number_;
    QString description_;
    QByteArray utf8_;
    reasons::Reason reason_;
};

}  // namespace platform
