// The loop with a clock and signals of the test's own.
#include "service/hxs_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "service/scripted_source.h"

namespace {

using hxservice::Duration;
using hxservice::Loop;
using hxservice::Settings;
using hxservice::SettingsError;
using hxservice::Wake;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::SizeIs;

struct Signal {
    Duration after;  // since the one before
    Wake wake;
};

// Time passes only in Wait. Signals arrive in their order; after the last one the loop ends.
class VirtualTime : public hxservice::Outside {
public:
    explicit VirtualTime(std::deque<Signal> signals) : signals_(std::move(signals)) {}

    Wake Wait(Duration longest) override {
        waits.push_back(longest);
        if (signals_.empty()) return Wake::kEnd;
        Signal& next = signals_.front();
        if (next.after > longest) {
            now += longest;
            next.after -= longest;
            return Wake::kTime;
        }
        now += next.after;
        const Wake wake = next.wake;
        signals_.pop_front();
        return wake;
    }
    Duration Now() override { return now; }
    Duration Random(Duration most) override { return most; }

    Duration now{0};
    std::vector<Duration> waits;

private:
    std::deque<Signal> signals_;
};

Settings TenSeconds() { return {.collect_interval = seconds(10), .collect_jitter = Duration(0)}; }

TEST(ServiceLoop, ChecksInAtOnceAndThenAfterEachInterval) {
    ScriptedSource source;
    KeptLog log;
    VirtualTime time({{seconds(35), Wake::kEnd}});
    Loop(source, time, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(4));  // at 0, 10, 20 and 30 seconds
}

TEST(ServiceLoop, WaitsLongerByTheRandomPart) {
    ScriptedSource source;
    KeptLog log;
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Loop(source, time, log, {.collect_interval = seconds(10), .collect_jitter = seconds(2)},
         TenSeconds)
        .Run();
    EXPECT_THAT(time.waits, ElementsAre(seconds(12)));
}

TEST(ServiceLoop, ChecksInNowWhenAsked) {
    ScriptedSource source;
    KeptLog log;
    VirtualTime time({{seconds(3), Wake::kCheckNow}, {seconds(4), Wake::kEnd}});
    Loop(source, time, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(2));
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(10)));
}

TEST(ServiceLoop, UsesTheNewIntervalFromTheLastCheckInOn) {
    ScriptedSource source;
    KeptLog log;
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(18), Wake::kEnd}});
    Loop(source, time, log, TenSeconds(), [] {
        return Settings{.collect_interval = seconds(15), .collect_jitter = Duration(0)};
    }).Run();
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(12), seconds(15)));
    EXPECT_THAT(log.lines, ElementsAre("1 adapter", "the settings were read again"));
}

TEST(ServiceLoop, DoesNotCheckInForAStormOfReloads) {
    ScriptedSource source;
    KeptLog log;
    std::deque<Signal> storm(100, {Duration(10), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Loop(source, time, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(1));
}

TEST(ServiceLoop, ChecksInDuringAnEndlessStormOfReloads) {
    ScriptedSource source;
    KeptLog log;
    std::deque<Signal> storm(250, {Duration(100), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Loop(source, time, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(3));
}

TEST(ServiceLoop, KeepsTheOldSettingsWhenTheNewOnesCannotBeUsed) {
    ScriptedSource source;
    KeptLog log;
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(1), Wake::kEnd}});
    Loop(source, time, log, TenSeconds(), []() -> Settings {
        throw SettingsError("hxraidsvc.conf:2: there is no key \"interval\"");
    }).Run();
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(7)));
    EXPECT_THAT(log.lines,
                ElementsAre("1 adapter",
                            "hxraidsvc.conf:2: there is no key \"interval\"; the old settings "
                            "hold"));
}

TEST(ServiceLoop, GoesOnWhileTheControllerCannotBeReached) {
    ScriptedSource source;
    source.trouble = "the controller cannot be asked";
    KeptLog log;
    VirtualTime time({{seconds(25), Wake::kEnd}});
    Loop(source, time, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(time.waits, SizeIs(3));
    EXPECT_THAT(log.lines, ElementsAre("the controller cannot be asked"));
}

}  // namespace
