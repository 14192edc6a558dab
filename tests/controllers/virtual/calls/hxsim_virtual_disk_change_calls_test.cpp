// The calls that make, list, move and delete virtual disks and disk groups, on the machine that is
// there when nobody has asked for another.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "codes/activity.h"
#include "codes/state.h"
#include "codes/status.h"
#include "controllers/virtual/support/list_calls.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"

namespace {

using hxcodes::ActivityKind;
using hxcodes::State;
using hxcodes::Status;
using testing::ElementsAre;

// Adapter 0 has disk group 0 (RAID 5 of disks 0 to 3) with virtual disk 0, virtual disk 2 (RAID 6
// of disks 4 to 8), and the free disks 11 to 14 and 16; adapter 1 has no disk groups.
using ChangeOfVirtualDisks = SimulatorTest;

TEST_F(ChangeOfVirtualDisks, MakeListAndDeleteAVirtualDisk) {
    Create_LD_Param param = WantedOn(0x05, {11, 12, 13}, 1024);
    ASSERT_EQ(0, HX_LD_Create(0, &param));
    EXPECT_EQ(1, param.LDID);
    EXPECT_EQ(1024u, param.Size.value);
    EXPECT_EQ(3u, All(HX_LD_GetInfo, 0).size());
    const LD_Info listed = TheOne(HX_LD_GetInfo, 0, 1);
    LD_Info alone;
    ASSERT_EQ(0, HX_LD_GetTargetLDInfo(0, 1, &alone));
    EXPECT_EQ(0, std::memcmp(&listed, &alone, sizeof alone));
    EXPECT_EQ(State::kOptimal, TheOne(HX_LD_GetStatus, 0, 1).Status);
    ASSERT_EQ(0, HX_LD_Delete(0, 1, 1));
    EXPECT_EQ(2u, All(HX_LD_GetInfo, 0).size());
    EXPECT_EQ(Status::kNoVirtualDisk, HX_LD_Delete(0, 1, 1));
}

TEST_F(ChangeOfVirtualDisks, SizeAVirtualDiskAndMakeItSo) {
    Create_LD_Param sized = WantedOn(0x05, {11, 12, 13});
    Create_LD_Param made = sized;
    ASSERT_EQ(0, HX_LD_GetMaxSize(0, &sized));
    ASSERT_EQ(0, HX_LD_Create(0, &made));
    EXPECT_EQ(3516218368u, sized.Size.value);
    EXPECT_EQ(3516218368u, made.Size.value);
}

TEST_F(ChangeOfVirtualDisks, SetAVirtualDisk) {
    LD_Config config = TheOne(HX_LD_GetConfig, 0, 2);
    std::strcpy(config.Name, "OTHER");
    config.AutoRebuildOn = 0;
    ASSERT_EQ(0, HX_LD_SetConfig(0, 2, &config));
    EXPECT_STREQ("OTHER", TheOne(HX_LD_GetConfig, 0, 2).Name);
    EXPECT_EQ(0, TheOne(HX_LD_GetConfig, 0, 2).AutoRebuildOn);
    EXPECT_EQ(Status::kNoVirtualDisk, HX_LD_SetConfig(0, 1, &config));
}

TEST_F(ChangeOfVirtualDisks, MoveAVirtualDisk) {
    Create_LD_Param param = WantedOn(0x06, {4, 5, 6, 7, 8, 13});
    param.LDID = 2;
    Create_LD_Param sized = param;
    ASSERT_EQ(0, HX_LD_GetMigratedLdSize(0, &sized));
    EXPECT_EQ(8589934592u, sized.Size.value);  // four times 1 TiB
    ASSERT_EQ(0, HX_LD_StartMigration(0, &param));
    EXPECT_EQ(6442450944u, param.Size.value);
    EXPECT_EQ(ActivityKind::kMigration, TheOne(HX_LD_GetStatus, 0, 2).Bga);
    EXPECT_EQ(Status::kBusy, HX_LD_StartMigration(0, &param));
}

TEST_F(ChangeOfVirtualDisks, ImportOnlyWhatIsForeign) {
    EXPECT_EQ(Status::kNotForeign, HX_LD_Import(0, 2));
    EXPECT_EQ(Status::kNoVirtualDisk, HX_LD_Import(0, 1));
}

TEST_F(ChangeOfVirtualDisks, MakeAndDeleteADiskGroupWithAVirtualDisk) {
    CreateOrModify_DG_Param group = GroupOn(HX_NEW_ID, 0x05, {11, 12, 13});
    ASSERT_EQ(0, HX_CreateOrModify_DG(0, &group, 1));
    EXPECT_EQ(3516218368u, group.Size.value);
    EXPECT_EQ(HX_NEW_ID, group.DGID);
    ASSERT_EQ(0, HX_CreateOrModify_DG(0, &group, 0));
    EXPECT_EQ(1, group.DGID);
    CreateOrModify_VD_Param slot = InSlot(1, 0x05, 0);
    ASSERT_EQ(0, HX_CreateOrModify_VD(0, &slot));
    EXPECT_EQ(1, slot.VDID);
    EXPECT_EQ(3516218368u, TheOne(HX_DG_GetInfo, 0, 1).VDSlotSize[0].value);
    ASSERT_EQ(0, HX_DG_Delete(0, 1));
    EXPECT_EQ(1u, All(HX_DG_GetInfo, 0).size());
    EXPECT_EQ(2u, All(HX_LD_GetInfo, 0).size());
    EXPECT_EQ(Status::kNoDiskGroup, HX_DG_Delete(0, 1));
}

TEST_F(ChangeOfVirtualDisks, SetADiskGroup) {
    DG_Config config = TheOne(HX_DG_GetConfig, 0, 0);
    config.WriteCacheOn = 1;
    ASSERT_EQ(0, HX_DG_SetConfig(0, 0, &config));
    EXPECT_EQ(1, TheOne(HX_DG_GetConfig, 0, 0).WriteCacheOn);
    EXPECT_EQ(Status::kNoDiskGroup, HX_DG_SetConfig(0, 1, &config));
}

TEST_F(ChangeOfVirtualDisks, MoveADiskGroup) {
    CreateOrModify_DG_Param param = GroupOn(0, 0x05, {0, 1, 2, 3, 11});
    ASSERT_EQ(0, HX_DG_StartMigration(0, &param));
    EXPECT_EQ(4688231424u, param.Size.value);
    EXPECT_EQ(ActivityKind::kMigration, TheOne(HX_DG_GetInfo, 0, 0).BgaType);
    EXPECT_EQ(Status::kBusy, HX_DG_StartMigration(0, &param));
}

TEST_F(ChangeOfVirtualDisks, HaveNoDiskGroupsOnTheSmallAdapter) {
    CreateOrModify_DG_Param group = GroupOn(HX_NEW_ID, 0x05, {3, 4, 5});
    EXPECT_EQ(Status::kNotSupported, HX_CreateOrModify_DG(1, &group, 0));
    EXPECT_EQ(Status::kNotSupported, HX_CreateOrModify_DG(1, &group, 1));
    CreateOrModify_VD_Param slot = InSlot(0, 0x05, 0);
    EXPECT_EQ(Status::kNotSupported, HX_CreateOrModify_VD(1, &slot));
    EXPECT_EQ(Status::kNoDiskGroup, HX_DG_StartMigration(1, &group));
    EXPECT_EQ(0u, All(HX_DG_GetInfo, 1).size());
}

TEST_F(ChangeOfVirtualDisks, NeedAnAddress) {
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetInfo(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetTargetLDInfo(0, 0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetStatus(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetConfig(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_SetConfig(0, 0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_Create(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetMaxSize(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_StartMigration(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_LD_GetMigratedLdSize(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_CreateOrModify_VD(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_DG_GetInfo(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_DG_GetConfig(0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_DG_SetConfig(0, 0, nullptr));
    EXPECT_EQ(Status::kNullAddress, HX_CreateOrModify_DG(0, nullptr, 0));
    EXPECT_EQ(Status::kNullAddress, HX_CreateOrModify_DG(0, nullptr, 1));
    EXPECT_EQ(Status::kNullAddress, HX_DG_StartMigration(0, nullptr));
}

TEST_F(ChangeOfVirtualDisks, NeedAnAdapter) {
    Create_LD_Param param = WantedOn(0x05, {11, 12, 13});
    CreateOrModify_DG_Param group = GroupOn(HX_NEW_ID, 0x05, {11, 12, 13});
    EXPECT_EQ(Status::kNoAdapter, HX_LD_Create(2, &param));
    EXPECT_EQ(Status::kNoAdapter, HX_LD_GetMaxSize(2, &param));
    EXPECT_EQ(Status::kNoAdapter, HX_LD_Delete(2, 0, 0));
    EXPECT_EQ(Status::kNoAdapter, HX_CreateOrModify_DG(2, &group, 0));
    EXPECT_EQ(Status::kNoAdapter, HX_DG_Delete(255, 0));
}

}  // namespace
