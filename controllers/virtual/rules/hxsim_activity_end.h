// How activities end: completed with their effect, aborted, or failed.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Completes an activity: applies its effect and announces it.
void Complete(Adapter& adapter, Time now, HX_U16 activity_id);

/// Ends an activity without its effect and announces the abort or the error. After an aborted
/// rebuild the blocks keep their state until a caller starts it again. An aborted copyback is not
/// retried: the disks that serve the positions become their homes. A failed activity starts anew
/// when it can.
void Abort(Adapter& adapter, Time now, HX_U16 activity_id);
void Fail(Adapter& adapter, Time now, HX_U16 activity_id);

}  // namespace hxsim
