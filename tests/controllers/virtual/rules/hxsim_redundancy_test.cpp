// What lost disks mean, and how what is lost is made up for: small machines, literal stories.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "codes/activity.h"
#include "codes/enclosure.h"
#include "codes/state.h"
#include "controllers/virtual/support/living_small_machine.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_alarm.h"
#include "rules/hxsim_event_queue.h"

namespace {

using hxcodes::ControlAction;
using hxcodes::ElementStatus;
using hxcodes::Init;
using living::kHundredSeconds;
using living::SmallMachine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

// ---- States ----

hxsim::Positions Lost(std::initializer_list<int> positions) {
    hxsim::Positions lost;
    for (const int position : positions) lost.set(static_cast<std::size_t>(position));
    return lost;
}

struct State {
    const char* name;
    HX_U8 level, legs, width;
    std::initializer_list<int> lost;
    int state;
};

constexpr int kOptimal = 1, kPartially = 2, kDegraded = 4, kOffline = 5;

class StateOfAnArray : public testing::TestWithParam<State> {};

TEST_P(StateOfAnArray, FollowsFromWhatIsLost) {
    const State& row = GetParam();
    EXPECT_EQ(row.state, hxsim::StateOfArray(row.level, row.legs, row.width, Lost(row.lost)));
}

const State kStates[] = {
    {"Raid0Whole", 0x00, 0, 3, {}, kOptimal},
    {"Raid0WithoutOne", 0x00, 0, 3, {1}, kOffline},
    {"Raid1Whole", 0x01, 0, 2, {}, kOptimal},
    {"Raid1WithoutOne", 0x01, 0, 2, {0}, kDegraded},
    {"Raid1WithoutBoth", 0x01, 0, 2, {0, 1}, kOffline},
    {"Raid5WithoutOne", 0x05, 0, 4, {3}, kDegraded},
    {"Raid5WithoutTwo", 0x05, 0, 4, {0, 3}, kOffline},
    {"Raid6WithoutOne", 0x06, 0, 4, {3}, kPartially},
    {"Raid6WithoutTwo", 0x06, 0, 4, {1, 3}, kDegraded},
    {"Raid6WithoutThree", 0x06, 0, 4, {0, 1, 3}, kOffline},
    {"Raid10WithoutOneOfEachMirror", 0x10, 0, 4, {0, 3}, kDegraded},
    {"Raid10WithoutBothHalvesOfOneMirror", 0x10, 0, 4, {2, 3}, kOffline},
    {"Raid10WithoutNeighboursOfTwoMirrors", 0x10, 0, 4, {1, 2}, kDegraded},
    {"Raid1eWithoutOne", 0x11, 0, 5, {4}, kDegraded},
    {"Raid1eWithoutTwoApart", 0x11, 0, 5, {0, 2}, kDegraded},
    {"Raid1eWithoutNeighbours", 0x11, 0, 5, {1, 2}, kOffline},
    {"Raid1eWithoutLastAndFirst", 0x11, 0, 5, {0, 4}, kOffline},
    {"Raid50WithoutOneOfEachLeg", 0x50, 2, 6, {0, 5}, kDegraded},
    {"Raid50WithoutTwoOfOneLeg", 0x50, 2, 6, {3, 5}, kOffline},
    {"Raid60WithoutOneOfEachLeg", 0x60, 2, 8, {0, 7}, kPartially},
    {"Raid60WithoutTwoOfOneLeg", 0x60, 2, 8, {0, 3}, kDegraded},
    {"Raid60WithoutThreeOfOneLeg", 0x60, 2, 8, {4, 5, 6}, kOffline},
};

INSTANTIATE_TEST_SUITE_P(Levels, StateOfAnArray, testing::ValuesIn(kStates),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(StateOfAVirtualDisk, IsForeignWhateverItsDisksAre) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).foreign = true;
    it.Disk(0).present = false;
    EXPECT_EQ(6, StateOf(it.It(), it.VirtualDisk(id)));
}

TEST(StateOfADiskGroup, IsThatOfItsDisksWhileItHasNoVirtualDisk) {
    SmallMachine it(3);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    it.Disk(1).failed = true;
    EXPECT_EQ(kDegraded, StateOf(it.It(), it.It().disk_groups[group]));
}

TEST(StateOfADiskGroup, IsTheWorstOfItsVirtualDisks) {
    SmallMachine it(3);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    it.AddVirtualDiskTo(group);
    const HX_U16 second = it.AddVirtualDiskTo(group);
    it.BlockOf(second, 1)->state = hxcodes::State::kDegraded;
    EXPECT_EQ(kDegraded, StateOf(it.It(), it.It().disk_groups[group]));
}

TEST(ADisk, IsConfiguredWhenItServesADiskGroupWithoutVirtualDisks) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    EXPECT_TRUE(hxsim::IsConfigured(it.It(), 1));
    EXPECT_FALSE(hxsim::IsConfigured(it.It(), 3));
    EXPECT_EQ(&it.It().disk_groups[group], hxsim::GroupOf(it.It(), 2));
    EXPECT_EQ(nullptr, hxsim::GroupOf(it.It(), 3));
}

TEST(ADisk, ServesTheDiskGroupThatItIsWrittenFor) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 id = it.AddVirtualDiskTo(group);
    hxsim::Cut(it.It(), 3, 0, kHundredSeconds, id, 1).target = true;
    EXPECT_EQ(&it.It().disk_groups[group], hxsim::GroupOf(it.It(), 3));
}

TEST(ADisk, IsFreeWhenItIsReadyAndNeitherConfiguredNorASpare) {
    SmallMachine it(4);
    it.AddVirtualDisk(0, {0});
    it.MakeGlobalSpare(1);
    it.Disk(2).offline = true;
    EXPECT_FALSE(hxsim::IsFree(it.It(), it.Disk(0)));
    EXPECT_FALSE(hxsim::IsFree(it.It(), it.Disk(1)));
    EXPECT_FALSE(hxsim::IsFree(it.It(), it.Disk(2)));
    EXPECT_TRUE(hxsim::IsFree(it.It(), it.Disk(3)));
}

// ---- Stories ----

class Story : public testing::Test {
protected:
    // Whatever has happened, nothing is out of order.
    void ExpectOrder(SmallMachine& it) { EXPECT_THAT(hxsim::Check(it.machine), IsEmpty()); }
};

using HotSpare = Story;
using DoubleFailure = Story;
using Copyback = Story;
using DiskPutBack = Story;
using OnADiskGroup = Story;
using Spares = Story;
using Alarm = Story;

TEST_F(HotSpare, StepsInAndTheVirtualDiskIsOptimalAgain) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(10, 1);
    ExpectOrder(it);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1",      // disk 1 is given up
                                             "10 1.4 0",      // degraded
                                             "10 2.10 3",     // disk 3 is a spare no more
                                             "10 1.70 0",     // rebuild starts
                                             "30 1.76 0 20",  //
                                             "50 1.76 0 40",  //
                                             "70 1.76 0 60",  //
                                             "90 1.76 0 80",  //
                                             "110 1.75 0",    // is complete
                                             "110 1.1 0"));   // online
    EXPECT_EQ(3, it.BlockOf(id, 1)->disk);
    EXPECT_EQ(kOptimal, it.VirtualDisk(id).state);
    EXPECT_FALSE(hxsim::IsConfigured(it.It(), 1));
    ExpectOrder(it);
}

TEST_F(HotSpare, WaitsWhenAutoRebuildIsOff) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.It().config.AutoRebuildOn = 0;
    it.Fail(10, 1);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
    EXPECT_EQ(kDegraded, it.VirtualDisk(id).state);
    ExpectOrder(it);
}

TEST_F(HotSpare, WaitsForAVirtualDiskThatWantsNone) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.VirtualDisk(id).auto_rebuild = false;
    it.Fail(10, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
}

TEST_F(HotSpare, StepsInAlsoWhenItComesLater) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.Fail(10, 1);
    it.MakeGlobalSpare(3);
    hxsim::Settle(it.It(), it.At(20));
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0", "20 2.10 3", "20 1.70 0"));
}

TEST_F(HotSpare, ServesEveryVirtualDiskThatHasLostTheSameDisk) {
    SmallMachine it(5);
    const HX_U16 first = it.AddVirtualDisk(5, {0, 1, 2}, 0, kHundredSeconds / 2);
    const HX_U16 second = it.AddVirtualDisk(1, {1, 2}, 0, kHundredSeconds / 2);
    it.MakeGlobalSpare(3);
    it.MakeGlobalSpare(4);
    it.Fail(10, 1);
    EXPECT_EQ(3, it.BlockOf(first, 1)->disk);
    EXPECT_EQ(3, it.BlockOf(second, 0)->disk);
    EXPECT_EQ(hxsim::Spare::kGlobal, it.Disk(4).spare);
    ExpectOrder(it);
}

TEST_F(Spares, TheSmallestThatIsLargeEnoughStepsIn) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(it.AddDisk(kHundredSeconds - 1));
    it.MakeGlobalSpare(it.AddDisk(3 * kHundredSeconds));
    it.MakeGlobalSpare(it.AddDisk(kHundredSeconds));
    it.MakeGlobalSpare(it.AddDisk(kHundredSeconds));
    it.Fail(10, 0);
    EXPECT_EQ(5, it.BlockOf(id, 0)->disk);
    ExpectOrder(it);
}

TEST_F(Spares, OneThatIsTooSmallIsToldOfOnce) {
    SmallMachine it(3);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(it.AddDisk(kHundredSeconds - 1));
    it.Fail(10, 0);
    hxsim::Settle(it.It(), it.At(20));
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 0", "10 1.4 0", "10 12.20 3"));
}

TEST_F(Spares, OfTheDiskGroupComeBeforeGlobalOnes) {
    SmallMachine it(5);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 id = it.AddVirtualDiskTo(group);
    it.MakeGlobalSpare(3);
    it.MakeGroupSpare(4, group);
    it.Fail(10, 2);
    EXPECT_EQ(4, it.BlockOf(id, 2)->disk);
    ExpectOrder(it);
}

TEST_F(Spares, OfADiskGroupServeNothingElse) {
    SmallMachine it(6);
    const HX_U16 group = it.AddGroup(1, {3, 4});
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGroupSpare(5, group);
    it.Fail(10, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
}

TEST_F(DoubleFailure, OnRaid5TakesItOffline) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.Fail(10, 1);
    it.Fail(20, 2);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0", "20 2.2 2", "20 1.0 0"));
    EXPECT_EQ(kOffline, it.VirtualDisk(id).state);
    ExpectOrder(it);
}

TEST_F(DoubleFailure, OnRaid5EndsTheRebuildWithAnError) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(10, 1);
    it.TakeEvents();
    it.Fail(20, 2);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("20 2.2 2", "20 1.0 0", "20 1.77 0"));
    EXPECT_THAT(it.It().activities, IsEmpty());
    ExpectOrder(it);
}

TEST_F(DoubleFailure, OnRaid6LeavesItDegradedAndTwoSparesMakeItWhole) {
    SmallMachine it(6);
    const HX_U16 id = it.AddVirtualDisk(6, {0, 1, 2, 3});
    it.Fail(10, 0);
    it.Fail(20, 3);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 0", "10 1.5 0", "20 2.2 3", "20 1.4 0"));
    EXPECT_EQ(kDegraded, it.VirtualDisk(id).state);
    it.MakeGlobalSpare(4);
    it.MakeGlobalSpare(5);
    hxsim::Settle(it.It(), it.At(30));
    it.At(500);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("30 2.10 4", "30 2.10 5", "30 1.70 0", "50 1.76 0 20", "70 1.76 0 40",
                            "90 1.76 0 60", "110 1.76 0 80", "130 1.75 0", "130 1.1 0"));
    ExpectOrder(it);
}

TEST_F(DoubleFailure, OnRaid6WhileOneIsRebuiltIsRebuiltNext) {
    SmallMachine it(6);
    const HX_U16 id = it.AddVirtualDisk(6, {0, 1, 2, 3});
    it.MakeGlobalSpare(4);
    it.MakeGlobalSpare(5);
    it.Fail(0, 0);
    it.Fail(50, 3);
    ExpectOrder(it);
    it.At(99);
    EXPECT_EQ(kDegraded, it.VirtualDisk(id).state);
    it.At(100);
    EXPECT_EQ(kPartially, it.VirtualDisk(id).state);
    ExpectOrder(it);
    it.At(200);
    EXPECT_EQ(kOptimal, it.VirtualDisk(id).state);
    EXPECT_EQ(4, it.BlockOf(id, 0)->disk);
    EXPECT_EQ(5, it.BlockOf(id, 3)->disk);
    ExpectOrder(it);
}

TEST_F(DoubleFailure, ThatHasEndedTheRebuildLetsItBeginAnewWhenTheOtherDiskIsBack) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(10, 1);
    it.PullOut(20, 0);
    it.TakeEvents();
    it.PutBack(30, 0);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("30 2.1 0", "30 1.4 0", "30 1.70 0"));
    it.At(130);
    EXPECT_EQ(kOptimal, it.VirtualDisk(0).state);
    ExpectOrder(it);
}

TEST_F(DoubleFailure, ThatIsHalfMendedIsNotToldOfAsANewLoss) {
    SmallMachine it(5);
    it.AddVirtualDisk(6, {0, 1, 2, 3});
    it.MakeGlobalSpare(4);
    it.PullOut(10, 0);
    it.PullOut(20, 1);
    EXPECT_THAT(it.TakeEvents(), IsSupersetOf({"10 12.17 0", "20 12.17 0"}));
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("30 1.76 0 20", "50 1.76 0 40", "70 1.76 0 60",
                                             "90 1.76 0 80", "110 1.75 0", "110 1.5 0"));
    ExpectOrder(it);
}

TEST_F(DoubleFailure, OfBothHalvesOfOneMirrorTakesRaid10Offline) {
    SmallMachine it(4);
    it.AddVirtualDisk(0x10, {0, 1, 2, 3});
    it.Fail(10, 0);
    it.Fail(20, 3);
    it.Fail(30, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.2 0", "10 1.4 0",  // one mirror has one half
                                             "20 2.2 3",              // both have one
                                             "30 2.2 1", "30 1.0 0"));
    ExpectOrder(it);
}

TEST_F(Copyback, ReturnsToTheReplacedDiskAndTheSpareIsOneAgain) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.At(150);
    it.TakeEvents();
    it.Replace(200, 1);
    ExpectOrder(it);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("200 2.1 1",                       // a new disk
                            "200 1.90 0",                      // copyback starts
                            "220 1.96 0 20", "240 1.96 0 40",  //
                            "260 1.96 0 60", "280 1.96 0 80",  //
                            "300 1.95 0",                      // is complete
                            "300 2.9 3"));                     // the spare is one again
    EXPECT_EQ(1, it.BlockOf(id, 1)->disk);
    EXPECT_EQ(hxsim::Spare::kGlobal, it.Disk(3).spare);
    ExpectOrder(it);
}

TEST_F(Copyback, DoesNotComeWhenItIsOff) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.It().config.CopyBack = 0;
    it.Fail(0, 1);
    it.At(150);
    it.TakeEvents();
    it.Replace(200, 1);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("200 2.1 1"));
    EXPECT_EQ(3, it.BlockOf(id, 1)->disk);
    EXPECT_EQ(hxsim::Spare::kNone, it.Disk(3).spare_before);
    EXPECT_TRUE(hxsim::IsFree(it.It(), it.Disk(1)));
    ExpectOrder(it);
}

TEST_F(Copyback, ThatIsAbortedIsNotTriedAgain) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.Replace(200, 1);
    it.TakeEvents();
    EXPECT_EQ(0, it.Call(210, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::Control(adapter, now, hxsim::Owner::kVirtualDisk, id, ControlAction::kAbort);
    }));
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("210 1.94 0"));
    EXPECT_EQ(3, it.BlockOf(id, 1)->disk);
    EXPECT_TRUE(hxsim::IsFree(it.It(), it.Disk(1)));
    ExpectOrder(it);
}

TEST_F(Copyback, ThatLosesItsSourceBecomesARebuild) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.Replace(200, 1);
    it.TakeEvents();
    it.Fail(210, 3);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("210 2.2 3", "210 1.4 0", "210 1.97 0", "210 1.70 0"));
    EXPECT_EQ(1, it.BlockOf(id, 1)->disk);
    ExpectOrder(it);
}

TEST_F(Copyback, ThatLosesItsDestinationFailsAndNothingIsLost) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.Replace(200, 1);
    it.TakeEvents();
    it.PullOut(210, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("210 2.0 1", "210 1.97 0"));
    EXPECT_EQ(kOptimal, it.VirtualDisk(id).state);
    ExpectOrder(it);
}

TEST_F(Copyback, DoesNotComeToADiskThatIsTooSmallWhichIsTold) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.At(150);
    it.TakeEvents();
    it.Replace(200, 1, kHundredSeconds - 1);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("200 2.1 1", "200 12.21 1"));
    EXPECT_EQ(3, it.BlockOf(id, 1)->disk);
    ExpectOrder(it);
    it.Replace(600, 1, kHundredSeconds);  // just large enough
    EXPECT_THAT(it.TakeEvents(), ElementsAre("600 2.0 1", "600 2.1 1", "600 1.90 0"));
}

TEST_F(Copyback, ToADiskThatIsTooSmallIsToldOfAtTheEndOfTheRebuild) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.Replace(90, 1, kHundredSeconds - 1);
    it.TakeEvents();
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
    ExpectOrder(it);
}

TEST_F(Copyback, OfADiskGroupToADiskThatIsTooSmallIsToldOfOnce) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    it.AddVirtualDiskTo(group);
    it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.MakeGroupSpare(3, group);
    it.Fail(0, 1);
    it.Replace(40, 1, 2 * kHundredSeconds - 1);
    it.At(80);
    it.TakeEvents();
    it.At(500);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
    EXPECT_EQ(3, it.It().homes[1].disk);
    ExpectOrder(it);
}

TEST_F(Copyback, ThatIsOffTellsOfNoSmallDisk) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.At(150);
    it.It().config.CopyBack = 0;
    it.TakeEvents();
    it.Replace(200, 1, kHundredSeconds - 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("200 2.1 1"));
}

TEST_F(Story, ThatBeginsWithAnImportTellsOfTheImportAlone) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).foreign = true;
    it.VirtualDisk(id).state = hxcodes::State::kForeign;
    for (HX_U16 disk = 0; disk < 3; ++disk) it.Disk(disk).foreign = true;
    ASSERT_EQ(0, it.Call(10, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::ImportVirtualDisk(adapter, now, id);
    }));
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 1.9 0"));
    EXPECT_EQ(kOptimal, it.VirtualDisk(id).state);
    ExpectOrder(it);
}

TEST_F(DiskPutBack, IsRebuiltWhereItWasSinceWritesHavePassedItBy) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.PullOut(10, 1);
    it.PutBack(20, 1);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("10 2.0 1", "10 1.4 0", "10 12.17 0",  // misses disks
                            "20 2.1 1", "20 1.70 0", "40 1.76 0 20", "60 1.76 0 40", "80 1.76 0 60",
                            "100 1.76 0 80", "120 1.75 0", "120 1.1 0"));
    EXPECT_EQ(1, it.BlockOf(id, 1)->disk);
    ExpectOrder(it);
}

TEST_F(DiskPutBack, BringsAnOfflineRaid0BackOnline) {
    SmallMachine it(2);
    it.AddVirtualDisk(0, {0, 1});
    it.PullOut(10, 1);
    it.PutBack(20, 1);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("10 2.0 1", "10 1.0 0", "10 12.17 0", "20 2.1 1", "20 1.1 0"));
    ExpectOrder(it);
}

TEST_F(DiskPutBack, OfTwoBringsRaid5BackAsFarAsTheLaterOneGoes) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.PullOut(10, 1);
    it.PullOut(20, 2);
    it.PutBack(30, 1);
    EXPECT_EQ(kOffline, it.VirtualDisk(id).state);  // what it has is out of date
    it.PutBack(40, 2);
    EXPECT_EQ(kDegraded, it.VirtualDisk(id).state);
    it.At(140);
    EXPECT_EQ(kOptimal, it.VirtualDisk(id).state);
    ExpectOrder(it);
}

TEST_F(OnADiskGroup, ASpareStepsInForAllVirtualDisksAtOnce) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 first = it.AddVirtualDiskTo(group);
    const HX_U16 second = it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.MakeGroupSpare(3, group);
    it.Fail(0, 1);
    EXPECT_EQ(0U, it.BlockOf(first, 1)->start);
    EXPECT_EQ(kHundredSeconds, it.BlockOf(second, 1)->start);
    EXPECT_EQ(3, it.It().homes[1].disk);
    ExpectOrder(it);
    it.At(500);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("0 2.2 1", "0 1.4 0", "0 1.4 1", "0 2.10 3", "0 1.70 0", "0 1.70 1",
                            "10 1.76 1 20", "20 1.76 0 20", "20 1.76 1 40", "30 1.76 1 60",
                            "40 1.76 0 40", "40 1.76 1 80", "50 1.75 1", "50 1.1 1", "60 1.76 0 60",
                            "80 1.76 0 80", "100 1.75 0", "100 1.1 0"));
    EXPECT_EQ(kOptimal, it.It().disk_groups[0].state);
    ExpectOrder(it);
}

TEST_F(OnADiskGroup, AllVirtualDisksAreCopiedBackTogether) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 first = it.AddVirtualDiskTo(group);
    const HX_U16 second = it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.MakeGroupSpare(3, group);
    it.Fail(0, 1);
    it.At(150);
    it.TakeEvents();
    it.Replace(200, 1);
    ExpectOrder(it);
    it.At(349);
    EXPECT_EQ(3, it.BlockOf(first, 1)->disk);
    it.At(350);
    EXPECT_EQ(1, it.BlockOf(first, 1)->disk);
    EXPECT_EQ(1, it.BlockOf(second, 1)->disk);
    EXPECT_EQ(1, it.It().homes[1].disk);
    EXPECT_EQ(hxsim::Spare::kGroup, it.Disk(3).spare);
    EXPECT_EQ(group, it.Disk(3).spare_group);
    ExpectOrder(it);
}

TEST_F(OnADiskGroup, NoSpareStepsInBeforeEveryVirtualDiskCanBeRebuilt) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 first = it.AddVirtualDiskTo(group);
    it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.MakeGroupSpare(3, group);
    ASSERT_EQ(0, it.Call(0, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartInitialisation(adapter, now, first, Init::kForeground);
    }));
    it.Fail(10, 1);
    EXPECT_EQ(hxsim::Spare::kGroup, it.Disk(3).spare);
    it.At(100);
    EXPECT_EQ(hxsim::Spare::kNone, it.Disk(3).spare);
    it.At(500);
    EXPECT_EQ(kOptimal, it.It().disk_groups[0].state);
    ExpectOrder(it);
}

TEST_F(OnADiskGroup, WithoutVirtualDisksADiskIsReplacedAtOnce) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 2.2 1", "0 2.10 3"));
    EXPECT_EQ(kOptimal, it.It().disk_groups[group].state);
    it.Replace(10, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("10 2.1 1", "10 2.9 3"));
    EXPECT_EQ(1, it.It().homes[1].disk);
    ExpectOrder(it);
}

TEST_F(Alarm, StaysMutedWhenOneOfTwoLostDisksIsBack) {
    SmallMachine it(3);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.PullOut(10, 0);
    it.PullOut(20, 1);
    it.It().muted = true;
    it.PutBack(30, 1);
    EXPECT_EQ(hxcodes::State::kDegraded, it.VirtualDisk(0).state);
    EXPECT_FALSE(it.It().alarm);
}

TEST_F(Alarm, SoundsWhileAVirtualDiskIsDegraded) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    EXPECT_TRUE(it.It().alarm);
    it.At(100);
    EXPECT_FALSE(it.It().alarm);
}

TEST_F(Alarm, OnceMutedIsSilentUntilTheNextCause) {
    SmallMachine it(3);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.Fail(0, 1);
    it.It().muted = true;
    hxsim::Settle(it.It(), it.At(10));
    EXPECT_FALSE(it.It().alarm);
    it.Fail(20, 2);
    EXPECT_TRUE(it.It().alarm);
}

TEST_F(Alarm, IsSilentWhenItIsOffOrNotThere) {
    SmallMachine it(3);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.It().config.AlarmOn = 0;
    it.Fail(0, 1);
    EXPECT_FALSE(it.It().alarm);
    it.It().config.AlarmOn = 1;
    hxsim::UpdateAlarm(it.It());
    EXPECT_TRUE(it.It().alarm);
    it.It().info.AlarmSupport = 0;
    hxsim::UpdateAlarm(it.It());
    EXPECT_FALSE(it.It().alarm);
}

TEST_F(Alarm, SoundsForACriticalElement) {
    SmallMachine it(0);
    it.It().elements.push_back({});
    it.It().elements[0].status = ElementStatus::kCritical;
    hxsim::UpdateAlarm(it.It(), true);
    EXPECT_TRUE(it.It().alarm);
}

}  // namespace
