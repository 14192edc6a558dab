// Enclosures: what their sensors read, what that means, and whom it calls.
#include "rules/hxsim_enclosure_sensors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calls/hxsim_adapter.h"
#include "codes/enclosure.h"
#include "controllers/virtual/support/living_parts.h"
#include "incidents/hxsim_incident_enclosure.h"

namespace {

using hxcodes::ElementStatus;
using parts::kAlarm;
using parts::kFan;
using parts::kNow;
using parts::kSensor;
using parts::kSupply;
using parts::kVoltage;
using testing::ElementsAre;
using testing::IsEmpty;

class LivingEnclosure : public parts::PartsTest {
protected:
    HX_U8 StatusOfVoltage(HX_U16 reading) {
        element(kVoltage).reading = reading;
        const HX_U8 status = hxsim::StatusOf(element(kVoltage));
        element(kVoltage).reading = 1200;
        return status;
    }
    HX_U8 SetCelsius(int celsius) {
        EXPECT_TRUE(hxsim::SetTemperature(adapter(), kNow, 0, kSensor, celsius));
        return element(kSensor).status;
    }
    HX_U8 SetSpeed(HX_U16 rpm) {
        EXPECT_TRUE(hxsim::SetFanSpeed(adapter(), kNow, 0, kFan, rpm));
        return element(kFan).status;
    }
};

// ---- Readings ----

TEST_F(LivingEnclosure, SensorIsNoncriticalAboveAndBelowItsWarnings) {
    EXPECT_EQ(ElementStatus::kOk, SetCelsius(50));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(51));
    EXPECT_EQ(ElementStatus::kOk, SetCelsius(5));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(4));
}

TEST_F(LivingEnclosure, SensorIsCriticalAboveAndBelowItsBounds) {
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(60));
    EXPECT_EQ(ElementStatus::kCritical, SetCelsius(61));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(0));
    EXPECT_EQ(ElementStatus::kCritical, SetCelsius(-1));
}

TEST_F(LivingEnclosure, SensorReadsTwentyAboveItsTemperature) {
    SetCelsius(37);
    EXPECT_EQ(57, element(kSensor).reading);
}

TEST_F(LivingEnclosure, FanIsNoncriticalBelowFourFifthsAndCriticalBelowHalfOfItsSpeed) {
    EXPECT_EQ(ElementStatus::kOk, SetSpeed(3200));
    EXPECT_EQ(ElementStatus::kNoncritical, SetSpeed(3199));
    EXPECT_EQ(ElementStatus::kNoncritical, SetSpeed(2000));
    EXPECT_EQ(ElementStatus::kCritical, SetSpeed(1999));
    EXPECT_EQ(ElementStatus::kCritical, SetSpeed(0));
}

TEST_F(LivingEnclosure, FanHasTheSpeedCodeOfItsSpeed) {
    SetSpeed(0);
    EXPECT_EQ(0, element(kFan).speed_code);
    SetSpeed(100);
    EXPECT_EQ(1, element(kFan).speed_code);
    SetSpeed(4000);
    EXPECT_EQ(3, element(kFan).speed_code);
    SetSpeed(65535);
    EXPECT_EQ(7, element(kFan).speed_code);
}

TEST_F(LivingEnclosure, VoltageIsMeasuredInHalfPercentsOfWhatItShouldBe) {
    EXPECT_EQ(ElementStatus::kOk, StatusOfVoltage(1260));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1261));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1320));
    EXPECT_EQ(ElementStatus::kCritical, StatusOfVoltage(1321));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1139));
    EXPECT_EQ(ElementStatus::kCritical, StatusOfVoltage(1079));
}

TEST_F(LivingEnclosure, ElementWithoutBoundsIsWellWhateverItReads) {
    hxsim::Element sensor;
    sensor.type = HX_ELEMENT_TEMPERATURE;
    sensor.reading = 250;
    EXPECT_EQ(ElementStatus::kOk, hxsim::StatusOf(sensor));
    sensor.type = HX_ELEMENT_VOLTAGE;
    EXPECT_EQ(ElementStatus::kOk, hxsim::StatusOf(sensor));
}

TEST_F(LivingEnclosure, PowerSupplyWorksOrDoesNot) {
    ASSERT_TRUE(hxsim::SetPowerSupply(adapter(), kNow, 0, kSupply, false));
    EXPECT_EQ(ElementStatus::kCritical, element(kSupply).status);
    ASSERT_TRUE(hxsim::SetPowerSupply(adapter(), kNow, 0, kSupply, true));
    EXPECT_EQ(ElementStatus::kOk, element(kSupply).status);
}

// ---- Events ----

TEST_F(LivingEnclosure, TellsOfEachChangeOfStatusOnce) {
    SetCelsius(55);
    SetCelsius(56);
    SetCelsius(70);
    SetCelsius(30);
    EXPECT_THAT(EventsWithParams(),
                ElementsAre("8/1 of 0 1 4 75 0", "8/0 of 0 1 4 90 0", "8/2 of 0 1 4 50 0"));
}

TEST_F(LivingEnclosure, TellsOfAFailedPowerSupply) {
    ASSERT_TRUE(hxsim::SetPowerSupply(adapter(), kNow, 0, kSupply, false));
    EXPECT_THAT(EventsWithParams(), ElementsAre("8/0 of 0 2 2 0 0"));
}

// ---- The alarm ----

TEST_F(LivingEnclosure, AlarmSoundsWhileAnElementIsCritical) {
    SetSpeed(3000);
    EXPECT_FALSE(adapter().alarm);
    SetSpeed(0);
    EXPECT_TRUE(adapter().alarm);
    SetSpeed(4000);
    EXPECT_FALSE(adapter().alarm);
}

TEST_F(LivingEnclosure, MutedAlarmIsSilentUntilTheNextCause) {
    SetSpeed(0);
    ASSERT_EQ(0, hxsim::Mute(adapter()));
    EXPECT_FALSE(adapter().alarm);
    EXPECT_TRUE(adapter().muted);
    SetCelsius(90);
    EXPECT_TRUE(adapter().alarm);
    EXPECT_FALSE(adapter().muted);
}

TEST_F(LivingEnclosure, MutingNothingDoesNotSilenceTheNextAlarm) {
    ASSERT_EQ(0, hxsim::Mute(adapter()));
    SetSpeed(0);
    EXPECT_TRUE(adapter().alarm);
}

TEST_F(LivingEnclosure, AlarmThatIsSwitchedOffIsSilent) {
    adapter().config.AlarmOn = 0;
    SetSpeed(0);
    EXPECT_FALSE(adapter().alarm);
}

// ---- Incidents that cannot happen ----

TEST_F(LivingEnclosure, SaysWhichElementIsNotThere) {
    const std::string before = Everything();
    EXPECT_EQ("Element 9 of enclosure 0 is not there; take a fan that hxsimctl show lists.",
              hxsim::SetFanSpeed(adapter(), kNow, 0, 9, 100).refusal);
    EXPECT_EQ("Element 0 of enclosure 3 is not there; take a fan that hxsimctl show lists.",
              hxsim::SetFanSpeed(adapter(), kNow, 3, kFan, 100).refusal);
    EXPECT_EQ(before, Everything());
}

TEST_F(LivingEnclosure, SaysWhichElementIsOfAnotherKind) {
    EXPECT_EQ(
        "Element 0 of enclosure 0 is no temperature; take a temperature that hxsimctl show lists.",
        hxsim::SetTemperature(adapter(), kNow, 0, kFan, 30).refusal);
    EXPECT_EQ(
        "Element 1 of enclosure 0 is no power_supply; take a power_supply that hxsimctl show "
        "lists.",
        hxsim::SetPowerSupply(adapter(), kNow, 0, kSensor, false).refusal);
}

TEST_F(LivingEnclosure, SensorShowsNoTemperatureThatItsByteCannotHold) {
    EXPECT_EQ("A sensor shows -19 to 235 degrees Celsius, not 236.",
              hxsim::SetTemperature(adapter(), kNow, 0, kSensor, 236).refusal);
    EXPECT_EQ("A sensor shows -19 to 235 degrees Celsius, not -20.",
              hxsim::SetTemperature(adapter(), kNow, 0, kSensor, -20).refusal);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingEnclosure, FindsElementsByTheirNumber) {
    EXPECT_EQ(&element(kAlarm), hxsim::FindElement(adapter(), 0, kAlarm));
    EXPECT_EQ(nullptr, hxsim::FindElement(adapter(), 0, 5));
}

}  // namespace
