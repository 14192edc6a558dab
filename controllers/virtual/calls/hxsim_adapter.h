// The adapters of the virtual controller: their settings and their alarm.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Sets all of an adapter's settings, with an event for each changed switch or rate that has one.
/// Refused with Status::kBadValue for a rate above 100 percent or a switch that is neither 0 nor 1,
/// and with Status::kNotSupported when a setting changes that is fixed on this adapter.
Status SetAdapter(Adapter& adapter, Time now, const Adapter_Config_V2& config);

/// Silences the alarm until a new cause appears. Refused with Status::kNotSupported by an adapter
/// without an alarm.
Status Mute(Adapter& adapter);

}  // namespace hxsim
