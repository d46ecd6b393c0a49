#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "reasons/Reason.h"

namespace ado {

/// Error numbers of the provider and of the recordset objects, as their users know them. The same
/// cause always has the same number.
namespace ErrorNumber {
inline constexpr std::int32_t kInvalidArgument = 3001;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kIllegalOperation = 3219;
inline constexpr std::int32_t kFeatureNotAvailable = 3251;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kTypeMismatch = 3421;
inline constexpr std::int32_t kObjectClosed = 3704;
inline constexpr std::int32_t kObjectOpen = 3705;
inline constexpr std::int32_t kProviderNotFound = 3706;
inline constexpr std::int32_t kUnspecified = -2147467259;       // 0x80004005
inline constexpr std::int32_t kWrongType = -2147352571;         // 0x80020005
inline constexpr std::int32_t kDoesNotFit = -2147217887;        // 0x80040E21
inline constexpr std::int32_t kIntegrity = -2147217873;         // 0x80040E2F
inline constexpr std::int32_t kParameterMissing = -2147217904;  // 0x80040E10
inline constexpr std::int32_t kSyntax = -2147217900;            // 0x80040E14
inline constexpr std::int32_t kRowNotLocated = -2147217864;     // 0x80040E38
inline constexpr std::int32_t kTableNotFound = -2147217865;     // 0x80040E37
inline constexpr std::int32_t kNotAuthorised = -2147217843;     // 0x80040E4D
}  // namespace ErrorNumber

/// What every operation of this library throws. `Description` is an English sentence that names
/// the file, table or item, the cause, and where it helps what to do (UTF-8). `Reason` is what a
/// message in the user's own language is made of.
class AdoError final : public std::exception {
public:
    AdoError(std::int32_t number, std::string description, reasons::Reason reason = {})
        : number_(number), description_(std::move(description)), reason_(std::move(reason)) {}

    [[nodiscard]] std::int32_t Number() const noexcept { return number_; }
    [[nodiscard]] const std::string& Description() const noexcept { return description_; }
    [[nodiscard]] const reasons::Reason& Reason() const noexcept { return reason_; }
    [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

private:
    std::int32_t number_;
    std::string description_;
    reasons::Reason reason_;
};

}  // namespace ado
