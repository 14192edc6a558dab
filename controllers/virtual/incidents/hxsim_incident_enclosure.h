// Incidents of enclosure elements.
#pragma once

#include "incidents/hxsim_incident.h"
#include "model/hxsim_machine.h"

namespace hxsim {

Outcome SetFanSpeed(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, HX_U16 rpm);
Outcome SetTemperature(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, int celsius);
Outcome SetPowerSupply(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element, bool works);

/// Gives an element of any type a state; "ok" leaves it to what the element measures.
Outcome SetElementStatus(Adapter& adapter, Time now, HX_U16 enclosure, HX_U8 element,
                         ElementStatus status);

/// The enclosure loses its power or its cable and gets it back: its disks and expanders go and come
/// with it. Every disk that is not there when it comes back is put in.
Outcome UnplugEnclosure(Adapter& adapter, Time now, HX_U16 enclosure);
Outcome PlugEnclosure(Adapter& adapter, Time now, HX_U16 enclosure);

}  // namespace hxsim
