// Virtual disks: set, imported and deleted.
#include "calls/hxsim_virtual_disk_change.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "calls/hxsim_virtual_disk_create.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using VirtualDiskChange = ArrayTest;

LD_Config Settings(const char* name, HX_U8 cache, HX_BOOLEAN rebuild) {
    LD_Config config{};
    std::strncpy(config.Name, name, sizeof config.Name);
    config.CacheMode = cache;
    config.AutoRebuildOn = rebuild;
    return config;
}

TEST_F(VirtualDiskChange, IsSet) {
    Made(WantedOn(0x00, {0}));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, SetVirtualDisk(adapter(), kNow, 0, Settings("OTHER", 0x05, 0)));
    EXPECT_EQ("OTHER", virtual_disk(0).name);
    EXPECT_EQ(0x05, virtual_disk(0).cache);
    EXPECT_FALSE(virtual_disk(0).auto_rebuild);
    EXPECT_THAT(Events(), ElementsAre("1/6 of 0"));
}

TEST_F(VirtualDiskChange, TellsNothingOfACacheThatStaysAsItIs) {
    Made(WantedOn(0x00, {0}));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, SetVirtualDisk(adapter(), kNow, 0, Settings("OTHER", 0x80, 1)));
    EXPECT_EQ(0x00, virtual_disk(0).cache);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(VirtualDiskChange, IsNotSetToWhatIsNone) {
    Made(WantedOn(0x00, {0}));
    const std::string before = Everything();
    EXPECT_EQ(Status::kNoVirtualDisk, SetVirtualDisk(adapter(), kNow, 1, Settings("X", 0, 1)));
    EXPECT_EQ(Status::kBadValue, SetVirtualDisk(adapter(), kNow, 0, Settings("X", 0x10, 1)));
    EXPECT_EQ(before, Everything());
}

// ---- The end ----

TEST_F(VirtualDiskChange, LeavesItsDisksFreeWhenItIsDeleted) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    disk(0).has_mbr = disk(3).has_mbr = true;
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_THAT(adapter().virtual_disks, IsEmpty());
    EXPECT_THAT(adapter().homes, IsEmpty());
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_TRUE(disk(0).has_mbr);
    EXPECT_THAT(Events(), ElementsAre("1/3 of 0"));
}

TEST_F(VirtualDiskChange, TakesTheMasterBootRecordsWithIt) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    disk(0).has_mbr = disk(3).has_mbr = true;
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, true));
    EXPECT_FALSE(disk(0).has_mbr);
    EXPECT_TRUE(disk(3).has_mbr);
}

TEST_F(VirtualDiskChange, AbortsWhatGoesOnWhenItIsDeleted) {
    Create_LD_Param param = WantedOn(0x05, {0, 1, 2});
    param.InitializationOption = NumberOf(Init::kForeground);
    Made(param);
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("1/64 of 0", "1/3 of 0"));
}

TEST_F(VirtualDiskChange, ThatIsNotThereIsNotDeleted) {
    EXPECT_EQ(Status::kNoVirtualDisk, DeleteVirtualDisk(adapter(), kNow, 0, false));
}

TEST_F(VirtualDiskChange, GivesASpareThatSteppedInBack) {
    disk(7).spare = Spare::kGlobal;
    Made(WantedOn(0x05, {0, 1, 2}, 102400));
    disk(1).failed = true;
    Finish();
    ASSERT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 7, 2));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(Spare::kGlobal, disk(7).spare);
    EXPECT_EQ("free 0+1000000", BlocksOn(7));
}

// ---- Import ----

class VirtualDiskImport : public VirtualDiskChange {
protected:
    void SetUp() override {
        Made(WantedOn(0x01, {4, 5}));
        virtual_disk(0).foreign = disk(4).foreign = disk(5).foreign = true;
        Settle(adapter(), kNow);
        adapter().events.clear();
    }
};

TEST_F(VirtualDiskImport, IsTakenOverWithItsDisks) {
    EXPECT_EQ(State::kForeign, StateOf(adapter(), virtual_disk(0)));
    EXPECT_EQ(HX_SUCCESS, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_FALSE(virtual_disk(0).foreign);
    EXPECT_FALSE(disk(4).foreign);
    EXPECT_FALSE(disk(5).foreign);
    EXPECT_EQ(State::kOptimal, StateOf(adapter(), virtual_disk(0)));
    EXPECT_THAT(Events(), ElementsAre("1/9 of 0"));
}

TEST_F(VirtualDiskImport, IsNotTakenOverTwice) {
    EXPECT_EQ(HX_SUCCESS, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_EQ(Status::kNotForeign, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_EQ(Status::kNoVirtualDisk, ImportVirtualDisk(adapter(), kNow, 1));
}

TEST_F(VirtualDiskImport, IsNotSetMovedOrDeletedBefore) {
    const std::string before = Everything();
    EXPECT_EQ(Status::kWrongState, SetVirtualDisk(adapter(), kNow, 0, Settings("X", 0, 1)));
    EXPECT_EQ(Status::kWrongState, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(Status::kWrongState, RefusedMove(MovedTo(0, 0x00, {4, 5})));
    EXPECT_EQ(before, Everything());
}

}  // namespace
}  // namespace hxsim
