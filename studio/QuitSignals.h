#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace studio {

/// Turns SIGINT, SIGTERM and SIGHUP into a call on the user-interface thread while it lives, so
/// that Ctrl+C in the terminal and the end of a session let the add-ins finish as closing the
/// window does. At most one object at a time.
class QuitSignals {
public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    std::function<void()> quit_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace studio
