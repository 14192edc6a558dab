// Fills the records of expanders and port multipliers. Every function writes every byte of its
// record.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

void Describe(const Adapter& adapter, const Expander& expander, Time now, Exp_Info& info);
void Describe(const Adapter& adapter, const PortMultiplier& port_multiplier, Time now,
              PM_Info& info);

}  // namespace hxsim
