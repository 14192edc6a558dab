// What the levels make of disks.
#include "model/hxsim_level.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

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

TEST(LevelOfAnArray, OfOddDisksLosesHalfAStripeThatIsLeftOver) {
    // Three disks of five stripes hold fifteen, which is seven with a copy each and one alone.
    const Level& level = *FindLevel(0x11);
    EXPECT_EQ(7u * 128, DataSectors(level, 3, 0, 64, 5 * 128));
    EXPECT_EQ(5u * 128, BlockSectors(level, 3, 0, 64, 7 * 128));
}

TEST(LevelOfAnArray, HasItsOwnNumbersOfDisks) {
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
