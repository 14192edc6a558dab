// Enclosures and their elements, by the codes of SES.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// Status of an enclosure or an element. The codes are those of SES element status.
enum class ElementStatus : HX_U8 {
    kUnsupported = 0,
    kOk = 1,
    kCritical = 2,
    kNoncritical = 3,
    kUnrecoverable = 4,
    kNotInstalled = 5,
    kUnknown = 6,
    kNotAvailable = 7,
};
inline constexpr Named kElementStatusNames[] = {
    {ElementStatus::kUnsupported, "unsupported"},
    {ElementStatus::kOk, "ok"},
    {ElementStatus::kCritical, "critical"},
    {ElementStatus::kNoncritical, "noncritical"},
    {ElementStatus::kUnrecoverable, "unrecoverable"},
    {ElementStatus::kNotInstalled, "not_installed"},
    {ElementStatus::kUnknown, "unknown"},
    {ElementStatus::kNotAvailable, "not_available"},
};
static_assert(IsTable(kElementStatusNames));
constexpr const auto& TableOf(ElementStatus) { return kElementStatusNames; }

/// Type of an element. The codes are the interface's.
enum class ElementType : HX_U8 {
    kPowerSupply = HX_ELEMENT_POWER_SUPPLY,
    kFan = HX_ELEMENT_FAN,
    kTemperature = HX_ELEMENT_TEMPERATURE,
    kDoor = HX_ELEMENT_DOOR,
    kAlarm = HX_ELEMENT_ALARM,
    kVoltage = HX_ELEMENT_VOLTAGE,
};
inline constexpr Named kElementTypeNames[] = {
    {ElementType::kPowerSupply, "power_supply"},
    {ElementType::kFan, "fan"},
    {ElementType::kTemperature, "temperature"},
    {ElementType::kDoor, "door"},
    {ElementType::kAlarm, "alarm"},
    {ElementType::kVoltage, "voltage"},
};
static_assert(IsTable(kElementTypeNames));
constexpr const auto& TableOf(ElementType) { return kElementTypeNames; }

}  // namespace hxcodes
