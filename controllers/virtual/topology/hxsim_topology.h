// Creates machines from a topology (a JSON text that lists the devices and their links) and a seed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/hxsim_machine.h"
#include "topology/hxsim_topology_error.h"  // IWYU pragma: export (what is thrown)

namespace hxsim {

/// The names of the built-in topologies: "default", "small" and "rack".
std::vector<std::string_view> BuiltInTopologies();

/// The text of a built-in topology; empty for an unknown name.
std::string_view BuiltInTopology(std::string_view name);

/// The machine of a topology. The same text, seed and time make the same machine, byte for byte.
/// `now` is the start of its clock, in real and in virtual time. Throws TopologyError.
Machine MakeMachine(std::string_view topology, std::uint64_t seed, Time now);

/// The machine of an automatically created state file: topology "default", starting now.
Machine DefaultMachine();

}  // namespace hxsim
