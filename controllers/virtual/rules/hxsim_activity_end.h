// How activities end: completed with their effect, aborted, or failed.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Ends an activity with its effect and announces it.
void Complete(Adapter& adapter, Time now, HX_U16 activity_id);

/// Ends an activity without its effect and announces an abort, or an error. An aborted rebuild is
/// held: its blocks stay as they are until a caller starts it again. An aborted copyback is not
/// tried again: the positions belong where they are now. What failed begins anew when it can.
void Abort(Adapter& adapter, Time now, HX_U16 activity_id);
void Fail(Adapter& adapter, Time now, HX_U16 activity_id);

}  // namespace hxsim
