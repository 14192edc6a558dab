// Faults that are put in the way of calls, and how they are counted.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The first fault that hits the call, with what has been counted on the way; nothing when none
/// does. `counts` becomes true when a row has changed or is gone.
std::optional<Injection> NextFault(std::vector<Injection>& injections, std::string_view call,
                                   HX_U8 adapter, bool& counts);

}  // namespace hxsim
