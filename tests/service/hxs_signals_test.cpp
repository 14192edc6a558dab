// Waiting for signals, work and time.
#include "service/hxs_signals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>

namespace {

using hxservice::Duration;
using hxservice::Signals;
using hxservice::Wake;

// Two descriptors with work for somebody, which are polled with the signals' own.
class Waiting : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
        signals.WakeFor(reading.Get());
        signals.WakeFor(reading.Get());
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &old), 0);
    }
    void TearDown() override { setrlimit(RLIMIT_NOFILE, &old); }

    // Open descriptors stay open, but poll takes no more of them than that.
    void AllowDescriptors(rlim_t most) const {
        rlimit fewer = old;
        fewer.rlim_cur = most;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &fewer), 0);
    }

    Signals signals;
    Descriptor reading;
    Descriptor writing;
    rlimit old{};
};

TEST_F(Waiting, EndsWithWorkATimeOrASignal) {
    EXPECT_EQ(signals.Wait(std::chrono::milliseconds(1)), Wake::kTime);
    ASSERT_EQ(write(writing.Get(), "x", 1), 1);
    EXPECT_EQ(signals.Wait(std::chrono::hours(1)), Wake::kWork);
    ASSERT_EQ(raise(SIGUSR1), 0);
    EXPECT_EQ(signals.Wait(std::chrono::hours(1)), Wake::kCheckNow);
}

TEST_F(Waiting, SleepsWhereSoManyDescriptorsCannotBePolled) {
    for (const rlim_t most : {rlim_t{2}, rlim_t{0}}) {
        AllowDescriptors(most);
        rusage before{};
        ASSERT_EQ(getrusage(RUSAGE_THREAD, &before), 0);
        signals.Wait(std::chrono::milliseconds(20));
        rusage after{};
        ASSERT_EQ(getrusage(RUSAGE_THREAD, &after), 0);
        // What never sleeps gives the processor away only when it is taken from it.
        EXPECT_GT(after.ru_nvcsw, before.ru_nvcsw) << most;
    }
}

TEST_F(Waiting, LooksForWorkWhereItCannotBePolled) {
    AllowDescriptors(2);
    EXPECT_EQ(signals.Wait(std::chrono::hours(1)), Wake::kWork);
}

TEST_F(Waiting, TakesSignalsWhereDescriptorsCannotBePolled) {
    constexpr struct {
        int signal;
        Wake wake;
    } kRows[] = {{SIGTERM, Wake::kEnd}, {SIGHUP, Wake::kReload}, {SIGUSR1, Wake::kCheckNow}};
    for (const rlim_t most : {rlim_t{2}, rlim_t{0}}) {
        AllowDescriptors(most);
        for (const auto& row : kRows) {
            ASSERT_EQ(raise(row.signal), 0);
            EXPECT_EQ(signals.Wait(std::chrono::hours(1)), row.wake) << most;
        }
    }
}

}  // namespace
