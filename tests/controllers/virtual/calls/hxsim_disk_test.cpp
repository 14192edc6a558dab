// Disks: what callers and hands do to them, and what becomes of what lay on them.
#include "model/hxsim_disk_role.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "calls/hxsim_disk_change.h"
#include "codes/activity.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/state.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"
#include "controllers/virtual/support/living_parts.h"
#include "incidents/hxsim_incident.h"
#include "incidents/hxsim_incident_battery.h"
#include "incidents/hxsim_incident_disk.h"
#include "incidents/hxsim_incident_power.h"
#include "model/hxsim_link.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"

namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::CacheBit;
using hxcodes::Device;
using hxcodes::DiskAction;
using hxcodes::RemapReason;
using hxcodes::State;
using hxcodes::Status;
using parts::kNow;
using testing::ElementsAre;
using testing::IsEmpty;

class LivingDisk : public parts::PartsTest {
protected:
    HX_U8 StatusOf(HX_U16 id) { return hxsim::DiskRoles(adapter()).Of(disk(id)).status; }
    HX_U16 Serves(HX_U16 id) { return hxsim::DiskRoles(adapter()).Of(disk(id)).serves; }
    hxsim::Sectors FreeOn(HX_U16 id) { return hxsim::DiskRoles(adapter()).Of(disk(id)).free; }

    HX_U8 Set(HX_U16 id, HX_U8 action) { return hxsim::SetDiskState(adapter(), kNow, id, action); }
    HX_U8 Wipe(HX_U16 id, bool force) { return hxsim::WipeDisk(adapter(), kNow, id, force); }
    HX_U8 Configure(HX_U16 id, HX_BOOLEAN cache, HX_BOOLEAN smart, HX_BOOLEAN online) {
        HD_Config config{};
        config.WriteCacheOn = cache;
        config.SMARTOn = smart;
        config.Online = online;
        return hxsim::SetDisk(adapter(), kNow, id, config);
    }
    hxsim::Outcome Replace(HX_U16 id, bool foreign = false) {
        return hxsim::ReplaceDisk(adapter(), kNow, id, machine.random, foreign);
    }

    void ExpectRefused(HX_U8 code, HX_U8 status, const std::string& before) {
        EXPECT_EQ(code, status);
        EXPECT_EQ(before, Everything());
    }

    // Disk 6 with a virtual disk of another controller.
    void BringForeign() {
        disk(6).foreign = true;
        hxsim::VirtualDisk foreign;
        foreign.id = 2;
        foreign.level = 0x00;
        foreign.width = 1;
        foreign.size = 128;
        foreign.foreign = true;
        foreign.state = State::kForeign;
        adapter().virtual_disks.push_back(foreign);
        hxsim::Cut(adapter(), 6, 0, 128, 2, 0);
        adapter().homes.insert(adapter().homes.begin() + 3,
                               {hxsim::Owner::kVirtualDisk, 2, 0, 6, 6});
    }

    hxsim::Activity& Run(HX_U8 kind, hxsim::Owner of, HX_U16 owner) {
        hxsim::Activity activity;
        activity.kind = kind;
        activity.of = of;
        activity.owner = owner;
        activity.total = 1000000;
        hxsim::Activity& started = hxsim::Start(adapter(), kNow, activity);
        adapter().events.clear();
        return started;
    }
};

// ---- Parts ----

TEST_F(LivingDisk, StatusSaysWhatItIsUsedFor) {
    EXPECT_EQ(0x05, StatusOf(0));  // online, configured
    EXPECT_EQ(0x05, StatusOf(3));
    EXPECT_EQ(0x09, StatusOf(5));  // global spare
    EXPECT_EQ(0x01, StatusOf(6));
    EXPECT_EQ(0x41, StatusOf(7));  // group spare
}

TEST_F(LivingDisk, StatusSaysWhyItCannotBeHad) {
    disk(6).offline = true;
    EXPECT_EQ(0x81, StatusOf(6));
    disk(6).offline = false;
    disk(6).failed = true;
    EXPECT_EQ(0xA0, StatusOf(6));
    disk(6).failed = false;
    disk(6).foreign = true;
    EXPECT_EQ(0x83, StatusOf(6));
    disk(0).present = false;
    EXPECT_EQ(0x84, StatusOf(0));
}

TEST_F(LivingDisk, StatusOfARebuildingDiskSaysSo) {
    hxsim::BlockOf(adapter(), 0, 1)->state = State::kRebuilding;
    EXPECT_EQ(0x15, StatusOf(1));
    hxsim::BlockOf(adapter(), 0, 1)->state = State::kOptimal;
}

TEST_F(LivingDisk, ServesAGroupOrAVirtualDiskOrNothing) {
    EXPECT_EQ(0, Serves(2));
    EXPECT_EQ(0, Serves(4));
    EXPECT_TRUE(hxsim::DiskRoles(adapter()).Of(disk(4)).of_group);
    EXPECT_FALSE(hxsim::DiskRoles(adapter()).Of(disk(2)).of_group);
    EXPECT_EQ(65535, Serves(5));
    EXPECT_EQ(65535, Serves(6));
    EXPECT_EQ(0, Serves(7));
}

TEST_F(LivingDisk, HasFreeWhatVirtualDisksCanStillHave) {
    EXPECT_EQ(360000u, FreeOn(0));
    EXPECT_EQ(0u, FreeOn(3));  // its group's
    EXPECT_EQ(0u, FreeOn(5));
    EXPECT_EQ(1000000u, FreeOn(6));
    disk(6).offline = true;
    EXPECT_EQ(0u, FreeOn(6));
}

TEST_F(LivingDisk, IsListedWhileVirtualDisksCountOnIt) {
    disk(0).present = false;
    disk(6).present = false;
    EXPECT_NE(nullptr, hxsim::FindListed(adapter(), 0));
    EXPECT_EQ(nullptr, hxsim::FindListed(adapter(), 6));
    EXPECT_EQ(nullptr, hxsim::FindListed(adapter(), 99));
}

// ---- Settings ----

TEST_F(LivingDisk, AnnouncesAWriteCacheThatIsSwitched) {
    EXPECT_EQ(0, Configure(6, 1, 1, 1));
    EXPECT_TRUE(disk(6).write_cache);
    EXPECT_EQ(0, Configure(6, 1, 1, 1));
    EXPECT_THAT(Events(), ElementsAre("2/16 of 6"));
}

TEST_F(LivingDisk, KeepsWhetherSmartIsOn) {
    EXPECT_EQ(0, Configure(6, 0, 0, 1));
    EXPECT_FALSE(disk(6).smart_on);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingDisk, IsSetOfflineAndOnlineByItsSettings) {
    EXPECT_EQ(0, Configure(6, 0, 1, 0));
    EXPECT_TRUE(disk(6).offline);
    EXPECT_EQ(0, Configure(6, 0, 1, 1));
    EXPECT_FALSE(disk(6).offline);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/1 of 6"));
}

TEST_F(LivingDisk, IsNotSetWhileItCannotAnswer) {
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

TEST_F(LivingDisk, GoesOfflineAndComesBack) {
    EXPECT_EQ(0, Set(0, DiskAction::kOffline));
    EXPECT_TRUE(disk(0).offline);
    EXPECT_EQ(0, Set(0, DiskAction::kOnline));
    EXPECT_FALSE(disk(0).offline);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 0", "2/1 of 0"));
}

TEST_F(LivingDisk, DegradesItsVirtualDiskWhenItGoesOffline) {
    EXPECT_EQ(0, Set(0, DiskAction::kOffline));
    hxsim::Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(0).state);
}

TEST_F(LivingDisk, IsNotSetToWhatItIs) {
    disk(5).offline = true;
    const std::string before = Everything();
    ExpectRefused(Status::kNoChange, Set(0, DiskAction::kOnline), before);
    ExpectRefused(Status::kNoChange, Set(5, DiskAction::kOffline), before);
    ExpectRefused(Status::kNoChange, Set(6, DiskAction::kFree), before);
}

TEST_F(LivingDisk, IsNotSwitchedWhileItCannotAnswer) {
    disk(0).present = false;
    disk(1).failed = true;
    disk(6).foreign = true;
    const std::string before = Everything();
    for (const HX_U8 action : {HX_U8{DiskAction::kOnline}, HX_U8{DiskAction::kOffline}}) {
        ExpectRefused(Status::kDiskNotReady, Set(0, action), before);
        ExpectRefused(Status::kDiskNotReady, Set(1, action), before);
        ExpectRefused(Status::kDiskNotReady, Set(6, action), before);
        ExpectRefused(Status::kNoDisk, Set(99, action), before);
    }
    ExpectRefused(Status::kDiskNotReady, Set(0, DiskAction::kFree), before);
}

TEST_F(LivingDisk, KnowsNoOtherStates) {
    const std::string before = Everything();
    ExpectRefused(Status::kBadAction, Set(6, 0), before);
    ExpectRefused(Status::kBadAction, Set(6, 4), before);
    ExpectRefused(Status::kBadAction, Set(6, 255), before);
}

TEST_F(LivingDisk, FailedDiskIsSetFreeWithNothingOnIt) {
    disk(0).failed = true;
    EXPECT_EQ(0, Set(0, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ(65535, adapter().homes[0].disk);
    EXPECT_EQ(0, adapter().homes[0].home);
    EXPECT_THAT(Events(), ElementsAre("2/54 of 0"));
}

TEST_F(LivingDisk, ForeignDiskIsSetFreeAndItsVirtualDiskGoes) {
    BringForeign();
    EXPECT_EQ(0, Set(6, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(6));
    EXPECT_EQ("free 0+1000000", BlocksOn(6));
    EXPECT_EQ(2u, adapter().virtual_disks.size());
    EXPECT_EQ(5u, adapter().homes.size());
}

TEST_F(LivingDisk, OfflineDiskWithoutUseIsSetFree) {
    disk(6).offline = true;
    EXPECT_EQ(0, Set(6, DiskAction::kFree));
    EXPECT_EQ(0x01, StatusOf(6));
}

TEST_F(LivingDisk, DiskThatServesIsNotSetFree) {
    const std::string before = Everything();
    ExpectRefused(Status::kDiskInUse, Set(0, DiskAction::kFree), before);
    ExpectRefused(Status::kDiskInUse, Set(3, DiskAction::kFree), before);
    ExpectRefused(Status::kWrongState, Set(5, DiskAction::kFree), before);
}

// ---- Wiping ----

TEST_F(LivingDisk, IsWipedWithForceWhileItIsInUse) {
    const std::string before = Everything();
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(0, false), before);
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(3, false), before);
    EXPECT_EQ(0, Wipe(0, true));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    hxsim::Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(0).state);
}

TEST_F(LivingDisk, IsWipedOutOfItsGroup) {
    EXPECT_EQ(0, Wipe(3, true));
    EXPECT_EQ(0x01, StatusOf(3));
    EXPECT_EQ(65535, adapter().homes[3].disk);
    hxsim::Settle(adapter(), kNow);
    EXPECT_EQ(State::kDegraded, virtual_disk(1).state);
}

TEST_F(LivingDisk, IsNoSpareOnceItIsWiped) {
    EXPECT_EQ(0, Wipe(7, false));
    EXPECT_EQ(0x01, StatusOf(7));
    EXPECT_EQ(65535, disk(7).spare_group);
    EXPECT_THAT(Events(), ElementsAre("2/10 of 7"));
}

TEST_F(LivingDisk, IsOursOnceItIsWiped) {
    disk(6).foreign = true;
    EXPECT_EQ(0, Wipe(6, false));
    EXPECT_EQ(0x01, StatusOf(6));
}

TEST_F(LivingDisk, ForeignVirtualDiskIsWipedWithForce) {
    BringForeign();
    const std::string before = Everything();
    ExpectRefused(Status::kHoldsVirtualDisks, Wipe(6, false), before);
    EXPECT_EQ(0, Wipe(6, true));
    EXPECT_EQ(nullptr, hxsim::Find(adapter().virtual_disks, 2));
}

TEST_F(LivingDisk, IsNotWipedWhileItCannotAnswer) {
    disk(0).present = false;
    disk(6).failed = true;
    const std::string before = Everything();
    ExpectRefused(Status::kNoDisk, Wipe(99, true), before);
    ExpectRefused(Status::kDiskNotReady, Wipe(0, true), before);
    ExpectRefused(Status::kDiskNotReady, Wipe(6, true), before);
}

TEST_F(LivingDisk, RebuildFailsWhoseDiskIsWiped) {
    hxsim::BlockOf(adapter(), 0, 1)->state = State::kRebuilding;
    Run(ActivityKind::kRebuild, hxsim::Owner::kVirtualDisk, 0);
    EXPECT_EQ(0, Wipe(1, true));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("1/77 of 0"));
}

// ---- Spares ----

TEST_F(LivingDisk, FreeDiskBecomesASpareOfTheAdapter) {
    EXPECT_EQ(0, hxsim::MakeGlobalSpare(adapter(), kNow, 6));
    EXPECT_EQ(0x09, StatusOf(6));
    EXPECT_THAT(Events(), ElementsAre("2/9 of 6"));
}

TEST_F(LivingDisk, FreeDiskBecomesASpareOfAGroup) {
    EXPECT_EQ(0, hxsim::MakeGroupSpare(adapter(), kNow, 6, 0));
    EXPECT_EQ(0x41, StatusOf(6));
    EXPECT_EQ(0, Serves(6));
    EXPECT_THAT(Events(), ElementsAre("2/9 of 6"));
}

TEST_F(LivingDisk, SpareBecomesFree) {
    EXPECT_EQ(0, hxsim::FreeSpare(adapter(), kNow, 5));
    EXPECT_EQ(0, hxsim::FreeSpare(adapter(), kNow, 7));
    EXPECT_EQ(0x01, StatusOf(5));
    EXPECT_EQ(65535, Serves(7));
    EXPECT_THAT(Events(), ElementsAre("2/10 of 5", "2/10 of 7"));
}

TEST_F(LivingDisk, OnlyAFreeDiskBecomesASpareOfTheAdapter) {
    disk(6).offline = true;
    const std::string before = Everything();
    const auto make = [&](HX_U16 id) { return hxsim::MakeGlobalSpare(adapter(), kNow, id); };
    ExpectRefused(Status::kNoDisk, make(99), before);
    ExpectRefused(Status::kDiskNotReady, make(6), before);
    ExpectRefused(Status::kDiskInUse, make(0), before);
    ExpectRefused(Status::kDiskInUse, make(3), before);
    ExpectRefused(Status::kNoChange, make(5), before);
    ExpectRefused(Status::kDiskTaken, make(7), before);
}

TEST_F(LivingDisk, OnlyAFreeDiskBecomesASpareOfAGroup) {
    disk(6).offline = true;
    const std::string before = Everything();
    const auto make = [&](HX_U16 id, HX_U16 group) {
        return hxsim::MakeGroupSpare(adapter(), kNow, id, group);
    };
    ExpectRefused(Status::kNoDisk, make(99, 0), before);
    ExpectRefused(Status::kNoDiskGroup, make(6, 9), before);
    ExpectRefused(Status::kDiskNotReady, make(6, 0), before);
    ExpectRefused(Status::kDiskInUse, make(0, 0), before);
    ExpectRefused(Status::kDiskTaken, make(5, 0), before);
    ExpectRefused(Status::kNoChange, make(7, 0), before);
}

TEST_F(LivingDisk, GroupHasAtMostEightSpares) {
    for (HX_U16 id = 8; id < 15; ++id) {
        hxsim::Disk more = disk(6);
        more.id = id;
        more.wwn += id;
        hxsim::Insert(adapter().disks, more);
        hxsim::ResetDisk(adapter(), id);
        ASSERT_EQ(0, hxsim::MakeGroupSpare(adapter(), kNow, id, 0));
    }
    const std::string before = Everything();
    ExpectRefused(Status::kTooManySpares, hxsim::MakeGroupSpare(adapter(), kNow, 6, 0), before);
}

TEST_F(LivingDisk, GroupKeepsThePlaceOfASpareThatHasSteppedIn) {
    for (HX_U16 id = 8; id < 15; ++id) {
        hxsim::Disk more = disk(6);
        more.id = id;
        more.wwn += id;
        more.spare_before = hxsim::Spare::kGroup;
        more.spare_group_before = 0;
        hxsim::Insert(adapter().disks, more);
        hxsim::ResetDisk(adapter(), id);
    }
    EXPECT_EQ(Status::kTooManySpares, hxsim::MakeGroupSpare(adapter(), kNow, 6, 0));
    disk(8).spare_before = hxsim::Spare::kNone;
    disk(8).spare_group_before = hxsim::kNoId;
    EXPECT_EQ(HX_SUCCESS, hxsim::MakeGroupSpare(adapter(), kNow, 6, 0));
}

TEST_F(LivingDisk, OnlyASpareIsMadeFree) {
    const std::string before = Everything();
    ExpectRefused(Status::kNoDisk, hxsim::FreeSpare(adapter(), kNow, 99), before);
    ExpectRefused(Status::kDiskNotSpare, hxsim::FreeSpare(adapter(), kNow, 6), before);
    ExpectRefused(Status::kDiskNotSpare, hxsim::FreeSpare(adapter(), kNow, 0), before);
}

// ---- Hands ----

TEST_F(LivingDisk, FailsOnce) {
    ASSERT_TRUE(hxsim::FailDisk(adapter(), kNow, 0));
    EXPECT_TRUE(disk(0).failed);
    EXPECT_EQ("Disk 0 has failed; replace it.", hxsim::FailDisk(adapter(), kNow, 0).refusal);
    EXPECT_THAT(Events(), ElementsAre("2/2 of 0"));
}

TEST_F(LivingDisk, IsPulledOutAndPutBackAsItWas) {
    disk(6).locate_light = true;
    ASSERT_TRUE(hxsim::RemoveDisk(adapter(), kNow, 6));
    EXPECT_FALSE(disk(6).present);
    EXPECT_FALSE(disk(6).locate_light);
    ASSERT_TRUE(hxsim::InsertDisk(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).present);
    EXPECT_EQ("6TW0D216", disk(6).serial);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/1 of 6"));
}

TEST_F(LivingDisk, FailedDiskThatIsPutBackHasStillFailed) {
    ASSERT_TRUE(hxsim::FailDisk(adapter(), kNow, 6));
    ASSERT_TRUE(hxsim::RemoveDisk(adapter(), kNow, 6));
    ASSERT_TRUE(hxsim::InsertDisk(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).failed);
    EXPECT_THAT(Events(), ElementsAre("2/2 of 6", "2/0 of 6", "2/2 of 6"));
}

TEST_F(LivingDisk, ReplacementIsEmptyAndAnotherDiskOfTheSameModel) {
    disk(0).failed = disk(0).smart_exceeded = disk(0).has_mbr = disk(0).has_system = true;
    adapter().remaps.push_back({0, 100, 1, RemapReason::kReadError});
    ASSERT_TRUE(Replace(0));
    EXPECT_EQ(0x01, StatusOf(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("TARNWELL TW600S10", disk(0).model);
    EXPECT_EQ("6TW0", disk(0).serial.substr(0, 4));
    EXPECT_EQ(10u, disk(0).serial.size());
    EXPECT_NE(0x5000C50000000000u, disk(0).wwn);
    EXPECT_FALSE(disk(0).smart_exceeded || disk(0).has_mbr || disk(0).has_system);
    EXPECT_THAT(adapter().remaps, IsEmpty());
    EXPECT_EQ(65535, adapter().homes[0].disk);
    EXPECT_EQ(0, adapter().homes[0].home);
    EXPECT_THAT(Events(), ElementsAre("2/1 of 0"));
}

TEST_F(LivingDisk, ReplacementIsDrawnFromTheMachinesOwnNumbers) {
    ASSERT_TRUE(Replace(6));
    const std::string first = disk(6).serial;
    ASSERT_TRUE(Replace(6));
    EXPECT_NE(first, disk(6).serial);
    machine.random = 0;
    ASSERT_TRUE(Replace(6));
    EXPECT_EQ(first, disk(6).serial);
}

TEST_F(LivingDisk, ReplacementCanBeForeign) {
    ASSERT_TRUE(Replace(6, true));
    EXPECT_EQ(0x83, StatusOf(6));
}

TEST_F(LivingDisk, ReplacementCanBeOfAnotherSize) {
    ASSERT_TRUE(hxsim::ReplaceDisk(adapter(), kNow, 6, machine.random, false, 70000));
    EXPECT_EQ(70000u, disk(6).sectors);
    EXPECT_EQ("free 0+4464", BlocksOn(6));
}

TEST_F(LivingDisk, ReplacementHasRoomForMoreThanItsMetadata) {
    const auto replace = [&](hxsim::Sectors sectors) {
        return hxsim::ReplaceDisk(adapter(), kNow, 6, machine.random, false, sectors).refusal;
    };
    EXPECT_EQ("A disk has 65537 to 281474976710656 sectors, not 65536.", replace(65536));
    EXPECT_NE("", replace(281474976710657));
    EXPECT_EQ("", replace(281474976710656));
}

TEST_F(LivingDisk, ReplacedSpareIsNoSpare) {
    ASSERT_TRUE(Replace(5));
    EXPECT_EQ(0x01, StatusOf(5));
}

TEST_F(LivingDisk, PatrolEndsWithTheDiskThatIsReplaced) {
    Run(ActivityKind::kMediaPatrol, hxsim::Owner::kDisk, 6);
    ASSERT_TRUE(Replace(6));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/24 of 6", "2/1 of 6"));
}

TEST_F(LivingDisk, SmartTripsOnceAndIsTold) {
    ASSERT_TRUE(hxsim::TripSmart(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).smart_exceeded);
    EXPECT_EQ("Disk 6 is over its SMART threshold already; replace it.",
              hxsim::TripSmart(adapter(), kNow, 6).refusal);
    EXPECT_THAT(Events(), ElementsAre("2/11 of 6"));
}

TEST_F(LivingDisk, SmartThatNobodyAsksForIsNotTold) {
    adapter().config.PollSMARTStatus = 0;
    ASSERT_TRUE(hxsim::TripSmart(adapter(), kNow, 6));
    disk(5).smart_on = false;
    adapter().config.PollSMARTStatus = 1;
    ASSERT_TRUE(hxsim::TripSmart(adapter(), kNow, 5));
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingDisk, SaysWhyNothingHappensToIt) {
    disk(6).present = false;
    disk(5).failed = true;
    const std::string before = Everything();
    const std::string nowhere =
        "Disk 99 has no place in this adapter; take one that hxsimctl show lists.";
    const std::string away = "Disk 6 is not there; insert or replace it first.";
    const std::string failed = "Disk 5 has failed; replace it.";
    EXPECT_EQ(nowhere, hxsim::FailDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, hxsim::RemoveDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, hxsim::InsertDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, Replace(99).refusal);
    EXPECT_EQ(nowhere, hxsim::TripSmart(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, hxsim::DamageSector(adapter(), kNow, 99, 0).refusal);
    EXPECT_EQ(away, hxsim::FailDisk(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, hxsim::RemoveDisk(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, hxsim::TripSmart(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, hxsim::DamageSector(adapter(), kNow, 6, 0).refusal);
    EXPECT_EQ(failed, hxsim::TripSmart(adapter(), kNow, 5).refusal);
    EXPECT_EQ(failed, hxsim::DamageSector(adapter(), kNow, 5, 0).refusal);
    EXPECT_EQ("Disk 0 is there already; remove it first.",
              hxsim::InsertDisk(adapter(), kNow, 0).refusal);
    EXPECT_EQ(before, Everything());
}

// ---- Damaged sectors ----

TEST_F(LivingDisk, SectorThatIsReadIsRemappedAndMadeAgain) {
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 5000));
    ASSERT_EQ(1u, adapter().remaps.size());
    EXPECT_EQ(5000u, adapter().remaps[0].lba);
    EXPECT_EQ(RemapReason::kReadError, adapter().remaps[0].reason);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    EXPECT_THAT(EventsWithParams(), ElementsAre("2/4 of 0 0 0 0 0", "2/15 of 0 0 0 0 0",
                                                "2/37 of 0 0 5000 1 1", "2/6 of 0 0 0 0 0"));
}

TEST_F(LivingDisk, SectorIsLostWhereNothingIsLeftToMakeItAgain) {
    disk(1).failed = true;
    hxsim::Settle(adapter(), kNow);
    adapter().events.clear();
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 5000));
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_EQ("1/100 of 0 0 5000 0 0", EventsWithParams().back());
}

TEST_F(LivingDisk, SectorThatNobodyReadsWaitsUnknown) {
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 6, 0));
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 640000));
    ASSERT_EQ(2u, adapter().remaps.size());
    EXPECT_EQ(0, adapter().remaps[0].reason);
    EXPECT_EQ(0, adapter().remaps[1].reason);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingDisk, SectorsAreDamagedOnceAndOnTheDisk) {
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 5000));
    EXPECT_EQ("Disk 0 has a damaged sector 5000 already; take another one.",
              hxsim::DamageSector(adapter(), kNow, 0, 5000).refusal);
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 1065535));
    EXPECT_EQ("Disk 0 ends before sector 1065536; its last one is 1065535.",
              hxsim::DamageSector(adapter(), kNow, 0, 1065536).refusal);
}

TEST_F(LivingDisk, RemapTableFillsAndIsThenFull) {
    for (hxsim::Sectors lba = 0; lba < 64; ++lba) {
        adapter().events.clear();
        ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, lba));
        if (lba == 50) {
            EXPECT_EQ("2/13 of 0", Events()[3]);
        }
    }
    EXPECT_EQ("2/14 of 0", Events()[3]);
    adapter().events.clear();
    ASSERT_TRUE(hxsim::DamageSector(adapter(), kNow, 0, 64));
    EXPECT_EQ(64u, adapter().remaps.size());
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_THAT(Events(), ElementsAre("2/4 of 0", "2/14 of 0", "1/100 of 0"));
}

// ---- Power ----

TEST_F(LivingDisk, PowerCutBeginsWithTheAdapterAndWhatIsMissing) {
    disk(0).present = false;
    hxsim::Settle(adapter(), kNow);
    adapter().events.clear();
    hxsim::CutPower(adapter(), kNow);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "12/16 of 0", "12/17 of 0"));
    EXPECT_EQ(4, adapter().events[0].event.SenseDataLength);
    EXPECT_EQ(0, std::memcmp("VC-1", adapter().events[0].event.SenseData, 4));
}

TEST_F(LivingDisk, PowerCutTellsOfAVirtualDiskThatIsGoneWithAllItsDisks) {
    for (HX_U16 id = 0; id < 3; ++id) disk(id).present = false;
    hxsim::Settle(adapter(), kNow);
    adapter().events.clear();
    hxsim::CutPower(adapter(), kNow);
    EXPECT_THAT(Events(),
                ElementsAre("0/9 of 0", "12/16 of 0", "12/16 of 1", "12/16 of 2", "12/18 of 0"));
}

TEST_F(LivingDisk, PowerCutRestartsWhatRanWhereItWas) {
    Run(ActivityKind::kCheck, hxsim::Owner::kVirtualDisk, 0).done = 700;
    Run(ActivityKind::kMediaPatrol, hxsim::Owner::kDisk, 6).state = ActivityState::kPaused;
    hxsim::CutPower(adapter(), kNow);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "1/21 of 0"));
    EXPECT_EQ(700u, adapter().activities[0].done);
}

TEST_F(LivingDisk, PowerCutLosesWhatIsCachedWithoutABattery) {
    virtual_disk(0).cache = CacheBit::kWriteBack;
    adapter().batteries.clear();
    hxsim::CutPower(adapter(), kNow);
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_EQ(0u, virtual_disk(1).errors);
}

TEST_F(LivingDisk, PowerCutLosesNothingOfWhatIsNotWrittenAnyMore) {
    virtual_disk(0).cache = CacheBit::kWriteBack;
    adapter().batteries.clear();
    disk(0).present = disk(1).present = false;
    hxsim::Settle(adapter(), kNow);
    ASSERT_EQ(State::kOffline, virtual_disk(0).state);
    hxsim::CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
}

TEST_F(LivingDisk, PowerCutLosesNothingThatABatteryKeepsOrForbids) {
    virtual_disk(0).cache = CacheBit::kWriteBack;
    hxsim::CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    ASSERT_TRUE(hxsim::RemoveBattery(adapter(), kNow));
    adapter().events.clear();
    hxsim::CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "9/1 of 0"));
}

// ---- Names ----

TEST_F(LivingDisk, NameSaysWhichDeviceItIs) {
    EXPECT_EQ(0x50A4858000000000u, hxsim::WorldWideName(Device::kAdapter, 0, 0, 0));
    EXPECT_EQ(0x50A4858300050102u, hxsim::WorldWideName(Device::kDisk, 1, 5, 2));
    EXPECT_EQ(0x50A4858812340100u, hxsim::WorldWideNameOfNewDisk(1, 0x1234));
}

TEST_F(LivingDisk, LinkNamesNoMorePhysThanItHasRoomFor) {
    disk(6).phys = 255;
    EXPECT_EQ(8, hxsim::LinkOf(adapter(), disk(6)).Self.PhyCnt);
    EXPECT_EQ(8, hxsim::LinkOf(adapter(), disk(6)).Parent.PhyCnt);
}

}  // namespace
