// The events that follow from two looks.
#include "rules/hxmd_changes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codes/activity.h"
#include "codes/state.h"

using namespace hxmd;
using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::EventKind;
using hxcodes::NumberOf;
using hxcodes::State;
using hxcodes::Step;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Happening Event1(EventKind kind, HX_U16 device, HX_U32 value = 0) {
    return {kind, device, {value, 0, 0, 0}};
}

class TwoLooks : public testing::Test {
protected:
    TwoLooks() {
        SeenDisk disk;
        disk.id = 3;
        disk.present = 1;
        disk.serves = 7;
        SeenArray array;
        array.id = 7;
        array.present = 1;
        array.state = NumberOf(State::kOptimal);
        array.in_sync = array.at_start = 1;
        before_.disks = {disk};
        before_.arrays = {array};
        before_.slots = {{7, 0, 3}};
        now_ = before_;
    }
    std::vector<Happening> Told(Since since = Since::kLastLook) {
        return Differences(before_, now_, since);
    }
    SeenDisk& Disk() { return now_.disks[0]; }
    SeenArray& Array() { return now_.arrays[0]; }
    static void Run(SeenArray& array, decltype(ActivityKind::kNone) kind, HX_U16 percent,
                    decltype(ActivityState::kIdle) state = ActivityState::kRunning) {
        array.activity = NumberOf(kind);
        array.activity_state = NumberOf(state);
        array.percent = percent;
    }
    static Happening StepOf(decltype(ActivityKind::kNone) kind, Step step, HX_U32 value = 0) {
        return Event1(*hxcodes::EventOf(kind, step), 7, value);
    }
    Seen before_;
    Seen now_;
};

TEST_F(TwoLooks, ThatAreEqualTellNothing) { EXPECT_THAT(Told(), IsEmpty()); }

// ---- Disks ----

TEST_F(TwoLooks, TellThatADiskIsGoneAndBack) {
    Disk().present = 0;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kDiskOffline, 3)));
    EXPECT_THAT(Told(Since::kReboot), ElementsAre(Event1(EventKind::kDiskMissingAtBoot, 3)));
    std::swap(before_, now_);
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kDiskOnline, 3)));
}

TEST_F(TwoLooks, TellOfAFailedDiskButNotOfAReplacedOne) {
    Disk().failed = 1;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kDiskSetDown, 3)));
    Run(before_.arrays[0], ActivityKind::kCopyback, 90);
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kCopyback, Step::kComplete)));
}

TEST_F(TwoLooks, TellOfMendedErrorsAndAgainOfManyAtEachDoubling) {
    const auto fixed = Event1(EventKind::kDiskErrorFixed, 3);
    const auto many = Event1(EventKind::kDiskReadWriteError, 3);
    const auto told = [&](std::uint64_t was, std::uint64_t is) {
        before_.disks[0].errors = was;
        Disk().errors = is;
        return Told();
    };
    EXPECT_THAT(told(0, 19), ElementsAre(fixed));
    EXPECT_THAT(told(19, 20), ElementsAre(fixed, many));
    EXPECT_THAT(told(20, 39), ElementsAre(fixed));
    EXPECT_THAT(told(39, 40), ElementsAre(fixed, many));
    EXPECT_THAT(told(40, 0), IsEmpty());
}

TEST_F(TwoLooks, TellWhenTheBadBlockLogFillsUp) {
    before_.disks[0].bad_blocks = 408;
    Disk().bad_blocks = 409;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kRemapTable80Full, 3)));
    before_.disks[0].bad_blocks = 511;
    Disk().bad_blocks = 512;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kRemapTableFull, 3)));
}

TEST_F(TwoLooks, TellOfSmartSparesAndTheWriteCache) {
    before_.disks[0].write_cache = 2;
    Disk().write_cache = 1;
    Disk().smart_failed = 1;
    Disk().spare = 1;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kSmartThresholdOver, 3),
                                    Event1(EventKind::kDiskCacheModeChanged, 3),
                                    Event1(EventKind::kSpareAssigned, 3)));
    Disk().write_cache = 0;  // it cannot be read any more
    Disk().smart_failed = 0;
    before_.disks[0].spare = 1;
    Disk().spare = 0;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kSpareRemoved, 3)));
}

// ---- Arrays ----

struct StateCase {
    decltype(State::kOptimal) state;
    EventKind kind;
};
constexpr StateCase kStates[] = {
    {State::kPartiallyOptimal, EventKind::kVirtualDiskPartiallyOptimal},
    {State::kDegraded, EventKind::kVirtualDiskDegraded},
    {State::kOffline, EventKind::kVirtualDiskOffline},
};

TEST_F(TwoLooks, TellHowAnArrayStands) {
    for (const StateCase& each : kStates) {
        Array().state = NumberOf(each.state);
        EXPECT_THAT(Told(), ElementsAre(Event1(each.kind, 7)));
        EXPECT_THAT(Told(Since::kReboot), ElementsAre(Event1(EventKind::kVirtualDiskMissesDisks, 7),
                                                      Event1(each.kind, 7)));
        EXPECT_THAT(Differences(now_, before_, Since::kLastLook),
                    ElementsAre(Event1(EventKind::kVirtualDiskOnline, 7)));
    }
}

TEST_F(TwoLooks, TellThatAnArrayWasStoppedAndThatItRunsAgain) {
    Array() = SeenArray{};
    Array().id = 7;
    Array().state = NumberOf(State::kOffline);
    now_.slots.clear();
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kVirtualDiskOffline, 7)));
    EXPECT_THAT(Told(Since::kReboot), ElementsAre(Event1(EventKind::kVirtualDiskMissingAtBoot, 7)));
    EXPECT_THAT(Differences(now_, now_, Since::kLastLook), IsEmpty());
    EXPECT_THAT(Differences(now_, before_, Since::kLastLook),
                ElementsAre(Event1(EventKind::kVirtualDiskOnline, 7)));
}

TEST_F(TwoLooks, TellOfANewArray) {
    before_.arrays.clear();
    Run(Array(), ActivityKind::kFix, 0);
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kVirtualDiskCreated, 7),
                                    StepOf(ActivityKind::kFix, Step::kStart)));
}

TEST_F(TwoLooks, TellOfALossBeforeTheRebuildAndOfTheRecoveryBehindIt) {
    Array().state = NumberOf(State::kDegraded);
    Disk().present = 0;
    Run(Array(), ActivityKind::kRebuild, 45);
    const Seen rebuilding = now_;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kDiskOffline, 3),
                                    Event1(EventKind::kVirtualDiskDegraded, 7),
                                    StepOf(ActivityKind::kRebuild, Step::kStart)));
    now_.arrays = before_.arrays;
    EXPECT_THAT(Differences(rebuilding, now_, Since::kLastLook),
                ElementsAre(StepOf(ActivityKind::kRebuild, Step::kComplete),
                            Event1(EventKind::kVirtualDiskOnline, 7)));
}

TEST_F(TwoLooks, TellOfARebuildThatBeganAndEndedInBetween) {
    now_.slots[0].disk = 4;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kVirtualDiskDegraded, 7),
                                    StepOf(ActivityKind::kRebuild, Step::kStart),
                                    StepOf(ActivityKind::kRebuild, Step::kComplete),
                                    Event1(EventKind::kVirtualDiskOnline, 7)));
    before_.arrays[0].state = NumberOf(State::kDegraded);
    before_.slots.clear();
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kRebuild, Step::kStart),
                                    StepOf(ActivityKind::kRebuild, Step::kComplete),
                                    Event1(EventKind::kVirtualDiskOnline, 7)));
}

TEST_F(TwoLooks, TellWhetherAnActivityCameToItsEnd) {
    Run(before_.arrays[0], ActivityKind::kFix, 50);
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kFix, Step::kComplete)));
    Array().in_sync = 0;
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kFix, Step::kAbort)));
    Array().state = NumberOf(State::kDegraded);
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kVirtualDiskDegraded, 7),
                                    StepOf(ActivityKind::kFix, Step::kError)));
}

TEST_F(TwoLooks, TellWhatACheckHasFound) {
    Run(before_.arrays[0], ActivityKind::kCheck, 50);
    Array().mismatches = 64;
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kCheck, Step::kComplete),
                                    Event1(EventKind::kErrorsFound, 7, 64)));
    Run(before_.arrays[0], ActivityKind::kFix, 50);
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kFix, Step::kComplete),
                                    Event1(EventKind::kErrorsFixed, 7)));
    Run(before_.arrays[0], ActivityKind::kCheck, 50);
    Array().at_start = 0;  // stopped before its time
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kCheck, Step::kAbort)));
}

TEST_F(TwoLooks, TellOfACheckThatBeganAndEndedInBetween) {
    Array().last_action = static_cast<HX_U8>(SyncAction::kCheck);
    Array().mismatches = 1;
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kCheck, Step::kStart),
                                    StepOf(ActivityKind::kCheck, Step::kComplete),
                                    Event1(EventKind::kErrorsFound, 7, 1)));
    Array().last_action = static_cast<HX_U8>(SyncAction::kRecover);
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(TwoLooks, TellOfACheckAfterACheckByWhatItHasFound) {
    before_.arrays[0].last_action = static_cast<HX_U8>(SyncAction::kCheck);
    Array().last_action = static_cast<HX_U8>(SyncAction::kCheck);
    Array().mismatches = 128;
    EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kCheck, Step::kStart),
                                    StepOf(ActivityKind::kCheck, Step::kComplete),
                                    Event1(EventKind::kErrorsFound, 7, 128)));
}

TEST_F(TwoLooks, TellTheLastStepOfProgress) {
    const auto told = [&](HX_U16 was, HX_U16 is) {
        Run(before_.arrays[0], ActivityKind::kRebuild, was);
        Run(Array(), ActivityKind::kRebuild, is);
        return Told();
    };
    EXPECT_THAT(told(0, 19), IsEmpty());
    EXPECT_THAT(told(19, 20), ElementsAre(StepOf(ActivityKind::kRebuild, Step::kProgress, 20)));
    EXPECT_THAT(told(20, 79), ElementsAre(StepOf(ActivityKind::kRebuild, Step::kProgress, 60)));
    EXPECT_THAT(told(80, 100), IsEmpty());
}

struct PauseCase {
    decltype(ActivityState::kIdle) from;
    decltype(ActivityState::kIdle) to;
    Step step;
};
constexpr PauseCase kPauses[] = {
    {ActivityState::kRunning, ActivityState::kPaused, Step::kPause},
    {ActivityState::kPaused, ActivityState::kRunning, Step::kResume},
    {ActivityState::kRunning, ActivityState::kAutoPaused, Step::kAutoPaused},
    {ActivityState::kAutoPaused, ActivityState::kRunning, Step::kAutoResume},
};

TEST_F(TwoLooks, TellOfPauses) {
    for (const PauseCase& each : kPauses) {
        Run(before_.arrays[0], ActivityKind::kFix, 50, each.from);
        Run(Array(), ActivityKind::kFix, 50, each.to);
        EXPECT_THAT(Told(), ElementsAre(StepOf(ActivityKind::kFix, each.step)));
    }
}

TEST_F(TwoLooks, TellOfTheCacheMode) {
    Array().read_ahead = 1;
    EXPECT_THAT(Told(), ElementsAre(Event1(EventKind::kCacheModeChanged, 7)));
}

TEST_F(TwoLooks, TheFirstOfWhichTellsOnlyWhatIsNotWell) {
    EXPECT_THAT(Complaints(now_), IsEmpty());
    Run(Array(), ActivityKind::kCheck, 50);
    Disk().failed = 1;
    Array().state = NumberOf(State::kDegraded);
    EXPECT_THAT(Complaints(now_), ElementsAre(Event1(EventKind::kDiskSetDown, 3),
                                              Event1(EventKind::kVirtualDiskDegraded, 7)));
}

// ---- The queue ----

TEST(TheQueue, HandsOutTheOldestAndCountsOn) {
    Kept kept;
    Queue(kept, {EventKind::kAdapterFound}, 1000, "M1");
    Queue(kept, Event1(EventKind::kDiskOffline, 3), 1001);
    Event events[2]{};
    EXPECT_EQ(Take(kept, 1, events), 1);
    EXPECT_EQ(events[0].Class, 0);
    EXPECT_EQ(events[0].Code, 9);
    EXPECT_EQ(events[0].SequenceNo, 1U);
    EXPECT_EQ(events[0].TimeStamp, 1000U);
    EXPECT_EQ(events[0].SenseDataLength, 2);
    EXPECT_EQ(events[0].SenseData[1], '1');
    EXPECT_EQ(Take(kept, 2, events), 1);
    EXPECT_EQ(events[0].Class, 2);
    EXPECT_EQ(events[0].Severity, 5);
    EXPECT_EQ(events[0].DeviceID, 3);
    EXPECT_EQ(events[0].SequenceNo, 2U);
    EXPECT_EQ(Take(kept, 2, events), 0);
}

TEST(TheQueue, TellsHowManyEventsGaveWay) {
    Kept kept;
    for (HX_U16 i = 0; i < 600; ++i) Queue(kept, Event1(EventKind::kDiskOnline, i), 0);
    ASSERT_EQ(kept.events.size(), 512U);
    Event events[2]{};
    Take(kept, 2, events);
    EXPECT_EQ(events[0].Code, 65535);
    EXPECT_EQ(events[0].Params[2], 89U);
    EXPECT_EQ(events[0].SequenceNo, 89U);
    EXPECT_EQ(events[1].SequenceNo, 90U);
    EXPECT_EQ(events[1].DeviceID, 89);
}

}  // namespace
