// The battery unit: charge, relearn cycles, thresholds, and what they mean for the write cache.
#ifndef HXSIM_BATTERY_H
#define HXSIM_BATTERY_H

#include "hxsim_machine.h"

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

/// After a measure (temperature, voltage, presence) has been set: status bits and events follow.
void Measure(Adapter& adapter, Time now);

}  // namespace hxsim

#endif
