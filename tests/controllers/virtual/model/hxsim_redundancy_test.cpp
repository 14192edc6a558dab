// The states of arrays, from the positions that they have lost.
#include "model/hxsim_redundancy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

Positions Lost(std::initializer_list<int> positions) {
    Positions lost;
    for (const int position : positions) lost.set(static_cast<std::size_t>(position));
    return lost;
}

struct Loss {
    const char* name;
    Level level;
    HX_U8 legs, width;
    std::initializer_list<int> lost;
    State state;
};

constexpr auto kOptimal = State::kOptimal, kPartially = State::kPartiallyOptimal,
               kDegraded = State::kDegraded, kOffline = State::kOffline;

class StateOfAnArray : public testing::TestWithParam<Loss> {};

TEST_P(StateOfAnArray, FollowsFromWhatIsLost) {
    const Loss& row = GetParam();
    EXPECT_EQ(row.state, StateOfArray(row.level, row.legs, row.width, Lost(row.lost)));
}

const Loss kLosses[] = {
    {"Raid0Whole", Level::kRaid0, 0, 3, {}, kOptimal},
    {"Raid0WithoutOne", Level::kRaid0, 0, 3, {1}, kOffline},
    {"Raid1Whole", Level::kRaid1, 0, 2, {}, kOptimal},
    {"Raid1WithoutOne", Level::kRaid1, 0, 2, {0}, kDegraded},
    {"Raid1WithoutBoth", Level::kRaid1, 0, 2, {0, 1}, kOffline},
    {"Raid5WithoutOne", Level::kRaid5, 0, 4, {3}, kDegraded},
    {"Raid5WithoutTwo", Level::kRaid5, 0, 4, {0, 3}, kOffline},
    {"Raid6WithoutOne", Level::kRaid6, 0, 4, {3}, kPartially},
    {"Raid6WithoutTwo", Level::kRaid6, 0, 4, {1, 3}, kDegraded},
    {"Raid6WithoutThree", Level::kRaid6, 0, 4, {0, 1, 3}, kOffline},
    {"Raid10WithoutOneOfEachMirror", Level::kRaid10, 0, 4, {0, 3}, kDegraded},
    {"Raid10WithoutBothHalvesOfOneMirror", Level::kRaid10, 0, 4, {2, 3}, kOffline},
    {"Raid10WithoutNeighboursOfTwoMirrors", Level::kRaid10, 0, 4, {1, 2}, kDegraded},
    {"Raid1eWithoutOne", Level::kRaid1E, 0, 5, {4}, kDegraded},
    {"Raid1eWithoutTwoApart", Level::kRaid1E, 0, 5, {0, 2}, kDegraded},
    {"Raid1eWithoutNeighbours", Level::kRaid1E, 0, 5, {1, 2}, kOffline},
    {"Raid1eWithoutLastAndFirst", Level::kRaid1E, 0, 5, {0, 4}, kOffline},
    {"Raid50WithoutOneOfEachLeg", Level::kRaid50, 2, 6, {0, 5}, kDegraded},
    {"Raid50WithoutTwoOfOneLeg", Level::kRaid50, 2, 6, {3, 5}, kOffline},
    {"Raid60WithoutOneOfEachLeg", Level::kRaid60, 2, 8, {0, 7}, kPartially},
    {"Raid60WithoutTwoOfOneLeg", Level::kRaid60, 2, 8, {0, 3}, kDegraded},
    {"Raid60WithoutThreeOfOneLeg", Level::kRaid60, 2, 8, {4, 5, 6}, kOffline},
};

INSTANTIATE_TEST_SUITE_P(Levels, StateOfAnArray, testing::ValuesIn(kLosses),
                         [](const auto& each) { return std::string(each.param.name); });

using StateOfAVirtualDisk = StoryTest;
using StateOfADiskGroup = StoryTest;

TEST_F(StateOfAVirtualDisk, IsForeignWhateverItsDisksAre) {
    const HX_U16 id = AddRaid5();
    virtual_disk(id).foreign = true;
    disk(0).present = false;
    EXPECT_EQ(6, StateOf(adapter(), virtual_disk(id)));
    Settle(adapter(), kNow);  // the rows above were changed behind its back
}

TEST_F(StateOfADiskGroup, IsThatOfItsDisksWhileItHasNoVirtualDisk) {
    AddDisks(3);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    disk(1).failed = true;
    EXPECT_EQ(kDegraded, StateOf(adapter(), adapter().disk_groups[group]));
    Settle(adapter(), kNow);  // the rows above were changed behind its back
}

TEST_F(StateOfADiskGroup, IsTheWorstOfItsVirtualDisks) {
    AddDisks(3);
    const HX_U16 group = AddGroup(Level::kRaid5, {0, 1, 2});
    AddVirtualDiskTo(group);
    const HX_U16 second = AddVirtualDiskTo(group);
    block(second, 1)->state = hxcodes::State::kDegraded;
    EXPECT_EQ(kDegraded, StateOf(adapter(), adapter().disk_groups[group]));
    Settle(adapter(), kNow);  // the rows above were changed behind its back
}

}  // namespace
}  // namespace hxsim
