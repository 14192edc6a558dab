// The records of virtual disks.
#include "calls/hxsim_virtual_disk_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "calls/hxsim_activity_control.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_home.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

using VirtualDiskRecord = ArrayTest;

TEST_F(VirtualDiskRecord, IsDescribed) {
    Create_LD_Param param = WantedOn(0x60, {0, 1, 2, 3, 4, 5}, 1024);
    param.CachePolicy = 0x05;
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    Made(param);
    const LD_Info info = Described<LD_Info>(0);
    EXPECT_EQ(0, info.ID);
    EXPECT_EQ(255, info.DGID);
    EXPECT_EQ(State::kOptimal, info.Status);
    EXPECT_EQ(0, info.BGAStatus);
    EXPECT_EQ(64, info.StripeBlockSize);
    EXPECT_EQ(0x60, info.RaidMode);
    EXPECT_EQ(6, info.HDCount);
    EXPECT_EQ(0x05, info.CacheMode);
    EXPECT_EQ(1, info.SectorCoefficient);
    EXPECT_EQ(1024u, info.Size.value);
    EXPECT_EQ(0, std::memcmp("SIXTEEN LETTERS!", info.Name, 16));
    EXPECT_THAT(Ids(info.BlockIDs, info.BlockIDs + 7), ElementsAre(0, 1, 2, 3, 4, 5, 0));
    EXPECT_EQ(2, info.SubLDCount);
    EXPECT_EQ(4, info.NumParityDisk);
}

TEST_F(VirtualDiskRecord, HasNoBlockWhereADiskIsLost) {
    adapter().config.AutoRebuildOn = 0;
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    ResetDisk(adapter(), 1);
    HomeOf(adapter(), Owner::kVirtualDisk, 0, 1)->disk = kNoId;
    Settle(adapter(), kNow);
    const LD_Info info = Described<LD_Info>(0);
    EXPECT_THAT(Ids(info.BlockIDs, info.BlockIDs + 3), ElementsAre(0, 65535, 2));
    EXPECT_EQ(State::kDegraded, info.Status);
}

TEST_F(VirtualDiskRecord, TellsWhatItIsDoing) {
    Create_LD_Param param = WantedOn(0x00, {0}, 409600);
    param.InitializationOption = NumberOf(Init::kBackground);
    Made(param);  // 204800 sectors a second
    const LD_Status status = Described<LD_Status>(0, kNow + 500);
    EXPECT_EQ(ActivityKind::kInitBackground, status.Bga);
    EXPECT_EQ(25, status.BgaPercentage);
    EXPECT_EQ(ActivityState::kRunning, status.BgaState);
    EXPECT_EQ(ActivityKind::kInitBackground, Described<LD_Info>(0).BGAStatus);
    Finish();
    const LD_Status idle = Described<LD_Status>(0);
    EXPECT_EQ(0, idle.Bga);
    EXPECT_EQ(0, idle.BgaPercentage);
    EXPECT_EQ(0, idle.BgaState);
}

TEST_F(VirtualDiskRecord, ShowsThatWriteThroughIsForced) {
    Create_LD_Param param = WantedOn(0x00, {0}, 128);
    param.CachePolicy = 0x05;
    Made(param);
    param = WantedOn(0x00, {0}, 128);
    param.CachePolicy = 0x04;
    Made(param);
    Battery battery;
    battery.present = false;
    battery.info = {};
    adapter().batteries.push_back(battery);
    EXPECT_EQ(0x85, Described<LD_Info>(0).CacheMode);
    EXPECT_EQ(0x85, Described<LD_Config>(0).CacheMode);
    EXPECT_EQ(0x04, Described<LD_Info>(1).CacheMode);
}

}  // namespace
}  // namespace hxsim
