// Disk groups: set and deleted.
#include "calls/hxsim_disk_group_change.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "calls/hxsim_disk_group_create.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using DiskGroupChange = SlotTest;

TEST_F(DiskGroupChange, IsSetWithItsDisks) {
    adapter().events.clear();
    DG_Config config{};
    config.WriteCacheOn = 1;
    std::strcpy(config.Name, "OTHER");
    EXPECT_EQ(HX_SUCCESS, SetDiskGroup(adapter(), kNow, 0, config));
    EXPECT_EQ("OTHER", disk_group(0).name);
    EXPECT_TRUE(disk_group(0).write_cache);
    EXPECT_TRUE(disk(2).write_cache);
    EXPECT_FALSE(disk(3).write_cache);
    EXPECT_THAT(Events(), ElementsAre("2/16 of 0", "2/16 of 1", "2/16 of 2"));
    EXPECT_EQ(Status::kNoDiskGroup, SetDiskGroup(adapter(), kNow, 1, config));
}

TEST_F(DiskGroupChange, DeletesTheGroupWithItsVirtualDisksAndWhatRuns) {
    Made(InSlot(0, 0x05, 0, 1024));
    Made(InSlot(0, 0x05, 1, 1536));
    disk(4).spare = Spare::kGroup;
    disk(4).spare_group = 0;
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteDiskGroup(adapter(), kNow, 0));
    EXPECT_THAT(adapter().disk_groups, IsEmpty());
    EXPECT_THAT(adapter().virtual_disks, IsEmpty());
    EXPECT_THAT(adapter().homes, IsEmpty());
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_EQ(Spare::kNone, disk(4).spare);
    EXPECT_THAT(Events(), ElementsAre("1/84 of 0", "1/84 of 1", "1/3 of 0", "1/3 of 1", "2/10 of 4",
                                      "13/1 of 0"));
    EXPECT_EQ(Status::kNoDiskGroup, DeleteDiskGroup(adapter(), kNow, 0));
}

}  // namespace
}  // namespace hxsim
