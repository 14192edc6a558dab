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

class Copyback : public StoryTest {
protected:
    // Disk 1 fails and is replaced at second 200, when the spare has taken its place.
    void StartCopyback() {
        Fail(0, 1);
        Replace(200, 1);
        TakeEvents();
    }
};

TEST_F(Copyback, ReturnsToTheReplacedDiskAndTheSpareIsOneAgain) {
    const HX_U16 id = AddRaid5AndSpare();
    RebuildOnSpare();
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
    const HX_U16 id = AddRaid5AndSpare();
    adapter().config.CopyBack = 0;
    RebuildOnSpare();
    Replace(200, 1);
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1"));
    EXPECT_EQ(3, block(id, 1)->disk);
    EXPECT_EQ(Spare::kNone, disk(3).spare_before);
    EXPECT_TRUE(IsFree(adapter(), disk(1)));
}

TEST_F(Copyback, ThatIsAbortedIsNotTriedAgain) {
    const HX_U16 id = AddRaid5AndSpare();
    StartCopyback();
    EXPECT_EQ(0, Steer(210, id, ControlAction::kAbort));
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 1.94 0"));
    EXPECT_EQ(3, block(id, 1)->disk);
    EXPECT_TRUE(IsFree(adapter(), disk(1)));
}

TEST_F(Copyback, ThatLosesItsSourceBecomesARebuild) {
    const HX_U16 id = AddRaid5AndSpare();
    StartCopyback();
    Fail(210, 3);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 2.2 3", "210 1.4 0", "210 1.97 0", "210 1.70 0"));
    EXPECT_EQ(1, block(id, 1)->disk);
}

TEST_F(Copyback, ThatLosesItsDestinationFailsAndNothingIsLost) {
    const HX_U16 id = AddRaid5AndSpare();
    StartCopyback();
    PullOut(210, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("210 2.0 1", "210 1.97 0"));
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
}

TEST_F(Copyback, DoesNotComeToADiskThatIsTooSmallWhichIsTold) {
    const HX_U16 id = AddRaid5AndSpare();
    RebuildOnSpare();
    Replace(200, 1, kHundredSeconds - 1);
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1", "200 12.21 1"));
    EXPECT_EQ(3, block(id, 1)->disk);
    ExpectSound();
    Replace(600, 1, kHundredSeconds);  // just large enough
    EXPECT_THAT(TakeEvents(), ElementsAre("600 2.0 1", "600 2.1 1", "600 1.90 0"));
}

TEST_F(Copyback, ToADiskThatIsTooSmallIsToldOfAtTheEndOfTheRebuild) {
    AddRaid5AndSpare();
    Fail(0, 1);
    Replace(90, 1, kHundredSeconds - 1);
    TakeEvents();
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
}

TEST_F(Copyback, OfADiskGroupToADiskThatIsTooSmallIsToldOfOnce) {
    AddGroupAndSpare();
    Fail(0, 1);
    Replace(40, 1, 2 * kHundredSeconds - 1);
    At(80);
    TakeEvents();
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("100 12.21 1", "100 1.75 0", "100 1.1 0"));
    EXPECT_EQ(3, adapter().homes[1].disk);
}

TEST_F(Copyback, ThatIsOffTellsOfNoSmallDisk) {
    AddRaid5AndSpare();
    RebuildOnSpare();
    adapter().config.CopyBack = 0;
    Replace(200, 1, kHundredSeconds - 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.1 1"));
}

TEST_F(Copyback, MovesAllVirtualDisksOfADiskGroupTogether) {
    const GroupOfTwo made = AddGroupAndSpare();
    RebuildOnSpare();
    Replace(200, 1);
    ExpectSound();
    At(349);
    EXPECT_EQ(3, block(made.first, 1)->disk);
    At(350);
    EXPECT_EQ(1, block(made.first, 1)->disk);
    EXPECT_EQ(1, block(made.second, 1)->disk);
    EXPECT_EQ(1, adapter().homes[1].disk);
    EXPECT_EQ(Spare::kGroup, disk(3).spare);
    EXPECT_EQ(made.group, disk(3).spare_group);
}

}  // namespace
}  // namespace hxsim
