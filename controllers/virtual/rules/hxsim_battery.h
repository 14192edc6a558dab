// The battery unit: charge, relearn cycles, thresholds, and what they mean for the write cache.
#pragma once

#include <cstdint>
#include <functional>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The battery's record as it is now.
BBU_Info Describe(const Battery& battery, Time now);

constexpr bool Charges(BatteryPhase phase) {
    return phase == BatteryPhase::kCharging || phase == BatteryPhase::kRelearnCharging;
}
constexpr bool Discharges(BatteryPhase phase) {
    return phase == BatteryPhase::kDischarging || phase == BatteryPhase::kRelearnDischarging;
}
constexpr bool Relearns(BatteryPhase phase) {
    return phase == BatteryPhase::kRelearnDischarging || phase == BatteryPhase::kRelearnCharging;
}

/// The device of the battery's events.
inline constexpr HX_U16 kBattery = 0;

/// Whether the adapter's virtual disks may keep written data in the cache now: it has a battery
/// that is safe. An adapter that never had one may not, but nothing is forced on it.
bool AllowsWriteBack(const Adapter& adapter);

/// Whether write-back has been taken away from virtual disks that are set to it.
bool ForcesWriteThrough(const Adapter& adapter);

/// When the battery does something by itself next (phase ends, a tenth of the charge); kNever.
Time NextTransition(const Battery& battery);

/// Does what is due at `now`, with its events.
void AdvanceBattery(Adapter& adapter, Time now);

/// Lets `change` change the battery (a measure, a bound, its charge, its phase, whether it is
/// there). It starts from a battery whose record is right now; status bits and events follow. The
/// adapter must have one.
void ChangeBattery(Adapter& adapter, Time now, const std::function<void(Battery& battery)>& change);

/// The charge in mAh, and what a full one is.
HX_U16 ChargeAt(const Battery& battery, Time now);
std::uint64_t Capacity(const Battery& battery);

}  // namespace hxsim
