#include "host/Interrupt.h"

#include <csignal>
#include <initializer_list>

namespace orvo::host {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void OnSignal(int number) {
    if (interrupted != 0) {
        static_cast<void>(std::signal(number, SIG_DFL));
        static_cast<void>(std::raise(number));
    }
    interrupted = 1;
}

void WatchSignals() {
    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM}) {
        struct sigaction before {};
        // A signal that is ignored from the start, as in a background job without job control, stays ignored.
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) continue;
        sigaction(number, &action, nullptr);
    }
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

/// The libraries' start takes most of the time until main.
[[gnu::section(".preinit_array"), gnu::used]] void (*const watchFromTheStart)() = WatchSignals;

}  // namespace

bool Interrupted() {
    return interrupted != 0;
}

}  // namespace orvo::host
