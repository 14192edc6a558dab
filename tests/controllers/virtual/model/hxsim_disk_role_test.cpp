// What disks are used for.
#include "model/hxsim_disk_role.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

class RoleOfADisk : public MixedMachineTest {
protected:
    HX_U8 StatusOf(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).status; }
    HX_U16 Serves(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).serves; }
    Sectors FreeOn(HX_U16 id) { return DiskRoles(adapter()).Of(disk(id)).free; }
};

TEST_F(RoleOfADisk, StatusSaysWhatItIsUsedFor) {
    EXPECT_EQ(0x05, StatusOf(0));  // online, configured
    EXPECT_EQ(0x05, StatusOf(3));
    EXPECT_EQ(0x09, StatusOf(5));  // global spare
    EXPECT_EQ(0x01, StatusOf(6));
    EXPECT_EQ(0x41, StatusOf(7));  // group spare
}

TEST_F(RoleOfADisk, StatusSaysWhyItCannotBeHad) {
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

TEST_F(RoleOfADisk, StatusOfARebuildingDiskSaysSo) {
    BlockOf(adapter(), 0, 1)->state = State::kRebuilding;
    EXPECT_EQ(0x15, StatusOf(1));
    BlockOf(adapter(), 0, 1)->state = State::kOptimal;
}

TEST_F(RoleOfADisk, ServesAGroupOrAVirtualDiskOrNothing) {
    EXPECT_EQ(0, Serves(2));
    EXPECT_EQ(0, Serves(4));
    EXPECT_TRUE(DiskRoles(adapter()).Of(disk(4)).of_group);
    EXPECT_FALSE(DiskRoles(adapter()).Of(disk(2)).of_group);
    EXPECT_EQ(65535, Serves(5));
    EXPECT_EQ(65535, Serves(6));
    EXPECT_EQ(0, Serves(7));
}

TEST_F(RoleOfADisk, HasFreeWhatVirtualDisksCanStillHave) {
    EXPECT_EQ(360000u, FreeOn(0));
    EXPECT_EQ(0u, FreeOn(3));  // its group's
    EXPECT_EQ(0u, FreeOn(5));
    EXPECT_EQ(1000000u, FreeOn(6));
    disk(6).offline = true;
    EXPECT_EQ(0u, FreeOn(6));
}

TEST_F(RoleOfADisk, IsListedWhileVirtualDisksCountOnIt) {
    disk(0).present = false;
    disk(6).present = false;
    EXPECT_NE(nullptr, FindListed(adapter(), 0));
    EXPECT_EQ(nullptr, FindListed(adapter(), 6));
    EXPECT_EQ(nullptr, FindListed(adapter(), 99));
}

using DiskInUse = StoryTest;

TEST_F(DiskInUse, IsConfiguredWhenItServesADiskGroupWithoutVirtualDisks) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    EXPECT_TRUE(IsConfigured(adapter(), 1));
    EXPECT_FALSE(IsConfigured(adapter(), 3));
    EXPECT_EQ(&adapter().disk_groups[group], GroupOf(adapter(), 2));
    EXPECT_EQ(nullptr, GroupOf(adapter(), 3));
}

TEST_F(DiskInUse, ServesTheDiskGroupThatItIsWrittenFor) {
    AddDisks(4);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    const HX_U16 id = AddVirtualDiskTo(group);
    Cut(adapter(), 3, 0, kHundredSeconds, id, 1).target = true;
    EXPECT_EQ(&adapter().disk_groups[group], GroupOf(adapter(), 3));
    Release(adapter(), block(id, 1, true)->id);  // no migration writes it
}

TEST_F(DiskInUse, IsFreeWhenItIsReadyAndNeitherConfiguredNorASpare) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid0, {0});
    SetGlobalSpare(1);
    disk(2).offline = true;
    EXPECT_FALSE(IsFree(adapter(), disk(0)));
    EXPECT_FALSE(IsFree(adapter(), disk(1)));
    EXPECT_FALSE(IsFree(adapter(), disk(2)));
    EXPECT_TRUE(IsFree(adapter(), disk(3)));
}

}  // namespace
}  // namespace hxsim
