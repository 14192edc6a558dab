// Ctrl-C while waiting: the waiting ends, and the command says so.
#pragma once

namespace vexorctl {

/// From now on an interrupt or a termination does not end the program but is noted.
void WatchForInterrupts();

bool Interrupted();

/// Sleeps, or returns earlier when interrupted.
void SleepMilliseconds(unsigned milliseconds);

}  // namespace vexorctl
