// Rebuilds, also of disks that come back and after a second failure: what happens in which second.
#include "rules/hxsim_rebuild.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

using RebuildAfterADoubleFailure = StoryTest;
using RebuildOfADiskPutBack = StoryTest;

TEST_F(RebuildAfterADoubleFailure, OnRaid5TakesItOffline) {
    const HX_U16 id = AddRaid5();
    Fail(10, 1);
    Fail(20, 2);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 1", "10 1.4 0", "20 2.2 2", "20 1.0 0"));
    EXPECT_EQ(State::kOffline, virtual_disk(id).state);
}

TEST_F(RebuildAfterADoubleFailure, OnRaid5EndsTheRebuildWithAnError) {
    AddRaid5AndSpare();
    Fail(10, 1);
    TakeEvents();
    Fail(20, 2);
    EXPECT_THAT(TakeEvents(), ElementsAre("20 2.2 2", "20 1.0 0", "20 1.77 0"));
    EXPECT_THAT(adapter().activities, IsEmpty());
}

TEST_F(RebuildAfterADoubleFailure, OnRaid6LeavesItDegradedAndTwoSparesMakeItWhole) {
    AddDisks(6);
    const HX_U16 id = AddVirtualDisk(Level::kRaid6, {0, 1, 2, 3});
    Fail(10, 0);
    Fail(20, 3);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 0", "10 1.5 0", "20 2.2 3", "20 1.4 0"));
    EXPECT_EQ(State::kDegraded, virtual_disk(id).state);
    SetGlobalSpare(4);
    SetGlobalSpare(5);
    Settle(adapter(), At(30));
    At(500);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("30 2.10 4", "30 2.10 5", "30 1.70 0", "50 1.76 0 20", "70 1.76 0 40",
                            "90 1.76 0 60", "110 1.76 0 80", "130 1.75 0", "130 1.1 0"));
}

TEST_F(RebuildAfterADoubleFailure, OnRaid6WhileOneIsRebuiltIsRebuiltNext) {
    AddDisks(6);
    const HX_U16 id = AddVirtualDisk(Level::kRaid6, {0, 1, 2, 3});
    SetGlobalSpare(4);
    SetGlobalSpare(5);
    Fail(0, 0);
    Fail(50, 3);
    ExpectSound();
    At(99);
    EXPECT_EQ(State::kDegraded, virtual_disk(id).state);
    At(100);
    EXPECT_EQ(State::kPartiallyOptimal, virtual_disk(id).state);
    ExpectSound();
    At(200);
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
    EXPECT_EQ(4, block(id, 0)->disk);
    EXPECT_EQ(5, block(id, 3)->disk);
}

TEST_F(RebuildAfterADoubleFailure, ThatHasEndedTheRebuildLetsItBeginAnewWhenTheOtherDiskIsBack) {
    AddRaid5AndSpare();
    Fail(10, 1);
    PullOut(20, 0);
    TakeEvents();
    PutBack(30, 0);
    EXPECT_THAT(TakeEvents(), ElementsAre("30 2.1 0", "30 1.4 0", "30 1.70 0"));
    At(130);
    EXPECT_EQ(State::kOptimal, virtual_disk(0).state);
}

TEST_F(RebuildAfterADoubleFailure, ThatIsHalfMendedIsNotToldOfAsANewLoss) {
    AddDisks(5);
    AddVirtualDisk(Level::kRaid6, {0, 1, 2, 3});
    SetGlobalSpare(4);
    PullOut(10, 0);
    PullOut(20, 1);
    EXPECT_THAT(TakeEvents(), IsSupersetOf({"10 12.17 0", "20 12.17 0"}));
    At(500);
    EXPECT_THAT(TakeEvents(), ElementsAre("30 1.76 0 20", "50 1.76 0 40", "70 1.76 0 60",
                                          "90 1.76 0 80", "110 1.75 0", "110 1.5 0 1"));
}

TEST_F(RebuildAfterADoubleFailure, OfBothHalvesOfOneMirrorTakesRaid10Offline) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid10, {0, 1, 2, 3});
    Fail(10, 0);
    Fail(20, 3);
    Fail(30, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("10 2.2 0", "10 1.4 0",  // one mirror has one half
                                          "20 2.2 3",              // both have one
                                          "30 2.2 1", "30 1.0 0"));
}

TEST_F(RebuildOfADiskPutBack, IsRebuiltWhereItWasSinceWritesHavePassedItBy) {
    const HX_U16 id = AddRaid5();
    PullOut(10, 1);
    PutBack(20, 1);
    At(500);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("10 2.0 1", "10 1.4 0", "10 12.17 0",  // misses disks
                            "20 2.1 1", "20 1.70 0", "40 1.76 0 20", "60 1.76 0 40", "80 1.76 0 60",
                            "100 1.76 0 80", "120 1.75 0", "120 1.1 0"));
    EXPECT_EQ(1, block(id, 1)->disk);
}

TEST_F(RebuildOfADiskPutBack, OfTwoBringsRaid5BackAsFarAsTheLaterOneGoes) {
    const HX_U16 id = AddRaid5();
    PullOut(10, 1);
    PullOut(20, 2);
    PutBack(30, 1);
    EXPECT_EQ(State::kOffline, virtual_disk(id).state);  // what it has is out of date
    PutBack(40, 2);
    EXPECT_EQ(State::kDegraded, virtual_disk(id).state);
    At(140);
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
}

}  // namespace
}  // namespace hxsim
