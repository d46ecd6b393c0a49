#pragma once

#include <string>

#include "ado/AdoError.h"
#include "jet/Status.h"

namespace ado {

/// Throws the provider's error for a failed operation of the file engine. `file` is named in
/// front; the only place where a Status becomes an AdoError.
[[noreturn]] void ThrowStatus(const jet::Status& status, const std::string& file);

/// The same for a file that could not be opened, with a description of the caller's own.
[[noreturn]] void ThrowNotOpened(const jet::Status& status, const std::string& file,
                                 const std::string& description);

/// The same for a file that could not be made.
[[noreturn]] void ThrowNotMade(const jet::Status& status, const std::string& file);

inline void Check(const jet::Status& status, const std::string& file) {
    if (!status.IsOk()) ThrowStatus(status, file);
}

template <typename T>
[[nodiscard]] T Check(jet::Result<T> result, const std::string& file) {
    if (!result.IsOk()) ThrowStatus(result.GetStatus(), file);
    return std::move(*result);
}

[[noreturn]] void ThrowNoCurrentRecord();
[[noreturn]] void ThrowSyntax(const std::string& text, const std::string& what);

}  // namespace ado
