#include "shell/interrupt.h"

#include <poll.h>
#include <unistd.h>

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

WatchingInterrupts::WatchingInterrupts() {
    sigaction(SIGINT, nullptr, &interrupt_);
    sigaction(SIGTERM, nullptr, &termination_);
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    sigaddset(&held, SIGTERM);
    sigprocmask(SIG_BLOCK, &held, &mask_);
    WatchForInterrupts();
}

WatchingInterrupts::~WatchingInterrupts() {
    sigprocmask(SIG_SETMASK, &mask_, nullptr);
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &termination_, nullptr);
}

bool WatchingInterrupts::Read(char& c) const {
    pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    return ppoll(&input, 1, nullptr, &mask_) > 0 && read(STDIN_FILENO, &c, 1) == 1;
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
