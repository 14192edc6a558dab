// A power cut.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The power fails and comes back: what ran in the background restarts where it was, and what was
/// in the cache without a battery is lost (initialised virtual disks set to write-back may then
/// have stripes whose redundancy disagrees).
void CutPower(Adapter& adapter, Time now);

}  // namespace hxsim
