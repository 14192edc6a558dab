// What hands do to disks, and what breaks on them.
#include "incidents/hxsim_incident_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DiskIncident : public MixedMachineTest {
protected:
    HX_U8 StatusOf(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).status; }
    Outcome Replace(HX_U16 id, bool foreign = false) {
        return ReplaceDisk(adapter(), kNow, id, rows.random, foreign);
    }
};

TEST_F(DiskIncident, FailsOnce) {
    ASSERT_TRUE(FailDisk(adapter(), kNow, 0));
    EXPECT_TRUE(disk(0).failed);
    EXPECT_EQ("Disk 0 has failed; replace it.", FailDisk(adapter(), kNow, 0).refusal);
    EXPECT_THAT(Events(), ElementsAre("2/2 of 0"));
}

TEST_F(DiskIncident, IsPulledOutAndPutBackAsItWas) {
    disk(6).locate_light = true;
    ASSERT_TRUE(RemoveDisk(adapter(), kNow, 6));
    EXPECT_FALSE(disk(6).present);
    EXPECT_FALSE(disk(6).locate_light);
    ASSERT_TRUE(InsertDisk(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).present);
    EXPECT_EQ("6TW0D216", disk(6).serial);
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/1 of 6"));
}

TEST_F(DiskIncident, FailedDiskThatIsPutBackHasStillFailed) {
    ASSERT_TRUE(FailDisk(adapter(), kNow, 6));
    ASSERT_TRUE(RemoveDisk(adapter(), kNow, 6));
    ASSERT_TRUE(InsertDisk(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).failed);
    EXPECT_THAT(Events(), ElementsAre("2/2 of 6", "2/0 of 6", "2/2 of 6"));
}

TEST_F(DiskIncident, ReplacementIsEmptyAndAnotherDiskOfTheSameModel) {
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

TEST_F(DiskIncident, ReplacementIsDrawnFromTheMachinesOwnNumbers) {
    ASSERT_TRUE(Replace(6));
    const std::string first = disk(6).serial;
    ASSERT_TRUE(Replace(6));
    EXPECT_NE(first, disk(6).serial);
    rows.random = 0;
    ASSERT_TRUE(Replace(6));
    EXPECT_EQ(first, disk(6).serial);
}

TEST_F(DiskIncident, ReplacementCanBeForeign) {
    ASSERT_TRUE(Replace(6, true));
    EXPECT_EQ(0x83, StatusOf(6));
}

TEST_F(DiskIncident, ReplacementCanBeOfAnotherSize) {
    ASSERT_TRUE(ReplaceDisk(adapter(), kNow, 6, rows.random, false, 70000));
    EXPECT_EQ(70000u, disk(6).sectors);
    EXPECT_EQ("free 0+4464", BlocksOn(6));
}

TEST_F(DiskIncident, ReplacementHasRoomForMoreThanItsMetadata) {
    const auto replace = [&](Sectors sectors) {
        return ReplaceDisk(adapter(), kNow, 6, rows.random, false, sectors).refusal;
    };
    EXPECT_EQ("A disk has 65537 to 281474976710656 sectors, not 65536.", replace(65536));
    EXPECT_NE("", replace(281474976710657));
    EXPECT_EQ("", replace(281474976710656));
}

TEST_F(DiskIncident, ReplacedSpareIsNoSpare) {
    ASSERT_TRUE(Replace(5));
    EXPECT_EQ(0x01, StatusOf(5));
}

TEST_F(DiskIncident, PatrolEndsWithTheDiskThatIsReplaced) {
    StartActivity(ActivityKind::kMediaPatrol, Owner::kDisk, 6);
    ASSERT_TRUE(Replace(6));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("2/0 of 6", "2/24 of 6", "2/1 of 6"));
}

TEST_F(DiskIncident, SmartTripsOnceAndIsTold) {
    ASSERT_TRUE(TripSmart(adapter(), kNow, 6));
    EXPECT_TRUE(disk(6).smart_exceeded);
    EXPECT_EQ("Disk 6 is over its SMART threshold already; replace it.",
              TripSmart(adapter(), kNow, 6).refusal);
    EXPECT_THAT(Events(), ElementsAre("2/11 of 6"));
}

TEST_F(DiskIncident, SmartThatNobodyAsksForIsNotTold) {
    adapter().config.PollSMARTStatus = 0;
    ASSERT_TRUE(TripSmart(adapter(), kNow, 6));
    disk(5).smart_on = false;
    adapter().config.PollSMARTStatus = 1;
    ASSERT_TRUE(TripSmart(adapter(), kNow, 5));
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(DiskIncident, SaysWhyNothingHappensToIt) {
    disk(6).present = false;
    disk(5).failed = true;
    const std::string before = Everything();
    const std::string nowhere =
        "Disk 99 has no place in this adapter; take one that hxsimctl show lists.";
    const std::string away = "Disk 6 is not there; insert or replace it first.";
    const std::string failed = "Disk 5 has failed; replace it.";
    EXPECT_EQ(nowhere, FailDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, RemoveDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, InsertDisk(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, Replace(99).refusal);
    EXPECT_EQ(nowhere, TripSmart(adapter(), kNow, 99).refusal);
    EXPECT_EQ(nowhere, DamageSector(adapter(), kNow, 99, 0).refusal);
    EXPECT_EQ(away, FailDisk(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, RemoveDisk(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, TripSmart(adapter(), kNow, 6).refusal);
    EXPECT_EQ(away, DamageSector(adapter(), kNow, 6, 0).refusal);
    EXPECT_EQ(failed, TripSmart(adapter(), kNow, 5).refusal);
    EXPECT_EQ(failed, DamageSector(adapter(), kNow, 5, 0).refusal);
    EXPECT_EQ("Disk 0 is there already; remove it first.", InsertDisk(adapter(), kNow, 0).refusal);
    EXPECT_EQ(before, Everything());
}

// ---- Damaged sectors ----

TEST_F(DiskIncident, SectorThatIsReadIsRemappedAndMadeAgain) {
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 5000));
    ASSERT_EQ(1u, adapter().remaps.size());
    EXPECT_EQ(5000u, adapter().remaps[0].lba);
    EXPECT_EQ(RemapReason::kReadError, adapter().remaps[0].reason);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    EXPECT_THAT(EventsWithParams(), ElementsAre("2/4 of 0 0 0 0 0", "2/15 of 0 0 0 0 0",
                                                "2/37 of 0 0 5000 1 1", "2/6 of 0 0 0 0 0"));
}

TEST_F(DiskIncident, SectorIsLostWhereNothingIsLeftToMakeItAgain) {
    disk(1).failed = true;
    Settle(adapter(), kNow);
    adapter().events.clear();
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 5000));
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_EQ("1/100 of 0 0 5000 0 0", EventsWithParams().back());
}

TEST_F(DiskIncident, SectorThatNobodyReadsWaitsUnknown) {
    ASSERT_TRUE(DamageSector(adapter(), kNow, 6, 0));
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 640000));
    ASSERT_EQ(2u, adapter().remaps.size());
    EXPECT_EQ(0, adapter().remaps[0].reason);
    EXPECT_EQ(0, adapter().remaps[1].reason);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(DiskIncident, SectorsAreDamagedOnceAndOnTheDisk) {
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 5000));
    EXPECT_EQ("Disk 0 has a damaged sector 5000 already; take another one.",
              DamageSector(adapter(), kNow, 0, 5000).refusal);
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 1065535));
    EXPECT_EQ("Disk 0 ends before sector 1065536; its last one is 1065535.",
              DamageSector(adapter(), kNow, 0, 1065536).refusal);
}

TEST_F(DiskIncident, RemapTableFillsAndIsThenFull) {
    for (Sectors lba = 0; lba < 64; ++lba) {
        adapter().events.clear();
        ASSERT_TRUE(DamageSector(adapter(), kNow, 0, lba));
        if (lba == 50) {
            EXPECT_EQ("2/13 of 0", Events()[3]);
        }
    }
    EXPECT_EQ("2/14 of 0", Events()[3]);
    adapter().events.clear();
    ASSERT_TRUE(DamageSector(adapter(), kNow, 0, 64));
    EXPECT_EQ(64u, adapter().remaps.size());
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_THAT(Events(), ElementsAre("2/4 of 0", "2/14 of 0", "1/100 of 0"));
}

}  // namespace
}  // namespace hxsim
