// The virtual controller's state as a library: open or not.
#pragma once

#include "hxraid.h"

namespace hxsim {

/// Opens the state file that StatePath names, if it is not open yet. Refused with HXSIM_NO_STATE or
/// HXSIM_NO_MEMORY; the library is closed then.
HX_U8 Open();

/// Closes it, if it is open.
void Close();

}  // namespace hxsim
