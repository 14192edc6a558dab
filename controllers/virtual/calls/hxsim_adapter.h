// The adapters of the virtual controller: how they are set, and their alarm.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Sets all of an adapter's settings, with an event for each that is another one then. Refused with
/// Status::kBadValue for a rate above 100 percent or a switch that is neither 0 nor 1, and with
/// Status::kNotSupported when something changes that the adapter does not let be set.
Status SetAdapter(Adapter& adapter, Time now, const Adapter_Config_V2& config);

/// Silences the alarm until there is a new cause. Refused with Status::kNotSupported by an adapter
/// without one.
Status Mute(Adapter& adapter);

}  // namespace hxsim
