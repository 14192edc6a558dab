// The battery: how its charge goes with time, its bounds, and what it means for the write cache.
#include "rules/hxsim_battery.h"
#include "calls/hxsim_battery_control.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calls/hxsim_virtual_disk_list.h"
#include "codes/battery.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"
#include "controllers/virtual/support/living_parts.h"
#include "incidents/hxsim_incident_battery.h"

namespace {

using hxcodes::CacheBit;
using hxcodes::Power;
using hxcodes::Status;
using parts::kNow;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr hxsim::Time kMinute = 60'000, kHour = 60 * kMinute;

class LivingBattery : public parts::PartsTest {
protected:
    BBU_Info At(hxsim::Time time) {
        while (true) {
            const hxsim::Time due = hxsim::NextTransition(battery());
            if (due > time) break;
            hxsim::AdvanceBattery(adapter(), due);
        }
        return hxsim::Describe(battery(), time);
    }

    void ExpectRefused(HX_U8 code, HX_U8 status, const std::string& before) {
        EXPECT_EQ(code, status);
        EXPECT_EQ(before, Everything());
    }
};

// ---- Charge ----

TEST_F(LivingBattery, DoesNothingByItselfWhileItIsFull) {
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(battery()));
    const BBU_Info info = At(kNow + 1000 * kHour);
    EXPECT_EQ(1000, info.curCapacity);
    EXPECT_EQ(65535, info.time_to_empty);
    EXPECT_EQ(65535, info.time_to_full);
}

TEST_F(LivingBattery, LosesHalfOfItsChargeInTwoHours) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kDischarge));
    const BBU_Info info = At(kNow + 2 * kHour);
    EXPECT_EQ(500, info.curCapacity);
    EXPECT_EQ(50, info.percentage);
    EXPECT_EQ(120, info.time_to_empty);
    EXPECT_EQ(65535, info.time_to_full);
    EXPECT_EQ(0x0Du, info.status);  // present, safe, discharging
}

TEST_F(LivingBattery, ActsAtEachTenthOfItsCharge) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kDischarge));
    EXPECT_EQ(kNow + 14'400, hxsim::NextTransition(battery()));  // one mAh below all of it
    At(kNow + 14'400);
    EXPECT_EQ(kNow + 101 * 14'400, hxsim::NextTransition(battery()));
}

TEST_F(LivingBattery, IsChargedByItselfOnceItIsEmpty) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kDischarge));
    const BBU_Info info = At(kNow + 4 * kHour);
    EXPECT_EQ(0, info.curCapacity);
    EXPECT_EQ(0x03u, info.status);  // present, charging
    EXPECT_EQ(120, info.time_to_full);
    EXPECT_EQ(1000, At(kNow + 6 * kHour).curCapacity);
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(battery()));
    EXPECT_THAT(Events(), ElementsAre("9/16 of 0", "9/20 of 0", "9/28 of 0", "9/17 of 0",
                                      "9/21 of 0", "9/29 of 0", "9/18 of 0"));
}

TEST_F(LivingBattery, IsChargedByItselfBelowItsMark) {
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 79));
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0"));
    EXPECT_EQ(790, At(kNow).curCapacity);
    EXPECT_EQ(1000, At(kNow + kHour).curCapacity);
}

TEST_F(LivingBattery, IsLeftAloneAtItsMark) {
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 80));
    EXPECT_THAT(Events(), IsEmpty());
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(battery()));
}

TEST_F(LivingBattery, IsChargedAboveItsMarkWhenAskedTo) {
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 90));
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kCharge));
    EXPECT_EQ(12, At(kNow).time_to_full);
    EXPECT_EQ(100, At(kNow + 12 * kMinute).percentage);
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0", "9/18 of 0"));
}

// ---- Relearn cycles ----

TEST_F(LivingBattery, RelearnsByLosingAllChargeAndWinningItAgain) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kRelearn));
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

TEST_F(LivingBattery, TellsOfTheStepsOfARelearnCycle) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kRelearn));
    At(kNow + 6 * kHour);
    EXPECT_THAT(Events(), ElementsAre("9/6 of 0", "9/20 of 0", "9/28 of 0", "9/7 of 0", "9/17 of 0",
                                      "9/21 of 0", "9/29 of 0", "9/18 of 0", "9/8 of 0"));
}

// 30 percent of the charge are gone through after 2.8 hours, and won again at 4.6.
TEST_F(LivingBattery, TakesTheCacheFromVirtualDisksWhileItsRelearnCycleHasItEmpty) {
    virtual_disk(0).cache = CacheBit::kWriteBack | CacheBit::kReadAhead;
    const auto cache_at = [&](hxsim::Time time) {
        At(time);
        return hxsim::DescribeVirtualDisk(adapter(), virtual_disk(0)).CacheMode;
    };
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kRelearn));
    EXPECT_EQ(0x05, cache_at(kNow + 2 * kHour));
    EXPECT_EQ(0x85, cache_at(kNow + 3 * kHour));
    EXPECT_EQ(0x85, cache_at(kNow + 4 * kHour + 30 * kMinute));
    EXPECT_EQ(0x05, cache_at(kNow + 5 * kHour));
    EXPECT_EQ(0x05, cache_at(kNow + 7 * kHour));
}

TEST_F(LivingBattery, IsNotInterruptedWhileItRelearns) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kRelearn));
    const std::string before = Everything();
    for (const HX_U8 action : {HX_U8{0}, HX_U8{1}, HX_U8{2}}) {
        ExpectRefused(Status::kBusy, hxsim::ChangePower(adapter(), kNow, action), before);
    }
}

TEST_F(LivingBattery, WearsNoFurtherThanItsLowestCapacity) {
    battery().info.maxCapacity = battery().charge_at_since = 601;
    battery().info.curCapacity = 601;
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kRelearn));
    At(kNow + 7 * kHour);
    EXPECT_EQ(600, battery().info.maxCapacity);
    EXPECT_EQ("9/3 of 0", Events().back());
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow + 7 * kHour, Power::kRelearn));
    EXPECT_EQ(600, At(kNow + 14 * kHour).maxCapacity);
}

// ---- The write cache ----

TEST_F(LivingBattery, AllowsWriteBackFromThirtyPercentOn) {
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 30));
    EXPECT_TRUE(hxsim::AllowsWriteBack(adapter()));
    EXPECT_FALSE(hxsim::ForcesWriteThrough(adapter()));
}

TEST_F(LivingBattery, ForcesWriteThroughBelowThirtyPercent) {
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 29));
    EXPECT_FALSE(hxsim::AllowsWriteBack(adapter()));
    EXPECT_TRUE(hxsim::ForcesWriteThrough(adapter()));
    EXPECT_THAT(Events(), ElementsAre("9/17 of 0", "9/20 of 0", "9/28 of 0"));
}

TEST_F(LivingBattery, ForcesNothingOnAnAdapterThatNeverHadOne) {
    hxsim::Adapter bare;
    EXPECT_FALSE(hxsim::AllowsWriteBack(bare));
    EXPECT_FALSE(hxsim::ForcesWriteThrough(bare));
}

TEST_F(LivingBattery, ProtectsNothingWhileItIsSwitchedOff) {
    ASSERT_EQ(0, hxsim::SwitchBattery(adapter(), kNow, false));
    EXPECT_EQ(0x101u, At(kNow).status);
    EXPECT_EQ(0x005u, At(kNow).prev_status);
    EXPECT_TRUE(hxsim::ForcesWriteThrough(adapter()));
    ASSERT_EQ(0, hxsim::SwitchBattery(adapter(), kNow, true));
    EXPECT_TRUE(hxsim::AllowsWriteBack(adapter()));
    EXPECT_THAT(Events(), ElementsAre("9/28 of 0", "9/29 of 0"));
}

TEST_F(LivingBattery, IsNotSwitchedToWhatItIs) {
    const std::string before = Everything();
    ExpectRefused(Status::kNoChange, hxsim::SwitchBattery(adapter(), kNow, true), before);
}

// ---- Bounds ----

TEST_F(LivingBattery, TellsWhenItIsTooHotAndWhenNoMore) {
    ASSERT_TRUE(hxsim::SetBatteryTemperature(adapter(), kNow, 50));
    EXPECT_THAT(Events(), IsEmpty());
    ASSERT_TRUE(hxsim::SetBatteryTemperature(adapter(), kNow, 51));
    EXPECT_EQ(0x21u, At(kNow).status);
    ASSERT_TRUE(hxsim::SetBatteryTemperature(adapter(), kNow, 30));
    EXPECT_EQ(0x05u, At(kNow).status);
    EXPECT_THAT(Events(), ElementsAre("9/24 of 0", "9/28 of 0", "9/23 of 0", "9/29 of 0"));
}

TEST_F(LivingBattery, TellsWhenItGoesFromTooColdToTooHot) {
    ASSERT_TRUE(hxsim::SetBatteryTemperature(adapter(), kNow, 4));
    ASSERT_TRUE(hxsim::SetBatteryTemperature(adapter(), kNow, 60));
    EXPECT_THAT(Events(), ElementsAre("9/22 of 0", "9/28 of 0", "9/24 of 0"));
}

TEST_F(LivingBattery, TellsWhenItsVoltageIsLowOrHigh) {
    ASSERT_TRUE(hxsim::SetBatteryVoltage(adapter(), kNow, 3599));
    EXPECT_EQ(0x41u, At(kNow).status);
    ASSERT_TRUE(hxsim::SetBatteryVoltage(adapter(), kNow, 4251));
    ASSERT_TRUE(hxsim::SetBatteryVoltage(adapter(), kNow, 4250));
    EXPECT_THAT(Events(),
                ElementsAre("9/25 of 0", "9/28 of 0", "9/27 of 0", "9/26 of 0", "9/29 of 0"));
}

TEST_F(LivingBattery, IsMeasuredAgainstNewBoundsAtOnce) {
    ASSERT_EQ(0, hxsim::SetThreshold(adapter(), kNow, 1, 5, 28));
    EXPECT_EQ(28, At(kNow).temp_upperbound);
    EXPECT_EQ(0x21u, At(kNow).status);
    ASSERT_EQ(0, hxsim::SetThreshold(adapter(), kNow, 2, 3500, 4300));
    EXPECT_EQ(3500, At(kNow).volt_lowerbound);
    EXPECT_EQ(4300, At(kNow).volt_upperbound);
}

TEST_F(LivingBattery, TakesNoBoundsThatMakeNoSense) {
    const std::string before = Everything();
    const auto set = [&](HX_U8 kind, HX_U16 lower, HX_U16 upper) {
        return hxsim::SetThreshold(adapter(), kNow, kind, lower, upper);
    };
    ExpectRefused(Status::kBadValue, set(1, 50, 50), before);
    ExpectRefused(Status::kBadValue, set(1, 5, 101), before);
    ExpectRefused(Status::kBadValue, set(2, 4300, 3500), before);
    ExpectRefused(Status::kBadValue, set(2, 999, 4300), before);
    ExpectRefused(Status::kBadValue, set(2, 3500, 20001), before);
    ExpectRefused(Status::kBadAction, set(0, 5, 50), before);
    ExpectRefused(Status::kBadAction, set(3, 5, 50), before);
}

// ---- Refusals ----

TEST_F(LivingBattery, HasNoBoundsAndNoRelearnCycleWithoutTheFeature) {
    battery().info.featureSupport = 0;
    const std::string before = Everything();
    ExpectRefused(Status::kNotSupported, hxsim::SetThreshold(adapter(), kNow, 1, 5, 50), before);
    ExpectRefused(Status::kNotSupported, hxsim::ChangePower(adapter(), kNow, 0), before);
}

TEST_F(LivingBattery, IsNotChargedWhenFullAndNotEmptiedWhenEmpty) {
    std::string before = Everything();
    ExpectRefused(Status::kNoChange, hxsim::ChangePower(adapter(), kNow, 1), before);
    ASSERT_TRUE(hxsim::SetBatteryCharge(adapter(), kNow, 0));
    before = Everything();
    ExpectRefused(Status::kNoChange, hxsim::ChangePower(adapter(), kNow, 2), before);
    ExpectRefused(Status::kNoChange, hxsim::ChangePower(adapter(), kNow, 1), before);
}

TEST_F(LivingBattery, KnowsNoOtherActions) {
    const std::string before = Everything();
    ExpectRefused(Status::kBadAction, hxsim::ChangePower(adapter(), kNow, 3), before);
    ExpectRefused(Status::kBadAction, hxsim::ChangePower(adapter(), kNow, 255), before);
}

TEST_F(LivingBattery, CanBeAskedNothingOnceItIsRemoved) {
    ASSERT_TRUE(hxsim::RemoveBattery(adapter(), kNow));
    const std::string before = Everything();
    ExpectRefused(Status::kNoBattery, hxsim::SetThreshold(adapter(), kNow, 1, 5, 50), before);
    ExpectRefused(Status::kNoBattery, hxsim::ChangePower(adapter(), kNow, 0), before);
    ExpectRefused(Status::kNoBattery, hxsim::SwitchBattery(adapter(), kNow, false), before);
}

// ---- Hands ----

TEST_F(LivingBattery, LeavesTheCacheUnprotectedWhenItIsRemoved) {
    ASSERT_EQ(0, hxsim::ChangePower(adapter(), kNow, Power::kDischarge));
    ASSERT_TRUE(hxsim::RemoveBattery(adapter(), kNow));
    EXPECT_TRUE(hxsim::ForcesWriteThrough(adapter()));
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(battery()));
    EXPECT_THAT(Events(), ElementsAre("9/16 of 0", "9/5 of 0", "9/28 of 0"));
}

TEST_F(LivingBattery, IsRemovedOnce) {
    ASSERT_TRUE(hxsim::RemoveBattery(adapter(), kNow));
    EXPECT_EQ("The battery of adapter 0 has been removed; replace it first.",
              hxsim::RemoveBattery(adapter(), kNow).refusal);
    EXPECT_EQ("The battery of adapter 0 has been removed; replace it first.",
              hxsim::SetBatteryCharge(adapter(), kNow, 50).refusal);
}

TEST_F(LivingBattery, IsReplacedByANewOneThatIsChargedFirst) {
    battery().info.recharge_cycle = 400;
    ASSERT_TRUE(hxsim::RemoveBattery(adapter(), kNow));
    adapter().events.clear();
    ASSERT_TRUE(hxsim::ReplaceBattery(adapter(), kNow));
    const BBU_Info info = At(kNow);
    EXPECT_EQ(1100, info.maxCapacity);
    EXPECT_EQ(440, info.curCapacity);
    EXPECT_EQ(40, info.percentage);
    EXPECT_EQ(0, info.recharge_cycle);
    EXPECT_EQ(0x07u, info.status);  // present, charging, safe
    EXPECT_EQ(72, info.time_to_full);
    EXPECT_THAT(Events(), ElementsAre("9/2 of 0", "9/17 of 0", "9/29 of 0"));
}

TEST_F(LivingBattery, IsReplacedWhileItIsThere) {
    ASSERT_TRUE(hxsim::ReplaceBattery(adapter(), kNow));
    EXPECT_THAT(Events(), ElementsAre("9/4 of 0", "9/17 of 0"));
}

TEST_F(LivingBattery, IsSetToNoMoreThanAllOfItsCharge) {
    EXPECT_EQ("A battery is charged to 0 to 100 percent, not 101.",
              hxsim::SetBatteryCharge(adapter(), kNow, 101).refusal);
    EXPECT_EQ(100, At(kNow).percentage);
}

TEST_F(LivingBattery, IsNotPutWhereThereIsNoPlace) {
    adapter().batteries.clear();
    const std::string sentence = "Adapter 0 has no place for a battery; take another adapter.";
    EXPECT_EQ(sentence, hxsim::ReplaceBattery(adapter(), kNow).refusal);
    EXPECT_EQ(sentence, hxsim::RemoveBattery(adapter(), kNow).refusal);
    EXPECT_EQ(sentence, hxsim::SetBatteryTemperature(adapter(), kNow, 20).refusal);
    EXPECT_EQ(sentence, hxsim::SetBatteryVoltage(adapter(), kNow, 4000).refusal);
}

}  // namespace
