// BIOS images: what they are made of, and for which adapter they are good.
#include "model/hxsim_bios_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using BiosImage = MixedMachineTest;

TEST_F(BiosImage, SampleIsAnOptionRomWithVersionAndSubsystem) {
    const std::string image = SampleBios(adapter().info);
    ASSERT_EQ(40960u, image.size());
    EXPECT_EQ(std::string("\x55\xAA\x50\0\0\0\x03\0\x01\0\0\0\x1B\0", 14), image.substr(0, 14));
    EXPECT_EQ(std::string("\xC0\xFA\x01\0", 4), image.substr(32, 4));
    unsigned sum = 0;
    for (const char each : image) sum += static_cast<unsigned char>(each);
    EXPECT_EQ(0u, sum % 256);
}

TEST_F(BiosImage, SampleIsGoodForItsAdapterAndNoOther) {
    const std::string image = SampleBios(adapter().info);
    EXPECT_TRUE(IsBiosFor(adapter().info, image));
    Adapter_Info other = adapter().info;
    other.SubDevID = 2;
    EXPECT_FALSE(IsBiosFor(other, image));
    other = adapter().info;
    other.SubVenID = 0xFAC1;
    EXPECT_FALSE(IsBiosFor(other, image));
}

TEST_F(BiosImage, ImageThatLacksAnythingIsNotGood) {
    const std::string good = SampleBios(adapter().info);
    std::string image = good;
    image[0] = 'U' + 1;
    image[1] = static_cast<char>(0xA9);  // the sum stays right
    EXPECT_FALSE(IsBiosFor(adapter().info, image));
    image = good;
    image[1000] = static_cast<char>(image[1000] + 1);
    EXPECT_FALSE(IsBiosFor(adapter().info, image));
    EXPECT_FALSE(IsBiosFor(adapter().info, good + std::string(512, '\0')));
    EXPECT_FALSE(IsBiosFor(adapter().info, good.substr(0, 40448)));
    EXPECT_FALSE(IsBiosFor(adapter().info, ""));
    EXPECT_FALSE(IsBiosFor(adapter().info, good.substr(0, 63)));
}

}  // namespace
}  // namespace hxsim
