// The battery of the virtual controller's larger adapter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

using SimulatorBattery = SimulatorTest;

BBU_Info Battery() {
    BBU_Info info;
    std::memset(&info, 0xA5, sizeof info);
    EXPECT_EQ(0, HX_BBU_GetInfo(0, &info));
    return info;
}

TEST_F(SimulatorBattery, IsPresentAndSafeAfterItsLastCharge) {
    EXPECT_EQ(0x05u, Battery().status);
    EXPECT_EQ(0x03u, Battery().prev_status);
    EXPECT_EQ(0x03, Battery().featureSupport);
    EXPECT_EQ(0, Battery().flags);
    EXPECT_EQ(23, Battery().recharge_cycle);
}

TEST_F(SimulatorBattery, HoldsTheShareOfItsCapacityThatItSays) {
    const BBU_Info info = Battery();
    EXPECT_EQ(1900, info.supportMaxCapacity);
    EXPECT_EQ(600, info.supportMinCapacity);
    EXPECT_EQ(1750, info.maxCapacity);
    EXPECT_EQ(1680, info.curCapacity);
    EXPECT_EQ(96, info.percentage);
    EXPECT_EQ(80, info.percent_to_charge);
}

TEST_F(SimulatorBattery, IsNeitherChargedNorDischarged) {
    EXPECT_EQ(65535, Battery().time_to_empty);
    EXPECT_EQ(65535, Battery().time_to_full);
}

TEST_F(SimulatorBattery, IsWithinItsBounds) {
    const BBU_Info info = Battery();
    EXPECT_EQ(4012, info.voltage);
    EXPECT_EQ(3600, info.volt_lowerbound);
    EXPECT_EQ(4250, info.volt_upperbound);
    EXPECT_EQ(29, info.temperature);
    EXPECT_EQ(5, info.temp_lowerbound);
    EXPECT_EQ(50, info.temp_upperbound);
}

TEST_F(SimulatorBattery, LeavesTheReservedBytesZero) {
    EXPECT_THAT(Battery().Reserved, testing::Each(0));
}

TEST_F(SimulatorBattery, IsMissingOnTheSmallerAdapter) {
    BBU_Info info{};
    EXPECT_EQ(212, HX_BBU_GetInfo(1, &info));
    EXPECT_EQ(0, info.maxCapacity);
}

}  // namespace
