// What callers do to the battery.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Each returns HX_SUCCESS, or refuses with the battery as it was.
HX_U8 SetThreshold(Adapter& adapter, Time now, HX_U8 kind, HX_U16 lower, HX_U16 upper);
HX_U8 ChangePower(Adapter& adapter, Time now, HX_U8 action);  // Power
HX_U8 SwitchBattery(Adapter& adapter, Time now, bool on);

}  // namespace hxsim
