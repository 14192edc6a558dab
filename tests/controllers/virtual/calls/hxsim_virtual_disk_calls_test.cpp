// The virtual disks, and how large others could be.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

#include "controllers/virtual/support/list_calls.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using SimulatorVirtualDisk = SimulatorTest;

LD_Info VirtualDisk(HX_U8 adapter, HX_U16 id) { return TheOne(HX_LD_GetInfo, adapter, id); }

Ids BlocksOf(const LD_Info& info) { return {info.BlockIDs, info.BlockIDs + info.HDCount}; }

// ---- What they are ----

TEST_F(SimulatorVirtualDisk, ZeroIsARaid5OnTheDiskGroup) {
    const LD_Info info = VirtualDisk(0, 0);
    EXPECT_STREQ("DATABASE", info.Name);
    EXPECT_EQ(0, info.AdapterID);
    EXPECT_EQ(0, info.DGID);
    EXPECT_EQ(0x05, info.RaidMode);
    EXPECT_EQ(128, info.StripeBlockSize);
    EXPECT_EQ(4, info.HDCount);
    EXPECT_THAT(BlocksOf(info), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(1610612736u, info.Size.value);  // three times 256 GiB
    EXPECT_EQ(0, info.SubLDCount);
    EXPECT_EQ(1, info.NumParityDisk);
    EXPECT_EQ(0x05, info.CacheMode);
}

TEST_F(SimulatorVirtualDisk, TwoIsARaid6OnDisksOfItsOwn) {
    const LD_Info info = VirtualDisk(0, 2);
    EXPECT_STREQ("ARCHIVE", info.Name);
    EXPECT_EQ(255, info.DGID);
    EXPECT_EQ(0x06, info.RaidMode);
    EXPECT_EQ(128, info.StripeBlockSize);
    EXPECT_EQ(5, info.HDCount);
    EXPECT_THAT(BlocksOf(info), ElementsAre(4, 5, 6, 7, 8));
    EXPECT_EQ(6442450944u, info.Size.value);  // three times 1 TiB
    EXPECT_EQ(0, info.SubLDCount);
    EXPECT_EQ(2, info.NumParityDisk);
}

TEST_F(SimulatorVirtualDisk, OfAdapterOneIsARaid1OverTwoWholeDisks) {
    const LD_Info info = VirtualDisk(1, 0);
    EXPECT_STREQ("MIRROR", info.Name);
    EXPECT_EQ(1, info.AdapterID);
    EXPECT_EQ(255, info.DGID);
    EXPECT_EQ(0x01, info.RaidMode);
    EXPECT_EQ(2, info.HDCount);
    EXPECT_THAT(BlocksOf(info), ElementsAre(0, 1));
    EXPECT_EQ(586006784u, info.Size.value);
    EXPECT_EQ(0, info.NumParityDisk);
    EXPECT_EQ(0x04, info.CacheMode);
}

TEST_F(SimulatorVirtualDisk, IsOptimalAndShowsTheHostSectorsOf512Bytes) {
    for (const LD_Info& info : AllOfBoth(HX_LD_GetInfo)) {
        EXPECT_EQ(1, info.Status);
        EXPECT_EQ(0, info.BGAStatus);
        EXPECT_EQ(1, info.SectorCoefficient);
    }
}

TEST_F(SimulatorVirtualDisk, LeavesTheRestOfItsRecordZero) {
    const LD_Info info = VirtualDisk(0, 2);
    EXPECT_THAT(info.Reserved1, Each(0));
    EXPECT_THAT(info.Reserved2, Each(0));
    EXPECT_THAT(Ids(info.BlockIDs + 5, info.BlockIDs + 128), Each(0));
}

TEST_F(SimulatorVirtualDisk, CanBeAskedForAlone) {
    LD_Info info;
    std::memset(&info, 0xA5, sizeof info);
    ASSERT_EQ(0, HX_LD_GetTargetLDInfo(0, 2, &info));
    const LD_Info listed = VirtualDisk(0, 2);
    EXPECT_EQ(0, std::memcmp(&listed, &info, sizeof info));
}

TEST_F(SimulatorVirtualDisk, ThatIsNotThereCannotBeAskedForAlone) {
    LD_Info info{};
    EXPECT_EQ(207, HX_LD_GetTargetLDInfo(0, 1, &info));
    EXPECT_EQ(0, info.HDCount);
}

TEST_F(SimulatorVirtualDisk, DoesNothingInTheBackground) {
    const LD_Status status = TheOne(HX_LD_GetStatus, 0, 2);
    EXPECT_EQ(1, status.Status);
    EXPECT_EQ(0, status.Bga);
    EXPECT_EQ(0, status.BgaPercentage);
    EXPECT_EQ(0, status.BgaState);
}

TEST_F(SimulatorVirtualDisk, HasSettings) {
    const LD_Config config = TheOne(HX_LD_GetConfig, 0, 2);
    EXPECT_STREQ("ARCHIVE", config.Name);
    EXPECT_EQ(0x05, config.CacheMode);
    EXPECT_EQ(1, config.AutoRebuildOn);
    EXPECT_EQ(1, config.Status);
}

// ---- How large a new one could be ----

constexpr HX_U64 kUntouchedSize{0xA5A5A5A5A5A5A5A5};

Create_LD_Param Wanted(HX_U8 level, const Ids& disks) {
    Create_LD_Param param{};
    param.RaidMode = level;
    param.HDCount = static_cast<HX_U8>(disks.size());
    std::copy(disks.begin(), disks.end(), param.HDIDs);
    param.NumParityDisk = 2;  // as callers send it for every level
    param.Size = kUntouchedSize;
    return param;
}

struct SizeCase {
    const char* name;
    HX_U8 level;
    Ids disks;
    uint64_t sectors;
};
void PrintTo(const SizeCase& size, std::ostream* out) { *out << size.name; }

const SizeCase kSizes[] = {
    {"Raid0OnOneDisk", 0x00, {16}, 976707584},
    {"Raid0OnTwo", 0x00, {13, 14}, 7813927168},
    {"Raid0OnWhatIsLeftOfADisk", 0x00, {4}, 1759479936},
    {"Raid1", 0x01, {11, 12}, 1758109184},
    {"Raid1OnTheSmallerOfTwo", 0x01, {13, 16}, 976707584},
    {"Raid5OnThree", 0x05, {11, 12, 13}, 3516218368},
    {"Raid5OnFive", 0x05, {11, 12, 13, 14, 16}, 3906830336},
    {"Raid6OnThree", 0x06, {11, 12, 13}, 1758109184},
    {"Raid6OnFour", 0x06, {11, 12, 13, 14}, 3516218368},
    {"Raid10OnFour", 0x10, {11, 12, 13, 14}, 3516218368},
    {"Raid1eOnThree", 0x11, {11, 12, 13}, 2637163776},
    {"Raid50OnSix", 0x50, {11, 12, 13, 14, 16, 4}, 3906830336},
    {"Raid60OnSix", 0x60, {11, 12, 13, 14, 16, 4}, 1953415168},
};

class SizeOfVirtualDisk : public testing::TestWithParam<SizeCase> {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }
};

TEST_P(SizeOfVirtualDisk, IsWhatTheLevelLeavesOfTheSmallestDisk) {
    Create_LD_Param param = Wanted(GetParam().level, GetParam().disks);
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(GetParam().sectors, param.Size.value);
}

std::string SizeName(const testing::TestParamInfo<SizeCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, SizeOfVirtualDisk, testing::ValuesIn(kSizes), SizeName);

TEST_F(SimulatorVirtualDisk, IsOfWholeStripes) {
    Create_LD_Param param = Wanted(0x00, {16});
    param.StripeBlockSize = 16;
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(976707616u, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, CanBeRoundedToGibibytes) {
    Create_LD_Param param = Wanted(0x00, {16});
    param.RoundingScheme = 1;
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(975175680u, param.Size.value);  // 465 GiB
}

TEST_F(SimulatorVirtualDisk, CanBeRoundedToTensOfGibibytes) {
    Create_LD_Param param = Wanted(0x00, {16});
    param.RoundingScheme = 2;
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(964689920u, param.Size.value);  // 460 GiB
}

TEST_F(SimulatorVirtualDisk, HasMoreParityWithMoreLegs) {
    Create_LD_Param param = Wanted(0x50, {4, 5, 6, 7, 8, 11, 12, 13, 14});
    param.SubLDCount = 3;
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(10548655104u, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, IsSizedWithoutAChangeToAnythingElse) {
    Create_LD_Param param = Wanted(0x05, {11, 12, 13});
    Create_LD_Param expected = param;
    expected.Size.value = 3516218368;
    EXPECT_EQ(0, HX_LD_GetMaxSize(0, &param));
    EXPECT_EQ(0, std::memcmp(&expected, &param, sizeof param));
}

// ---- What is refused ----

struct RefusedCase {
    const char* name;
    HX_U8 adapter;
    HX_U8 status;
    HX_U8 level;
    Ids disks;
    void (*change)(Create_LD_Param&) = [](Create_LD_Param&) {};
};
void PrintTo(const RefusedCase& refused, std::ostream* out) { *out << refused.name; }

const RefusedCase kRefused[] = {
    {"LevelThatNoAdapterOffers", 0, 219, 0x03, {11, 12, 13}},
    {"LevelThatIsNone", 0, 219, 0x07, {11, 12, 13}},
    {"LevelThatTheSmallAdapterLacks", 1, 219, 0x06, {3, 4, 5, 6}},
    {"StripeBelowTheSmallest", 0, 220, 0x00, {16}, [](auto& p) { p.StripeBlockSize = 8; }},
    {"StripeAboveTheLargest", 0, 220, 0x00, {16}, [](auto& p) { p.StripeBlockSize = 512; }},
    {"StripeThatIsNoPowerOfTwo", 0, 220, 0x00, {16}, [](auto& p) { p.StripeBlockSize = 48; }},
    {"StripeThatTheSmallAdapterLacks", 1, 220, 0x00, {3}, [](auto& p) { p.StripeBlockSize = 128; }},
    {"RoundingThatIsNone", 0, 221, 0x00, {16}, [](auto& p) { p.RoundingScheme = 3; }},
    {"NoDisks", 0, 223, 0x00, {}},
    {"Raid1OnOne", 0, 223, 0x01, {11}},
    {"Raid1OnThree", 0, 223, 0x01, {11, 12, 13}},
    {"Raid5OnTwo", 0, 223, 0x05, {11, 12}},
    {"Raid6OnTwo", 0, 223, 0x06, {11, 12}},
    {"Raid10OnTwo", 0, 223, 0x10, {11, 12}},
    {"Raid10OnFive", 0, 223, 0x10, {11, 12, 13, 14, 16}},
    {"Raid1eOnFour", 0, 223, 0x11, {11, 12, 13, 14}},
    {"Raid50OnFive", 0, 223, 0x50, {11, 12, 13, 14, 16}},
    {"Raid50OnSeven", 0, 223, 0x50, {4, 5, 11, 12, 13, 14, 16}},
    {"Raid50OfOneLeg", 0, 223, 0x50, {11, 12, 13}, [](auto& p) { p.SubLDCount = 1; }},
    {"Raid60OfLegsThatAreTooShort",
     0,
     223,
     0x60,
     {11, 12, 13, 14, 16, 4},
     [](auto& p) { p.SubLDCount = 3; }},
    {"MoreDisksThanAreJoined", 1, 223, 0x00, {0, 1, 2, 3, 4, 5, 6, 7, 3}},
    {"MoreDisksThanTheRecordHolds", 0, 223, 0x00, {16}, [](auto& p) { p.HDCount = 255; }},
    {"DiskThatIsNotThere", 0, 205, 0x00, {14, 15}},
    {"DiskTwice", 0, 224, 0x00, {14, 13, 14}},
    {"SpareForAll", 0, 225, 0x01, {9, 11}},
    {"SpareOfTheGroup", 0, 225, 0x01, {11, 10}},
    {"DiskOfTheGroup", 0, 225, 0x01, {11, 0}},
    {"FullDisk", 1, 226, 0x00, {0}},
    {"LessThanItIsRoundedTo",
     1,
     226,
     0x00,
     {0},
     [](auto& p) {
         p.StripeBlockSize = 16;  // of which one is left
         p.RoundingScheme = 1;
     }},
};

class RefusedVirtualDisk : public testing::TestWithParam<RefusedCase> {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }
};

TEST_P(RefusedVirtualDisk, HasNoSize) {
    Create_LD_Param param = Wanted(GetParam().level, GetParam().disks);
    GetParam().change(param);
    EXPECT_EQ(GetParam().status, HX_LD_GetMaxSize(GetParam().adapter, &param));
    EXPECT_EQ(kUntouchedSize.value, param.Size.value);
}

std::string RefusedName(const testing::TestParamInfo<RefusedCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, RefusedVirtualDisk, testing::ValuesIn(kRefused), RefusedName);

// ---- How large another would be after a migration ----

Create_LD_Param Migrated(HX_U16 id, HX_U8 level, const Ids& disks) {
    Create_LD_Param param = Wanted(level, disks);
    param.LDID = id;
    return param;
}

TEST_F(SimulatorVirtualDisk, MigratedToAnotherLevelHasItsBlocksWhole) {
    // Four times 1 TiB: less is free beside the blocks than they have.
    Create_LD_Param param = Migrated(2, 0x05, {4, 5, 6, 7, 8});
    EXPECT_EQ(0, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(8589934592u, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, MigratedKeepsItsStripeSizeUnlessItIsGivenAnother) {
    Create_LD_Param param = Migrated(2, 0x00, {13, 14});
    EXPECT_EQ(0, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(7813926912u, param.Size.value);
    EXPECT_EQ(0, param.StripeBlockSize);
    param.StripeBlockSize = 64;
    EXPECT_EQ(0, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(7813927168u, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, MigratedOnAFullDiskHasThatDisk) {
    Create_LD_Param param = Migrated(0, 0x00, {0, 1});
    EXPECT_EQ(0, HX_LD_GetMigratedLdSize(1, &param));
    EXPECT_EQ(1172013568u, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, CannotShrinkByMigration) {
    Create_LD_Param param = Migrated(2, 0x06, {11, 12, 13, 14});
    EXPECT_EQ(227, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(kUntouchedSize.value, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, OnADiskGroupDoesNotMigrateByItself) {
    Create_LD_Param param = Migrated(0, 0x06, {11, 12, 13, 14});
    EXPECT_EQ(228, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(kUntouchedSize.value, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, ThatIsNotThereDoesNotMigrate) {
    Create_LD_Param param = Migrated(1, 0x06, {11, 12, 13, 14});
    EXPECT_EQ(207, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(kUntouchedSize.value, param.Size.value);
}

TEST_F(SimulatorVirtualDisk, DoesNotMigrateToASpare) {
    Create_LD_Param param = Migrated(2, 0x06, {4, 5, 6, 7, 9});
    EXPECT_EQ(225, HX_LD_GetMigratedLdSize(0, &param));
    EXPECT_EQ(kUntouchedSize.value, param.Size.value);
}

}  // namespace
