// The rates of activities.
#pragma once

#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// Gives what the array does now the rate of its kind, or the system's where none was set.
void ApplyRate(const Kept& kept, const Machine& machine, const Array& array);

}  // namespace hxmd
