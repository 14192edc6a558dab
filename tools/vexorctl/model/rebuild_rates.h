// How fast rebuilds have been, measured from the events that are stored.
#pragma once

#include "conditions/hxc_answers.h"
#include "conditions/hxc_risk.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// Of each adapter the rate of the latest rebuild that ran from its start to its end without a
/// pause, on a virtual disk that is still there. Empty where no event store can be read or no such
/// rebuild is in it.
hxconditions::RebuildRates MeasureRebuilds(Controller& controller,
                                           const hxconditions::Answers& answers);

}  // namespace vexorctl
