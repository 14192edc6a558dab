// Ctrl-C while waiting: the waiting ends, and the command says so.
#pragma once

#include <csignal>

namespace vexorctl {

/// From now on an interrupt or a termination does not end the program but is noted.
void WatchForInterrupts();

/// Watches while it lives; then an interrupt does again what it did before. Interrupts arrive only
/// while it waits for input, so that none comes unseen between the question and the waiting.
class WatchingInterrupts {
public:
    WatchingInterrupts();
    ~WatchingInterrupts();
    WatchingInterrupts(const WatchingInterrupts&) = delete;
    WatchingInterrupts& operator=(const WatchingInterrupts&) = delete;

    /// Reads one character of standard input. False at its end, and when interrupted.
    bool Read(char& c) const;

private:
    sigset_t mask_{};
    struct sigaction interrupt_ {};
    struct sigaction termination_ {};
};

bool Interrupted();

/// Sleeps, or returns earlier when interrupted.
void SleepMilliseconds(unsigned milliseconds);

}  // namespace vexorctl
