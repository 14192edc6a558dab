// Runs scenarios.
#pragma once

#include "scenario_reader.h"

namespace hxsimctl {

/// Runs a scenario. The clock moves only by the steps, and continues at its former speed
/// afterwards. `verbose` prints each step. Throws Refused, with file and line, at the first failed
/// expectation, refused step or broken rule of the machine.
void RunScenario(Driver& driver, const Scenario& scenario, bool verbose);

}  // namespace hxsimctl
