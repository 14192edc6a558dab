// A power cut.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The power fails and returns: running activities restart where they were, and cached data without
/// a battery is lost (initialised virtual disks set to write-back may then have stripes whose
/// redundancy disagrees).
void CutPower(Adapter& adapter, Time now);

}  // namespace hxsim
