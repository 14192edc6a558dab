// What the controller answers about its health, as the table of conditions takes it.
#pragma once

#include "conditions/hxc_answers.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// One look at the adapters that the controller has selected. What could not be read, or cannot be
/// understood because nobody has said what its codes mean, is told as such in the queries; a
/// controller that cannot be asked at all as the machine's. Throws nothing for what a controller
/// says.
hxconditions::Answers LoadHealth(Controller& controller);

/// The answers of a machine that cannot be asked at all, and why.
hxconditions::Answers UnreachableHealth(Exit exit, const std::string& reason);

}  // namespace vexorctl
