// What must hold of a machine between two calls.
#ifndef HXSIM_CHECK_H
#define HXSIM_CHECK_H

#include <string>
#include <vector>

#include "hxsim_machine.h"

namespace hxsim {

/// A sentence for every rule that is broken, naming the object; empty when all hold.
std::vector<std::string> Check(const Machine& machine);

}  // namespace hxsim

#endif
