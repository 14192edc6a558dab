// The battery unit: charge, relearn cycles, thresholds, and their effect on the write cache.
#pragma once

#include <cstdint>
#include <functional>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The battery's record at the time `now`.
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

/// The device number in the battery's events.
inline constexpr HX_U16 kBattery = 0;

/// Whether the adapter's virtual disks may keep written data in the cache now: only with a safe
/// battery. Without a battery unit they may not either, but are not forced to write-through.
bool AllowsWriteBack(const Adapter& adapter);

/// Whether virtual disks that are set to write-back are forced to write-through.
bool ForcesWriteThrough(const Adapter& adapter);

/// The time of the battery's next own transition (the phase ends, the charge passes a tenth);
/// kNever when there is none.
Time NextTransition(const Battery& battery);

/// Performs the battery's transitions due by `now`, with their events.
void AdvanceBattery(Adapter& adapter, Time now);

/// Changes the battery by `change` (a reading, a bound, its charge, its phase, its presence), then
/// updates its status bits and queues the events. The battery is brought up to `now` first. The
/// adapter must have a battery unit.
void ChangeBattery(Adapter& adapter, Time now, const std::function<void(Battery& battery)>& change);

/// The charge at `now` and the charge of a full battery, in mAh.
HX_U16 ChargeAt(const Battery& battery, Time now);
std::uint64_t Capacity(const Battery& battery);

}  // namespace hxsim
