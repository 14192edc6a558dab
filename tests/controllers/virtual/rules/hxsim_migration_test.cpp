// Migrations: virtual disks and disk groups that move to another level or to other disks.
#include "rules/hxsim_migration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_disk_group_create.h"
#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_home.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using VirtualDiskMigration = ArrayTest;

TEST_F(VirtualDiskMigration, MovesToRaid6WithOneDiskMoreInPlace) {
    // Two disks of data before and after: the blocks stay, and the new disk gets one like them.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ("target0.3 0+512, free 512+999488", BlocksOn(3));
    EXPECT_EQ(0x05, virtual_disk(0).level);
    Finish();
    EXPECT_EQ(0x06, virtual_disk(0).level);
    EXPECT_EQ(4, virtual_disk(0).width);
    EXPECT_EQ(1024u, virtual_disk(0).size);
    EXPECT_EQ("vd0.3 0+512, free 512+999488", BlocksOn(3));
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, 3));
}

TEST_F(VirtualDiskMigration, GivesTheEndsOfItsBlocksBackWhenMoreDisksHoldItsData) {
    // 1536 sectors on two disks of data are 768 each, on three 512.
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ("vd0.1 0+768, free 768+999232", BlocksOn(1));
    EXPECT_EQ("target0.3 0+512, free 512+999488", BlocksOn(3));
    Finish();
    EXPECT_EQ("vd0.1 0+512, free 512+999488", BlocksOn(1));
    EXPECT_EQ("vd0.3 0+512, free 512+999488", BlocksOn(3));
}

TEST_F(VirtualDiskMigration, MovesBesideItselfWhenItNeedsLargerBlocks) {
    // RAID 5 to RAID 6 on the same disks: one disk of data instead of two.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2})));
    EXPECT_EQ("vd0.0 0+512, target0.0 512+1024, free 1536+998464", BlocksOn(0));
    Finish();
    EXPECT_EQ("free 0+512, vd0.0 512+1024, free 1536+998464", BlocksOn(0));
    EXPECT_EQ(1024u, virtual_disk(0).size);
}

TEST_F(VirtualDiskMigration, LeavesDisksThatItHasNoMore) {
    Made(WantedOn(0x01, {0, 1}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x00, {1})));
    Finish();
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1024, vd0.0 1024+1024, free 2048+997952", BlocksOn(1));
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(1));
}

TEST_F(VirtualDiskMigration, KeepsTheDisksInTheirPlacesUnlessTheOrderCounts) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {3, 2, 1, 0})));
    Finish();
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, 3));
    Create_LD_Param param = MovedTo(0, 0x05, {3, 2, 1, 0});
    param.SpecifiedBlkSeq = 1;
    EXPECT_EQ(HX_SUCCESS, Move(param));
    Finish();
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(3, 2, 1, 0));
}

TEST_F(VirtualDiskMigration, GrowsByMigrationAsFarAsWasSaidBefore) {
    // Two of three blocks stay: 512 sectors each, so three disks of data hold 1536.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    Made(WantedOn(0x00, {0}));  // takes what else there is on disk 0
    const Create_LD_Param wider = MovedTo(0, 0x05, {0, 1, 2, 3});
    EXPECT_EQ(1536u, MostAfterMove(wider));
    EXPECT_EQ(Status::kNoSpace, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3}, 1537)));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3}, 1536)));
    Finish();
    EXPECT_EQ(1536u, virtual_disk(0).size);
}

TEST_F(VirtualDiskMigration, CanHaveAllThatIsFreeBesideItByMigration) {
    // 999488 sectors are free beside it: 7808 stripes, 999424 sectors, on three disks of data.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(2998272u, MostAfterMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3}, 2998272)));
    Finish();
    EXPECT_EQ("free 0+512, vd0.0 512+999424, free 999936+64", BlocksOn(0));
}

TEST_F(VirtualDiskMigration, KeepsItsStripesUnlessItIsGivenOthers) {
    Create_LD_Param made = WantedOn(0x05, {0, 1, 2}, 1024);
    made.StripeBlockSize = 32;
    Made(made);
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    Finish();
    EXPECT_EQ(32, virtual_disk(0).stripe_kib);
    Create_LD_Param moved = MovedTo(0, 0x06, {0, 1, 2, 3});
    moved.StripeBlockSize = 16;
    EXPECT_EQ(HX_SUCCESS, Move(moved));
    Finish();
    EXPECT_EQ(16, virtual_disk(0).stripe_kib);
}

TEST_F(VirtualDiskMigration, ReturnsToWhatItWasWhenAMigrationIsAborted) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS,
              Control(adapter(), kNow, Owner::kVirtualDisk, 0, NumberOf(ControlAction::kAbort)));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ(0x05, virtual_disk(0).level);
    EXPECT_THAT(Events(), ElementsAre("1/80 of 0", "1/84 of 0"));
}

TEST_F(VirtualDiskMigration, IsDeletedWithItsMigration) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
}

TEST_F(VirtualDiskMigration, KeepsABlockFreeForTheEndThatAMigrationWillGiveBack) {
    // Four blocks: two virtual disks, what is free, and the end to come.
    adapter().info.MaxBlockPerPD = 4;
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kTooManyBlocks, Refusal(WantedOn(0x00, {0}, 128)));
    Finish();
    EXPECT_EQ("vd0.0 0+512, free 512+256, vd1.0 768+128, free 896+999104", BlocksOn(0));
}

TEST_F(VirtualDiskMigration, DoesNotMoveWhereTooManyBlocksAre) {
    adapter().info.MaxBlockPerPD = 3;
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(MovedTo(0, 0x06, {0, 1, 2})));
}

TEST_F(VirtualDiskMigration, LosesNothingWhenItsTargetIsLost) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    const Activity migration = *ActivityOf(adapter(), Owner::kVirtualDisk, 0);
    ResetDisk(adapter(), 3);
    adapter().activities.clear();
    CompleteMigration(adapter(), migration);
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, kNoId));
    Settle(adapter(), kNow);
    EXPECT_EQ(State::kPartiallyOptimal, virtual_disk(0).state);
}

TEST_F(VirtualDiskMigration, DoesNotMoveToWhatItIs) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(Status::kNoChange, RefusedMove(MovedTo(0, 0x05, {2, 1, 0})));
    EXPECT_EQ(Status::kNoChange, RefusedMove(MovedTo(0, 0x05, {0, 1, 2}, 1024)));
}

TEST_F(VirtualDiskMigration, DoesNotShrinkByMigration) {
    Made(WantedOn(0x00, {0, 1}));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(MovedTo(0, 0x01, {0, 1})));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(MovedTo(0, 0x00, {0, 1, 2}, 1024)));
    Create_LD_Param sized = MovedTo(0, 0x01, {0, 1});
    EXPECT_EQ(Status::kTooSmall, SizeMigration(adapter(), sized));
}

TEST_F(VirtualDiskMigration, ThatIsNotThereDoesNotMove) {
    EXPECT_EQ(Status::kNoVirtualDisk, RefusedMove(MovedTo(0, 0x05, {0, 1, 2})));
}

TEST_F(VirtualDiskMigration, DoesNotMoveWhileSomethingGoesOn) {
    Create_LD_Param param = WantedOn(0x05, {0, 1, 2}, 1024);
    param.InitializationOption = NumberOf(Init::kBackground);
    Made(param);
    EXPECT_EQ(Status::kBusy, RefusedMove(MovedTo(0, 0x06, {0, 1, 2, 3})));
}

TEST_F(VirtualDiskMigration, DoesNotMoveWhileItIsDegraded) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    disk(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kWrongState, RefusedMove(MovedTo(0, 0x06, {0, 1, 2, 3})));
}

TEST_F(VirtualDiskMigration, DoesNotMoveToDisksThatItMayNotHave) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    disk(3).spare = Spare::kGlobal;
    disk(4).has_system = true;
    disk(5).offline = true;
    EXPECT_EQ(Status::kDiskTaken, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kHoldsSystem, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 4})));
    EXPECT_EQ(Status::kDiskNotReady, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 5})));
    EXPECT_EQ(Status::kNoDisk, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 77})));
    EXPECT_EQ(Status::kDiskRepeated, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 2})));
    EXPECT_EQ(Status::kBadDiskCount, RefusedMove(MovedTo(0, 0x05, {0, 1})));
    EXPECT_EQ(Status::kBadLevel, RefusedMove(MovedTo(0, 0x07, {0, 1, 2})));
}

TEST_F(VirtualDiskMigration, MovesAtNoOtherRoundingThanThereIs) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    Create_LD_Param param = MovedTo(0, 0x06, {0, 1, 2, 3});
    param.RoundingScheme = 3;
    EXPECT_EQ(Status::kBadRounding, RefusedMove(param));
}

// ---- Disk groups ----

class DiskGroupMigration : public SlotTest {
protected:
    void SetUp() override {
        SlotTest::SetUp();
        Made(InSlot(0, 0x05, 0, 1024));
        Made(InSlot(0, 0x05, 1, 1536));
        adapter().events.clear();
    }
};

TEST_F(DiskGroupMigration, GrowsTheGroupByADiskInPlace) {
    // 8 and 12 stripes on three disks of data instead of two: 3 and 4 on each.
    EXPECT_EQ(2999808u, SizeOnly(GroupOn(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(2999808u, Made(GroupOn(0, 0x05, {0, 1, 2, 3})).Size.value);
    EXPECT_EQ("vd0.0 0+512, vd1.0 512+768, free 1280+998720", BlocksOn(0));
    EXPECT_EQ("target0.3 0+384, free 384+128, target1.3 512+512, free 1024+998976", BlocksOn(3));
    EXPECT_EQ(ActivityKind::kMigration, DescribedGroup().BgaType);
    EXPECT_EQ(ActivityState::kRunning, DescribedGroup().BgaState);
    Finish();
    EXPECT_EQ("vd0.0 0+384, free 384+128, vd1.0 512+512, free 1024+998976", BlocksOn(0));
    EXPECT_EQ("vd0.3 0+384, free 384+128, vd1.3 512+512, free 1024+998976", BlocksOn(3));
    EXPECT_EQ(4, disk_group(0).width);
    EXPECT_EQ(4, virtual_disk(1).width);
    EXPECT_EQ(1536u, virtual_disk(1).size);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(0, DescribedGroup().BgaType);
}

TEST_F(DiskGroupMigration, TakesTheGroupToAnotherLevelBesideItself) {
    // 8 and 12 stripes on one disk of data: the blocks find place behind those that are there.
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x06, {0, 1, 2})));
    EXPECT_EQ(
        "vd0.0 0+512, vd1.0 512+768, target0.0 1280+1024, target1.0 2304+1536, free 3840+996160",
        BlocksOn(0));
    Finish();
    EXPECT_EQ("free 0+1280, vd0.2 1280+1024, vd1.2 2304+1536, free 3840+996160", BlocksOn(2));
    EXPECT_EQ(0x06, disk_group(0).level);
    EXPECT_EQ(0x06, virtual_disk(0).level);
}

TEST_F(DiskGroupMigration, ReturnsToWhatItWasWhenItIsAborted) {
    const std::string before = BlocksOn(0);
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS,
              Control(adapter(), kNow, Owner::kDiskGroup, 0, NumberOf(ControlAction::kAbort)));
    EXPECT_EQ(before, BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2));
    EXPECT_EQ(3, disk_group(0).width);
}

TEST_F(DiskGroupMigration, KeepsOthersOffItsNewDisks) {
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Create_LD_Param alone = WantedOn(0x00, {3}, 128);
    EXPECT_EQ(Status::kDiskTaken, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {3, 4})));
}

TEST_F(DiskGroupMigration, LeavesAloneWhatLiesOnTheGroup) {
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    const std::string before = Everything();
    EXPECT_EQ(Status::kBusy, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(before, Everything());
    EXPECT_EQ(Status::kBusy, Refusal(InSlot(0, 0x05, 2, 1024)));
    EXPECT_EQ(Status::kBusy, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3, 4})));
}

TEST_F(DiskGroupMigration, OfAnEmptyGroupIsDoneAtOnce) {
    Made(GroupOn(HX_NEW_ID, 0x01, {4, 5}));
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(1, 0x05, {4, 5, 6})));
    EXPECT_EQ(0x05, disk_group(1).level);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 1), ElementsAre(4, 5, 6));
    EXPECT_THAT(adapter().activities, IsEmpty());
}

TEST_F(DiskGroupMigration, IsRefusedWhereItCannotBe) {
    disk(4).spare = Spare::kGroup;
    disk(4).spare_group = 0;
    AddDisk(20, 700);  // too small even for the first virtual disk
    EXPECT_EQ(Status::kNoDiskGroup, RefusedMove(GroupOn(9, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kNoChange, RefusedMove(GroupOn(0, 0x05, {2, 1, 0})));
    EXPECT_EQ(Status::kBadLevel, RefusedMove(GroupOn(0, 0x07, {0, 1, 2})));
    EXPECT_EQ(Status::kBadDiskCount, RefusedMove(GroupOn(0, 0x05, {0, 1})));
    EXPECT_EQ(Status::kDiskTaken, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 4})));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(GroupOn(0, 0x05, {0, 1, 20})));
    CreateOrModify_DG_Param sectors = GroupOn(0, 0x05, {0, 1, 2, 3});
    sectors.BlockSize = 4096;
    EXPECT_EQ(Status::kBadSectorSize, RefusedMove(sectors));
}

TEST_F(DiskGroupMigration, IsRefusedWhereSomethingIsLostOrGoesOn) {
    Activity check;
    check.kind = ActivityKind::kCheck;
    check.owner = 0;
    check.total = 512;
    const HX_U16 id = Start(adapter(), kNow, check).id;
    EXPECT_EQ(Status::kBusy, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Abort(adapter(), kNow, id);
    disk(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kWrongState, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
}

TEST_F(DiskGroupMigration, IsRefusedWhereBlocksFindNoPlace) {
    // Its blocks of 498176 sectors become blocks of 996224, and about 500000 are free.
    Made(InSlot(0, 0x05, 2, 996224));
    EXPECT_EQ(Status::kNoSpace, RefusedMove(GroupOn(0, 0x06, {0, 1, 2})));
}

TEST_F(DiskGroupMigration, IsRefusedWhereTooManyBlocksAre) {
    adapter().info.MaxBlockPerPD = 4;  // two virtual disks, two ends to come, and what is free
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
    adapter().info.MaxBlockPerPD = 5;
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Finish();
}

// ---- What happens in which second ----

// Virtual disk 0, a RAID 5 that becomes a RAID 6, with a spare.
class MigrationStory : public StoryTest {
protected:
    void StartOnTheWayToRaid6() {
        AddDisks(5, 3 * kHundredSeconds);
        AddVirtualDisk(Level::kRaid5, {0, 1, 2});
        virtual_disk(0).size = 2 * kHundredSeconds;
        SetGlobalSpare(4);
        EXPECT_EQ(0, MigrateToRaid6(0, 0, {0, 1, 2, 3}));
    }
};

TEST_F(MigrationStory, WaitsWhileItsVirtualDiskIsRebuiltAndThenGoesOn) {
    StartOnTheWayToRaid6();
    PullOut(10, 1);
    EXPECT_EQ(ActivityKind::kRebuild, activity(0)->kind);
    EXPECT_EQ(ActivityState::kAutoPaused, MigrationOf(adapter(), Owner::kVirtualDisk, 0)->state);
    ExpectSound();
    At(500);
    EXPECT_THAT(
        TakeEvents(),
        ElementsAre("0 1.80 0", "10 2.0 1", "10 1.4 0", "10 12.17 0", "10 1.88 0", "10 2.10 4",
                    "10 1.70 0", "30 1.76 0 20", "50 1.76 0 40", "70 1.76 0 60", "90 1.76 0 80",
                    "110 1.75 0", "110 1.1 0", "110 1.89 0", "120 1.86 0 20", "140 1.86 0 40",
                    "160 1.86 0 60", "180 1.86 0 80", "200 1.85 0"));
    EXPECT_EQ(6, virtual_disk(0).level);
    EXPECT_EQ(State::kOptimal, virtual_disk(0).state);
}

TEST_F(MigrationStory, LeavesAPlaceThatASpareHasTakenWhereItBelongs) {
    StartOnTheWayToRaid6();
    Fail(10, 1);
    At(500);
    EXPECT_EQ(4, block(0, 1)->disk);
    TakeEvents();
    Replace(600, 1);
    EXPECT_THAT(TakeEvents(), ElementsAre("600 2.1 1", "600 1.90 0"));
    At(900);
    EXPECT_EQ(1, block(0, 1)->disk);
    EXPECT_EQ(Spare::kGlobal, disk(4).spare);
}

}  // namespace
}  // namespace hxsim
