// The battery: how its charge goes with time, its bounds, and what it means for the write cache.
#include "rules/hxsim_battery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calls/hxsim_battery_control.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "controllers/virtual/support/test_machine.h"
#include "incidents/hxsim_incident_battery.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Time kMinute = 60'000, kHour = 60 * kMinute;

using BatteryRules = BatteryTest;

// ---- Charge ----

TEST_F(BatteryRules, DoesNothingByItselfWhileItIsFull) {
    EXPECT_EQ(kNever, NextTransition(battery()));
    const BBU_Info info = At(kNow + 1000 * kHour);
    EXPECT_EQ(1000, info.curCapacity);
    EXPECT_EQ(65535, info.time_to_empty);
    EXPECT_EQ(65535, info.time_to_full);
}

TEST_F(BatteryRules, LosesHalfOfItsChargeInTwoHours) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kDischarge)));
    const BBU_Info info = At(kNow + 2 * kHour);
    EXPECT_EQ(500, info.curCapacity);
    EXPECT_EQ(50, info.percentage);
    EXPECT_EQ(120, info.time_to_empty);
    EXPECT_EQ(65535, info.time_to_full);
    EXPECT_EQ(0x0Du, info.status);  // present, safe, discharging
}

TEST_F(BatteryRules, ActsAtEachTenthOfItsCharge) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kDischarge)));
    EXPECT_EQ(kNow + 14'400, NextTransition(battery()));  // one mAh below all of it
    At(kNow + 14'400);
    EXPECT_EQ(kNow + 101 * 14'400, NextTransition(battery()));
}

TEST_F(BatteryRules, IsChargedByItselfOnceItIsEmpty) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kDischarge)));
    const BBU_Info info = At(kNow + 4 * kHour);
    EXPECT_EQ(0, info.curCapacity);
    EXPECT_EQ(0x03u, info.status);  // present, charging
    EXPECT_EQ(120, info.time_to_full);
    EXPECT_EQ(1000, At(kNow + 6 * kHour).curCapacity);
    EXPECT_EQ(kNever, NextTransition(battery()));
    EXPECT_THAT(Events(), ElementsAre("9/16 of 0", "9/20 of 0", "9/28 of 0", "9/17 of 0",
                                      "9/21 of 0", "9/29 of 0", "9/18 of 0"));
}

TEST_F(BatteryRules, IsChargedByItselfBelowItsMark) {
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 79));
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0"));
    EXPECT_EQ(790, At(kNow).curCapacity);
    EXPECT_EQ(1000, At(kNow + kHour).curCapacity);
}

TEST_F(BatteryRules, IsLeftAloneAtItsMark) {
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 80));
    EXPECT_THAT(Events(), IsEmpty());
    EXPECT_EQ(kNever, NextTransition(battery()));
}

TEST_F(BatteryRules, IsChargedAboveItsMarkWhenAskedTo) {
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 90));
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kCharge)));
    EXPECT_EQ(12, At(kNow).time_to_full);
    EXPECT_EQ(100, At(kNow + 12 * kMinute).percentage);
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0", "9/18 of 0"));
}

// ---- Relearn cycles ----

TEST_F(BatteryRules, RelearnsByLosingAllChargeAndWinningItAgain) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kRelearn)));
    EXPECT_EQ(0x1Du, At(kNow + kHour).status);  // present, safe, discharging, relearning
    const BBU_Info halfway = At(kNow + 5 * kHour);
    EXPECT_EQ(500, halfway.curCapacity);
    EXPECT_EQ(0x17u, halfway.status);  // present, charging, safe, relearning
    const BBU_Info after = At(kNow + 6 * kHour);
    EXPECT_EQ(0x05u, after.status);
    EXPECT_EQ(1, after.recharge_cycle);
    EXPECT_EQ(999, after.maxCapacity);
    EXPECT_EQ(999, after.curCapacity);
    EXPECT_EQ(100, after.percentage);
}

TEST_F(BatteryRules, TellsOfTheStepsOfARelearnCycle) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kRelearn)));
    At(kNow + 6 * kHour);
    EXPECT_THAT(Events(), ElementsAre("9/6 of 0", "9/20 of 0", "9/28 of 0", "9/7 of 0", "9/17 of 0",
                                      "9/21 of 0", "9/29 of 0", "9/18 of 0", "9/8 of 0"));
}

// 30 percent of the charge are gone through after 2.8 hours, and won again at 4.6.
TEST_F(BatteryRules, TakesTheCacheFromVirtualDisksWhileItsRelearnCycleHasItEmpty) {
    virtual_disk(0).cache = CacheBit::kWriteBack | CacheBit::kReadAhead;
    const auto cache_at = [&](Time time) {
        At(time);
        return Described<LD_Info>(0).CacheMode;
    };
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kRelearn)));
    EXPECT_EQ(0x05, cache_at(kNow + 2 * kHour));
    EXPECT_EQ(0x85, cache_at(kNow + 3 * kHour));
    EXPECT_EQ(0x85, cache_at(kNow + 4 * kHour + 30 * kMinute));
    EXPECT_EQ(0x05, cache_at(kNow + 5 * kHour));
    EXPECT_EQ(0x05, cache_at(kNow + 7 * kHour));
}

TEST_F(BatteryRules, IsNotInterruptedWhileItRelearns) {
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kRelearn)));
    const std::string before = Everything();
    for (const HX_U8 action : {HX_U8{0}, HX_U8{1}, HX_U8{2}}) {
        ExpectRefused(Status::kBusy, ChangePower(adapter(), kNow, action), before);
    }
}

TEST_F(BatteryRules, WearsNoFurtherThanItsLowestCapacity) {
    battery().info.maxCapacity = battery().charge_at_since = 601;
    battery().info.curCapacity = 601;
    ASSERT_EQ(0, ChangePower(adapter(), kNow, NumberOf(Power::kRelearn)));
    At(kNow + 7 * kHour);
    EXPECT_EQ(600, battery().info.maxCapacity);
    EXPECT_EQ("9/3 of 0", Events().back());
    ASSERT_EQ(0, ChangePower(adapter(), kNow + 7 * kHour, NumberOf(Power::kRelearn)));
    EXPECT_EQ(600, At(kNow + 14 * kHour).maxCapacity);
}

// ---- The write cache ----

TEST_F(BatteryRules, AllowsWriteBackFromThirtyPercentOn) {
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 30));
    EXPECT_TRUE(AllowsWriteBack(adapter()));
    EXPECT_FALSE(ForcesWriteThrough(adapter()));
}

TEST_F(BatteryRules, ForcesWriteThroughBelowThirtyPercent) {
    ASSERT_TRUE(SetBatteryCharge(adapter(), kNow, 29));
    EXPECT_FALSE(AllowsWriteBack(adapter()));
    EXPECT_TRUE(ForcesWriteThrough(adapter()));
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0", "9/20 of 0", "9/28 of 0"));
}

TEST_F(BatteryRules, ForcesNothingOnAnAdapterThatNeverHadOne) {
    Adapter bare;
    EXPECT_FALSE(AllowsWriteBack(bare));
    EXPECT_FALSE(ForcesWriteThrough(bare));
}

TEST_F(BatteryRules, ProtectsNothingWhileItIsSwitchedOff) {
    ASSERT_EQ(0, SwitchBattery(adapter(), kNow, false));
    EXPECT_EQ(0x101u, At(kNow).status);
    EXPECT_EQ(0x005u, At(kNow).prev_status);
    EXPECT_TRUE(ForcesWriteThrough(adapter()));
    ASSERT_EQ(0, SwitchBattery(adapter(), kNow, true));
    EXPECT_TRUE(AllowsWriteBack(adapter()));
    EXPECT_THAT(Events(), ElementsAre("9/28 of 0", "9/29 of 0"));
}

// ---- Bounds ----

TEST_F(BatteryRules, TellsWhenItIsTooHotAndWhenNoMore) {
    ASSERT_TRUE(SetBatteryTemperature(adapter(), kNow, 50));
    EXPECT_THAT(Events(), IsEmpty());
    ASSERT_TRUE(SetBatteryTemperature(adapter(), kNow, 51));
    EXPECT_EQ(0x21u, At(kNow).status);
    ASSERT_TRUE(SetBatteryTemperature(adapter(), kNow, 30));
    EXPECT_EQ(0x05u, At(kNow).status);
    EXPECT_THAT(Events(), ElementsAre("9/24 of 0", "9/28 of 0", "9/23 of 0", "9/29 of 0"));
}

TEST_F(BatteryRules, TellsWhenItGoesFromTooColdToTooHot) {
    ASSERT_TRUE(SetBatteryTemperature(adapter(), kNow, 4));
    ASSERT_TRUE(SetBatteryTemperature(adapter(), kNow, 60));
    EXPECT_THAT(Events(), ElementsAre("9/22 of 0", "9/28 of 0", "9/24 of 0"));
}

TEST_F(BatteryRules, TellsWhenItsVoltageIsLowOrHigh) {
    ASSERT_TRUE(SetBatteryVoltage(adapter(), kNow, 3599));
    EXPECT_EQ(0x41u, At(kNow).status);
    ASSERT_TRUE(SetBatteryVoltage(adapter(), kNow, 4251));
    ASSERT_TRUE(SetBatteryVoltage(adapter(), kNow, 4250));
    EXPECT_THAT(Events(),
                ElementsAre("9/25 of 0", "9/28 of 0", "9/27 of 0", "9/26 of 0", "9/29 of 0"));
}

TEST_F(BatteryRules, IsMeasuredAgainstNewBoundsAtOnce) {
    ASSERT_EQ(0, SetThreshold(adapter(), kNow, 1, 5, 28));
    EXPECT_EQ(28, At(kNow).temp_upperbound);
    EXPECT_EQ(0x21u, At(kNow).status);
    ASSERT_EQ(0, SetThreshold(adapter(), kNow, 2, 3500, 4300));
    EXPECT_EQ(3500, At(kNow).volt_lowerbound);
    EXPECT_EQ(4300, At(kNow).volt_upperbound);
}

}  // namespace
}  // namespace hxsim
