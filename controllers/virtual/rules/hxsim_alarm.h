// The alarm of an adapter and its causes.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether the alarm sounds for a virtual disk in that state.
bool CausesAlarm(State state);

/// Sounds the alarm while a virtual disk is degraded or offline or an enclosure element is
/// critical, when the adapter has an alarm and it is switched on; else silences it. A muted alarm
/// stays silent until a new cause appears or no cause is left.
void UpdateAlarm(Adapter& adapter, bool new_cause = false);

}  // namespace hxsim
