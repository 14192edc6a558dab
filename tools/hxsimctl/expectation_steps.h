// Scenario steps that check the state of the machine. For events see event_expectations.h.
#pragma once

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// Parses the words after `expect`. The step throws Refused, with the actual state, when the
/// expectation fails. Throws UsageError.
Step ParseExpectation(const Words& words);

}  // namespace hxsimctl
