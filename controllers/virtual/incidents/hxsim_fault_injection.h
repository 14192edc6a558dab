// Faults that are injected into calls, and their counters.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// The first fault that hits the call, if any; updates the counters of the rows on the way. Sets
/// `counts` when a row was changed or removed.
std::optional<Injection> NextFault(std::vector<Injection>& injections, std::string_view call,
                                   HX_U8 adapter, bool& counts);

}  // namespace hxsim
