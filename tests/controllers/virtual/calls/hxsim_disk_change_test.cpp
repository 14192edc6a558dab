// What callers do to disks: settings, states, wiping, spares.
#include "calls/hxsim_disk_change.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "incidents/hxsim_incident_disk.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DiskChange : public MixedMachineTest {
protected:
    HX_U8 StatusOf(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).status; }
    HX_U16 Serves(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).serves; }
    Status Set(HX_U16 id, HX_U8 action) { return SetDiskState(adapter(), kNow, id, action); }
    Status Set(HX_U16 id, DiskAction action) { return Set(id, NumberOf(action)); }
    Status Wipe(HX_U16 id, bool force) { return WipeDisk(adapter(), kNow, id, force); }
    Status Configure(HX_U16 id, HX_BOOLEAN cache, HX_BOOLEAN smart, HX_BOOLEAN online) {
        HD_Config config{};
        config.WriteCacheOn = cache;
        config.SMARTOn = smart;
        config.Online = online;
        return SetDisk(adapter(), kNow, id, config);
    }
};

// ---- Settings ----

TEST_F(DiskChange, AnnouncesAWriteCacheThatIsSwitched) {
    EXPECT_EQ(0, Configure(6, 1, 1, 1));
    EXPECT_TRUE(disk(6).write_cache);
    EXPECT_EQ(0, Configure(6, 1, 1, 1));
    EXPECT_THAT(Events(), ElementsAre("2/16 of 6"));
}

TEST_F(DiskChange, KeepsWhetherSmartIsOn) {
    EXPECT_EQ(0, Configure(6, 0, 0, 1));
    EXPECT_FALSE(disk(6).smart_on);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(DiskChange, IsSetOfflineAndOnlineByItsSettings) {
    EXPECT_EQ(0, Configure(6, 0, 1, 0));
    EXPECT_TRUE(disk(6).offline);
    EXPECT_EQ(0, Configure(6, 0, 1, 1));
    EXPECT_FALSE(disk(6).offline);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/1 of 6"));
}

TEST_F(DiskChange, IsNotSetWhileItCannotAnswer) {
    disk(0).present = false;
    disk(1).failed = true;
    disk(6).foreign = true;
    const std::string before = Everything();
    ExpectRefused(Status::kNoDisk, Configure(99, 0, 1, 1), before);
    ExpectRefused(Status::kDiskNotReady, Configure(0, 0, 1, 1), before);
    ExpectRefused(Status::kDiskNotReady, Configure(1, 0, 1, 1), before);
    ExpectRefused(Status::kDiskNotReady, Configure(6, 0, 1, 1), before);
}

// ---- States ----

TEST_F(DiskChange, GoesOfflineAndComesBack) {
    EXPECT_EQ(0, Set(0, DiskAction::kOffline));
    EXPECT_TRUE(disk(0).offline);
    EXPECT_EQ(0, Set(0, DiskAction::kOnline));
    EXPECT_FALSE(disk(0).offline);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 0", "2/1 of 0"));
}

TEST_F(DiskChange, DegradesItsVirtualDiskWhenItGoesOffline) {
    EXPECT_EQ(0, Set(0, DiskAction::kOffline));
    Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(0).state);
}

TEST_F(DiskChange, IsNotSetToWhatItIs) {
    disk(5).offline = true;
    const std::string before = Everything();
    ExpectRefused(Status::kNoChange, Set(0, DiskAction::kOnline), before);
    ExpectRefused(Status::kNoChange, Set(5, DiskAction::kOffline), before);
    ExpectRefused(Status::kNoChange, Set(6, DiskAction::kFree), before);
}

TEST_F(DiskChange, IsNotSwitchedWhileItCannotAnswer) {
    disk(0).present = false;
    disk(1).failed = true;
    disk(6).foreign = true;
    const std::string before = Everything();
    for (const DiskAction action : {DiskAction::kOnline, DiskAction::kOffline}) {
        ExpectRefused(Status::kDiskNotReady, Set(0, action), before);
        ExpectRefused(Status::kDiskNotReady, Set(1, action), before);
        ExpectRefused(Status::kDiskNotReady, Set(6, action), before);
        ExpectRefused(Status::kNoDisk, Set(99, action), before);
    }
    ExpectRefused(Status::kDiskNotReady, Set(0, DiskAction::kFree), before);
}

TEST_F(DiskChange, KnowsNoOtherStates) {
    const std::string before = Everything();
    ExpectRefused(Status::kBadAction, Set(6, HX_U8{0}), before);
    ExpectRefused(Status::kBadAction, Set(6, HX_U8{4}), before);
    ExpectRefused(Status::kBadAction, Set(6, HX_U8{255}), before);
}

TEST_F(DiskChange, FailedDiskIsSetFreeWithNothingOnIt) {
    disk(0).failed = true;
    EXPECT_EQ(0, Set(0, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ(65535, adapter().homes[0].disk);
    EXPECT_EQ(0, adapter().homes[0].home);
    EXPECT_THAT(Events(), ElementsAre("2/54 of 0"));
}

TEST_F(DiskChange, ForeignDiskIsSetFreeAndItsVirtualDiskGoes) {
    BringForeign();
    EXPECT_EQ(0, Set(6, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(6));
    EXPECT_EQ("free 0+1000000", BlocksOn(6));
    EXPECT_EQ(2u, adapter().virtual_disks.size());
    EXPECT_EQ(5u, adapter().homes.size());
}

TEST_F(DiskChange, OfflineDiskWithoutUseIsSetFree) {
    disk(6).offline = true;
    EXPECT_EQ(0, Set(6, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(6));
}

TEST_F(DiskChange, DiskThatServesIsNotSetFree) {
    const std::string before = Everything();
    ExpectRefused(Status::kDiskInUse, Set(0, DiskAction::kFree), before);
    ExpectRefused(Status::kDiskInUse, Set(3, DiskAction::kFree), before);
    ExpectRefused(Status::kWrongState, Set(5, DiskAction::kFree), before);
}

// ---- Wiping ----

TEST_F(DiskChange, IsWipedWithForceWhileItIsInUse) {
    const std::string before = Everything();
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(0, false), before);
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(3, false), before);
    EXPECT_EQ(0, Wipe(0, true));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(0).state);
}

TEST_F(DiskChange, IsWipedOutOfItsGroup) {
    EXPECT_EQ(0, Wipe(3, true));
    EXPECT_EQ(0x01, StatusOf(3));
    EXPECT_EQ(65535, adapter().homes[3].disk);
    Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(1).state);
}

TEST_F(DiskChange, IsNoSpareOnceItIsWiped) {
    EXPECT_EQ(0, Wipe(7, false));
    EXPECT_EQ(0x01, StatusOf(7));
    EXPECT_EQ(65535, disk(7).spare_group);
    EXPECT_THAT(Events(), ElementsAre("2/10 of 7"));
}

TEST_F(DiskChange, IsOursOnceItIsWiped) {
    disk(6).foreign = true;
    EXPECT_EQ(0, Wipe(6, false));
    EXPECT_EQ(0x01, StatusOf(6));
}

TEST_F(DiskChange, ForeignVirtualDiskIsWipedWithForce) {
    BringForeign();
    const std::string before = Everything();
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(6, false), before);
    EXPECT_EQ(0, Wipe(6, true));
    EXPECT_EQ(nullptr, Find(adapter().virtual_disks, 2));
}

TEST_F(DiskChange, IsNotWipedWhileItCannotAnswer) {
    disk(0).present = false;
    disk(6).failed = true;
    const std::string before = Everything();
    ExpectRefused(Status::kNoDisk, Wipe(99, true), before);
    ExpectRefused(Status::kDiskNotReady, Wipe(0, true), before);
    ExpectRefused(Status::kDiskNotReady, Wipe(6, true), before);
}

TEST_F(DiskChange, RebuildFailsWhoseDiskIsWiped) {
    BlockOf(adapter(), 0, 1)->state = State::kRebuilding;
    StartActivity(ActivityKind::kRebuild, Owner::kVirtualDisk, 0);
    EXPECT_EQ(0, Wipe(1, true));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("1/77 of 0"));
}

// ---- Spares ----

TEST_F(DiskChange, FreeDiskBecomesASpareOfTheAdapter) {
    EXPECT_EQ(0, MakeGlobalSpare(adapter(), kNow, 6));
    EXPECT_EQ(0x09, StatusOf(6));
    EXPECT_THAT(Events(), ElementsAre("2/9 of 6"));
}

TEST_F(DiskChange, FreeDiskBecomesASpareOfAGroup) {
    EXPECT_EQ(0, MakeGroupSpare(adapter(), kNow, 6, 0));
    EXPECT_EQ(0x41, StatusOf(6));
    EXPECT_EQ(0, Serves(6));
    EXPECT_THAT(Events(), ElementsAre("2/9 of 6"));
}

TEST_F(DiskChange, SpareBecomesFree) {
    EXPECT_EQ(0, FreeSpare(adapter(), kNow, 5));
    EXPECT_EQ(0, FreeSpare(adapter(), kNow, 7));
    EXPECT_EQ(0x01, StatusOf(5));
    EXPECT_EQ(65535, Serves(7));
    EXPECT_THAT(Events(), ElementsAre("2/10 of 5", "2/10 of 7"));
}

TEST_F(DiskChange, OnlyAFreeDiskBecomesASpareOfTheAdapter) {
    disk(6).offline = true;
    const std::string before = Everything();
    const auto make = [&](HX_U16 id) { return MakeGlobalSpare(adapter(), kNow, id); };
    ExpectRefused(Status::kNoDisk, make(99), before);
    ExpectRefused(Status::kDiskNotReady, make(6), before);
    ExpectRefused(Status::kDiskInUse, make(0), before);
    ExpectRefused(Status::kDiskInUse, make(3), before);
    ExpectRefused(Status::kNoChange, make(5), before);
    ExpectRefused(Status::kDiskTaken, make(7), before);
}

TEST_F(DiskChange, OnlyAFreeDiskBecomesASpareOfAGroup) {
    disk(6).offline = true;
    const std::string before = Everything();
    const auto make = [&](HX_U16 id, HX_U16 group) {
        return MakeGroupSpare(adapter(), kNow, id, group);
    };
    ExpectRefused(Status::kNoDisk, make(99, 0), before);
    ExpectRefused(Status::kNoDiskGroup, make(6, 9), before);
    ExpectRefused(Status::kDiskNotReady, make(6, 0), before);
    ExpectRefused(Status::kDiskInUse, make(0, 0), before);
    ExpectRefused(Status::kDiskTaken, make(5, 0), before);
    ExpectRefused(Status::kNoChange, make(7, 0), before);
}

TEST_F(DiskChange, GroupHasAtMostEightSpares) {
    for (HX_U16 id = 8; id < 15; ++id) {
        Disk more = disk(6);
        more.id = id;
        more.wwn += id;
        Insert(adapter().disks, more);
        ResetDisk(adapter(), id);
        ASSERT_EQ(0, MakeGroupSpare(adapter(), kNow, id, 0));
    }
    const std::string before = Everything();
    ExpectRefused(Status::kTooManySpares, MakeGroupSpare(adapter(), kNow, 6, 0), before);
}

TEST_F(DiskChange, GroupKeepsThePlaceOfASpareThatHasSteppedIn) {
    for (HX_U16 id = 8; id < 15; ++id) {
        Disk more = disk(6);
        more.id = id;
        more.wwn += id;
        more.spare_before = Spare::kGroup;
        more.spare_group_before = 0;
        Insert(adapter().disks, more);
        ResetDisk(adapter(), id);
    }
    EXPECT_EQ(Status::kTooManySpares, MakeGroupSpare(adapter(), kNow, 6, 0));
    disk(8).spare_before = Spare::kNone;
    disk(8).spare_group_before = kNoId;
    EXPECT_EQ(HX_SUCCESS, MakeGroupSpare(adapter(), kNow, 6, 0));
}

TEST_F(DiskChange, OnlyASpareIsMadeFree) {
    const std::string before = Everything();
    ExpectRefused(Status::kNoDisk, FreeSpare(adapter(), kNow, 99), before);
    ExpectRefused(Status::kDiskNotSpare, FreeSpare(adapter(), kNow, 6), before);
    ExpectRefused(Status::kDiskNotSpare, FreeSpare(adapter(), kNow, 0), before);
}

}  // namespace
}  // namespace hxsim
