// Incidents of background activities.
#pragma once

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity of a virtual disk runs on and gets nowhere, until a rate is set.
Outcome StallActivity(Adapter& adapter, Time now, HX_U16 virtual_disk);

}  // namespace hxsim
