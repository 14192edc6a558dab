// How much data the levels keep on disks.
#include "model/hxsim_stripes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

struct LevelCase {
    const char* name;
    Level level;
    unsigned disks;
    unsigned legs;
    uint64_t data;  // on blocks of 1000 stripes of 64 KiB: 128000 sectors
};

void PrintTo(const LevelCase& each, std::ostream* out) { *out << each.name; }

const LevelCase kLevelCases[] = {
    {"Raid0Of1", Level::kRaid0, 1, 0, 128000},
    {"Raid0Of5", Level::kRaid0, 5, 0, 5 * 128000},
    {"Raid1Of2", Level::kRaid1, 2, 0, 128000},
    {"Raid10Of4", Level::kRaid10, 4, 0, 2 * 128000},
    {"Raid10Of6", Level::kRaid10, 6, 0, 3 * 128000},
    {"Raid1eOf3", Level::kRaid1E, 3, 0, 1500 * 128},
    {"Raid1eOf5", Level::kRaid1E, 5, 0, 2500 * 128},
    {"Raid5Of3", Level::kRaid5, 3, 0, 2 * 128000},
    {"Raid5Of8", Level::kRaid5, 8, 0, 7 * 128000},
    {"Raid6Of3", Level::kRaid6, 3, 0, 128000},
    {"Raid6Of5", Level::kRaid6, 5, 0, 3 * 128000},
    {"Raid50Of6", Level::kRaid50, 6, 0, 4 * 128000},
    {"Raid50Of9In3Legs", Level::kRaid50, 9, 3, 6 * 128000},
    {"Raid60Of6In2Legs", Level::kRaid60, 6, 2, 2 * 128000},
    {"Raid60Of8", Level::kRaid60, 8, 0, 4 * 128000},
};

class LevelOfDisks : public testing::TestWithParam<LevelCase> {};

TEST_P(LevelOfDisks, HoldsItsDataAndNeedsTheSameBlocksForIt) {
    const LevelCase& each = GetParam();
    const Level level = each.level;
    ASSERT_TRUE(CanBeMade(RowOf(level), each.disks, each.legs));
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
    EXPECT_EQ(7u * 128, DataSectors(Level::kRaid1E, 3, 0, 64, 5 * 128));
    EXPECT_EQ(5u * 128, BlockSectors(Level::kRaid1E, 3, 0, 64, 7 * 128));
}

}  // namespace
}  // namespace hxsim
