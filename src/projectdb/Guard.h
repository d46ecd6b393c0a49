#pragma once

#include <cstdint>
#include <QString>
#include <utility>

class QWidget;

namespace projectdb {

/// Number and description of the exception that is being handled.
/// REQUIRES: called inside a catch block.
struct Failure {
    std::int32_t number;
    QString description;

    [[nodiscard]] static Failure Current();
    /// As it is shown: number, three blanks, description.
    [[nodiscard]] QString Text() const;
};

/// Shows the exception that is being handled under the name of the procedure that failed. Never
/// throws. REQUIRES: called inside a catch block.
void ShowFailure(const QString& procedure, QWidget* owner = nullptr) noexcept;

/// Runs `body` and shows what it throws. Stands around every slot and every event of the host, so
/// that nothing gets into Qt's event loop or the host. False when something was thrown.
template <typename Body>
bool Guard(const QString& procedure, Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        ShowFailure(procedure);
        return false;
    }
}

}  // namespace projectdb
