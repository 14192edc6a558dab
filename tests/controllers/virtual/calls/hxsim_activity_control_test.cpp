// What callers start, pause, resume and abort in the background.
#include "calls/hxsim_activity_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_home.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Initialisation = StoryTest;
using ControlledActivity = StoryTest;
using RebuildByHand = StoryTest;

TEST_F(Initialisation, InTheForegroundTellsOfItsProgress) {
    const HX_U16 id = AddRaid5();
    virtual_disk(id).errors = 4;
    EXPECT_EQ(0, Initialise(0, id, Init::kForeground));
    EXPECT_FALSE(virtual_disk(id).initialised);
    At(99);
    EXPECT_FALSE(virtual_disk(id).initialised);
    At(1000);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 1.60 0", "20 1.66 0 20", "40 1.66 0 40",
                                          "60 1.66 0 60", "80 1.66 0 80", "100 1.65 0"));
    EXPECT_TRUE(virtual_disk(id).initialised);
    EXPECT_EQ(0u, virtual_disk(id).errors);
    EXPECT_THAT(adapter().activities, IsEmpty());
}

TEST_F(Initialisation, InTheBackgroundGoesAtTheRateThatIsSet) {
    AddDisks(3);
    adapter().config.InitRate = 50;
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    EXPECT_EQ(0, Initialise(0, id, Init::kBackground));
    At(1000);
    EXPECT_EQ("200 1.55 0", TakeEvents().back());
}

TEST_F(Initialisation, AtARateOfZeroGoesAsAtOne) {
    AddDisks(3);
    adapter().config.InitRate = 0;
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    EXPECT_EQ(0, Initialise(0, id, Init::kBackground));
    At(100000);
    EXPECT_EQ("10000 1.55 0", TakeEvents().back());
}

TEST_F(Initialisation, ThatIsQuickTakesFiveSecondsWhateverTheSize) {
    AddDisks(3);
    const HX_U16 small = AddVirtualDisk(Level::kRaid0, {0}, 0, 128);
    const HX_U16 large = AddVirtualDisk(Level::kRaid0, {1}, 0, 2 * kHundredSeconds);
    EXPECT_EQ(0, Initialise(0, small, Init::kQuick));
    EXPECT_EQ(0, Initialise(0, large, Init::kQuick));
    At(1000);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("0 1.40 0", "0 1.40 1", "1 1.46 0 20", "1 1.46 1 20", "2 1.46 0 40",
                            "2 1.46 1 40", "3 1.46 0 60", "3 1.46 1 60", "4 1.46 0 80",
                            "4 1.46 1 80", "5 1.45 0", "5 1.45 1"));
}

TEST_F(Initialisation, IsRefusedWithAReason) {
    const HX_U16 id = AddRaid5();
    EXPECT_EQ(Status::kNoVirtualDisk, Initialise(0, 7, Init::kQuick));
    EXPECT_EQ(Status::kBadAction, Initialise(0, id, Init::kNone));
    EXPECT_EQ(0, Initialise(0, id, Init::kQuick));
    EXPECT_EQ(Status::kBusy, Initialise(1, id, Init::kQuick));
    Fail(50, 0);
    EXPECT_EQ(Status::kWrongState, Initialise(60, id, Init::kQuick));
}

TEST_F(Initialisation, InTheBackgroundEndsForARebuild) {
    const HX_U16 id = AddRaid5AndSpare();
    Initialise(0, id, Init::kBackground);
    Fail(10, 0);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 1.50 0", "10 2.2 0", "10 1.4 0", "10 2.10 3",
                                          "10 1.54 0", "10 1.70 0"));
}

TEST_F(Initialisation, InTheForegroundKeepsARebuildWaiting) {
    const HX_U16 id = AddRaid5AndSpare();
    Initialise(0, id, Init::kForeground);
    Fail(90, 0);
    TakeEvents();
    At(110);
    EXPECT_THAT(TakeEvents(), ElementsAre("100 1.65 0", "100 2.10 3", "100 1.70 0"));
}

TEST_F(Initialisation, FailsWithItsVirtualDisk) {
    AddDisks(1);
    const HX_U16 id = AddVirtualDisk(Level::kRaid0, {0});
    Initialise(0, id, Init::kBackground);
    Fail(10, 0);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 1.50 0", "10 2.2 0", "10 1.0 0", "10 1.57 0"));
}

TEST_F(ControlledActivity, PausedStandsStillAndGoesOnWhereItWasOverAReload) {
    const HX_U16 id = AddRaid5();
    Initialise(0, id, Init::kForeground);
    EXPECT_EQ(0, Steer(30, id, ControlAction::kPause));
    EXPECT_EQ(ActivityState::kPaused, activity(id)->state);
    TestMachine reloaded = *this;
    const Time later = reloaded.At(1000);
    EXPECT_EQ(30, Percentage(*reloaded.activity(id), later));
    EXPECT_EQ(0, reloaded.Steer(1000, id, ControlAction::kResume));
    reloaded.At(2000);
    EXPECT_THAT(reloaded.TakeEvents(),
                ElementsAre("0 1.60 0", "20 1.66 0 20", "30 1.62 0", "1000 1.63 0",
                            "1010 1.66 0 40", "1030 1.66 0 60", "1050 1.66 0 80", "1070 1.65 0"));
}

TEST_F(ControlledActivity, AbortedEndsWithoutItsEffect) {
    const HX_U16 id = AddRaid5();
    Initialise(0, id, Init::kForeground);
    EXPECT_EQ(0, Steer(10, id, ControlAction::kAbort));
    At(1000);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 1.60 0", "10 1.64 0"));
    EXPECT_FALSE(virtual_disk(id).initialised);
}

TEST_F(ControlledActivity, CannotBeControlledInVain) {
    const HX_U16 id = AddRaid5();
    EXPECT_EQ(Status::kNoActivity, Steer(0, id, ControlAction::kPause));
    Initialise(0, id, Init::kForeground);
    EXPECT_EQ(Status::kBadAction, Steer(1, id, static_cast<ControlAction>(0)));
    EXPECT_EQ(Status::kBadAction, Steer(1, id, static_cast<ControlAction>(4)));
    EXPECT_EQ(Status::kNoChange, Steer(1, id, ControlAction::kResume));
    Steer(2, id, ControlAction::kPause);
    EXPECT_EQ(Status::kNoChange, Steer(3, id, ControlAction::kPause));
}

TEST_F(ControlledActivity, OfEveryVirtualDiskIsPausedAtOnce) {
    AddDisks(4);
    const HX_U16 first = AddVirtualDisk(Level::kRaid0, {0});
    const HX_U16 second = AddVirtualDisk(Level::kRaid0, {1});
    Initialise(0, first, Init::kForeground);
    Initialise(0, second, Init::kForeground);
    Patrol(0, 3);
    TakeEvents();
    EXPECT_EQ(0, Call(5, PauseAll));
    EXPECT_THAT(TakeEvents(), ElementsAre("5 1.62 0", "5 1.62 1"));
    EXPECT_EQ(ActivityState::kRunning, ActivityOf(adapter(), Owner::kDisk, 3)->state);
    EXPECT_EQ(0, Call(6, PauseAll));
    EXPECT_THAT(TakeEvents(), IsEmpty());
}

TEST_F(ControlledActivity, OfAllVirtualDisksOfADiskGroupIsControlledByTheGroup) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    const HX_U16 first = AddVirtualDiskTo(group);
    const HX_U16 second = AddVirtualDiskTo(group, kHundredSeconds / 2);
    SetGlobalSpare(3);
    const auto pause = [&](Adapter& adapter, Time now) {
        return ControlGroup(adapter, now, group, NumberOf(ControlAction::kPause));
    };
    EXPECT_EQ(Status::kNoActivity, Call(0, pause));
    Fail(0, 1);
    EXPECT_EQ(0, Call(10, pause));
    EXPECT_EQ(ActivityState::kPaused, activity(first)->state);
    EXPECT_EQ(ActivityState::kPaused, activity(second)->state);
    EXPECT_EQ(Status::kNoChange, Call(20, pause));
}

TEST_F(RebuildByHand, TakesTheDiskThatIsNamed) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    adapter().config.AutoRebuildOn = 0;
    Fail(0, 1);
    EXPECT_EQ(0, Rebuild(10, id, {3}));
    At(200);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("0 2.2 1", "0 1.4 0", "10 1.70 0", "30 1.76 0 20", "50 1.76 0 40",
                            "70 1.76 0 60", "90 1.76 0 80", "110 1.75 0", "110 1.1 0"));
    Replace(300, 1);
    At(600);
    EXPECT_EQ(3, block(id, 1)->disk);  // where it has been put it belongs
}

TEST_F(RebuildByHand, StartsAnAbortedOneAgainWhichDoesNotStartByItself) {
    const HX_U16 id = AddRaid5AndSpare();
    Fail(0, 1);
    Steer(10, id, ControlAction::kAbort);
    TakeEvents();
    Settle(adapter(), At(500));
    EXPECT_THAT(TakeEvents(), IsEmpty());
    EXPECT_EQ(State::kRebuilding, block(id, 1)->state);
    EXPECT_EQ(0, Rebuild(500, id, {3}));
    At(600);
    EXPECT_EQ("600 1.1 0", TakeEvents().back());
}

TEST_F(RebuildByHand, IsRefusedWithAReason) {
    AddDisks(6);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    const HX_U16 plain = AddVirtualDisk(Level::kRaid0, {3});
    const HX_U16 small = AddDisk(kHundredSeconds - 1);
    adapter().config.AutoRebuildOn = 0;
    EXPECT_EQ(Status::kNoVirtualDisk, Rebuild(0, 9, {4}));
    EXPECT_EQ(Status::kNoDisk, Rebuild(0, id, {99}));
    EXPECT_EQ(Status::kDiskRepeated, Rebuild(0, id, {4, 4}));
    EXPECT_EQ(Status::kWrongState, Rebuild(0, id, {4}));
    EXPECT_EQ(Status::kNotRedundant, Rebuild(0, plain, {4}));
    Fail(0, 1);
    EXPECT_EQ(Status::kDiskInUse, Rebuild(0, id, {0}));
    EXPECT_EQ(Status::kDiskNotReady, Rebuild(0, id, {1}));
    EXPECT_EQ(Status::kNoSpace, Rebuild(0, id, {small}));
    EXPECT_EQ(Status::kBadDiskCount, Rebuild(0, id, {4, 5}));
    EXPECT_EQ(Status::kBadDiskCount, Rebuild(0, id, {}));
    disk(4).offline = true;
    EXPECT_EQ(Status::kDiskNotReady, Rebuild(0, id, {4}));
    EXPECT_EQ(0, Rebuild(0, id, {5}));
    EXPECT_EQ(Status::kBusy, Rebuild(0, id, {5}));
}

TEST_F(RebuildByHand, OfADiskGroupTakesAWholeDisk) {
    AddDisks(5);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    const HX_U16 id = AddVirtualDiskTo(group);
    AddVirtualDisk(Level::kRaid0, {3}, 0, 1000);
    adapter().config.AutoRebuildOn = 0;
    EXPECT_EQ(Status::kNoDiskGroup, RebuildGroup(0, 7, {4}));
    EXPECT_EQ(Status::kWrongState, RebuildGroup(0, group, {4}));
    Fail(0, 1);
    EXPECT_EQ(Status::kOnDiskGroup, Rebuild(0, id, {4}));
    EXPECT_EQ(Status::kDiskTaken, RebuildGroup(0, group, {3}));
    EXPECT_EQ(0, RebuildGroup(0, group, {4}));
    At(100);
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
    EXPECT_EQ(4, HomeOf(adapter(), Owner::kDiskGroup, group, 1)->home);
}

}  // namespace
}  // namespace hxsim
