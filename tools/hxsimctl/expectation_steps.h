// Scenario steps that compare the machine with what is expected. Those about events stand in
// event_expectations.h.
#pragma once

#include "step_values.h"
#include "story.h"

namespace hxsimctl {

/// The step that the words behind `expect` say. It throws Refused, with what is there instead, when
/// the expectation fails. Throws UsageError.
Step ParseExpectation(const Words& words);

}  // namespace hxsimctl
