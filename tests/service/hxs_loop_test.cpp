// The loop with a clock and signals of the test's own.
#include "service/hxs_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "service/scripted_deliverer.h"
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
    void WakeForChange(Descriptor /*changes*/) override { ++watches; }
    Duration Now() override { return now; }
    hxconditions::Now Clocks() override {
        const auto passed = std::chrono::duration_cast<seconds>(now).count();
        return {.real = 1000000 + date_ahead.count() + passed, .boot = passed, .boot_id = "boot"};
    }
    Duration Random(Duration most) override { return most; }

    Duration now{0};
    seconds date_ahead{0};  // of the time that has passed: somebody has set the clock
    std::vector<Duration> waits;
    int watches = 0;  // for changes

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

class KeptFiles : public hxservice::Keeper {
public:
    void Save(const hxservice::Saved& one) override { saved.push_back(one); }
    void Publish(const std::string& text) override {
        status = text;
        ++published;
    }
    void PublishMetrics(const std::string& text) override { metrics = text; }
    void Withdraw() override { status.clear(); }

    std::vector<hxservice::Saved> saved;
    std::string status;
    std::string metrics;
    int published = 0;
};

Settings TenSeconds() {
    return {.collect_interval = seconds(10),
            .collect_jitter = Duration(0),
            .watch_interval = std::chrono::hours(1)};
}

class ServiceLoop : public testing::Test {
protected:
    void Run(VirtualTime& time, const Settings& settings = TenSeconds(),
             const std::function<Settings()>& read = TenSeconds) {
        Loop({source, time, manager, keeper, log, deliverer}, settings, read, {}, "").Run();
    }

    ScriptedSource source;
    KeptLog log;
    KeptManager manager;
    KeptFiles keeper;
    ScriptedDeliverer deliverer;
};

TEST_F(ServiceLoop, ChecksInAtOnceAndThenAfterEachInterval) {
    VirtualTime time({{seconds(35), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(4));  // at 0, 10, 20 and 30 seconds
}

TEST_F(ServiceLoop, WaitsLongerByTheRandomPart) {
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Run(time, {.collect_interval = seconds(10), .collect_jitter = seconds(2)});
    EXPECT_THAT(time.waits, ElementsAre(seconds(12)));
}

TEST_F(ServiceLoop, ChecksInNowWhenAsked) {
    VirtualTime time({{seconds(3), Wake::kCheckNow}, {seconds(4), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(2));
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(10)));
}

TEST_F(ServiceLoop, ChecksInSoonAfterAChange) {
    VirtualTime time({{seconds(3), Wake::kChanged}, {seconds(1), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(2));
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), Duration(50), seconds(10)));
    EXPECT_EQ(time.watches, 2);  // one for each pause
}

TEST_F(ServiceLoop, ChecksInTwiceASecondAtMostForChanges) {
    VirtualTime time({{Duration(10), Wake::kChanged}, {seconds(1), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), Duration(490), seconds(10)));
}

TEST_F(ServiceLoop, UsesTheNewIntervalFromTheLastCheckInOn) {
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(18), Wake::kEnd}});
    Run(time, TenSeconds(), [] {
        Settings settings = TenSeconds();
        settings.collect_interval = seconds(15);
        return settings;
    });
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(12), seconds(15)));
    EXPECT_THAT(log.lines, ElementsAre("1 adapter", "the settings were read again"));
}

TEST_F(ServiceLoop, DoesNotCheckInForAStormOfReloads) {
    std::deque<Signal> storm(100, {Duration(10), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(1));
}

TEST_F(ServiceLoop, ChecksInDuringAnEndlessStormOfReloads) {
    std::deque<Signal> storm(250, {Duration(100), Wake::kReload});
    storm.push_back({Duration(10), Wake::kEnd});
    VirtualTime time(storm);
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(3));
}

TEST_F(ServiceLoop, KeepsTheOldSettingsWhenTheNewOnesCannotBeUsed) {
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(1), Wake::kEnd}});
    Run(time, TenSeconds(), []() -> Settings {
        throw SettingsError("hxraidsvc.conf:2: there is no key \"interval\"");
    });
    EXPECT_THAT(time.waits, ElementsAre(seconds(10), seconds(7)));
    EXPECT_THAT(log.lines,
                ElementsAre("1 adapter",
                            "hxraidsvc.conf:2: there is no key \"interval\"; the old settings "
                            "hold"));
}

TEST_F(ServiceLoop, GoesOnWhileTheControllerCannotBeReached) {
    source.trouble = "the controller cannot be asked";
    VirtualTime time({{seconds(25), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(time.waits, SizeIs(3));
    EXPECT_THAT(log.lines, ElementsAre("the controller cannot be asked"));
}

TEST_F(ServiceLoop, IsReadyAfterTheFirstCheckInAndTellsEach) {
    source.queue = {"a0/pd5 has failed"};
    VirtualTime time({{seconds(11), Wake::kEnd}});  // after rounds at 0 and 2 seconds
    Run(time);
    EXPECT_THAT(manager.told,
                ElementsAre("ready", "1 adapter, 1 event collected since the start",
                            "1 adapter, 1 event collected since the start", "stopping"));
}

TEST_F(ServiceLoop, TellsTheManagerOfATroubleThatLasts) {
    source.trouble = "the controller cannot be asked";
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(manager.told, ElementsAre("ready", "the controller cannot be asked", "stopping"));
}

TEST_F(ServiceLoop, IsReadyAgainAfterAReloadThatFailed) {
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(1), Wake::kEnd}});
    Run(time, TenSeconds(),
        []() -> Settings { throw SettingsError("f.conf:1: there is no key \"x\""); });
    EXPECT_THAT(manager.told, ElementsAre("ready", "1 adapter, 0 events collected since the start",
                                          "reloading", "ready", "stopping"));
}

// What counts after a restart is what was saved with the place in the store.
TEST_F(ServiceLoop, CountsEventsFromWhereAnEarlierProcessWas) {
    source.event.event_class = 2;
    source.queue = {"first", "second"};
    VirtualTime time({{seconds(1), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(keeper.metrics, testing::HasSubstr("{class=\"disk\",severity=\"info\"} 2\n"));
    source.queue = {"third"};
    VirtualTime later({{seconds(1), Wake::kEnd}});
    Loop({source, later, manager, keeper, log, deliverer}, TenSeconds(), TenSeconds,
         keeper.saved.back(), "")
        .Run();
    EXPECT_THAT(keeper.metrics, testing::HasSubstr("{class=\"disk\",severity=\"info\"} 3\n"));
}

TEST_F(ServiceLoop, IsNeverSilentForLongerThanTheWatchdogTakes) {
    manager.longest_silence = seconds(4);
    VirtualTime time({{seconds(15), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(time.waits,
                ElementsAre(seconds(4), seconds(4), seconds(2), seconds(4), seconds(4)));
    EXPECT_EQ(manager.alive, 5);
    EXPECT_THAT(source.check_ins, SizeIs(2));
}

// ---- Looks at the machine ----

hxconditions::Adapter AdapterWithDisk(unsigned status) {
    using hxconditions::Query;
    hxconditions::Adapter adapter;
    adapter.serial = "VC1";
    for (Query* query :
         {&adapter.info, &adapter.settings, &adapter.virtual_disks_query, &adapter.disks_query,
          &adapter.smart, &adapter.groups_query, &adapter.enclosures_query}) {
        query->result = Query::Result::kRead;
    }
    adapter.battery_query.result = Query::Result::kNone;
    adapter.flash = {true, true, true, true, true, true};
    adapter.auto_rebuild = true;
    adapter.poll_smart = true;
    hxconditions::Disk& disk = adapter.disks.emplace_back();
    disk.id = 5;
    disk.serial = "QD-5";
    disk.status = status;
    disk.sectors = 1000000;
    disk.smart_alarm = false;
    disk.smart_on = true;
    return adapter;
}

constexpr unsigned kOnline = 0x01;
constexpr unsigned kFailed = 0x20;

class WatchedMachine : public ServiceLoop {
protected:
    WatchedMachine() {
        source.answers.machine.result = hxconditions::Query::Result::kRead;
        Show(kOnline);
    }
    void Show(unsigned status) { source.answers.adapters = {AdapterWithDisk(status)}; }

    std::vector<std::string> Changes() const {
        std::vector<std::string> changes;
        for (const std::string& line : log.lines) {
            for (const char* word : {"raised", "cleared", "worse", "better", "passed"}) {
                if (line.starts_with(word)) changes.push_back(line);
            }
        }
        return changes;
    }
};

TEST_F(WatchedMachine, IsLookedAtAtItsIntervalAndTwoSecondsAfterEvents) {
    Settings settings = TenSeconds();
    settings.watch_interval = seconds(60);
    VirtualTime quiet({{seconds(65), Wake::kEnd}});
    Run(quiet, settings);
    EXPECT_EQ(source.looks, 2);  // at 0 and 60 seconds
    source.looks = 0;
    source.queue = {"something"};
    VirtualTime busy({{seconds(5), Wake::kEnd}});
    Run(busy, settings);
    EXPECT_EQ(source.looks, 2);  // at 0 and 2 seconds
}

TEST_F(WatchedMachine, IsLookedAtWhenAsked) {
    VirtualTime time({{seconds(3), Wake::kCheckNow}, {seconds(1), Wake::kEnd}});
    Run(time);
    EXPECT_EQ(source.looks, 2);
}

TEST_F(WatchedMachine, RaisesAFailedDiskAndClearsItAfterItsReplacement) {
    Show(kFailed);
    VirtualTime failed({{seconds(65), Wake::kEnd}});
    Run(failed);
    ASSERT_EQ(Changes().size(), 1U);
    EXPECT_TRUE(Changes()[0].starts_with("raised: [warning] DISK_FAILED: a0/pd5")) << Changes()[0];
    EXPECT_EQ(keeper.saved.back().place, 0U);

    // Another process goes on with what was kept.
    Show(kOnline);
    log.lines.clear();
    VirtualTime mended({{seconds(5), Wake::kEnd}});
    Loop({source, mended, manager, keeper, log, deliverer}, TenSeconds(), TenSeconds,
         keeper.saved.back(), "")
        .Run();
    ASSERT_EQ(Changes().size(), 1U);
    EXPECT_TRUE(Changes()[0].starts_with("cleared after ")) << Changes()[0];
}

// What is known by the date alone would be told again, or ended, by a clock that is set.
TEST_F(WatchedMachine, IsNotChangedByAClockThatIsSet) {
    Show(kFailed);
    VirtualTime before({{seconds(65), Wake::kEnd}});
    Run(before);
    ASSERT_THAT(Changes(), SizeIs(1));
    for (const seconds ahead : {seconds(-900000), seconds(900000000), seconds(0)}) {
        VirtualTime after({{seconds(200), Wake::kEnd}});
        after.now = seconds(100);
        after.date_ahead = ahead;
        Loop({source, after, manager, keeper, log, deliverer}, TenSeconds(), TenSeconds,
             keeper.saved.back(), "")
            .Run();
        EXPECT_THAT(Changes(), SizeIs(1)) << ahead.count();
    }
}

// The time since the boot goes on while the machine sleeps.
TEST_F(WatchedMachine, ThatWasSuspendedIsLookedAtOnceForAllTheRoundsThatWereMissed) {
    class Suspended : public VirtualTime {
    public:
        Suspended() : VirtualTime({{std::chrono::hours(72) + seconds(5), Wake::kEnd}}) {}
        Wake Wait(Duration longest) override {
            return VirtualTime::Wait(waits.empty() ? std::chrono::hours(72) : longest);
        }
    };
    Suspended time;
    Run(time);
    EXPECT_THAT(source.check_ins, SizeIs(2));
    EXPECT_EQ(source.looks, 2);
    EXPECT_THAT(Changes(), testing::IsEmpty());
}

TEST_F(WatchedMachine, HasTenThousandEventsAtOnce) {
    constexpr int kMany = 10000;
    source.capacity = 2 * kMany;
    source.event.event_class = 2;
    source.queue.assign(kMany, "something");
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Run(time);
    EXPECT_EQ(
        std::ranges::count_if(
            log.lines, [](const std::string& line) { return line.ends_with("[info] something"); }),
        kMany);
    EXPECT_EQ(keeper.saved.back().place, 10000U);
    EXPECT_EQ(keeper.saved.back().events.told.at({"disk", "info"}), 10000U);
    EXPECT_EQ(source.looks, 2);
}

TEST_F(WatchedMachine, RaisesWhatKeepsEventsFromBeingCollected) {
    source.closed = "/db: the event store's folder: No such file or directory";
    VirtualTime time({{seconds(15), Wake::kEnd}});
    Run(time);
    ASSERT_EQ(Changes().size(), 1U);
    EXPECT_TRUE(
        Changes()[0].starts_with("raised: [critical] EVENTS_NOT_COLLECTED: controller "
                                 "events are not collected: /db: the event store's "
                                 "folder: No such file or directory"))
        << Changes()[0];
}

TEST_F(WatchedMachine, ClearsWhatKeptEventsFromBeingCollectedOnceTheyAre) {
    source.closed = "/db: the event store's folder: No such file or directory";
    VirtualTime closed({{seconds(5), Wake::kEnd}});
    Run(closed);
    source.closed.clear();
    log.lines.clear();
    VirtualTime open({{seconds(5), Wake::kEnd}});
    Loop({source, open, manager, keeper, log, deliverer}, TenSeconds(), TenSeconds,
         keeper.saved.back(), "")
        .Run();
    ASSERT_EQ(Changes().size(), 1U);
    EXPECT_NE(Changes()[0].find("EVENTS_NOT_COLLECTED"), std::string::npos) << Changes()[0];
}

TEST_F(WatchedMachine, RaisesAStoreThatIsDamagedAndWhatFollowsOfIt) {
    source.look.state = hxconditions::Store::State::kDamaged;
    source.look.reason = "it has 0 bytes, and its head 112";
    VirtualTime time({{seconds(45), Wake::kEnd}});  // the fifth round is at 40 seconds
    Run(time);
    EXPECT_THAT(
        Changes(),
        ElementsAre("raised: [warning] STORE_DAMAGED: the event store is damaged: "
                    "/db/vx_hx_raid.ev: it has 0 bytes, and its head 112",
                    "raised: [critical] EVENTS_NOT_COLLECTED: controller events are not "
                    "collected: /db/vx_hx_raid.ev: the event store is damaged; the controller "
                    "keeps some hundreds, then drops the oldest"));
}

TEST_F(WatchedMachine, RaisesAStoreThatMayNotBeReadWithItsPath) {
    source.look.state = hxconditions::Store::State::kUnreadable;
    source.look.reason = "Permission denied";
    source.unreadable = "it may not be read";
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Run(time);
    EXPECT_THAT(Changes(),
                ElementsAre("raised: [unknown] STORE_UNREADABLE: the event store cannot be read: "
                            "/db/vx_hx_raid.ev: Permission denied"));
}

TEST_F(WatchedMachine, DoesNotTellHowManyEventsWentWithAStoreThatWasReset) {
    VirtualTime time({{seconds(5), Wake::kEnd}});
    Loop({source, time, manager, keeper, log, deliverer}, TenSeconds(), TenSeconds, {{}, 32}, "")
        .Run();
    EXPECT_THAT(Changes(), ElementsAre("raised: [warning] EVENTS_LOST: an unknown number of events "
                                       "of the event store were lost; what happened then is not "
                                       "known"));
}

TEST_F(WatchedMachine, RaisesSettingsThatWereRefused) {
    VirtualTime time({{seconds(3), Wake::kReload}, {seconds(10), Wake::kEnd}});
    Run(time, TenSeconds(), []() -> Settings { throw SettingsError("f.conf:1: no key"); });
    ASSERT_EQ(Changes().size(), 1U);
    EXPECT_EQ(Changes()[0],
              "raised: [warning] SERVICE_CONFIG_REJECTED: f.conf:1: no key; the old settings hold");
}

TEST_F(WatchedMachine, PublishesAfterEachRoundAndNothingAfterItsEnd) {
    VirtualTime time({{seconds(15), Wake::kEnd}});
    Run(time);
    EXPECT_EQ(keeper.published, 2);
    EXPECT_EQ(keeper.status, "");
}

TEST_F(WatchedMachine, SendsOneLetterTwoSecondsAfterTheFirstEvent) {
    Show(kFailed);
    source.queue = {"a0/pd5 has failed"};
    Settings settings = TenSeconds();
    settings.sinks = {SinkNamed("pager")};
    VirtualTime time({{seconds(1), Wake::kCheckNow}, {seconds(40), Wake::kEnd}});
    Run(time, settings);
    ASSERT_EQ(deliverer.letters.size(), 1U);
    EXPECT_EQ(deliverer.letters[0].at, seconds(31));  // 30 seconds after the start
    EXPECT_NE(deliverer.letters[0].letter.subject.find("a0/pd5"), std::string::npos);
    EXPECT_TRUE(keeper.saved.back().alerts.sinks.at("pager").waiting.empty());
}

TEST_F(WatchedMachine, LooksAtOnceWhenASinkBeginsToFail) {
    Show(kFailed);
    Settings settings = TenSeconds();
    settings.sinks = {SinkNamed("pager"), SinkNamed("mail")};
    deliverer.errors["pager"] = "no line";
    VirtualTime time({{seconds(70), Wake::kEnd}});
    Run(time, settings);
    std::string told;
    for (const auto& each : deliverer.letters) {
        if (each.sink == "mail") told += each.letter.subject + "\n";
    }
    EXPECT_NE(told.find("pager cannot be reached: no line"), std::string::npos) << told;
}

// ---- Steady state ----

std::size_t HeapInUse() { return mallinfo2().uordblks; }  // 0 under the address sanitizer

// Keeps nothing, and looks at the heap at two rounds.
class MeasuringFiles : public hxservice::Keeper {
public:
    void Save(const hxservice::Saved& /*saved*/) override {}
    void Publish(const std::string& /*text*/) override {
        ++rounds;
        if (rounds == kEarly) early = HeapInUse();
        if (rounds == kLate) late = HeapInUse();
    }
    void PublishMetrics(const std::string& /*text*/) override {}
    void Withdraw() override {}

    static constexpr int kEarly = 100;
    static constexpr int kLate = 600;
    int rounds = 0;
    std::size_t early = 0;
    std::size_t late = 0;
};

class ForgetfulManager : public KeptManager {
public:
    void Tell(const std::string& /*status*/) override {}
};

TEST_F(WatchedMachine, TakesNoMoreMemoryRoundAfterRound) {
    Show(kFailed);
    VirtualTime time({{seconds(10) * MeasuringFiles::kLate, Wake::kEnd}});
    source.check_ins.reserve(MeasuringFiles::kLate + 10);
    time.waits.reserve(MeasuringFiles::kLate + 10);
    MeasuringFiles files;
    ForgetfulManager quiet;
    Settings settings = TenSeconds();
    settings.watch_interval = seconds(10);
    Loop({source, time, quiet, files, log, deliverer}, settings, TenSeconds, {}, "").Run();
    ASSERT_GE(files.rounds, MeasuringFiles::kLate);
    EXPECT_GE(source.looks, MeasuringFiles::kLate);
    EXPECT_LT(files.late, files.early + 4000);  // 8 bytes a round
}

}  // namespace
