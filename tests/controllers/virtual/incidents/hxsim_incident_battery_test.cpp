// What hands do to the battery.
#include "incidents/hxsim_incident_battery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calls/hxsim_battery_control.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_battery.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

constexpr Time kMinute = 60'000, kHour = 60 * kMinute;

using BatteryIncident = BatteryTest;

TEST_F(BatteryIncident, LeavesTheCacheUnprotectedWhenItIsRemoved) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kDischarge)));
    ASSERT_TRUE(RemoveBattery(adapter(), kNow));
    EXPECT_TRUE(ForcesWriteThrough(adapter()));
    EXPECT_EQ(kNever, NextTransition(battery()));
    EXPECT_THAT(Events(), ElementsAre("9/16 of 0", "9/5 of 0", "9/28 of 0"));
}

TEST_F(BatteryIncident, IsRemovedOnce) {
    ASSERT_TRUE(RemoveBattery(adapter(), kNow));
    EXPECT_EQ("The battery of adapter 0 has been removed; replace it first.",
              RemoveBattery(adapter(), kNow).refusal);
    EXPECT_EQ("The battery of adapter 0 has been removed; replace it first.",
              SetBatteryCharge(adapter(), kNow, 50).refusal);
}

TEST_F(BatteryIncident, IsReplacedByANewOneThatIsChargedFirst) {
    battery().info.recharge_cycle = 400;
    ASSERT_TRUE(RemoveBattery(adapter(), kNow));
    adapter().events.clear();
    ASSERT_TRUE(ReplaceBattery(adapter(), kNow));
    const BBU_Info info = At(kNow);
    EXPECT_EQ(1100, info.maxCapacity);
    EXPECT_EQ(440, info.curCapacity);
    EXPECT_EQ(40, info.percentage);
    EXPECT_EQ(0, info.recharge_cycle);
    EXPECT_EQ(0x07u, info.status);  // present, charging, safe
    EXPECT_EQ(72, info.time_to_full);
    EXPECT_THAT(Events(), ElementsAre("9/2 of 0", "9/17 of 0", "9/29 of 0"));
}

TEST_F(BatteryIncident, IsReplacedWhileItIsThere) {
    ASSERT_TRUE(ReplaceBattery(adapter(), kNow));
    EXPECT_THAT(Events(), ElementsAre("9/4 of 0", "9/17 of 0"));
}

TEST_F(BatteryIncident, IsSetToNoMoreThanAllOfItsCharge) {
    EXPECT_EQ("A battery is charged to 0 to 100 percent, not 101.",
              SetBatteryCharge(adapter(), kNow, 101).refusal);
    EXPECT_EQ(100, At(kNow).percentage);
}

TEST_F(BatteryIncident, IsNotPutWhereThereIsNoPlace) {
    adapter().batteries.clear();
    const std::string sentence = "Adapter 0 has no place for a battery; take another adapter.";
    EXPECT_EQ(sentence, ReplaceBattery(adapter(), kNow).refusal);
    EXPECT_EQ(sentence, RemoveBattery(adapter(), kNow).refusal);
    EXPECT_EQ(sentence, SetBatteryTemperature(adapter(), kNow, 20).refusal);
    EXPECT_EQ(sentence, SetBatteryVoltage(adapter(), kNow, 4000).refusal);
}

}  // namespace
}  // namespace hxsim
