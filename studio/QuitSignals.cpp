#include "studio/QuitSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <QSocketNotifier>
#include <QtGlobal>
#include <tuple>
#include <utility>

namespace studio {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler may do next to nothing: it writes a byte, the event loop reads it.
std::array<int, 2> signalPipe{-1, -1};

void Tell(int /*signal*/) {
    const char byte = 0;
    // A full pipe has told already.
    std::ignore = write(signalPipe[1], &byte, 1);
}

}  // namespace

QuitSignals::QuitSignals(std::function<void()> quit) : quit_(std::move(quit)) {
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("no pipe for signals: a signal ends the program at once");
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        char bytes[16];
        while (read(signalPipe[0], bytes, sizeof bytes) > 0) {
        }
        quit_();
    });
    for (const int signal : kSignals) std::signal(signal, Tell);
}

QuitSignals::~QuitSignals() {
    if (!notifier_) return;
    for (const int signal : kSignals) std::signal(signal, SIG_DFL);
    notifier_.reset();
    for (int& end : signalPipe) close(std::exchange(end, -1));
}

}  // namespace studio
