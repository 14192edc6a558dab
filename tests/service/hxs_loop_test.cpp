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

// Keeps what it is told; without "alive", which comes with each wait.
class KeptManager : public hxservice::Manager {
public:
    void Ready() override { told.emplace_back("ready"); }
    void Reloading() override { told.emplace_back("reloading"); }
    void Stopping() override { told.emplace_back("stopping"); }
    void Tell(const std::string& status) override { told.push_back(status); }
    void Alive() override { ++alive; }
    Duration LongestSilence() const override { return longest_silence; }

    std::vector<std::string> told;
    int alive = 0;
    Duration longest_silence = std::chrono::hours(24);
};

Settings TenSeconds() { return {.collect_interval = seconds(10), .collect_jitter = Duration(0)}; }

TEST(ServiceLoop, ChecksInAtOnceAndThenAfterEachInterval) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(35), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(4));  // at 0, 10, 20 and 30 seconds
}

TEST(ServiceLoop, WaitsLongerByTheRandomPart) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Loop(source, time, manager, log,
         {.collect_interval = seconds(10), .collect_jitter = seconds(2)}, TenSeconds)
        .Run();
    EXPECT_THAT(time.waits, ElementsAre(seconds(12)));
}

TEST(ServiceLoop, ChecksInNowWhenAsked) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(3), Wake::kCheckNow}, {seconds(4), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(2));
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(10)));
}

TEST(ServiceLoop, UsesTheNewIntervalFromTheLastCheckInOn) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(18), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), [] {
        return Settings{.collect_interval = seconds(15), .collect_jitter = Duration(0)};
    }).Run();
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(12), seconds(15)));
    EXPECT_THAT(log.lines, ElementsAre("1 adapter", "the settings were read again"));
}

TEST(ServiceLoop, DoesNotCheckInForAStormOfReloads) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    std::deque<Signal> storm(100, {Duration(10), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(1));
}

TEST(ServiceLoop, ChecksInDuringAnEndlessStormOfReloads) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    std::deque<Signal> storm(250, {Duration(100), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(source.check_ins, SizeIs(3));
}

TEST(ServiceLoop, KeepsTheOldSettingsWhenTheNewOnesCannotBeUsed) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(1), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), []() -> Settings {
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
    KeptManager manager;
    VirtualTime time({{seconds(25), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(time.waits, SizeIs(3));
    EXPECT_THAT(log.lines, ElementsAre("the controller cannot be asked"));
}

TEST(ServiceLoop, IsReadyAfterTheFirstCheckInAndTellsEach) {
    ScriptedSource source;
    source.queue = {"a0/pd5 has failed"};
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(15), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(manager.told,
                ElementsAre("ready", "1 adapter, 1 event collected since the start",
                            "1 adapter, 1 event collected since the start", "stopping"));
}

TEST(ServiceLoop, TellsTheManagerOfATroubleThatLasts) {
    ScriptedSource source;
    source.trouble = "the controller cannot be asked";
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(manager.told, ElementsAre("ready", "the controller cannot be asked", "stopping"));
}

TEST(ServiceLoop, IsReadyAgainAfterAReloadThatFailed) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(1), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), []() -> Settings {
        throw SettingsError("f.conf:1: there is no key \"x\"");
    }).Run();
    EXPECT_THAT(manager.told, ElementsAre("ready", "1 adapter, 0 events collected since the start",
                                          "reloading", "ready", "stopping"));
}

TEST(ServiceLoop, IsNeverSilentForLongerThanTheWatchdogTakes) {
    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    manager.longest_silence = seconds(4);
    VirtualTime time({{seconds(15), Wake::kEnd}});
    Loop(source, time, manager, log, TenSeconds(), TenSeconds).Run();
    EXPECT_THAT(time.waits,
                ElementsAre(seconds(4), seconds(4), seconds(2), seconds(4), seconds(4)));
    EXPECT_EQ(manager.alive, 5);
    EXPECT_THAT(source.check_ins, SizeIs(2));
}

}  // namespace
