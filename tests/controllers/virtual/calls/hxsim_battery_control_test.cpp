// What callers do to the battery.
#include "calls/hxsim_battery_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "incidents/hxsim_incident_battery.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_battery.h"

namespace hxsim {
namespace {

using BatteryControl = MixedMachineTest;

TEST_F(BatteryControl, IsNotSwitchedToWhatItIs) {
    const std::string before = Everything();
    ExpectRefused(Status::kNoChange, SwitchBattery(adapter(), kNow, true), before);
}

TEST_F(BatteryControl, TakesNoBoundsThatMakeNoSense) {
    const std::string before = Everything();
    const auto set = [&](HX_U8 kind, HX_U16 lower, HX_U16 upper) {
        return SetThreshold(adapter(), kNow, kind, lower, upper);
    };
    ExpectRefused(Status::kBadValue, set(1, 50, 50), before);
    ExpectRefused(Status::kBadValue, set(1, 5, 101), before);
    ExpectRefused(Status::kBadValue, set(2, 4300, 3500), before);
    ExpectRefused(Status::kBadValue, set(2, 999, 4300), before);
    ExpectRefused(Status::kBadValue, set(2, 3500, 20001), before);
    ExpectRefused(Status::kBadAction, set(0, 5, 50), before);
    ExpectRefused(Status::kBadAction, set(3, 5, 50), before);
}

TEST_F(BatteryControl, HasNoBoundsAndNoRelearnCycleWithoutTheFeature) {
    battery().info.featureSupport = 0;
    const std::string before = Everything();
    ExpectRefused(Status::kNotSupported, SetThreshold(adapter(), kNow, 1, 5, 50), before);
    ExpectRefused(Status::kNotSupported, ChangePower(adapter(), kNow, 0), before);
}

TEST_F(BatteryControl, IsNotChargedWhenFullAndNotEmptiedWhenEmpty) {
    std::string before = Everything();
    ExpectRefused(Status::kNoChange, ChangePower(adapter(), kNow, 1), before);
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 0));
    before = Everything();
    ExpectRefused(Status::kNoChange, ChangePower(adapter(), kNow, 2), before);
    ExpectRefused(Status::kNoChange, ChangePower(adapter(), kNow, 1), before);
}

TEST_F(BatteryControl, KnowsNoOtherActions) {
    const std::string before = Everything();
    ExpectRefused(Status::kBadAction, ChangePower(adapter(), kNow, 3), before);
    ExpectRefused(Status::kBadAction, ChangePower(adapter(), kNow, 255), before);
}

TEST_F(BatteryControl, CanBeAskedNothingOnceItIsRemoved) {
    ASSERT_TRUE(RemoveBattery(adapter(), kNow));
    const std::string before = Everything();
    ExpectRefused(Status::kNoBattery, SetThreshold(adapter(), kNow, 1, 5, 50), before);
    ExpectRefused(Status::kNoBattery, ChangePower(adapter(), kNow, 0), before);
    ExpectRefused(Status::kNoBattery, SwitchBattery(adapter(), kNow, false), before);
}

}  // namespace
}  // namespace hxsim
