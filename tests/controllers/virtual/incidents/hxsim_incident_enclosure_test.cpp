// What happens to the elements of enclosures, what it means, and whom it calls.
#include "incidents/hxsim_incident_enclosure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "calls/hxsim_adapter.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EnclosureIncident : public MixedMachineTest {
protected:
    ElementStatus SetCelsius(int celsius) {
        EXPECT_TRUE(SetTemperature(adapter(), kNow, 0, kSensor, celsius));
        return element(kSensor).status;
    }
    ElementStatus SetSpeed(HX_U16 rpm) {
        EXPECT_TRUE(SetFanSpeed(adapter(), kNow, 0, kFan, rpm));
        return element(kFan).status;
    }
};

// ---- Readings ----

TEST_F(EnclosureIncident, SensorIsNoncriticalAboveAndBelowItsWarnings) {
    EXPECT_EQ(ElementStatus::kOk, SetCelsius(50));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(51));
    EXPECT_EQ(ElementStatus::kOk, SetCelsius(5));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(4));
}

TEST_F(EnclosureIncident, SensorIsCriticalAboveAndBelowItsBounds) {
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(60));
    EXPECT_EQ(ElementStatus::kCritical, SetCelsius(61));
    EXPECT_EQ(ElementStatus::kNoncritical, SetCelsius(0));
    EXPECT_EQ(ElementStatus::kCritical, SetCelsius(-1));
}

TEST_F(EnclosureIncident, SensorReadsTwentyAboveItsTemperature) {
    SetCelsius(37);
    EXPECT_EQ(57, element(kSensor).reading);
}

TEST_F(EnclosureIncident, FanIsNoncriticalBelowFourFifthsAndCriticalBelowHalfOfItsSpeed) {
    EXPECT_EQ(ElementStatus::kOk, SetSpeed(3200));
    EXPECT_EQ(ElementStatus::kNoncritical, SetSpeed(3199));
    EXPECT_EQ(ElementStatus::kNoncritical, SetSpeed(2000));
    EXPECT_EQ(ElementStatus::kCritical, SetSpeed(1999));
    EXPECT_EQ(ElementStatus::kCritical, SetSpeed(0));
}

TEST_F(EnclosureIncident, FanHasTheSpeedCodeOfItsSpeed) {
    SetSpeed(0);
    EXPECT_EQ(0, element(kFan).speed_code);
    SetSpeed(100);
    EXPECT_EQ(1, element(kFan).speed_code);
    SetSpeed(4000);
    EXPECT_EQ(3, element(kFan).speed_code);
    SetSpeed(65535);
    EXPECT_EQ(7, element(kFan).speed_code);
}

TEST_F(EnclosureIncident, PowerSupplyWorksOrDoesNot) {
    ASSERT_TRUE(SetPowerSupply(adapter(), kNow, 0, kSupply, false));
    EXPECT_EQ(ElementStatus::kCritical, element(kSupply).status);
    ASSERT_TRUE(SetPowerSupply(adapter(), kNow, 0, kSupply, true));
    EXPECT_EQ(ElementStatus::kOk, element(kSupply).status);
}

// ---- Events ----

TEST_F(EnclosureIncident, TellsOfEachChangeOfStatusOnce) {
    SetCelsius(55);
    SetCelsius(56);
    SetCelsius(70);
    SetCelsius(30);
    EXPECT_THAT(EventsWithParams(),
                ElementsAre("8/1 of 0 1 4 75 0", "8/0 of 0 1 4 90 0", "8/2 of 0 1 4 50 0"));
}

TEST_F(EnclosureIncident, TellsOfAFailedPowerSupply) {
    ASSERT_TRUE(SetPowerSupply(adapter(), kNow, 0, kSupply, false));
    EXPECT_THAT(EventsWithParams(), ElementsAre("8/0 of 0 2 2 0 0"));
}

// ---- The alarm ----

TEST_F(EnclosureIncident, AlarmSoundsWhileAnElementIsCritical) {
    SetSpeed(3000);
    EXPECT_FALSE(adapter().alarm);
    SetSpeed(0);
    EXPECT_TRUE(adapter().alarm);
    SetSpeed(4000);
    EXPECT_FALSE(adapter().alarm);
}

TEST_F(EnclosureIncident, MutedAlarmIsSilentUntilTheNextCause) {
    SetSpeed(0);
    ASSERT_EQ(0, Mute(adapter()));
    EXPECT_FALSE(adapter().alarm);
    EXPECT_TRUE(adapter().muted);
    SetCelsius(90);
    EXPECT_TRUE(adapter().alarm);
    EXPECT_FALSE(adapter().muted);
}

TEST_F(EnclosureIncident, MutingNothingDoesNotSilenceTheNextAlarm) {
    ASSERT_EQ(0, Mute(adapter()));
    SetSpeed(0);
    EXPECT_TRUE(adapter().alarm);
}

TEST_F(EnclosureIncident, AlarmThatIsSwitchedOffIsSilent) {
    adapter().config.AlarmOn = 0;
    SetSpeed(0);
    EXPECT_FALSE(adapter().alarm);
}

// ---- Incidents that cannot happen ----

TEST_F(EnclosureIncident, SaysWhichElementIsNotThere) {
    const std::string before = Everything();
    EXPECT_EQ("Element 9 of enclosure 0 is not there; take a fan that hxsimctl show lists.",
              SetFanSpeed(adapter(), kNow, 0, 9, 100).refusal);
    EXPECT_EQ("Element 0 of enclosure 3 is not there; take a fan that hxsimctl show lists.",
              SetFanSpeed(adapter(), kNow, 3, kFan, 100).refusal);
    EXPECT_EQ(before, Everything());
}

TEST_F(EnclosureIncident, SaysWhichElementIsOfAnotherKind) {
    EXPECT_EQ(
        "Element 0 of enclosure 0 is no temperature; take a temperature that hxsimctl show lists.",
        SetTemperature(adapter(), kNow, 0, kFan, 30).refusal);
    EXPECT_EQ(
        "Element 1 of enclosure 0 is no power_supply; take a power_supply that hxsimctl show "
        "lists.",
        SetPowerSupply(adapter(), kNow, 0, kSensor, false).refusal);
}

TEST_F(EnclosureIncident, SensorShowsNoTemperatureThatItsByteCannotHold) {
    EXPECT_EQ("A sensor shows -19 to 235 degrees Celsius, not 236.",
              SetTemperature(adapter(), kNow, 0, kSensor, 236).refusal);
    EXPECT_EQ("A sensor shows -19 to 235 degrees Celsius, not -20.",
              SetTemperature(adapter(), kNow, 0, kSensor, -20).refusal);
    EXPECT_THAT(Events(), IsEmpty());
}

}  // namespace
}  // namespace hxsim
