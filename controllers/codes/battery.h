// The battery that preserves the cache's content during a power cut.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// The battery's state, as bits: status and prev_status of BBU_Info.
enum class BatteryBit : HX_U32 {
    kPresent = 0x01,
    kCharging = 0x02,
    kSafeForWriteBack = 0x04,
    kDischarging = 0x08,
    kRelearning = 0x10,
    kTemperatureOutOfBounds = 0x20,
    kVoltageOutOfBounds = 0x40,
    kNeedsReplacement = 0x80,
    kSwitchedOff = 0x100,  // by HX_BBU_SetStatus
};
inline constexpr Named kBatteryBits[] = {
    {BatteryBit::kPresent, "present"},
    {BatteryBit::kCharging, "charging"},
    {BatteryBit::kSafeForWriteBack, "safe_for_write_back"},
    {BatteryBit::kDischarging, "discharging"},
    {BatteryBit::kRelearning, "relearning"},
    {BatteryBit::kTemperatureOutOfBounds, "temperature_out_of_bounds"},
    {BatteryBit::kVoltageOutOfBounds, "voltage_out_of_bounds"},
    {BatteryBit::kNeedsReplacement, "needs_replacement"},
    {BatteryBit::kSwitchedOff, "switched_off"},
};
static_assert(IsTableOfBits(kBatteryBits));
constexpr const auto& TableOf(BatteryBit) { return kBatteryBits; }
template <>
inline constexpr bool kAreBits<BatteryBit> = true;

/// The battery's features, as bits: featureSupport of BBU_Info.
enum class BatteryFeature : HX_U16 {
    kRelearn = 0x01,
    kThresholds = 0x02,
};
inline constexpr Named kBatteryFeatureBits[] = {
    {BatteryFeature::kRelearn, "relearn"},
    {BatteryFeature::kThresholds, "thresholds"},
};
static_assert(IsTableOfBits(kBatteryFeatureBits));
constexpr const auto& TableOf(BatteryFeature) { return kBatteryFeatureBits; }
template <>
inline constexpr bool kAreBits<BatteryFeature> = true;

/// Action of HX_BBU_ChangePower. The interface defines that 0 starts a relearn cycle.
enum class Power : HX_U8 {
    kRelearn = 0,
    kCharge = 1,
    kDischarge = 2,
};
inline constexpr Named kPowerNames[] = {
    {Power::kRelearn, "relearn"},
    {Power::kCharge, "charge"},
    {Power::kDischarge, "discharge"},
};
static_assert(IsTable(kPowerNames));
constexpr const auto& TableOf(Power) { return kPowerNames; }

}  // namespace hxcodes
