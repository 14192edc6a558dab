// When hot spares step in, and for what: what happens in which second.
#include "rules/hxsim_hot_spare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calls/hxsim_activity_control.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_disk_role.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

using HotSpare = StoryTest;
using HotSpares = StoryTest;
using HotSpareOfADiskGroup = StoryTest;

TEST_F(HotSpare, StepsInAndTheVirtualDiskIsOptimalAgain) {
    const HX_U16 id = AddRaid5AndSpare();
    Fail(10, 1);
    ExpectSound();
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1",      // disk 1 is given up
                                          "10 1.4 0",      // degraded
                                          "10 2.10 3",     // disk 3 is a spare no more
                                          "10 1.70 0",     // rebuild starts
                                          "30 1.76 0 20",  //
                                          "50 1.76 0 40",  //
                                          "70 1.76 0 60",  //
                                          "90 1.76 0 80",  //
                                          "110 1.75 0",    // is complete
                                          "110 1.1 0"));   // online
    EXPECT_EQ(3, block(id, 1)->disk);
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
    EXPECT_FALSE(IsConfigured(adapter(), 1));
}

TEST_F(HotSpare, WaitsWhenAutoRebuildIsOff) {
    const HX_U16 id = AddRaid5AndSpare();
    adapter().config.AutoRebuildOn = 0;
    Fail(10, 1);
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
    EXPECT_EQ(State::kDegraded, virtual_disk(id).state);
}

TEST_F(HotSpare, WaitsForAVirtualDiskThatWantsNone) {
    const HX_U16 id = AddRaid5AndSpare();
    virtual_disk(id).auto_rebuild = false;
    Fail(10, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
}

TEST_F(HotSpare, StepsInAlsoWhenItComesLater) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    Fail(10, 1);
    SetGlobalSpare(3);
    Settle(adapter(), At(20));
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0", "20 2.10 3", "20 1.70 0"));
}

TEST_F(HotSpare, ServesEveryVirtualDiskThatHasLostTheSameDisk) {
    AddDisks(5);
    const HX_U16 first = AddVirtualDisk(Level::kRaid5, {0, 1, 2}, 0, kHundredSeconds / 2);
    const HX_U16 second = AddVirtualDisk(Level::kRaid1, {1, 2}, 0, kHundredSeconds / 2);
    SetGlobalSpare(3);
    SetGlobalSpare(4);
    Fail(10, 1);
    EXPECT_EQ(3, block(first, 1)->disk);
    EXPECT_EQ(3, block(second, 0)->disk);
    EXPECT_EQ(Spare::kGlobal, disk(4).spare);
}

TEST_F(HotSpares, TheSmallestThatIsLargeEnoughStepsIn) {
    const HX_U16 id = AddRaid5();
    SetGlobalSpare(AddDisk(kHundredSeconds - 1));
    SetGlobalSpare(AddDisk(3 * kHundredSeconds));
    SetGlobalSpare(AddDisk(kHundredSeconds));
    SetGlobalSpare(AddDisk(kHundredSeconds));
    Fail(10, 0);
    EXPECT_EQ(5, block(id, 0)->disk);
}

TEST_F(HotSpares, OneThatIsTooSmallIsToldOfOnce) {
    AddRaid5();
    SetGlobalSpare(AddDisk(kHundredSeconds - 1));
    Fail(10, 0);
    Settle(adapter(), At(20));
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 0", "10 1.4 0", "10 12.20 3"));
}

TEST_F(HotSpares, OfTheDiskGroupComeBeforeGlobalOnes) {
    AddDisks(5);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    const HX_U16 id = AddVirtualDiskTo(group);
    SetGlobalSpare(3);
    SetGroupSpare(4, group);
    Fail(10, 2);
    EXPECT_EQ(4, block(id, 2)->disk);
}

TEST_F(HotSpares, OfADiskGroupServeNothingElse) {
    AddDisks(6);
    const HX_U16 group = AddGroup(Level::kRaid1, {3, 4});
    AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGroupSpare(5, group);
    Fail(10, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0"));
}

TEST_F(HotSpareOfADiskGroup, ASpareStepsInForAllVirtualDisksAtOnce) {
    const GroupOfTwo made = AddGroupAndSpare();
    Fail(0, 1);
    EXPECT_EQ(0U, block(made.first, 1)->start);
    EXPECT_EQ(kHundredSeconds, block(made.second, 1)->start);
    EXPECT_EQ(3, adapter().homes[1].disk);
    ExpectSound();
    At(500);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("0 2.2 1", "0 1.4 0", "0 1.4 1", "0 2.10 3", "0 1.70 0", "0 1.70 1",
                            "10 1.76 1 20", "20 1.76 0 20", "20 1.76 1 40", "30 1.76 1 60",
                            "40 1.76 0 40", "40 1.76 1 80", "50 1.75 1", "50 1.1 1", "60 1.76 0 60",
                            "80 1.76 0 80", "100 1.75 0", "100 1.1 0"));
    EXPECT_EQ(State::kOptimal, adapter().disk_groups[0].state);
}

TEST_F(HotSpareOfADiskGroup, NoSpareStepsInBeforeEveryVirtualDiskCanBeRebuilt) {
    const GroupOfTwo made = AddGroupAndSpare();
    ASSERT_EQ(0, Initialise(0, made.first, Init::kForeground));
    Fail(10, 1);
    EXPECT_EQ(Spare::kGroup, disk(3).spare);
    At(100);
    EXPECT_EQ(Spare::kNone, disk(3).spare);
    At(500);
    EXPECT_EQ(State::kOptimal, adapter().disk_groups[0].state);
}

TEST_F(HotSpareOfADiskGroup, WithoutVirtualDisksADiskIsReplacedAtOnce) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 2.2 1", "0 2.10 3"));
    EXPECT_EQ(State::kOptimal, adapter().disk_groups[group].state);
    Replace(10, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.1 1", "10 2.9 3"));
    EXPECT_EQ(1, adapter().homes[1].disk);
}

}  // namespace
}  // namespace hxsim
