// Copyback to the disk where a position belongs: what happens in which second.
#include "rules/hxsim_copyback.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calls/hxsim_activity_control.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_disk_role.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

using Copyback = StoryTest;

TEST_F(Copyback, ReturnsToTheReplacedDiskAndTheSpareIsOneAgain) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    At(150);
    TakeEvents();
    Replace(200, 1);
    ExpectSound();
    At(500);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("200 2.1 1",                       // a new disk
                            "200 1.90 0",                      // copyback starts
                            "220 1.96 0 20", "240 1.96 0 40",  //
                            "260 1.96 0 60", "280 1.96 0 80",  //
                            "300 1.95 0",                      // is complete
                            "300 2.9 3"));                     // the spare is one again
    EXPECT_EQ(1, block(id, 1)->disk);
    EXPECT_EQ(Spare::kGlobal, disk(3).spare);
}

TEST_F(Copyback, DoesNotComeWhenItIsOff) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    adapter().config.CopyBack = 0;
    Fail(0, 1);
    At(150);
    TakeEvents();
    Replace(200, 1);
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1"));
    EXPECT_EQ(3, block(id, 1)->disk);
    EXPECT_EQ(Spare::kNone, disk(3).spare_before);
    EXPECT_TRUE(IsFree(adapter(), disk(1)));
}

TEST_F(Copyback, ThatIsAbortedIsNotTriedAgain) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    Replace(200, 1);
    TakeEvents();
    EXPECT_EQ(0, Call(210, [&](Adapter& adapter, Time now) {
                  return Control(adapter, now, Owner::kVirtualDisk, id,
                                 NumberOf(ControlAction::kAbort));
              }));
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 1.94 0"));
    EXPECT_EQ(3, block(id, 1)->disk);
    EXPECT_TRUE(IsFree(adapter(), disk(1)));
}

TEST_F(Copyback, ThatLosesItsSourceBecomesARebuild) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    Replace(200, 1);
    TakeEvents();
    Fail(210, 3);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 2.2 3", "210 1.4 0", "210 1.97 0", "210 1.70 0"));
    EXPECT_EQ(1, block(id, 1)->disk);
}

TEST_F(Copyback, ThatLosesItsDestinationFailsAndNothingIsLost) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    Replace(200, 1);
    TakeEvents();
    PullOut(210, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 2.0 1", "210 1.97 0"));
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
}

TEST_F(Copyback, DoesNotComeToADiskThatIsTooSmallWhichIsTold) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    At(150);
    TakeEvents();
    Replace(200, 1, kHundredSeconds - 1);
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1", "200 12.21 1"));
    EXPECT_EQ(3, block(id, 1)->disk);
    ExpectSound();
    Replace(600, 1, kHundredSeconds);  // just large enough
    EXPECT_THAT(TakeEvents(), ElementsAre("600 2.0 1", "600 2.1 1", "600 1.90 0"));
}

TEST_F(Copyback, ToADiskThatIsTooSmallIsToldOfAtTheEndOfTheRebuild) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    Replace(90, 1, kHundredSeconds - 1);
    TakeEvents();
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
}

TEST_F(Copyback, OfADiskGroupToADiskThatIsTooSmallIsToldOfOnce) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    AddVirtualDiskTo(group);
    AddVirtualDiskTo(group, kHundredSeconds / 2);
    SetGroupSpare(3, group);
    Fail(0, 1);
    Replace(40, 1, 2 * kHundredSeconds - 1);
    At(80);
    TakeEvents();
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
    EXPECT_EQ(3, adapter().homes[1].disk);
}

TEST_F(Copyback, ThatIsOffTellsOfNoSmallDisk) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    SetGlobalSpare(3);
    Fail(0, 1);
    At(150);
    adapter().config.CopyBack = 0;
    TakeEvents();
    Replace(200, 1, kHundredSeconds - 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1"));
}

TEST_F(Copyback, MovesAllVirtualDisksOfADiskGroupTogether) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    const HX_U16 first = AddVirtualDiskTo(group);
    const HX_U16 second = AddVirtualDiskTo(group, kHundredSeconds / 2);
    SetGroupSpare(3, group);
    Fail(0, 1);
    At(150);
    TakeEvents();
    Replace(200, 1);
    ExpectSound();
    At(349);
    EXPECT_EQ(3, block(first, 1)->disk);
    At(350);
    EXPECT_EQ(1, block(first, 1)->disk);
    EXPECT_EQ(1, block(second, 1)->disk);
    EXPECT_EQ(1, adapter().homes[1].disk);
    EXPECT_EQ(Spare::kGroup, disk(3).spare);
    EXPECT_EQ(group, disk(3).spare_group);
}

}  // namespace
}  // namespace hxsim
