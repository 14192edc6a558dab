// What the readings of sensors mean.
#include "rules/hxsim_enclosure_sensors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

class EnclosureSensor : public MixedMachineTest {
protected:
    ElementStatus StatusOfVoltage(HX_U16 reading) {
        element(kVoltage).reading = reading;
        const ElementStatus status = StatusOf(element(kVoltage));
        element(kVoltage).reading = 1200;
        return status;
    }
};

TEST_F(EnclosureSensor, VoltageIsMeasuredInHalfPercentsOfWhatItShouldBe) {
    EXPECT_EQ(ElementStatus::kOk, StatusOfVoltage(1260));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1261));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1320));
    EXPECT_EQ(ElementStatus::kCritical, StatusOfVoltage(1321));
    EXPECT_EQ(ElementStatus::kNoncritical, StatusOfVoltage(1139));
    EXPECT_EQ(ElementStatus::kCritical, StatusOfVoltage(1079));
}

TEST_F(EnclosureSensor, ElementWithoutBoundsIsWellWhateverItReads) {
    Element sensor;
    sensor.type = ElementType::kTemperature;
    sensor.reading = 250;
    EXPECT_EQ(ElementStatus::kOk, StatusOf(sensor));
    sensor.type = ElementType::kVoltage;
    EXPECT_EQ(ElementStatus::kOk, StatusOf(sensor));
}

TEST_F(EnclosureSensor, FindsElementsByTheirNumber) {
    EXPECT_EQ(&element(kAlarm), FindElement(adapter(), 0, kAlarm));
    EXPECT_EQ(nullptr, FindElement(adapter(), 0, 5));
}

}  // namespace
}  // namespace hxsim
