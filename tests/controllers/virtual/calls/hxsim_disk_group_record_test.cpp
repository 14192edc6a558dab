// The records of disk groups.
#include "calls/hxsim_disk_group_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::Each;
using testing::ElementsAre;

class DiskGroupRecord : public SlotTest {
protected:
    DG_Info Info() { return DescribedGroup(); }
};

TEST_F(DiskGroupRecord, AreListedWithTheirSizes) {
    Made(InSlot(0, 0x05, 31, 1024));
    Made(InSlot(0, 0x05, 0, 2048));
    const DG_Info info = Info();
    EXPECT_EQ(2, info.VDSlotCount);
    EXPECT_EQ(2048u, info.VDSlotSize[0].value);
    EXPECT_EQ(0u, info.VDSlotSize[1].value);
    EXPECT_EQ(1024u, info.VDSlotSize[31].value);
    EXPECT_EQ(1, info.VDIDs[0]);
    EXPECT_THAT(Ids(info.VDIDs + 1, info.VDIDs + 31), Each(65535));
    EXPECT_EQ(0, info.VDIDs[31]);
}

TEST_F(DiskGroupRecord, AreDescribedWithTheirGroup) {
    disk(6).spare = disk(4).spare = Spare::kGroup;
    disk(6).spare_group = disk(4).spare_group = 0;
    const DG_Info info = Info();
    EXPECT_EQ(0, info.DGID);
    EXPECT_EQ(0x05, info.RaidMode);
    EXPECT_EQ(0, info.SubVDCount);
    EXPECT_EQ(1, info.NumParityDisk);
    EXPECT_EQ(64, info.StripeBlockSize);
    EXPECT_EQ(512u, info.BlockSize);
    EXPECT_EQ(State::kOptimal, info.Status);
    EXPECT_EQ(3, info.PDCount);
    EXPECT_THAT(Ids(info.PDIDs, info.PDIDs + 4), ElementsAre(0, 1, 2, 0));
    EXPECT_EQ(2, info.SparePDCount);
    EXPECT_THAT(info.SparePDIDs, ElementsAre(4, 6, 0, 0, 0, 0, 0, 0));
}

}  // namespace
}  // namespace hxsim
