#pragma once

#include <QString>
#include <utility>

#include "messages/MessageBox.h"
#include "projectdb/Failure.h"
#include "projectdb/RowWalk.h"

class QWidget;

/// The end of every exception: nothing gets into Qt's event loop or the host, and the user is told.
namespace guard {

/// The message, with the name of the procedure that has failed in its details.
[[nodiscard]] messages::Message ToMessage(const projectdb::Failure& failure,
                                          const QString& procedure);

/// The first failure, and below it `rows`, in which the number of them takes the place of "<n>".
/// REQUIRES: failures.Count() > 0.
[[nodiscard]] messages::Message ToMessage(const projectdb::RowFailures& failures,
                                          const QString& rows, const QString& procedure);

/// Shows the exception that is being handled. Never throws. REQUIRES: called inside a catch block.
void ShowFailure(const QString& procedure, QWidget* owner = nullptr) noexcept;

/// Runs `body` and shows what it throws. Stands around every slot and every event of the host.
/// False when something was thrown.
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

}  // namespace guard
