// Incidents of the battery.
#pragma once

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

Outcome SetBatteryTemperature(Adapter& adapter, Time now, HX_U16 celsius);
Outcome SetBatteryVoltage(Adapter& adapter, Time now, HX_U16 millivolts);
Outcome SetBatteryCharge(Adapter& adapter, Time now, HX_U8 percent);
Outcome RemoveBattery(Adapter& adapter, Time now);
Outcome ReplaceBattery(Adapter& adapter, Time now);

}  // namespace hxsim
