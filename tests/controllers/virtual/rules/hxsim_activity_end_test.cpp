// What activities have done when they end.
#include "rules/hxsim_activity_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "calls/hxsim_activity_control.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

class ConsistencyCheck : public StoryTest {
protected:
    // The events with which a check of virtual disk 0 ends that meets so many errors.
    std::vector<std::string> EndOf(CheckType type, HX_U32 errors) {
        const HX_U16 id = AddRaid5();
        virtual_disk(id).errors = errors;
        EXPECT_EQ(0, CheckConsistency(0, id, type));
        At(99);
        TakeEvents();
        At(100);
        return TakeEvents();
    }
};
using MediaPatrol = StoryTest;
using DataScrub = StoryTest;

TEST_F(ConsistencyCheck, FindsWhatDisagrees) {
    EXPECT_THAT(EndOf(CheckType::kOnly, 3), ElementsAre("100 1.8 0 3", "100 1.25 0"));
    EXPECT_EQ(3u, virtual_disk(0).errors);
}

TEST_F(ConsistencyCheck, ThatFixesLeavesNothingThatDisagrees) {
    EXPECT_THAT(EndOf(CheckType::kAndFix, 3), ElementsAre("100 1.7 0 3", "100 1.35 0"));
    EXPECT_EQ(0u, virtual_disk(0).errors);
}

TEST_F(ConsistencyCheck, SaysNothingWhenAllAgrees) {
    EXPECT_THAT(EndOf(CheckType::kOnly, 0), ElementsAre("100 1.25 0"));
}

TEST_F(ConsistencyCheck, IsRefusedWithAReason) {
    AddDisks(4);
    const HX_U16 id = AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    const HX_U16 plain = AddVirtualDisk(Level::kRaid0, {3});
    EXPECT_EQ(Status::kNoVirtualDisk, CheckConsistency(0, 7, CheckType::kOnly));
    EXPECT_EQ(Status::kBadAction, CheckConsistency(0, id, static_cast<CheckType>(2)));
    EXPECT_EQ(Status::kNotRedundant, CheckConsistency(0, plain, CheckType::kOnly));
    EXPECT_EQ(0, CheckConsistency(0, id, CheckType::kOnly));
    EXPECT_EQ(Status::kBusy, CheckConsistency(1, id, CheckType::kOnly));
    virtual_disk(id).initialised = false;
    EXPECT_EQ(Status::kWrongState, CheckConsistency(200, id, CheckType::kOnly));
}

TEST_F(ConsistencyCheck, RemapsTheDamageThatItMeets) {
    const HX_U16 id = AddRaid5();
    adapter().remaps.push_back({1, kHundredSeconds - 1, 1, kNotRemapped});
    adapter().remaps.push_back({1, kHundredSeconds, 1, kNotRemapped});
    EXPECT_EQ(0, CheckConsistency(0, id, CheckType::kOnly));
    At(1000);
    EXPECT_EQ(RemapReason::kReadError, adapter().remaps[0].reason);
    EXPECT_EQ(kNotRemapped, adapter().remaps[1].reason);  // behind its block
}

TEST_F(MediaPatrol, FindsWhatIsDamagedAndRemapsIt) {
    AddDisks(1);
    adapter().remaps.push_back({0, 0x200000005, 2, kNotRemapped});
    adapter().remaps.push_back({0, 0x200000009, 1, RemapReason::kWriteError});
    EXPECT_EQ(0, Patrol(0, 0));
    At(199);
    TakeEvents();
    At(201);
    const Event found = adapter().events[1].event;
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.15 0", "200 2.37 0 2", "200 2.22 0"));
    EXPECT_THAT(found.Params, ElementsAre(2u, 5u, 2u, 1u));
    EXPECT_EQ(RemapReason::kReadError, adapter().remaps[0].reason);
    EXPECT_EQ(RemapReason::kWriteError, adapter().remaps[1].reason);
    adapter().remaps.clear();  // beyond the disk, so that both halves of the numbers count
}

TEST_F(MediaPatrol, LeavesDamagedWhatTheDiskHasNoRoomFor) {
    AddDisks(1);
    for (Sectors lba = 0; lba < 66; ++lba) {
        adapter().remaps.push_back({0, lba, 1, kNotRemapped});
    }
    EXPECT_EQ(0, Patrol(0, 0));
    At(1000);
    EXPECT_EQ(RemapReason::kReadError, adapter().remaps[63].reason);
    EXPECT_EQ(kNotRemapped, adapter().remaps[64].reason);
    const std::vector<std::string> events = TakeEvents();
    EXPECT_EQ(1, std::ranges::count(events, "200 2.13 0"));  // 80 percent full
    EXPECT_EQ(2, std::ranges::count(events, "200 2.14 0"));  // full, and no room for one more
}

TEST_F(MediaPatrol, MakesWayForARebuildAndGoesOnAfterIt) {
    AddRaid5AndSpare();
    EXPECT_EQ(0, Patrol(0, 0));
    EXPECT_EQ(0, Patrol(0, 3));
    Fail(10, 1);
    EXPECT_EQ(ActivityState::kAutoPaused, ActivityOf(adapter(), Owner::kDisk, 0)->state);
    EXPECT_EQ(ActivityState::kAutoPaused, ActivityOf(adapter(), Owner::kDisk, 3)->state);
    At(109);
    TakeEvents();
    At(111);
    EXPECT_THAT(TakeEvents(), ElementsAre("110 1.75 0", "110 1.1 0", "110 2.26 0", "110 2.26 3"));
}

TEST_F(MediaPatrol, FailsWithItsDisk) {
    AddDisks(1);
    EXPECT_EQ(0, Patrol(0, 0));
    PullOut(10, 0);
    EXPECT_THAT(TakeEvents(), ElementsAre("0 2.17 0", "10 2.0 0", "10 2.24 0"));
}

TEST_F(MediaPatrol, IsRefusedWithAReason) {
    AddDisks(2);
    EXPECT_EQ(Status::kNoDisk, Patrol(0, 9));
    disk(1).present = false;
    EXPECT_EQ(Status::kNoDisk, Patrol(0, 1));
    disk(1).present = true;
    disk(1).failed = true;
    EXPECT_EQ(Status::kDiskNotReady, Patrol(0, 1));
    EXPECT_EQ(0, CanPatrol(adapter(), 0));
    EXPECT_EQ(0, Patrol(0, 0));
    EXPECT_EQ(Status::kBusy, CanPatrol(adapter(), 0));
    adapter().info.Features = 0;
    disk(1).failed = false;
    EXPECT_EQ(Status::kNotSupported, Patrol(0, 1));
}

TEST_F(DataScrub, TellsOfDamageAndLeavesItAsItIs) {
    AddDisks(1);
    adapter().remaps.push_back({0, 0x200000005, 1, kNotRemapped});
    adapter().remaps.push_back({0, 0x200000007, 1, kNotRemapped});
    EXPECT_EQ(0, Scrub(0, 0));
    EXPECT_EQ(Status::kBusy, Scrub(0, 0));
    At(1000);
    ASSERT_EQ(1u, adapter().events.size());
    EXPECT_THAT(adapter().events[0].event.Params, ElementsAre(2u, 2u, 5u, 0u));
    EXPECT_THAT(TakeEvents(), ElementsAre("200 2.36 0 2"));
    EXPECT_EQ(kNotRemapped, adapter().remaps[0].reason);
    adapter().remaps.clear();  // beyond the disk, so that both halves of the numbers count
}

}  // namespace
}  // namespace hxsim
