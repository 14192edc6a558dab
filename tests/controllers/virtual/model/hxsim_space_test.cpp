// Blocks cut out of free runs, resized and given back; what levels make of them.
#include "model/hxsim_space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <string>

#include "codes/status.h"
#include "controllers/virtual/support/living_machine.h"
#include "model/hxsim_level.h"

namespace hxsim {
namespace {

using hxcodes::Status;

// A disk of 1000 sectors for a virtual disk that is only a number: the machine is not looked at as
// a whole.
class LivingSpace : public LivingMachine {
protected:
    LivingSpace() : LivingMachine(0) { AddDisk(0, 1000); }
    void TearDown() override {}
};

TEST_F(LivingSpace, IsOneFreeBlockAtFirst) {
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ(1000u, FreeSectors(adapter(), 0));
    EXPECT_FALSE(CarriesBlocks(adapter(), 0));
}

TEST_F(LivingSpace, IsCutFromTheFront) {
    const Block block = Cut(adapter(), 0, 0, 300, 7, 2);
    EXPECT_EQ("vd7.2 0+300, free 300+700", BlocksOn(0));
    EXPECT_EQ(0, block.id);
    EXPECT_TRUE(CarriesBlocks(adapter(), 0));
}

TEST_F(LivingSpace, IsCutOutOfTheMiddle) {
    Cut(adapter(), 0, 200, 300, 7, 0);
    EXPECT_EQ("free 0+200, vd7.0 200+300, free 500+500", BlocksOn(0));
}

TEST_F(LivingSpace, IsCutFromTheEnd) {
    Cut(adapter(), 0, 700, 300, 7, 0);
    EXPECT_EQ("free 0+700, vd7.0 700+300", BlocksOn(0));
}

TEST_F(LivingSpace, CanBeTakenWhole) {
    Cut(adapter(), 0, 0, 1000, 7, 0);
    EXPECT_EQ("vd7.0 0+1000", BlocksOn(0));
    EXPECT_EQ(nullptr, LongestFree(adapter(), 0));
    EXPECT_EQ(0u, FreeSectors(adapter(), 0));
}

TEST_F(LivingSpace, IsNotCutWhereItIsTaken) {
    Cut(adapter(), 0, 0, 300, 7, 0);
    EXPECT_THROW(Cut(adapter(), 0, 299, 10, 8, 0), std::logic_error);
    EXPECT_THROW(Cut(adapter(), 0, 300, 701, 8, 0), std::logic_error);
    EXPECT_THROW(Cut(adapter(), 0, 300, 0, 8, 0), std::logic_error);
    EXPECT_EQ("vd7.0 0+300, free 300+700", BlocksOn(0));
}

TEST_F(LivingSpace, GivenBackJoinsItsNeighboursOnBothSides) {
    const HX_U16 block = Cut(adapter(), 0, 200, 300, 7, 0).id;
    Release(adapter(), block);
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ(1u, adapter().blocks.size());
    EXPECT_EQ(0, adapter().blocks[0].id);
}

TEST_F(LivingSpace, GivenBackBetweenTwoOthersStaysAlone) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    const HX_U16 middle = Cut(adapter(), 0, 100, 100, 7, 1).id;
    Cut(adapter(), 0, 200, 800, 7, 2);
    Release(adapter(), middle);
    EXPECT_EQ("vd7.0 0+100, free 100+100, vd7.2 200+800", BlocksOn(0));
}

TEST_F(LivingSpace, OfOneVirtualDiskIsGivenBackWithItsTargets) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    Cut(adapter(), 0, 100, 100, 8, 0);
    Cut(adapter(), 0, 200, 100, 7, 1).target = true;
    ReleaseAll(adapter(), 7);
    EXPECT_EQ("free 0+100, vd8.0 100+100, free 200+800", BlocksOn(0));
}

TEST_F(LivingSpace, OfNoVirtualDiskIsNotGivenBack) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    ReleaseAll(adapter(), kNoVirtualDisk);
    EXPECT_EQ("vd7.0 0+100, free 100+900", BlocksOn(0));
}

TEST_F(LivingSpace, ForgetsEverythingWhenTheDiskIsReset) {
    AddDisk(1, 500);
    Cut(adapter(), 0, 0, 100, 7, 0);
    Cut(adapter(), 1, 0, 100, 7, 1);
    ResetDisk(adapter(), 0);
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ("vd7.1 0+100, free 100+400", BlocksOn(1));
}

TEST_F(LivingSpace, IsFoundAtTheFirstPlaceThatIsLongEnough) {
    Cut(adapter(), 0, 100, 100, 7, 0);
    EXPECT_EQ(0u, FirstFree(adapter(), 0, 100)->start);
    EXPECT_EQ(200u, FirstFree(adapter(), 0, 101)->start);
    EXPECT_EQ(nullptr, FirstFree(adapter(), 0, 801));
    EXPECT_EQ(200u, LongestFree(adapter(), 0)->start);
}

TEST_F(LivingSpace, TellsTargetsFromBlocksThatServe) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    EXPECT_EQ(nullptr, BlockOf(adapter(), 7, 0, true));
    Cut(adapter(), 0, 100, 100, 7, 0).target = true;
    EXPECT_EQ(0u, BlockOf(adapter(), 7, 0)->start);
    EXPECT_EQ(100u, BlockOf(adapter(), 7, 0, true)->start);
    EXPECT_EQ(nullptr, BlockOf(adapter(), 7, 1));
}

TEST_F(LivingSpace, GrowsABlockIntoWhatFollows) {
    const HX_U16 block = Cut(adapter(), 0, 0, 100, 7, 3).id;
    Resize(adapter(), block, 400);
    EXPECT_EQ("vd7.3 0+400, free 400+600", BlocksOn(0));
    Resize(adapter(), block, 1000);
    EXPECT_EQ("vd7.3 0+1000", BlocksOn(0));
}

TEST_F(LivingSpace, ShrinksABlockAndFreesItsEnd) {
    const HX_U16 block = Cut(adapter(), 0, 0, 400, 7, 3).id;
    Cut(adapter(), 0, 400, 600, 8, 0);
    Resize(adapter(), block, 100);
    EXPECT_EQ("vd7.3 0+100, free 100+300, vd8.0 400+600", BlocksOn(0));
}

TEST_F(LivingSpace, EndsWithAsManyBlocksAsTheAdapterAllows) {
    adapter().info.MaxBlockPerPD = 2;
    EXPECT_FALSE(IsFullOfBlocks(adapter(), 0));
    EXPECT_EQ(Status::kTooManyBlocks, CheckCut(adapter(), 0, 100, 100));  // three
    EXPECT_EQ(HX_SUCCESS, CheckCut(adapter(), 0, 0, 100));
    Cut(adapter(), 0, 0, 100, 7, 0);
    EXPECT_TRUE(IsFullOfBlocks(adapter(), 0));
    EXPECT_EQ(Status::kTooManyBlocks, CheckCut(adapter(), 0, 100, 100));
    EXPECT_EQ(HX_SUCCESS, CheckCut(adapter(), 0, 100, 900));  // takes the last free block whole
    EXPECT_EQ(Status::kNoSpace, CheckCut(adapter(), 0, 50, 100));
}

// ---- Levels ----

struct LevelCase {
    const char* name;
    HX_U8 code;
    unsigned disks;
    unsigned legs;
    uint64_t data;  // on blocks of 1000 stripes of 64 KiB: 128000 sectors
};

void PrintTo(const LevelCase& each, std::ostream* out) { *out << each.name; }

const LevelCase kLevelCases[] = {
    {"Raid0Of1", 0x00, 1, 0, 128000},
    {"Raid0Of5", 0x00, 5, 0, 5 * 128000},
    {"Raid1Of2", 0x01, 2, 0, 128000},
    {"Raid10Of4", 0x10, 4, 0, 2 * 128000},
    {"Raid10Of6", 0x10, 6, 0, 3 * 128000},
    {"Raid1eOf3", 0x11, 3, 0, 1500 * 128},
    {"Raid1eOf5", 0x11, 5, 0, 2500 * 128},
    {"Raid5Of3", 0x05, 3, 0, 2 * 128000},
    {"Raid5Of8", 0x05, 8, 0, 7 * 128000},
    {"Raid6Of3", 0x06, 3, 0, 128000},
    {"Raid6Of5", 0x06, 5, 0, 3 * 128000},
    {"Raid50Of6", 0x50, 6, 0, 4 * 128000},
    {"Raid50Of9In3Legs", 0x50, 9, 3, 6 * 128000},
    {"Raid60Of6In2Legs", 0x60, 6, 2, 2 * 128000},
    {"Raid60Of8", 0x60, 8, 0, 4 * 128000},
};

class LevelOfDisks : public testing::TestWithParam<LevelCase> {};

TEST_P(LevelOfDisks, HoldsItsDataAndNeedsTheSameBlocksForIt) {
    const LevelCase& each = GetParam();
    const Level& level = *FindLevel(each.code);
    ASSERT_TRUE(CanBeMade(level, each.disks, each.legs));
    EXPECT_EQ(each.data, DataSectors(level, each.disks, each.legs, 64, 128000));
    EXPECT_EQ(each.data, DataSectors(level, each.disks, each.legs, 64, 128127));
    EXPECT_EQ(128000u, BlockSectors(level, each.disks, each.legs, 64, each.data));
    EXPECT_EQ(128000u, BlockSectors(level, each.disks, each.legs, 64, each.data - 1));
    EXPECT_EQ(128128u, BlockSectors(level, each.disks, each.legs, 64, each.data + 1));
}

std::string LevelName(const testing::TestParamInfo<LevelCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, LevelOfDisks, testing::ValuesIn(kLevelCases), LevelName);

TEST(LivingLevel, OfOddDisksLosesHalfAStripeThatIsLeftOver) {
    // Three disks of five stripes hold fifteen, which is seven with a copy each and one alone.
    const Level& level = *FindLevel(0x11);
    EXPECT_EQ(7u * 128, DataSectors(level, 3, 0, 64, 5 * 128));
    EXPECT_EQ(5u * 128, BlockSectors(level, 3, 0, 64, 7 * 128));
}

TEST(LivingLevel, HasItsOwnNumbersOfDisks) {
    const auto fits = [](HX_U8 code, unsigned disks, unsigned legs) {
        return CanBeMade(*FindLevel(code), disks, legs);
    };
    EXPECT_FALSE(fits(0x00, 0, 0));
    EXPECT_FALSE(fits(0x01, 3, 0));
    EXPECT_FALSE(fits(0x10, 2, 0));
    EXPECT_FALSE(fits(0x10, 5, 0));
    EXPECT_FALSE(fits(0x11, 4, 0));
    EXPECT_FALSE(fits(0x11, 1, 0));
    EXPECT_FALSE(fits(0x05, 2, 0));
    EXPECT_FALSE(fits(0x06, 2, 0));
    EXPECT_FALSE(fits(0x50, 7, 2));
    EXPECT_FALSE(fits(0x50, 6, 3));
    EXPECT_FALSE(fits(0x50, 3, 1));
    EXPECT_FALSE(fits(0x60, 5, 0));
    EXPECT_EQ(nullptr, FindLevel(0x07));
}

}  // namespace
}  // namespace hxsim
