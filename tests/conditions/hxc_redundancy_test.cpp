// What survives: per leg, pair or pair of neighbours.
#include "conditions/hxc_redundancy.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "codes/disk.h"
#include "codes/state.h"

namespace hxconditions {
namespace {

struct Case {
    const char* name;
    unsigned level, legs, width;
    std::vector<unsigned> lost;
    std::optional<unsigned> survives;
    bool is_offline;
    std::vector<unsigned> needed;
};

const Case kCases[] = {
    {"Raid0", 0x00, 0, 2, {}, 0, false, {}},
    {"Raid0WithOneLost", 0x00, 0, 2, {1}, 0, true, {}},
    {"Raid1", 0x01, 0, 2, {}, 1, false, {}},
    {"Raid1WithOneLost", 0x01, 0, 2, {0}, 0, false, {1}},
    {"Raid1WithBothLost", 0x01, 0, 2, {0, 1}, 0, true, {}},
    {"Raid5", 0x05, 0, 3, {}, 1, false, {}},
    {"Raid5WithOneLost", 0x05, 0, 3, {1}, 0, false, {0, 2}},
    {"Raid6WithOneLost", 0x06, 0, 4, {1}, 1, false, {}},
    {"Raid6WithTwoLost", 0x06, 0, 4, {1, 2}, 0, false, {0, 3}},
    {"Raid6WithThreeLost", 0x06, 0, 4, {1, 2, 3}, 0, true, {}},
    {"Raid10WithOneLost", 0x10, 0, 4, {0}, 0, false, {1}},
    {"Raid10WithOneLostOfEachPair", 0x10, 0, 4, {0, 3}, 0, false, {1, 2}},
    {"Raid10WithAPairLost", 0x10, 0, 4, {2, 3}, 0, true, {}},
    {"Raid1EWithOneLost", 0x11, 0, 5, {2}, 0, false, {1, 3}},
    {"Raid1EWithTwoApartLost", 0x11, 0, 5, {0, 2}, 0, false, {1, 4, 3}},
    {"Raid1EWithNeighboursLost", 0x11, 0, 5, {4, 0}, 0, true, {3, 1}},
    {"Raid50WithOneLost", 0x50, 2, 6, {0}, 0, false, {1, 2}},
    {"Raid60WithOneLostOfEachLeg", 0x60, 2, 8, {0, 4}, 1, false, {}},
    {"AnUnknownLevel", 0x77, 0, 4, {1}, std::nullopt, false, {}},
};

class AVirtualDisk : public testing::TestWithParam<Case> {};

std::vector<unsigned> Sorted(std::vector<unsigned> list) {
    std::ranges::sort(list);
    return list;
}

TEST_P(AVirtualDisk, SurvivesWhatItsWorstLegSurvives) {
    VirtualDisk virtual_disk;
    virtual_disk.level = GetParam().level;
    virtual_disk.legs = GetParam().legs;
    std::vector<Disk> disks;
    for (unsigned i = 0; i < GetParam().width; ++i) {
        virtual_disk.members.push_back({i, NumberOf(hxcodes::State::kOptimal), 100});
        Disk& disk = disks.emplace_back();
        disk.id = i;
        disk.status = NumberOf(hxcodes::DiskBit::kOnline) | NumberOf(hxcodes::DiskBit::kConfigured);
    }
    for (const unsigned lost : GetParam().lost) disks[lost].status = 0x84;
    const Redundancy redundancy = RedundancyOf(virtual_disk, disks);
    EXPECT_EQ(redundancy.survives, GetParam().survives);
    EXPECT_EQ(redundancy.is_offline, GetParam().is_offline);
    EXPECT_EQ(redundancy.lost, Sorted(GetParam().lost));
    EXPECT_EQ(Sorted(redundancy.needed), Sorted(GetParam().needed));
}

std::string LevelName(const testing::TestParamInfo<Case>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Levels, AVirtualDisk, testing::ValuesIn(kCases), LevelName);

TEST(ABlockThatIsBeingRebuilt, CountsAsLost) {
    VirtualDisk virtual_disk;
    virtual_disk.level = 0x05;
    for (unsigned i = 0; i < 3; ++i) {
        virtual_disk.members.push_back({i, NumberOf(hxcodes::State::kOptimal), 100});
    }
    virtual_disk.members[1].state = NumberOf(hxcodes::State::kRebuilding);
    EXPECT_EQ(RedundancyOf(virtual_disk, {}).survives, 0U);
}

TEST(APositionWhoseDiskIsNotListed, CountsAsLost) {
    VirtualDisk virtual_disk;
    virtual_disk.level = 0x01;
    virtual_disk.members = {{0, NumberOf(hxcodes::State::kOptimal), 100},
                            {std::nullopt, std::nullopt, 0}};
    std::vector<Disk> disks(1);
    EXPECT_EQ(RedundancyOf(virtual_disk, disks).lost, std::vector<unsigned>{1});
}

TEST(AVirtualDiskWithoutBlocks, SurvivesNobodyKnowsWhat) {
    VirtualDisk virtual_disk;
    virtual_disk.level = 0x05;
    EXPECT_FALSE(RedundancyOf(virtual_disk, {}).survives);
}

}  // namespace
}  // namespace hxconditions
