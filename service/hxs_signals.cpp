#include "service/hxs_signals.h"

#include <malloc.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "common/failure.h"
#include "common/read_file.h"

namespace hxservice {

namespace {

constexpr std::size_t kLongestBootId = 100;
constexpr Duration kLongWait = std::chrono::seconds(1);
constexpr Duration kLongestBlind = std::chrono::seconds(1);

struct SignalRow {
    int signal;
    Wake wake;
};
constexpr SignalRow kSignals[] = {
    {SIGTERM, Wake::kEnd},
    {SIGINT, Wake::kEnd},
    {SIGHUP, Wake::kReload},
    {SIGUSR1, Wake::kCheckNow},
};

sigset_t SignalSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const SignalRow& row : kSignals) sigaddset(&set, row.signal);
    return set;
}

// Without it every start counts as a boot: then no time has passed since the last look.
std::string BootId() {
    try {
        return vexortools::ReadFile("/proc/sys/kernel/random/boot_id", vexortools::FileKind::kAny,
                                    kLongestBootId);
    } catch (const vexortools::FileError&) {
        return "";
    }
}

std::optional<Wake> WakeOf(int signal) {
    const auto* const row = std::ranges::find(kSignals, signal, &SignalRow::signal);
    return row == std::end(kSignals) ? std::nullopt : std::optional(row->wake);
}

std::optional<Wake> Next(int signals) {
    signalfd_siginfo info{};
    if (read(signals, &info, sizeof info) != sizeof info) return std::nullopt;
    return WakeOf(static_cast<int>(info.ssi_signo));
}

// Where poll fails, since RLIMIT_NOFILE was set below the number of descriptors, or for want of
// memory: signals need no descriptor, and whether there is work is looked at so often.
Wake WaitWithoutDescriptors(Duration longest) {
    const auto left = std::min(longest, kLongestBlind);
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec time{
        .tv_sec = whole.count(),
        .tv_nsec = std::chrono::duration_cast<std::chrono::nanoseconds>(left - whole).count()};
    const sigset_t set = SignalSet();
    return WakeOf(sigtimedwait(&set, nullptr, &time)).value_or(Wake::kWork);
}

}  // namespace

Signals::Signals() : boot_id_(BootId()) {
    const sigset_t set = SignalSet();
    sigprocmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signals_ = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!signals_.IsOpen()) {
        throw vexortools::Failure(
            vexortools::Exit::kUnavailable,
            std::string("signals cannot be received: ") + std::strerror(errno));
    }
}

Wake Signals::Wait(Duration longest) {
    const Duration end = Now() + longest;
    // What a round has taken is given back, where that is worth the work.
    if (longest >= kLongWait) malloc_trim(0);
    for (;;) {
        if (const std::optional<Wake> wake = Next(signals_.Get())) return *wake;
        const Duration left = end - Now();
        if (left <= Duration(0)) return Wake::kTime;
        // poll leaves out a descriptor of -1.
        std::vector<pollfd> ready{{signals_.Get(), POLLIN, 0}, {changes_.Get(), POLLIN, 0}};
        for (const int each : others_) ready.push_back({each, POLLIN, 0});
        const int count = poll(ready.data(), ready.size(),
                               static_cast<int>(std::min<Duration::rep>(left.count(), INT_MAX)));
        if (count < 0 && errno != EINTR) return WaitWithoutDescriptors(left);
        if (count <= 0 || ready[0].revents != 0) continue;
        if (ready[1].revents == 0) return Wake::kWork;
        // Work that is there, too, is done before the next wait.
        changes_.Close();
        return Wake::kChanged;
    }
}

Duration Signals::Now() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return std::chrono::duration_cast<Duration>(std::chrono::seconds(now.tv_sec) +
                                                std::chrono::nanoseconds(now.tv_nsec));
}

hxconditions::Now Signals::Clocks() {
    // Among rounds by the real clocks it counts as a boot: no time passes from one to the other.
    if (set_clock_) return {.real = *set_clock_, .boot = *set_clock_, .boot_id = "set clock"};
    return {.real = std::time(nullptr),
            .boot = std::chrono::duration_cast<std::chrono::seconds>(Now()).count(),
            .boot_id = boot_id_};
}

Duration Signals::Random(Duration most) {
    return Duration(std::uniform_int_distribution<Duration::rep>(0, most.count())(random_));
}

}  // namespace hxservice
