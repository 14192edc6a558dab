// The battery unit: charge, relearn cycles, thresholds, and what they mean for the write cache.
#pragma once

#include <functional>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The battery's record as it is now.
BBU_Info Describe(const Battery& battery, Time now);

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

/// What callers do to the battery. Each returns HX_SUCCESS, or refuses with the battery as it was.
HX_U8 SetThreshold(Adapter& adapter, Time now, HX_U8 kind, HX_U16 lower, HX_U16 upper);
HX_U8 ChangePower(Adapter& adapter, Time now, HX_U8 action);  // HxsimPower
HX_U8 SwitchBattery(Adapter& adapter, Time now, bool on);

}  // namespace hxsim
