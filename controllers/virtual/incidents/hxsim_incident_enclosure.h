// Incidents of enclosure elements.
#pragma once

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

Outcome SetFanSpeed(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, HX_U16 rpm);
Outcome SetTemperature(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, int celsius);
Outcome SetPowerSupply(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, bool works);

}  // namespace hxsim
