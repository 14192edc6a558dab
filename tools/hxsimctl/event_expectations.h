// The steps of scenarios that expect events, or none.
#pragma once

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// event a0 KEY [DEVICE]: expects such an event that no earlier step has matched. Throws
/// UsageError.
Step ExpectEvent(const Words& words);

/// no event a0 KEY [DEVICE]: expects that there is none. Throws UsageError.
Step ExpectNoEvent(const Words& words);

}  // namespace hxsimctl
