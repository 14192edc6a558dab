// World wide names and links.
#include "model/hxsim_link.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using LinkOfADisk = MixedMachineTest;

TEST_F(LinkOfADisk, NameSaysWhichDeviceItIs) {
    EXPECT_EQ(0x50A4858000000000u, WorldWideName(Device::kAdapter, 0, 0, 0));
    EXPECT_EQ(0x50A4858300050102u, WorldWideName(Device::kDisk, 1, 5, 2));
    EXPECT_EQ(0x50A4858812340100u, WorldWideNameOfNewDisk(1, 0x1234));
}

TEST_F(LinkOfADisk, LinkNamesNoMorePhysThanItHasRoomFor) {
    disk(6).phys = 255;
    Link_Entity link;
    SetLink(link, adapter(), disk(6));
    EXPECT_EQ(8, link.Self.PhyCnt);
    EXPECT_EQ(8, link.Parent.PhyCnt);
}

}  // namespace
}  // namespace hxsim
