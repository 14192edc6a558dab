#include "model/group_room.h"

#include <gtest/gtest.h>

#include <vector>

#include "codes/level.h"
#include "codes/named.h"

namespace vexorctl {
namespace {

constexpr std::uint64_t kFree = 255;

// Three disks of RAID 5 in stripes of 64 KiB, which are 128 sectors.
const Striping kStriping{hxcodes::FindCode(hxcodes::kLevels, 5U), 3, 0, 64};

// On each disk 1280 sectors of virtual disk 1, and behind them so many free ones.
std::vector<DiskRun> RunsWith(std::uint64_t on_first, std::uint64_t on_others) {
    std::vector<DiskRun> runs;
    for (const std::uint64_t disk : {0U, 1U, 2U}) {
        runs.push_back({disk, 1, 0, 1280});
        runs.push_back({disk, kFree, 1280, disk == 0 ? on_first : on_others});
    }
    return runs;
}

TEST(TheRoomOnAGroup, IsWhatIsFreeBehindOnEveryDisk) {
    EXPECT_EQ(MostInPlace(RunsWith(1280, 1280), 1, kStriping), 5120U);
    EXPECT_EQ(MostInPlace(RunsWith(0, 1280), 1, kStriping), 2560U);
    EXPECT_EQ(MostInPlace(RunsWith(127, 1280), 1, kStriping), 2560U);
    EXPECT_EQ(MostInPlace(RunsWith(128, 1280), 1, kStriping), 2816U);
}

TEST(TheRoomOnAGroup, IsNotWhatIsFreeElsewhere) {
    std::vector<DiskRun> runs = RunsWith(0, 0);
    for (const std::uint64_t disk : {0U, 1U, 2U}) runs.push_back({disk, kFree, 5000, 1280});
    EXPECT_EQ(MostInPlace(runs, 1, kStriping), 2560U);
}

TEST(TheRoomOnAGroup, IsNoneForAVirtualDiskWithoutBlocks) {
    EXPECT_EQ(MostInPlace(RunsWith(1280, 1280), 2, kStriping), 0U);
}

TEST(ASize, IsThatOfWholeStripes) {
    EXPECT_EQ(InWholeStripes(kStriping, 256), 256U);
    EXPECT_EQ(InWholeStripes(kStriping, 1), InWholeStripes(kStriping, 256));
    EXPECT_EQ(InWholeStripes(kStriping, 257), 512U);
    // How many stripes there would be is not known.
    EXPECT_EQ(InWholeStripes({kStriping.level, 3, 0, 0}, 257), 257U);
    EXPECT_EQ(InWholeStripes({kStriping.level, 2, 0, 64}, 257), 257U);
}

}  // namespace
}  // namespace vexorctl
