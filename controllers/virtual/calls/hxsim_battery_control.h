// The calls that change the battery.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Each returns Status::kSuccess, or a refusal that leaves the battery unchanged.
Status SetThreshold(Adapter& adapter, Time now, HX_U8 kind, HX_U16 lower, HX_U16 upper);
Status ChangePower(Adapter& adapter, Time now, HX_U8 action);  // Power
Status SwitchBattery(Adapter& adapter, Time now, bool on);

}  // namespace hxsim
