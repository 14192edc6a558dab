#include "shell/interrupt.h"

#include <csignal>
#include <ctime>

namespace vexorctl {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int) { interrupted = 1; }

}  // namespace

void WatchForInterrupts() {
    struct sigaction action {};
    action.sa_handler = NoteInterrupt;  // without SA_RESTART: sleeping ends
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool Interrupted() { return interrupted != 0; }

void SleepMilliseconds(unsigned milliseconds) {
    if (Interrupted()) return;
    timespec left{static_cast<std::time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0 && !Interrupted()) {
    }
}

}  // namespace vexorctl
