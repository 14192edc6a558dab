// Runs scenarios.
#pragma once

#include "scenario_reader.h"

namespace hxsimctl {

/// Runs a scenario on a clock that stands still but for the steps, and that goes on at its former
/// speed afterwards. `verbose` prints each step. Throws Refused, with file and line, for the first
/// expectation that fails, for the first step that is refused, and when a step breaks a rule of the
/// machine.
void RunScenario(Driver& driver, const Scenario& scenario, bool verbose);

}  // namespace hxsimctl
