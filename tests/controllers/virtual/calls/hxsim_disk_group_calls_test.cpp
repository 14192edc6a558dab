// The disk group, and how large it or another could be.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using SimulatorDiskGroup = SimulatorTest;

TEST_F(SimulatorDiskGroup, IsARaid5OfFourDisks) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_STREQ("GROUP_A", group.Name);
    EXPECT_EQ(0, group.AdapterID);
    EXPECT_EQ(0x05, group.RaidMode);
    EXPECT_EQ(0, group.SubVDCount);
    EXPECT_EQ(1, group.NumParityDisk);
    EXPECT_EQ(128, group.StripeBlockSize);
    EXPECT_EQ(512u, group.BlockSize);
    EXPECT_EQ(1, group.Status);
    EXPECT_EQ(4, group.PDCount);
    EXPECT_THAT(Ids(group.PDIDs, group.PDIDs + 4), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(Ids(group.PDIDs + 4, group.PDIDs + 128), Each(0));
}

TEST_F(SimulatorDiskGroup, CountsItsSpace) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_EQ(3516173568u, group.TotalManagedSpace.value);
    EXPECT_EQ(1905560832u, group.RemainingManagedSpace.value);
    EXPECT_EQ(1172058032u, group.SmallestAvailablePDSize.value);
}

TEST_F(SimulatorDiskGroup, HasItsVirtualDiskInOneSlot) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_EQ(1, group.VDSlotCount);
    EXPECT_EQ(1610612736u, group.VDSlotSize[0].value);
    EXPECT_EQ(0u, group.VDSlotSize[1].value);
    EXPECT_EQ(0, group.VDIDs[0]);
    EXPECT_THAT(Ids(group.VDIDs + 1, group.VDIDs + 32), Each(65535));
}

TEST_F(SimulatorDiskGroup, HasASpareOfItsOwn) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_EQ(1, group.SparePDCount);
    EXPECT_THAT(group.SparePDIDs, ElementsAre(10, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(SimulatorDiskGroup, DoesNothingInTheBackground) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_EQ(0, group.BgaType);
    EXPECT_EQ(0, group.BgaState);
}

TEST_F(SimulatorDiskGroup, LeavesTheReservedBytesZero) {
    const DG_Info group = TheOne(HX_DG_GetInfo, 0, 0);
    EXPECT_THAT(group.Reserved1, Each(0));
    EXPECT_THAT(group.Reserved2, Each(0));
    EXPECT_THAT(group.Reserved3, Each(0));
    EXPECT_THAT(group.Reserved4, Each(0));
    EXPECT_EQ(0, group.Reserved5);
    EXPECT_THAT(group.Reserved6, Each(0));
}

TEST_F(SimulatorDiskGroup, HasSettings) {
    const DG_Config config = TheOne(HX_DG_GetConfig, 0, 0);
    EXPECT_STREQ("GROUP_A", config.Name);
    EXPECT_EQ(0, config.WriteCacheOn);
    EXPECT_THAT(config.Reserved, Each(0));
}

// ---- How large a group could be ----

constexpr HX_U64 kUntouchedGroupSize{0xA5A5A5A5A5A5A5A5};

CreateOrModify_DG_Param WantedGroup(HX_U16 id, HX_U8 level, const Ids& disks) {
    CreateOrModify_DG_Param param{};
    param.DGID = id;
    param.RaidMode = level;
    param.PDCount = static_cast<HX_U8>(disks.size());
    std::copy(disks.begin(), disks.end(), param.PDIDs);
    param.Size = kUntouchedGroupSize;
    return param;
}

TEST_F(SimulatorDiskGroup, ThatIsNewIsSizedOnFreeDisks) {
    CreateOrModify_DG_Param param = WantedGroup(65535, 0x05, {11, 12, 13});
    CreateOrModify_DG_Param expected = param;
    expected.Size.value = 3516218368;
    EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(0, std::memcmp(&expected, &param, sizeof param));
}

TEST_F(SimulatorDiskGroup, OnItsOwnDisksHasTheSizeThatItHas) {
    CreateOrModify_DG_Param param = WantedGroup(0, 0x05, {0, 1, 2, 3});
    param.BlockSize = 512;
    EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(3516173568u, param.Size.value);
}

TEST_F(SimulatorDiskGroup, KeepsItsStripeSizeUnlessItIsGivenAnother) {
    CreateOrModify_DG_Param param = WantedGroup(0, 0x05, {0, 1, 2, 3});
    param.StripeBlockSize = 64;
    EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(3516173952u, param.Size.value);
}

TEST_F(SimulatorDiskGroup, GrowsByAFreeDisk) {
    CreateOrModify_DG_Param param = WantedGroup(0, 0x05, {0, 1, 2, 3, 11});
    EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(4688231424u, param.Size.value);
}

TEST_F(SimulatorDiskGroup, OfTwoLegsHasTheParityOfBoth) {
    CreateOrModify_DG_Param param = WantedGroup(0, 0x50, {0, 1, 2, 3, 11, 12});
    param.SubVDCount = 2;
    EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(4688231424u, param.Size.value);
}

struct RefusedGroupCase {
    const char* name;
    HX_U8 status;
    HX_U16 id;
    HX_U8 level;
    Ids disks;
    void (*change)(CreateOrModify_DG_Param&) = [](CreateOrModify_DG_Param&) {};
};
void PrintTo(const RefusedGroupCase& refused, std::ostream* out) { *out << refused.name; }

const RefusedGroupCase kRefusedGroups[] = {
    {"GroupThatIsNotThere", 208, 1, 0x05, {11, 12, 13}},
    {"SectorsOf4096Bytes", 222, 65535, 0x05, {11, 12, 13}, [](auto& p) { p.BlockSize = 4096; }},
    {"LevelThatIsNotOffered", 219, 65535, 0x03, {11, 12, 13}},
    {"StripeThatIsNotOffered",
     220,
     65535,
     0x05,
     {11, 12, 13},
     [](auto& p) { p.StripeBlockSize = 1024; }},
    {"TooFewDisks", 223, 65535, 0x05, {11, 12}},
    {"MoreDisksThanTheRecordHolds", 223, 65535, 0x00, {11}, [](auto& p) { p.PDCount = 129; }},
    {"DiskThatIsNotThere", 205, 65535, 0x05, {11, 12, 15}},
    {"DiskTwice", 224, 65535, 0x05, {11, 12, 11}},
    {"DiskOfAnotherGroup", 225, 65535, 0x05, {11, 12, 0}},
    {"DiskOfAVirtualDisk", 225, 65535, 0x05, {11, 12, 4}},
    {"SpareForAll", 225, 65535, 0x05, {11, 12, 9}},
    {"SpareOfTheGroup", 225, 0, 0x05, {0, 1, 2, 3, 10}},
    {"LessThanItsVirtualDisksTake", 227, 0, 0x06, {0, 1, 2}},
};

class RefusedDiskGroup : public testing::TestWithParam<RefusedGroupCase> {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }
};

TEST_P(RefusedDiskGroup, HasNoSize) {
    CreateOrModify_DG_Param param = WantedGroup(GetParam().id, GetParam().level, GetParam().disks);
    GetParam().change(param);
    EXPECT_EQ(GetParam().status, HX_CreateOrModify_DG(0, &param, 1));
    EXPECT_EQ(kUntouchedGroupSize.value, param.Size.value);
}

std::string RefusedGroupName(const testing::TestParamInfo<RefusedGroupCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Each, RefusedDiskGroup, testing::ValuesIn(kRefusedGroups),
                         RefusedGroupName);

TEST_F(SimulatorDiskGroup, IsOnlySizedWhateverNumberSaysSo) {
    for (const HX_U8 size_only : {HX_U8{1}, HX_U8{2}, HX_U8{255}}) {
        CreateOrModify_DG_Param param = WantedGroup(65535, 0x05, {11, 12, 13});
        EXPECT_EQ(0, HX_CreateOrModify_DG(0, &param, size_only));
        EXPECT_EQ(3516218368u, param.Size.value);
        EXPECT_EQ(65535, param.DGID);
    }
    EXPECT_EQ(1u, All(HX_DG_GetInfo, 0).size());
}

TEST_F(SimulatorDiskGroup, IsNotMadeLargerThanItsDisks) {
    CreateOrModify_DG_Param param = WantedGroup(65535, 0x05, {11, 12, 13});
    EXPECT_EQ(226, HX_CreateOrModify_DG(0, &param, 0));
    EXPECT_EQ(kUntouchedGroupSize.value, param.Size.value);
    EXPECT_EQ(65535, param.DGID);
    EXPECT_EQ(1u, All(HX_DG_GetInfo, 0).size());
}

TEST_F(SimulatorDiskGroup, IsNothingThatTheSmallAdapterHas) {
    CreateOrModify_DG_Param param = WantedGroup(65535, 0x05, {3, 4, 5});
    EXPECT_EQ(202, HX_CreateOrModify_DG(1, &param, 1));
    EXPECT_EQ(kUntouchedGroupSize.value, param.Size.value);
}

}  // namespace
