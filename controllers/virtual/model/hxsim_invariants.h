// The rules that a machine must satisfy between two calls.
#pragma once

#include <string>
#include <vector>

#include "model/hxsim_machine.h"

namespace hxsim {

/// A sentence for every rule that is broken, naming the object; empty when all hold.
std::vector<std::string> Check(const Machine& machine);

}  // namespace hxsim
