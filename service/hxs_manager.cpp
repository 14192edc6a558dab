#include "service/hxs_manager.h"

#include <systemd/sd-daemon.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>

#include "common/terminal_text.h"

namespace hxservice {

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using vexortools::Duration;

// Half of the limit, as systemd advises; a day where nobody watches.
Duration LongestSilenceOfWatchdog() {
    std::uint64_t limit_us = 0;
    if (sd_watchdog_enabled(0, &limit_us) <= 0) return std::chrono::hours(24);
    return std::max(duration_cast<Duration>(microseconds(limit_us)) / 2, Duration(1));
}

// A manager that has gone is no reason to end.
void Send(const std::string& text) { static_cast<void>(sd_notify(0, text.c_str())); }

}  // namespace

Systemd::Systemd() : longest_silence_(LongestSilenceOfWatchdog()) {}

void Systemd::Ready() { Send("READY=1"); }

// systemd tells by the time whether a READY belongs to this reload.
void Systemd::Reloading() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto since_boot = duration_cast<microseconds>(std::chrono::seconds(now.tv_sec) +
                                                        std::chrono::nanoseconds(now.tv_nsec));
    Send("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(since_boot.count()));
}

void Systemd::Stopping() { Send("STOPPING=1"); }

void Systemd::Tell(const std::string& status) { Send("STATUS=" + vexortools::Printable(status)); }

void Systemd::Alive() { Send("WATCHDOG=1"); }

}  // namespace hxservice
