// The alarm of an adapter and its causes.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether the alarm sounds for a virtual disk in that state.
bool CausesAlarm(State state);

/// Lets the alarm sound while a virtual disk is degraded or offline or an element of an enclosure
/// is critical, when the adapter has an alarm and it is on; else silences it. A muted alarm stays
/// silent until there is a new cause, or no cause any more.
void UpdateAlarm(Adapter& adapter, bool new_cause = false);

}  // namespace hxsim
